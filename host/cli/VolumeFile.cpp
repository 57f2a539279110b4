#include "host/cli/VolumeFile.h"

#include "host/cli/CommandError.h"
#include "host/cli/FolderTree.h"
#include "host/cli/SafeFile.h"
#include "library/VolumeNode.h"
#include "platform/os/WholeFile.h"

#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>

using Korvanel::DirectoryTrees::Leaf;
using Korvanel::DirectoryTrees::Node;
using Korvanel::DirectoryTrees::Tree;
namespace fs = std::filesystem;

namespace {

/// More than any pattern; what is larger has only the extension in common with one.
constexpr std::size_t kMostPatternBytes = 64UL * 1024 * 1024;

struct Release
{
    void operator()(Node* node) const { node->release(); }
};

template <typename N>
using Held = std::unique_ptr<N, Release>;

template <typename N>
N* nextOf(const N* node)
{
    return static_cast<N*>(node->next());
}

VolumeCount countOf(const Tree& tree)
{
    VolumeCount count{tree.NumLeaves(), 0};
    for (const Tree* style = tree.firstTree(); style != nullptr; style = nextOf(style))
        count.styles += 1 + countOf(*style).styles;
    return count;
}

// Packing -----------------------------------------------------------------------------------------

std::vector<std::uint8_t> patternBytes(const std::string& path)
{
    std::string text;
    switch (platform::readWholeFile(path, kMostPatternBytes, text)) {
    case platform::FileRead::Done:
        return {text.begin(), text.end()};
    case platform::FileRead::TooLarge:
        throw CommandError(ExitCode::BadPattern, path + ": is too large to be a pattern");
    default:
        throw CommandError(ExitCode::BadPattern, path + ": cannot be read");
    }
}

void copyInto(FileBaseNode& volume, const Tree& folder)
{
    std::vector<Held<InFileTerminalNode>> copies;
    for (const Leaf* leaf = folder.firstLeaf(); leaf != nullptr; leaf = nextOf(leaf)) {
        copies.emplace_back(new InFileTerminalNode(leaf->name(), &volume));
        copies.back()->setData(patternBytes(leaf->FullName().c_str()));
    }
    std::vector<Leaf*> leaves;
    leaves.reserve(copies.size());
    for (Held<InFileTerminalNode>& copy : copies)
        leaves.push_back(copy.release());
    volume.AddLeaves(leaves);
    for (const Tree* style = folder.firstTree(); style != nullptr; style = nextOf(style)) {
        Held<FileBaseNode> copy(new FileBaseNode(style->name(), &volume));
        copyInto(*copy, *style);
        volume.AddTree(copy.release());
    }
}

// Unpacking ---------------------------------------------------------------------------------------

bool isFileName(const Korvanel::String& name)
{
    const std::string_view text(name.c_str(), static_cast<std::size_t>(name.GetLength()));
    return !text.empty() && text != "." && text != ".." &&
           text.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

void requireFileNames(const Tree& tree, const std::string& file)
{
    const auto require = [&](const Node& node) {
        if (!isFileName(node.name()))
            throw CommandError(ExitCode::BadPattern, file + ": holds the name \"" +
                                                         node.name().c_str() +
                                                         "\", which no file can have");
    };
    for (const Leaf* leaf = tree.firstLeaf(); leaf != nullptr; leaf = nextOf(leaf))
        require(*leaf);
    for (const Tree* style = tree.firstTree(); style != nullptr; style = nextOf(style)) {
        require(*style);
        requireFileNames(*style, file);
    }
}

/// The reader takes what it can of a damaged volume: then writing it again makes another size.
void requireWhole(Tree& volume, const std::string& file)
{
    Korvanel::stringStream again;
    writeVolume(volume, again);
    std::error_code error;
    if (again.text().size() != fs::file_size(file, error))
        throw CommandError(ExitCode::BadPattern, file + ": is damaged or cut short; " +
                                                     std::to_string(volume.NumLeaves()) +
                                                     " patterns could be read");
}

[[noreturn]] void failToWrite(const fs::path& path, const std::string& why)
{
    throw CommandError(ExitCode::CannotWrite, path.string() + ": " + why);
}

void writeTree(const Tree& tree, const fs::path& folder)
{
    for (const Leaf* leaf = tree.firstLeaf(); leaf != nullptr; leaf = nextOf(leaf)) {
        const auto& data = static_cast<const InFileTerminalNode*>(leaf)->data();
        writeWhole(folder / leaf->name().c_str(), std::string(data.begin(), data.end()));
    }
    for (const Tree* style = tree.firstTree(); style != nullptr; style = nextOf(style)) {
        const fs::path below = folder / style->name().c_str();
        std::error_code error;
        if (!fs::create_directory(below, error))
            failToWrite(below, error ? error.message() : "is there twice");
        writeTree(*style, below);
    }
}

/// A folder beside the wanted one, which goes unless it takes that one's place.
class FolderBeside
{
public:
    explicit FolderBeside(const fs::path& wanted)
        : mWanted(wanted)
        , mPath(wanted.string() + "." + std::to_string(::getpid()))
    {
        std::error_code error;
        if (!fs::create_directory(mPath, error))
            failToWrite(mPath, error ? error.message() : "is there already");
    }

    FolderBeside(const FolderBeside&) = delete;
    FolderBeside& operator=(const FolderBeside&) = delete;

    ~FolderBeside()
    {
        std::error_code error;
        fs::remove_all(mPath, error);
    }

    void takePlace() const
    {
        std::error_code error;
        fs::rename(mPath, mWanted, error);
        if (error)
            failToWrite(mWanted, error.message());
    }

    const fs::path& path() const { return mPath; }

private:
    fs::path mWanted;
    fs::path mPath;
};

} // namespace

VolumeCount packVolume(const std::string& folder, const std::string& file)
{
    const FolderTree source(folder);
    const Held<FileBaseNode> volume(new FileBaseNode("", nullptr));
    copyInto(*volume, source.root());
    Korvanel::stringStream bytes;
    writeVolume(*volume, bytes);
    writeWhole(file, bytes.text());
    return countOf(*volume);
}

VolumeCount unpackVolume(const std::string& file, const std::string& folder)
{
    const Held<VolumeNode> volume(new VolumeNode(file.c_str(), nullptr));
    volume->MakeNode();
    if (!volume->isVolume())
        throw CommandError(ExitCode::BadPattern,
                           file + ": does not exist, cannot be read or is no volume");
    requireWhole(*volume, file);
    requireFileNames(*volume, file);

    const std::string wanted = withoutTrailingSlash(folder);
    std::error_code error;
    if (fs::exists(wanted, error) && (!fs::is_directory(wanted, error) || !fs::is_empty(wanted)))
        failToWrite(wanted, "is there already, and not an empty folder");
    const FolderBeside made(wanted);
    writeTree(*volume, made.path());
    made.takePlace();
    return countOf(*volume);
}
