#include "effect/CLooper.h"

#include "effect/CreatePlugin.h"
#include "effect/EditorFactory.h"
#include "tests/effect/EffectFixture.h"
#include "tests/support/Guards.h"

#include <memory>

using namespace Korvanel;

namespace {

using Times = std::vector<std::int32_t>;

/// Connects the effect once more in the middle of a slice.
class ConnectingQueue : public ListQueue
{
public:
    explicit ConnectingQueue(CLooper& effect)
        : mEffect(effect)
    {
    }

    void InsertEvent(const MidiEvent& event) override
    {
        ListQueue::InsertEvent(event);
        if (events.size() == 3)
            mEffect.connect(&defaultProcessContext);
    }

private:
    CLooper& mEffect;
};

} // namespace

TEST_F(Effect, PlaysOnlyWhenEnabled)
{
    EXPECT_EQ(play(0, 1919), Times{});
    effect.Enable();
    EXPECT_EQ(play(0, 1919), (Times{0, 960}));
    effect.Disable();
    EXPECT_EQ(play(1920, 3839), Times{});
}

TEST_F(Effect, ThruPlaysAndTakesNothing)
{
    effect.Enable();
    effect.setThru(true);
    EXPECT_TRUE(effect.isThru());
    EXPECT_EQ(play(0, 1919), Times{});
    EXPECT_EQ(input(0xC0, 1, 0), 1u);
}

TEST_F(Effect, WithoutAContextItPlaysNothing)
{
    CLooper other;
    other.set_track(pattern(480, {noteAt(0, 100)}));
    other.Enable();
    other.process(0, 1919, queue);
    EXPECT_TRUE(queue.events.empty());
    EXPECT_EQ(other.getCurrentTick(), 0);
    EXPECT_FALSE(other.processPitchWheel({0, 0xE0, 0, 0, 0, 0}));
    EXPECT_TRUE(other.processControlEvent({0, 0xBF, 127, 40, 0, 0})); // used, and harmless
}

TEST_F(Effect, TerminatedItPlaysNothing)
{
    effect.Enable();
    effect.Terminate();
    EXPECT_EQ(play(0, 1919), Times{});
    effect.Initialize(nullptr);
    EXPECT_EQ(play(0, 1919), (Times{0, 960}));
}

TEST_F(Effect, AnotherPatternGoesOnInItsOwnRepetitions)
{
    effect.Enable();
    play(0, 2519); // in repetition 1, at the second note
    CMidiTrack waltz = pattern(480, {noteAt(0, 100), noteAt(700, 100)});
    waltz.numerator = 3;
    effect.set_track(waltz);
    EXPECT_EQ(play(2520, 3000), (Times{2880})); // 2 x 1440; nothing of the old repetition's 1920
}

TEST_F(Effect, SilentPlayGoesOnUnheard)
{
    effect.Enable();
    play(0, 99);
    effect.SilentPlay(true);
    EXPECT_EQ(play(100, 2500), Times{});
    EXPECT_EQ(effect.getCurrentTick(), 2501);
    effect.SilentPlay(false);
    EXPECT_EQ(play(2501, 3840), (Times{2880, 3840})); // no restart: the repetition goes on
}

TEST(CLooper, GivesItsInterfaceForTheExactName)
{
    CLooper effect;
    EXPECT_EQ(effect.get_interface("Korvanel::ILooper"), static_cast<ILooper*>(&effect));
    EXPECT_EQ(effect.get_interface("Korvanel::ILooperX"), nullptr);
    EXPECT_EQ(effect.get_interface("Korvanel::ILoope"), nullptr);
    EXPECT_EQ(effect.get_interface(""), nullptr);
    EXPECT_EQ(effect.get_interface(nullptr), nullptr);
}

TEST(CLooper, ItsEditorComesFromTheInstalledFactory)
{
    CLooper effect;
    EXPECT_TRUE(effect.hasEditor());
    EXPECT_EQ(effect.createEditor(), nullptr);
    setEditorFactory([](CLooper&) { return new MidiEffectEditor; });
    const std::unique_ptr<MidiEffectEditor> editor(effect.createEditor());
    EXPECT_NE(editor, nullptr);
    setEditorFactory(nullptr);
}

TEST(CLooper, LiveEffectsAreCounted)
{
    const std::int32_t before = g_lComponents;
    {
        const std::unique_ptr<MidiEffect> one(CreatePlugin());
        const std::unique_ptr<MidiEffect> two(CreateMidiEffect());
        EXPECT_EQ(g_lComponents, before + 2);
    }
    EXPECT_EQ(g_lComponents, before);
}

TEST_F(Effect, NothingOnTheProcessingThreadAllocates)
{
    effect.Enable();
    effect.usePitchWheel(true);
    Witness witness;
    witness.told.reserve(1000);
    effect.AddLooperListener(&witness);
    queue.events.reserve(1000);
    const AllocationGuard allocations;
    const LockCounter locks;
    effect.processStart(0);
    for (std::int32_t at = 0; at < 20'000; at += 100) {
        effect.process(at, at + 99, queue);
        queue.events.clear();
        queue.Insert(at, 0xE0, 1, 2);
        queue.Insert(at, 0xC0, 1, 2);
        queue.Insert(at, 0xBF, 127, 2);
        effect.processInput(queue);
    }
    effect.SilentPlay(true);
    effect.process(500, 600, queue);
    effect.processLoop(0, 20'000);
    effect.processStop(0);
    EXPECT_EQ(allocations.count(), 0u);
    EXPECT_EQ(locks.count(), LockCounter::counts ? 201u : 0u); // the effect's own, once a slice
    effect.RemoveLooperListener(&witness);
}

TEST(CLooper, ConnectedAgainItLeavesTheEarlierLooperToTheSliceThatRuns)
{
    CLooper effect;
    effect.set_track(pattern(480, {noteAt(0, 100), noteAt(960, 100)}));
    {
        const LeakAllowance earlierLooper;
        effect.connect(&defaultProcessContext);
    }
    effect.Enable();
    ConnectingQueue queue(effect);
    effect.process(0, 4799, queue);
    Times times;
    for (const MidiEvent& event : queue.events)
        times.push_back(event.time);
    EXPECT_EQ(times, (Times{0, 960, 1920, 2880, 3840}));
    EXPECT_EQ(effect.getCurrentTick(), -1); // the new one has played nothing
    effect.disconnect();
}
