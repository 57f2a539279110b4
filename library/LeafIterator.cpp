#include "library/LeafIterator.h"

namespace Korvanel::DirectoryTrees {

namespace {

Tree* nextTree(const Tree* tree)
{
    return static_cast<Tree*>(tree->next());
}

Tree* prevTree(const Tree* tree)
{
    return static_cast<Tree*>(tree->prev());
}

} // namespace

LeafIterator::LeafIterator(Tree* base)
    : mCurrent(findFirst(base))
    , mBase(base)
{
}

int LeafIterator::size() const
{
    return mBase == nullptr ? 0 : mBase->NumLeaves();
}

bool LeafIterator::find(const char* path)
{
    Leaf* found = mBase == nullptr ? nullptr : mBase->FindLeaf(path, 0);
    if (found != nullptr)
        mCurrent = found;
    return found != nullptr;
}

Leaf* LeafIterator::findFirst(Tree* tree)
{
    if (tree == nullptr)
        return nullptr;
    return tree->firstLeaf() != nullptr ? tree->firstLeaf() : findFirstInBranches(tree);
}

Leaf* LeafIterator::findLast(Tree* tree)
{
    if (tree == nullptr)
        return nullptr;
    Leaf* last = findLastInBranches(tree);
    return last != nullptr ? last : tree->lastLeaf();
}

Leaf* LeafIterator::findFirstInBranches(Tree* tree)
{
    for (Tree* branch = tree->firstTree(); branch != nullptr; branch = nextTree(branch))
        if (Leaf* first = findFirst(branch))
            return first;
    return nullptr;
}

Leaf* LeafIterator::findLastInBranches(Tree* tree)
{
    for (Tree* branch = tree->lastTree(); branch != nullptr; branch = prevTree(branch))
        if (Leaf* last = findLast(branch))
            return last;
    return nullptr;
}

Leaf* LeafIterator::findNext() const
{
    if (mCurrent == nullptr)
        return nullptr;
    if (mCurrent->next() != nullptr)
        return static_cast<Leaf*>(mCurrent->next());
    Tree* folder = mCurrent->parent();
    if (folder == nullptr)
        return nullptr;
    if (Leaf* below = findFirstInBranches(folder))
        return below;
    for (Tree* at = folder; at != nullptr && at != mBase; at = at->parent())
        for (Tree* sibling = nextTree(at); sibling != nullptr; sibling = nextTree(sibling))
            if (Leaf* first = findFirst(sibling))
                return first;
    return nullptr;
}

Leaf* LeafIterator::findPrev() const
{
    if (mCurrent == nullptr)
        return nullptr;
    if (mCurrent->prev() != nullptr)
        return static_cast<Leaf*>(mCurrent->prev());
    for (Tree* at = mCurrent->parent(); at != nullptr && at != mBase; at = at->parent())
        for (Tree* sibling = prevTree(at); sibling != nullptr; sibling = prevTree(sibling))
            if (Leaf* last = findLast(sibling))
                return last;
    return nullptr;
}

String LeafCursor::PathWithoutName() const
{
    if (mCurrent == nullptr || mCurrent->parent() == nullptr)
        return {};
    return mCurrent->parent()->Path(mBase);
}

} // namespace Korvanel::DirectoryTrees
