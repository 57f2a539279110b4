/// A looper with what it needs around it.
#pragma once
#include "effect/Looper.h"
#include "tests/effect/Fakes.h"

#include <algorithm>
#include <cstring>
#include <vector>

/// A looper over a pattern, and its recorder.
struct Player
{
    explicit Player(const Korvanel::CMidiTrack& pattern, std::int32_t hostPpq = 480,
                    LooperParameters* params = nullptr)
        : track(pattern)
        , out(hostPpq)
        , looper(track, lock, out, params)
    {
    }

    std::vector<std::int32_t> play(std::int32_t from, std::int32_t to, std::int32_t base = 0)
    {
        out.events.clear();
        looper.process(from, to, out, base);
        return out.times();
    }

    Korvanel::CMidiTrack track;
    Korvanel::CriticalSection lock;
    Recorder out;
    Korvanel::Looper looper;
};

/// One bar of four quarters at 480.
inline Korvanel::CMidiTrack bar()
{
    Korvanel::CMidiTrack track =
        pattern(480, {noteAt(0, 240), noteAt(480, 240), noteAt(960, 240), noteAt(1440, 480)});
    return track;
}

inline bool same(const std::vector<MfxEvent>& a, const std::vector<MfxEvent>& b)
{
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(),
        [](const MfxEvent& x, const MfxEvent& y) { return std::memcmp(&x, &y, sizeof x) == 0; });
}
