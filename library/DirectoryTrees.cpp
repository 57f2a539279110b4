#include "library/DirectoryTrees.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace Korvanel::DirectoryTrees {

namespace {

constexpr char kSeparator = '\\';

/// Where the path component that begins at `start` ends.
int componentEnd(const String& path, int start)
{
    const int separator = path.Find(kSeparator, start);
    return separator < 0 ? path.GetLength() : separator;
}

bool isNamed(const Node& node, const char* name, int length)
{
    return node.name().GetLength() == length &&
           std::memcmp(node.name().c_str(), name, static_cast<std::size_t>(length)) == 0;
}

} // namespace

// Node --------------------------------------------------------------------------------------------

Node::Node(const String& name, Tree* parent)
    : mParent(parent)
    , mName(name)
{
    if (mParent != nullptr)
        mParent->keep();
}

Node::~Node()
{
    release(mParent);
}

void Node::release()
{
    if (mReferences.fetch_sub(1) == 1)
        delete this;
}

void Node::release(Node* node)
{
    if (node != nullptr)
        node->release();
}

void Node::SetPrev(Node* node)
{
    if (mPrev != nullptr)
        mPrev->mNext = nullptr;
    if (node != nullptr && node->mNext != nullptr)
        node->mNext->mPrev = nullptr;
    mPrev = node;
    if (node != nullptr)
        node->mNext = this;
}

void Node::SetNext(Node* node)
{
    if (mNext != nullptr)
        mNext->mPrev = nullptr;
    if (node != nullptr && node->mPrev != nullptr)
        node->mPrev->mNext = nullptr;
    mNext = node;
    if (node != nullptr)
        node->mPrev = this;
}

String Node::FullName() const
{
    String path;
    if (mParent != nullptr)
        mParent->FullPath(path);
    return path + mName;
}

String Node::PathName(Tree* base) const
{
    if (this == base)
        return {};
    return mParent == nullptr ? mName : mParent->Path(base) + mName;
}

String Node::GetDescription()
{
    const String description = GetDescriptionNoPath();
    if (description.IsEmpty() || mParent == nullptr)
        return description;
    return FullName() + "/" + description;
}

void Node::Rename(const String& newName)
{
    String folder;
    if (mParent != nullptr)
        mParent->FullPath(folder);
    if (std::rename((folder + mName).c_str(), (folder + newName).c_str()) != 0)
        return;
    mName = newName;
    if (mParent != nullptr)
        ++mParent->mListChanges;
}

void Node::Remove()
{
    std::remove(FullName().c_str());
}

// Tree: files -------------------------------------------------------------------------------------

Tree::Tree(const String& name, Tree* parent)
    : Node(name, parent)
{
    setFlag(IsTreeFlag);
}

Tree::~Tree()
{
    releaseAll(mLeaves);
    releaseAll(mTrees);
}

void Tree::WriteTo(OutputStream& stream)
{
    writeList(stream, mLeaves);
    writeList(stream, mTrees);
}

void Tree::writeList(OutputStream& stream, const List& list)
{
    for (Node* node = list.first; node != nullptr; node = node->next()) {
        const auto length = static_cast<std::uint32_t>(node->name().GetLength());
        stream.Write(length);
        stream.Write(static_cast<const void*>(node->name().c_str()), length);
        node->WriteTo(stream);
    }
    stream.Write(std::uint32_t{0});
}

void Tree::Remove()
{
    for (Node* leaf = mLeaves.first; leaf != nullptr; leaf = leaf->next())
        leaf->Remove();
    for (Node* tree = mTrees.first; tree != nullptr; tree = tree->next())
        tree->Remove();
    String path;
    FullPath(path);
    // Nothing expands the star: it names the one file "*". Files that the tree does not list stay,
    // and so does the folder then.
    std::remove((path + "*").c_str());
    Node::Remove();
}

