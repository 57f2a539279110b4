#include "bench/Floor.h"

#include <algorithm>

namespace bench {

FloorPlayer::FloorPlayer(const std::vector<MfxEvent>& events, std::int32_t ratio,
                         std::int32_t loopLength, bool random)
    : mLoopLength(loopLength)
    , mRandom(random)
{
    for (MfxEvent event : events) {
        event.duration *= static_cast<std::uint32_t>(ratio);
        mItems.push_back({event.time * ratio, event});
    }
}

void FloorPlayer::process(std::int32_t from, std::int32_t to, NoteQueue& queue)
{
    if (from != mNext)
        seek(from);
    mNext = to + 1;
    for (;;) {
        if (mCursor == mItems.size()) {
            mCursor = 0;
            mOffset += mLoopLength;
        }
        const Item& item = mItems[mCursor];
        const std::int64_t tick = mOffset + item.tick;
        if (tick > to)
            return;
        queue.addNote(static_cast<std::int32_t>(tick), item.event.channel, item.event.key,
                      velocityOf(item.event), static_cast<std::int32_t>(item.event.duration));
        ++mCursor;
    }
}

void FloorPlayer::seek(std::int32_t from)
{
    mOffset = from / mLoopLength * mLoopLength;
    const auto first = std::partition_point(
        mItems.begin(), mItems.end(), [&](const Item& item) { return mOffset + item.tick < from; });
    mCursor = static_cast<std::size_t>(first - mItems.begin());
}

/// -15..10 at random, from the cheapest source that serves.
int FloorPlayer::velocityOf(const MfxEvent& event)
{
    if (!mRandom)
        return event.velocity;
    mState ^= mState << 13;
    mState ^= mState >> 17;
    mState ^= mState << 5;
    return event.velocity + static_cast<int>(std::uint64_t{mState} * 26 >> 32) - 15;
}

} // namespace bench
