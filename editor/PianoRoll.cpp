#include "editor/PianoRoll.h"

#include <algorithm>

using Korvanel::CMidiTrack;
using Korvanel::Color;
using Korvanel::Rect;

namespace {

constexpr int kFewestRows = 5;
constexpr int kNoRank = 128; ///< above every rank
constexpr int kHeaderShare = 8;

/// A stroke's variant, the stroke whose row it shares, and the key above both that has to be used
/// for the variant to give its own row up.
struct Fold
{
    int key;
    int into;
    int with;
};

constexpr std::array<Fold, 4> kFolds{{{6, 4, 8}, {7, 5, 9}, {19, 17, 21}, {20, 18, 22}}};

bool isUsed(const CMidiTrack& track, int key)
{
    return track.keyPresent[static_cast<std::size_t>(key)] != 0;
}

} // namespace

// Two different conditions, on purpose: a row is given up where the variant and the key two above
// it are used, while the note moves to the stroke's row where the stroke itself is. Where only one
// holds, a row stays empty or is shared with the next key, and every other key keeps its place as
// strokes come and go. (KeyRows.AVariantWithoutItsStrokeSharesTheNextRow and its neighbours)
KeyRows::KeyRows(const CMidiTrack& track)
    : mTrack(track)
    , mCount(track.keyCount)
{
    for (std::size_t i = 0; i < kFolds.size(); ++i) {
        const bool folds = isUsed(track, kFolds[i].key) && isUsed(track, kFolds[i].with);
        mFolded[i] = folds ? track.GetNumOfKey(kFolds[i].key) : kNoRank;
        mCount -= folds ? 1 : 0;
    }
    mCount = std::max(mCount, kFewestRows);
}

int KeyRows::rowOf(int key) const
{
    const auto* fold = std::find_if(kFolds.begin(), kFolds.end(),
                                    [key](const Fold& each) { return each.key == key; });
    if (fold != kFolds.end() && isUsed(mTrack, fold->into))
        key = fold->into;
    const int rank = mTrack.GetNumOfKey(key);
    return rank - static_cast<int>(std::count_if(mFolded.begin(), mFolded.end(),
                                                 [rank](int folded) { return folded < rank; }));
}

Color noteColor(int key)
{
    if (key == 6 || key == 7 || key == 19 || key == 20)
        return {0x8000, 0, 0};
    if (key >= 1 && key <= 5)
        return {0x4000, 0x8000, 0x4000};
    if (key >= 8 && key <= 13)
        return {0x8000, 0x8000, 0};
    if (key >= 14 && key <= 18)
        return {0, 0x8000, 0};
    if (key == 21 || key == 22)
        return {0, 0x8000, 0x8000};
    return Color::Black;
}

RollLayout::RollLayout(const CMidiTrack& track, const Rect& place, int rows)
    : mPlace(place)
    , mHeader(place.height / kHeaderShare)
    , mRowHeight(noteArea() / rows)
    , mRowZeroTop(bottom() - mRowHeight - (noteArea() - mRowHeight * rows) / 2)
    , mBar(track.barLength())
    , mTotal(mBar < 1 ? 0 : mBar * track.numberOfBars()) // a damaged meter makes no bars
    , mBeatsPerBar(track.numberOfBeatsPerBar())
    , mBeats(std::int64_t{track.numberOfBars()} * mBeatsPerBar)
{
}

std::int32_t RollLayout::rowTop(int row) const
{
    return mRowZeroTop - row * mRowHeight;
}

std::int32_t RollLayout::xOf(std::int64_t tick) const
{
    return static_cast<std::int32_t>(mPlace.x + mPlace.width * tick / mTotal);
}

Rect RollLayout::noteAt(const MfxEvent& note, int row) const
{
    const std::int32_t x = xOf(note.time);
    const std::int64_t width = std::int64_t{mPlace.width} * note.duration / mTotal;
    const std::int64_t room = std::int64_t{mPlace.x} + mPlace.width - x;
    return {x, rowTop(row),
            static_cast<std::int32_t>(std::max<std::int64_t>(std::min(width, room), 1)),
            std::max(mRowHeight, 1)};
}

std::int32_t RollLayout::xOfBeat(std::int64_t beat) const
{
    return xOf(beat * mBar / mBeatsPerBar);
}

// A damaged file may hold billions of beats: those of one column are jumped over by halving.
std::int64_t RollLayout::beatAfter(std::int64_t beat) const
{
    const std::int32_t x = xOfBeat(beat);
    std::int64_t same = beat;
    std::int64_t other = mBeats;
    for (std::int64_t step = 1; same + step < other; step *= 2) {
        if (xOfBeat(same + step) != x)
            other = same + step;
        else
            same += step;
    }
    while (other - same > 1) {
        const std::int64_t middle = same + (other - same) / 2;
        (xOfBeat(middle) == x ? same : other) = middle;
    }
    return other;
}