void Tree::MakeNode()
{
    for (Tree* tree = firstTree(); tree != nullptr; tree = static_cast<Tree*>(tree->next()))
        tree->MakeNode();
}

// Tree: paths -------------------------------------------------------------------------------------

String Tree::Path(Tree* base)
{
    if (this == base || parent() == nullptr)
        return {};
    return parent()->Path(base) + name() + kSeparator;
}

int Tree::FullPathSize()
{
    return (parent() != nullptr ? parent()->FullPathSize() : 0) + name().GetLength() + 1;
}

void Tree::AppendFullPath(char* dst)
{
    *dst = 0;
    if (parent() != nullptr)
        parent()->AppendFullPath(dst);
    char* end = dst + std::strlen(dst);
    const auto length = static_cast<std::size_t>(name().GetLength());
    std::memcpy(end, name().c_str(), length);
    std::memcpy(end + length, "/", 2);
}

void Tree::FullPath(String& out)
{
    AppendFullPath(out.GetBuffer(FullPathSize() + 1));
    out.ReleaseBuffer();
}

// Tree: search ------------------------------------------------------------------------------------

int Tree::NumLeaves() const
{
    int count = 0;
    for (const Node* leaf = mLeaves.first; leaf != nullptr; leaf = leaf->next())
        ++count;
    for (const Tree* tree = firstTree(); tree != nullptr; tree = static_cast<Tree*>(tree->next()))
        count += tree->NumLeaves();
    return count;
}

Node* Tree::named(const List& list, const char* name, int length)
{
    Node* node = list.first;
    while (node != nullptr && !isNamed(*node, name, length))
        node = node->next();
    return node;
}

/// Where the part [start, end) of the path leads, as far as it exists.
Tree* Tree::follow(const String& path, int start, int end)
{
    Tree* tree = this;
    while (start < end) {
        const int stop = std::min(componentEnd(path, start), end);
        Node* below = named(tree->mTrees, path.c_str() + start, stop - start);
        if (below == nullptr)
            break;
        tree = static_cast<Tree*>(below);
        start = stop + 1;
    }
    return tree;
}

Tree* Tree::FindTree(const String& path, int start)
{
    return follow(path, start, path.GetLength());
}

Leaf* Tree::FindLeaf(const String& path, int start)
{
    // `start` only says where the first separator is looked for: what it skips still counts.
    Tree* tree = this;
    int name = 0;
    for (int end = path.Find(kSeparator, start); end >= 0; end = path.Find(kSeparator, name)) {
        tree = tree->follow(path, name, end);
        name = end + 1;
    }
    return static_cast<Leaf*>(named(tree->mLeaves, path.c_str() + name, path.GetLength() - name));
}

// Leaf --------------------------------------------------------------------------------------------

Leaf::Leaf(const String& name, Tree* parent)
    : Node(name, parent)
{
}

void Leaf::WriteTo(OutputStream& stream)
{
    File file(PathName(nullptr).c_str(), File::ReadMode, 0);
    stream.Write(file.length());
    char block[1024];
    std::uint32_t came = 0;
    do {
        came = file.read(block, sizeof block);
        stream.Write(static_cast<const void*>(block), came);
    } while (came > 1023);
}

InStream* Leaf::GetInput()
{
    return new FileInStream(FullName().c_str(), File::ReadMode);
}

// FileInStream ------------------------------------------------------------------------------------

FileInStream::FileInStream(const char* path, unsigned mode)
    : mFile(path, mode, 0)
{
}

bool FileInStream::IsEOF()
{
    if (!mFile.isOpen())
        return true;
    const int next = std::getc(mFile.get());
    if (next == EOF)
        return true;
    std::ungetc(next, mFile.get());
    return false;
}

std::uint32_t FileInStream::Read(void* data, std::uint32_t size)
{
    return SimpleStream<std::FILE*>(mFile.get()).Read(data, size);
}

} // namespace Korvanel::DirectoryTrees
