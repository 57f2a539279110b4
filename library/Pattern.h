/// A pattern of the library, to be loaded.
#pragma once
#include "library/DirectoryTrees.h"

namespace Korvanel {

class CMidiTrack;

/// Two words that hold no reference: good as long as the iterator they come from.
class Pattern
{
public:
    Pattern(DirectoryTrees::Leaf* leaf, DirectoryTrees::Tree* base)
        : mLeaf(leaf)
        , mBase(base)
    {
    }

    /// Reads the pattern into `track`. @return false, whatever went wrong, for null or when the
    /// data are not a MIDI file
    bool LoadTo(CMidiTrack* track) const;

    DirectoryTrees::Leaf* leaf() const { return mLeaf; } ///< may be null

    DirectoryTrees::Tree* base() const { return mBase; }

private:
    DirectoryTrees::Leaf* mLeaf;
    DirectoryTrees::Tree* mBase;
};

/// An iterator over the patterns of a tree.
class PatternIterator : public DirectoryTrees::LeafIterator
{
public:
    using LeafIterator::LeafIterator;

    explicit PatternIterator(const LeafIterator& at)
        : LeafIterator(at)
    {
    }

    Pattern operator*() const { return {mCurrent, mBase}; }
};

} // namespace Korvanel
