/// The geometry of the event view's piano roll: where rows, ticks and beats lie in a rectangle.
/// Pure arithmetic on a pattern.
#pragma once
#include "midi/CMidiTrack.h"
#include "shared/Panes/kvColor.h"
#include "shared/Panes/kvGeometry.h"

#include <array>
#include <cstdint>

/// The rows of a pattern's keys, the lowest key's at index 0. Of the drum keys 6, 7, 19 and 20 each
/// is the variant of a stroke two keys below, and shares its row.
class KeyRows
{
public:
    explicit KeyRows(const Korvanel::CMidiTrack& track);

    int count() const { return mCount; } ///< at least 5, so that few keys make no huge bars

    /// @return from 0; -1 for a key that the pattern's census does not hold
    int rowOf(int key) const;

private:
    const Korvanel::CMidiTrack& mTrack; ///< outlives the object
    int mCount;
    std::array<int, 4> mFolded; ///< rank of each key that takes no row of its own, else 128
};

/// The event's colour in the roll, by its own key.
Korvanel::Color noteColor(int key);

/// Where things lie. Everything is in the coordinates of the rectangle given.
class RollLayout
{
public:
    RollLayout(const Korvanel::CMidiTrack& track, const Korvanel::Rect& place, int rows);

    /// Whether the pattern has any length; without, there are no columns to be asked for.
    bool hasTime() const { return mTotal > 0; }

    std::int32_t headerBottom() const { return mPlace.y + mHeader; } ///< and the notes' top

    std::int32_t bottom() const { return mPlace.y + mPlace.height; }

    std::int32_t noteArea() const { return mPlace.height - mHeader; } ///< height

    std::int32_t rowHeight() const { return mRowHeight; }

    std::int32_t rowTop(int row) const;

    std::int32_t xOf(std::int64_t tick) const;
    /// A note's rectangle. Never without width or height, so that no note is lost at a small scale,
    /// and not past the end: a note without an end lasts until there.
    Korvanel::Rect noteAt(const MfxEvent& note, int row) const;

    std::int64_t beats() const { return mBeats; } ///< in the whole pattern

    std::int32_t beatsPerBar() const { return mBeatsPerBar; }

    std::int32_t xOfBeat(std::int64_t beat) const;

    /// The first beat that stands in another column than `beat`; beats() when none does.
    std::int64_t beatAfter(std::int64_t beat) const;

private:
    Korvanel::Rect mPlace;
    std::int32_t mHeader;
    std::int32_t mRowHeight;
    std::int32_t mRowZeroTop;
    std::int64_t mBar;   ///< ticks
    std::int64_t mTotal; ///< ticks
    std::int32_t mBeatsPerBar;
    std::int64_t mBeats;
};
