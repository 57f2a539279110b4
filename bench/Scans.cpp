// Ours and the floor as scan subjects.
#include "bench/ScanSubject.h"
#include "library/FolderNode.h"

#include <algorithm>
#include <dirent.h>
#include <string_view>
#include <sys/stat.h>
#include <utility>

using Korvanel::DirectoryTrees::Leaf;
using Korvanel::DirectoryTrees::LeafIterator;
using Korvanel::DirectoryTrees::Tree;

namespace bench {

namespace {

/// As the library opens a folder: a fresh root. Rescans as it follows a change.
class OurScan final : public ScanSubject
{
public:
    ~OurScan() override { Tree::release(mRoot); }

    const char* name() const override { return "ours"; }

    void scan(const std::string& folder) override
    {
        Tree::release(mRoot);
        mRoot = new FolderNode(folder.c_str(), nullptr);
        mRoot->MakeNode();
    }

    bool rescans() const override { return true; }

    void rescan() override { mRoot->MakeNode(); }

    std::vector<std::string> paths() const override
    {
        std::vector<std::string> found;
        add(mRoot, found);
        std::ranges::sort(found);
        return found;
    }

private:
    static void add(Tree* tree, std::vector<std::string>& found)
    {
        for (Leaf* leaf = tree->firstLeaf(); leaf; leaf = static_cast<Leaf*>(leaf->next()))
            found.emplace_back(leaf->FullName().c_str());
        for (Tree* below = tree->firstTree(); below; below = static_cast<Tree*>(below->next()))
            add(below, found);
    }

    FolderNode* mRoot = nullptr;
};

/// What the floor knows of a folder. Its names stand in sorted arrays.
struct Folder
{
    std::string path;
    timespec changed{};
    std::vector<std::string> patterns;
    std::vector<Folder> folders;
};

timespec changeOf(const std::string& path)
{
    struct stat info
    {
    };

    ::stat(path.c_str(), &info);
    return info.st_mtim;
}

bool isPattern(std::string_view name)
{
    return name.ends_with(".mid");
}

/// The kind of an entry is what the folder says; nothing is made of what a library must not list.
void readNames(Folder& folder, std::vector<std::string>& folders)
{
    folder.changed = changeOf(folder.path);
    DIR* stream = ::opendir(folder.path.c_str());
    while (const dirent* entry = ::readdir(stream)) {
        const std::string_view name = entry->d_name;
        if (name.starts_with('.'))
            continue;
        if (entry->d_type == DT_DIR)
            folders.emplace_back(name);
        else if (isPattern(name))
            folder.patterns.emplace_back(name);
    }
    ::closedir(stream);
    std::ranges::sort(folder.patterns);
    std::ranges::sort(folders);
}

void readAll(Folder& folder)
{
    std::vector<std::string> folders;
    readNames(folder, folders);
    for (const std::string& name : folders)
        readAll(folder.folders.emplace_back(Folder{folder.path + "/" + name, {}, {}, {}}));
}

/// Reads again what has changed, and keeps the sub-folders that it knew.
void readChanges(Folder& folder)
{
    const timespec now = changeOf(folder.path);
    if (now.tv_sec == folder.changed.tv_sec && now.tv_nsec == folder.changed.tv_nsec) {
        std::ranges::for_each(folder.folders, readChanges);
        return;
    }
    std::vector<std::string> names;
    std::vector<Folder> known = std::exchange(folder.folders, {});
    folder.patterns.clear();
    readNames(folder, names);
    for (const std::string& name : names) {
        std::string path = folder.path + "/" + name;
        const auto at = std::ranges::find(known, path, &Folder::path);
        if (at != known.end())
            readChanges(folder.folders.emplace_back(std::move(*at)));
        else
            readAll(folder.folders.emplace_back(Folder{std::move(path), {}, {}, {}}));
    }
}

/// readdir and a sort of each folder. It trusts the folder's times, though two changes within one
/// tick of the file system's clock look like one.
class FloorScan final : public ScanSubject
{
public:
    const char* name() const override { return "floor"; }

    void scan(const std::string& folder) override
    {
        mRoot = {folder, {}, {}, {}};
        readAll(mRoot);
    }

    bool rescans() const override { return true; }

    void rescan() override { readChanges(mRoot); }

    std::vector<std::string> paths() const override
    {
        std::vector<std::string> found;
        add(mRoot, found);
        std::ranges::sort(found);
        return found;
    }

private:
    static void add(const Folder& folder, std::vector<std::string>& found)
    {
        for (const std::string& pattern : folder.patterns)
            found.push_back(folder.path + "/" + pattern);
        for (const Folder& below : folder.folders)
            add(below, found);
    }

    Folder mRoot;
};

} // namespace

std::unique_ptr<ScanSubject> makeOurScan()
{
    return std::make_unique<OurScan>();
}

std::unique_ptr<ScanSubject> makeFloorScan()
{
    return std::make_unique<FloorScan>();
}

} // namespace bench
