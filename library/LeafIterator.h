/// Walks over the leaves of a tree: a tree's own leaves first, then those of its sub-trees.
#pragma once
#include "library/DirectoryTrees.h"

namespace Korvanel::DirectoryTrees {

/// Two words, copied freely. Holds no reference: it is good while the tree's owner keeps its lock,
/// or the caller a reference to what it stands on.
class LeafIterator
{
public:
    explicit LeafIterator(Tree* base); ///< at the first leaf; null has none

    bool isEqual(const LeafIterator& other) const
    {
        return mCurrent == other.mCurrent && mBase == other.mBase;
    }

    int size() const; ///< leaves in the base and below

    /// Goes to the leaf of that path below the base. @return false, staying, when there is none
    bool find(const char* path);

    // The first and the last leaf; null for a null tree or when there is none.
    static Leaf* findFirst(Tree* tree);
    static Leaf* findLast(Tree* tree);
    static Leaf* findFirstInBranches(Tree* tree);
    static Leaf* findLastInBranches(Tree* tree);

    /// The leaf behind the current one; null at the end. The iterator stays.
    Leaf* findNext() const;
    /// The leaf before the current one in this folder and in the branches before it. A walk up does
    /// not visit the leaves of the folder it comes up into: from the first leaf of the first branch
    /// there is no way back to them. What steps backwards through the library relies on stopping
    /// there.
    Leaf* findPrev() const;

    Leaf* current() const { return mCurrent; }

    Tree* base() const { return mBase; }

protected:
    Leaf* mCurrent;
    Tree* mBase;
};

/// An iterator that can tell in which folder it stands.
class LeafCursor : public LeafIterator
{
public:
    using LeafIterator::LeafIterator;

    /// The folder part of the current leaf's path below the base, with a trailing backslash.
    String PathWithoutName() const;
};

} // namespace Korvanel::DirectoryTrees
