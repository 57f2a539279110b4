// The looper beside a slow one that is obviously right, over random patterns and slices.
#include "tests/effect/LooperPlayer.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

using namespace Korvanel;

namespace {

/// The rule of playing, step by step from repetition 0, for comparison.
std::vector<MfxEvent> scan(const CMidiTrack& track, std::int32_t ppq, int tempoType,
                           std::int32_t from, std::int32_t to, std::int32_t base)
{
    const auto host = [&](std::int64_t t) {
        if (t != 0 && track.ticksPerQuarter != ppq)
            t = t * ppq / track.ticksPerQuarter;
        return tempoType < 1 ? t * 2 : tempoType == 1 ? t : t / 2;
    };
    std::int64_t length = host(std::int64_t{track.numberOfBars()} * track.barLength());
    if (length < 1)
        length = 100;
    std::vector<MfxEvent> played;
    if (track.lastTick <= 0)
        return played;
    for (std::int64_t offset = 0;; offset += length) {
        for (const MfxEvent& event : track.events) {
            const std::int64_t time = host(event.time) + offset + base;
            if (time > to)
                return played;
            if (time < from || !Looper::isOutputEvent(event))
                continue;
            MfxEvent copy = event;
            copy.time = static_cast<std::int32_t>(time);
            if (event.isNote() && event.duration != MfxEvent::kOpen)
                copy.duration = static_cast<std::uint32_t>(host(event.duration));
            played.push_back(copy);
        }
    }
}

CMidiTrack randomPattern(std::mt19937& random)
{
    constexpr std::array<std::int32_t, 7> kResolutions{24, 96, 120, 240, 480, 960, 15360};
    CMidiTrack track;
    track.ticksPerQuarter = kResolutions[random() % kResolutions.size()];
    track.numerator = static_cast<std::int16_t>(1 + random() % 7);
    track.denominator = static_cast<std::int16_t>(4 << random() % 2);
    const auto length = static_cast<std::uint32_t>(track.barLength()) * (1 + random() % 3);
    for (std::uint32_t i = 0; i < 1 + random() % 20; ++i) {
        MfxEvent event =
            noteAt(static_cast<std::int32_t>(random() % length),
                   static_cast<std::uint32_t>(random() % 200), static_cast<int>(random() % 128),
                   static_cast<int>(1 + random() % 127));
        if (random() % 6 == 0)
            event.type = static_cast<std::int32_t>(random() % 7);
        track.insert(event);
    }
    return track;
}

} // namespace

TEST(Looper, AnyJumpPlaysWhatAScanFromRepetition0Plays)
{
    std::mt19937 random(99);
    for (int round = 0; round < 400; ++round) {
        CMidiTrack track = randomPattern(random);
        if (round % 10 == 0)
            track.denominator = 0; // no bars: repeats every 100 ticks, events lie beyond
        const auto ppq = static_cast<std::int32_t>(100 + random() % 1000);
        const int type = static_cast<int>(random() % 3);
        Player player(track, ppq);
        player.looper.TempoType(type);
        for (int jump = 0; jump < 10; ++jump) {
            const auto base = static_cast<std::int32_t>(random() % 3 * 1000);
            const auto from = static_cast<std::int32_t>(random() % 20'000) - 500;
            const auto to = from + static_cast<std::int32_t>(random() % 3000) - 2;
            player.play(from, to, base);
            ASSERT_TRUE(same(player.out.events, scan(track, ppq, type, from, to, base)))
                << "round " << round << ": " << from << ".." << to << " from " << base;
        }
    }
}

TEST(Looper, AnyCutOfARangePlaysTheSameEvents)
{
    std::mt19937 random(4711);
    for (int round = 0; round < 300; ++round) {
        const CMidiTrack track = randomPattern(random);
        const auto ppq = static_cast<std::int32_t>(96 + random() % 4000);
        const int type = static_cast<int>(random() % 3);
        LooperParameters params;
        LooperParameters* used = round % 2 == 0 ? &params : nullptr;
        const auto from = static_cast<std::int32_t>(random() % 5000);
        const auto to = from + static_cast<std::int32_t>(random() % 40'000);

        Player whole(track, ppq, used);
        whole.looper.TempoType(type);
        whole.looper.seedRandom(static_cast<std::uint32_t>(round));
        whole.play(from, to);

        Player cut(track, ppq, used);
        cut.looper.TempoType(type);
        cut.looper.seedRandom(static_cast<std::uint32_t>(round));
        for (std::int32_t at = from; at <= to;) {
            const std::int32_t end = std::min(
                to, at + static_cast<std::int32_t>(random() % (round % 3 == 0 ? 20 : 2000)));
            cut.looper.process(at, end, cut.out, 0);
            at = end + 1;
        }
        ASSERT_TRUE(same(whole.out.events, cut.out.events)) << "round " << round;
    }
}

TEST(Looper, AnyResetWhilePlayingGoesOnAsAScanFromRepetition0)
{
    std::mt19937 random(2025);
    for (int round = 0; round < 300; ++round) {
        const CMidiTrack track = randomPattern(random);
        const auto ppq = static_cast<std::int32_t>(96 + random() % 2000);
        Player player(track, ppq);
        std::int32_t from = 0;
        for (int slice = 0; slice < 20; ++slice) {
            const auto to = from + static_cast<std::int32_t>(random() % 3000);
            const int type = static_cast<int>(random() % 3);
            player.looper.TempoType(type);
            player.play(from, to);
            ASSERT_TRUE(same(player.out.events, scan(track, ppq, type, from, to, 0)))
                << "round " << round << ": " << from << ".." << to;
            from = to + 1;
        }
    }
}
