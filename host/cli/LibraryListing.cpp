#include "host/cli/LibraryListing.h"

#include "host/cli/CommandError.h"
#include "host/cli/FolderTree.h"
#include "host/cli/PatternFile.h"
#include "platform/os/WholeFile.h"

#include <string_view>

using Korvanel::DirectoryTrees::Leaf;
using Korvanel::DirectoryTrees::Tree;

namespace {

constexpr std::size_t kDescriptionBytes = 64UL * 1024;

std::string firstLineOf(const std::string& path)
{
    std::string text;
    if (path.empty() ||
        platform::readWholeFile(path, kDescriptionBytes, text) != platform::FileRead::Done)
        return {};
    return text.substr(0, text.find_first_of("\r\n"));
}

ListedPattern listPattern(const Leaf& leaf)
{
    ListedPattern listed;
    const std::string_view name = leaf.name().c_str();
    listed.name = name.substr(0, name.rfind('.'));
    listed.path = leaf.FullName().c_str();
    try {
        listed.bars = readPlayablePattern(listed.path).pattern.numberOfBars();
    } catch (const CommandError& error) {
        listed.problem = error.what();
    }
    return listed;
}

std::string descriptionPath(Tree& tree)
{
    std::string path = tree.GetDescription().c_str();
    if (path.empty() || tree.parent() != nullptr)
        return path;
    return (tree.FullName() + "/" + path.c_str()).c_str(); // a root gives the name only
}

ListedStyle listTree(Tree& tree)
{
    ListedStyle listed{
        tree.name().c_str(), tree.FullName().c_str(), firstLineOf(descriptionPath(tree)), {}, {}};
    for (Leaf* leaf = tree.firstLeaf(); leaf != nullptr; leaf = static_cast<Leaf*>(leaf->next()))
        listed.patterns.push_back(listPattern(*leaf));
    for (Tree* style = tree.firstTree(); style != nullptr;
         style = static_cast<Tree*>(style->next()))
        listed.styles.push_back(listTree(*style));
    return listed;
}

} // namespace

int ListedStyle::patternCount() const
{
    int count = static_cast<int>(patterns.size());
    for (const ListedStyle& style : styles)
        count += style.patternCount();
    return count;
}

int ListedStyle::barCount() const
{
    int count = 0;
    for (const ListedPattern& pattern : patterns)
        count += pattern.bars;
    for (const ListedStyle& style : styles)
        count += style.barCount();
    return count;
}

std::vector<ListedPattern> ListedStyle::unreadable() const
{
    std::vector<ListedPattern> found;
    for (const ListedPattern& pattern : patterns)
        if (!pattern.problem.empty())
            found.push_back(pattern);
    for (const ListedStyle& style : styles) {
        const std::vector<ListedPattern> more = style.unreadable();
        found.insert(found.end(), more.begin(), more.end());
    }
    return found;
}

ListedStyle listLibrary(const std::string& folder)
{
    const FolderTree tree(folder);
    return listTree(tree.root());
}
