#include "library/VolumeNode.h"

#include <algorithm>
#include <cstring>

using Korvanel::InputStream;
using Korvanel::OutputStream;
using Korvanel::String;
using Korvanel::DirectoryTrees::InStream;
using Korvanel::DirectoryTrees::Leaf;
using Korvanel::DirectoryTrees::Tree;

namespace {

constexpr char kHeader[] = "Korvanel Rattlecorder Volume\x1a";
constexpr std::uint32_t kHeaderBytes = sizeof kHeader - 1;
static_assert(kHeaderBytes == 29);

/// Bytes asked for at once: what a record declares is believed no further than it is delivered.
constexpr std::uint32_t kPieceBytes = 64 * 1024;

/// Folders in folders; a body that goes deeper is no library.
constexpr int kDeepest = 256;

bool readBytes(InputStream& stream, std::uint32_t count, std::vector<std::uint8_t>& bytes)
{
    bytes.clear();
    while (bytes.size() < count) {
        const auto had = static_cast<std::uint32_t>(bytes.size());
        const std::uint32_t piece = std::min(count - had, kPieceBytes);
        bytes.resize(had + piece);
        const std::uint32_t came = std::min(stream.Read(bytes.data() + had, piece), piece);
        bytes.resize(had + came);
        if (came < piece)
            return false;
    }
    return true;
}

/// The name before the next record. @return false at the end of the list, and where it is cut short
bool readName(InputStream& stream, String& name)
{
    std::uint32_t length = 0;
    std::vector<std::uint8_t> bytes;
    if (!stream.Read(length) || length == 0 || !readBytes(stream, length, bytes))
        return false;
    name = String(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()));
    return true;
}

void skipRest(InputStream& stream)
{
    std::vector<std::uint8_t> piece(kPieceBytes);
    while (stream.Read(static_cast<void*>(piece.data()), kPieceBytes) == kPieceBytes)
        continue;
}

int depthOf(const Tree* tree)
{
    int depth = 0;
    for (const Tree* at = tree->parent(); at != nullptr; at = at->parent())
        ++depth;
    return depth;
}

} // namespace

void writeVolume(Tree& tree, OutputStream& stream)
{
    stream.Write(static_cast<const void*>(kHeader), kHeaderBytes);
    tree.WriteTo(stream);
}

// InFileTerminalNode ------------------------------------------------------------------------------

InFileTerminalNode::InFileTerminalNode(const String& name, Tree* parent)
    : Leaf(name, parent)
{
    setFlag(ReadOnlyFlag);
}

InFileTerminalNode::~InFileTerminalNode() = default;

void InFileTerminalNode::WriteTo(OutputStream& stream)
{
    stream.WriteUInt32(static_cast<std::uint32_t>(mData.size()));
    stream.Write(static_cast<const void*>(mData.data()), static_cast<std::uint32_t>(mData.size()));
}

InStream* InFileTerminalNode::GetInput()
{
    // Its release does nothing, so that nobody else could free it.
    return mStreams.emplace_back(std::make_unique<Stream>(*this)).get();
}

void InFileTerminalNode::ReadFrom(InputStream& stream)
{
    const std::uint32_t length = stream.ReadUInt32();
    readBytes(stream, length, mData);
    mData.shrink_to_fit();
}

bool InFileTerminalNode::Stream::IsEOF()
{
    return mPosition >= mNode.mData.size();
}

std::uint32_t InFileTerminalNode::Stream::Read(void* data, std::uint32_t size)
{
    if (IsEOF())
        return 0;
    const auto left = static_cast<std::uint32_t>(mNode.mData.size()) - mPosition;
    const std::uint32_t count = std::min(left, size);
    std::memcpy(data, mNode.mData.data() + mPosition, count);
    mPosition += count;
    return count;
}

// FileBaseNode ------------------------------------------------------------------------------------

FileBaseNode::FileBaseNode(const String& name, Tree* parent)
    : Tree(name, parent)
{
    setFlag(ReadOnlyFlag);
}

void FileBaseNode::ReadFrom(InputStream& stream)
{
    // Collected first: inserting one by one would take the square of a hostile number of records.
    String name;
    std::vector<Leaf*> leaves;
    while (readName(stream, name)) {
        auto* leaf = new InFileTerminalNode(name, this);
        leaf->ReadFrom(stream);
        leaves.push_back(leaf);
    }
    AddLeaves(leaves);

    std::vector<Tree*> folders;
    while (readName(stream, name)) {
        if (depthOf(this) >= kDeepest) {
            skipRest(stream); // the records around this one end here too
            return;
        }
        auto* folder = new FileBaseNode(name, this);
        folder->ReadFrom(stream);
        folders.push_back(folder);
    }
    AddTrees(folders);
}

// VolumeNode --------------------------------------------------------------------------------------

VolumeNode::VolumeNode(const String& name, Tree* parent)
    : FileBaseNode(name, parent)
{
}

int VolumeNode::FullPathSize()
{
    return (parent() != nullptr ? parent()->FullPathSize() : 0) + name().GetLength();
}

void VolumeNode::AppendFullPath(char* dst)
{
    *dst = 0;
    if (parent() != nullptr)
        parent()->AppendFullPath(dst);
    std::memcpy(dst + std::strlen(dst), name().c_str(),
                static_cast<std::size_t>(name().GetLength()) + 1);
}

void VolumeNode::clear()
{
    for (Leaf* leaf = firstLeaf(); leaf != nullptr;)
        RemoveLeaf(leaf)->release();
    for (Tree* tree = firstTree(); tree != nullptr;)
        RemoveTree(tree)->release();
}

void VolumeNode::MakeNode()
{
    clear();
    String path;
    FullPath(path);
    const Korvanel::File file(path.c_str(), Korvanel::File::ReadMode, 0);
    Korvanel::SimpleStream<std::FILE*> stream(file.get());
    char header[kHeaderBytes + 1] = {};
    stream.Read(static_cast<void*>(header), kHeaderBytes);
    mIsVolume = std::memcmp(header, kHeader, sizeof header) == 0;
    if (mIsVolume)
        ReadFrom(stream);
}
