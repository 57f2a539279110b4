#include "library/FolderNode.h"

#include "library/VolumeNode.h"
#include "platform/os/WholeFile.h"

#include <algorithm>
#include <string_view>
#include <vector>

using Korvanel::String;
using Korvanel::DirectoryTrees::Leaf;
using Korvanel::DirectoryTrees::Tree;

namespace {

constexpr std::string_view kPatternExtension = ".mid";
constexpr std::string_view kDescriptionExtension = ".txt";

/// From the last point on; "" without one. Case counts: "A.MID" is no pattern.
std::string_view extensionOf(std::string_view name)
{
    const std::size_t point = name.rfind('.');
    return point == std::string_view::npos ? std::string_view() : name.substr(point);
}

bool belongsToLibrary(std::string_view name, bool isFolder)
{
    // A backslash separates the names of a path: one with it in could be listed and never found.
    if (name.starts_with('.') || name.find('\\') != std::string_view::npos)
        return false;
    const std::string_view extension = extensionOf(name);
    return isFolder || extension == kPatternExtension || extension == kDescriptionExtension;
}

String toString(std::string_view text)
{
    return {text.data(), static_cast<int>(text.size())};
}

/// The steps of a merge of two sorted lists, for leaves and for sub-trees alike.
template <typename N>
struct Lists
{
    Tree* tree;
    N* (Tree::*first)() const;
    N* (Tree::*remove)(N*&);
    void (Tree::*insert)(N*&, N*);
};

template <typename N>
void dropAt(const Lists<N>& mine, N*& at)
{
    (mine.tree->*mine.remove)(at)->release();
}

template <typename N>
void moveBefore(const Lists<N>& mine, N* before, const Lists<N>& fresh, N*& at)
{
    (mine.tree->*mine.insert)(before, (fresh.tree->*fresh.remove)(at));
}

template <typename N>
void merge(const Lists<N>& mine, const Lists<N>& fresh)
{
    N* a = (mine.tree->*mine.first)();
    N* b = (fresh.tree->*fresh.first)();
    while (a != nullptr && b != nullptr) {
        const int order = b->name().Compare(a->name().c_str());
        if (order > 0) {
            dropAt(mine, a);
        } else if (order < 0) {
            moveBefore(mine, a, fresh, b);
        } else {
            a = static_cast<N*>(a->next());
            b = static_cast<N*>(b->next());
        }
    }
    while (b != nullptr)
        moveBefore<N>(mine, nullptr, fresh, b);
    while (a != nullptr)
        dropAt(mine, a);
}

} // namespace

FolderNode::FolderNode(const String& name, Tree* parent)
    : Tree(name, parent)
{
}

void FolderNode::MakeNode()
{
    if (!isUnchanged())
        rescan();
    Tree::MakeNode();
}

bool FolderNode::isUnchanged()
{
    if (!mStampIsSure || mChangesAtScan != listChanges())
        return false;
    String path;
    FullPath(path);
    platform::FolderStamp now;
    return platform::stampOf(path.c_str(), now) && now == mStamp;
}

void FolderNode::rescan()
{
    FolderNode* fresh = MakeNewNode();
    RefreshLeaves(fresh);
    RefreshBranches(fresh);
    SetDescription(fresh->GetDescriptionNoPath());
    mStamp = fresh->mStamp;
    mStampIsSure = fresh->mStampIsSure;
    mChangesAtScan = listChanges();
    fresh->release();
}

FolderNode* FolderNode::MakeNewNode()
{
    auto* fresh = new FolderNode({}, nullptr);
    if (parent() == nullptr && name().IsEmpty())
        return fresh; // the path of no folder would be that of the whole disk
    String path;
    FullPath(path);
    platform::FolderListing listing;
    if (!platform::readFolder(path.c_str(), belongsToLibrary, listing))
        return fresh;

    std::vector<Leaf*> leaves;
    std::vector<Tree*> folders;
    std::string_view description;
    for (const platform::FolderEntry& entry : listing.entries) {
        const std::string_view name = listing.nameOf(entry);
        if (entry.isFolder)
            folders.push_back(new FolderNode(toString(name), this));
        else if (extensionOf(name) == kPatternExtension)
            leaves.push_back(new Leaf(toString(name), this));
        else // of several the last by name, which every file system agrees on
            description = std::max(description, name);
    }
    fresh->AddLeaves(leaves);
    fresh->AddTrees(folders);
    fresh->mDescription = toString(description);
    fresh->mStamp = listing.stamp;
    fresh->mStampIsSure = listing.stampIsSure;
    return fresh;
}

void FolderNode::RefreshLeaves(Tree* fresh)
{
    const auto lists = [](Tree* tree) {
        return Lists<Leaf>{tree, &Tree::firstLeaf, &Tree::RemoveLeaf, &Tree::InsertLeaf};
    };
    merge(lists(this), lists(fresh));
}

void FolderNode::RefreshBranches(Tree* fresh)
{
    const auto lists = [](Tree* tree) {
        return Lists<Tree>{tree, &Tree::firstTree, &Tree::RemoveTree, &Tree::InsertTree};
    };
    merge(lists(this), lists(fresh));
}

void FolderNode::WriteVolumeTo(const char* path)
{
    // Whole before it is written: what a plain leaf gives is a few bytes.
    Korvanel::stringStream volume;
    writeVolume(*this, volume);
    platform::replaceWholeFile(path, volume.text());
}
