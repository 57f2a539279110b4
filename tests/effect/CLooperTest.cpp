#include "effect/CLooper.h"

#include "effect/CreatePlugin.h"
#include "effect/EditorFactory.h"
#include "shared/System/kvLog.h"
#include "tests/effect/Fakes.h"
#include "tests/support/Guards.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <unistd.h>

using namespace Korvanel;

namespace {

/// An effect in a 480 host, playing one bar of two notes at 0 and 960.
class Effect : public testing::Test
{
protected:
    Effect()
    {
        effect.setRandomVelo(false);
        effect.setVeloPlus(0);
        effect.set_track(pattern(480, {noteAt(0, 100), noteAt(960, 100)}));
        effect.Initialize(nullptr);
    }

    ~Effect() override { effect.Terminate(); }

    std::vector<std::int32_t> play(std::int32_t from, std::int32_t to)
    {
        queue.events.clear();
        effect.process(from, to, queue);
        std::vector<std::int32_t> times;
        for (const MidiEvent& event : queue.events)
            times.push_back(event.time);
        return times;
    }

    /// What is left of one event after the effect has seen it.
    std::size_t input(int status, int data1, int data2)
    {
        queue.events.clear();
        queue.Insert(0, status, data1, data2);
        effect.processInput(queue);
        return queue.events.size();
    }

    int firstVelocity()
    {
        ++bar;
        play(1920 * bar, 1920 * bar + 10);
        return queue.events.at(0).data2;
    }

    CLooper effect;
    ListQueue queue;
    int bar = 0;
};

using Times = std::vector<std::int32_t>;

struct Witness : CLooper::Listener
{
    void disconnect() override { told += "d"; }

    void RefreshChPort() override { told += "c"; }

    void loaded() override { told += "l"; }

    void update() override { told += "u"; }

    void startPlaying() override { told += "s"; }

    void patternsChanged() override { told += "t"; }

    void programChange(int program) override { told += "p" + std::to_string(program); }

    void patternSelected() override { told += "n"; }

    std::string told;
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

TEST_F(Effect, NeverEnabledItTakesNoInput)
{
    EXPECT_EQ(input(0xC0, 1, 0), 1u);
    EXPECT_EQ(input(0xBF, 127, 40), 1u);
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

TEST_F(Effect, SilentPlayGoesOnUnheard)
{
    effect.Enable();
    play(0, 99);
    effect.SilentPlay(true);
    EXPECT_EQ(play(100, 2500), Times{});
    effect.SilentPlay(false);
    EXPECT_EQ(play(2501, 3840), (Times{2880, 3840})); // no restart: the repetition goes on
}

TEST_F(Effect, VelocityShiftIsClampedAndTheSetterIsNot)
{
    effect.VelocityShift(300);
    EXPECT_EQ(effect.getVeloPlus().value, 127);
    effect.VelocityShift(-300);
    EXPECT_EQ(effect.getVeloPlus().value, -127);
    effect.setVeloPlus(300);
    EXPECT_EQ(effect.getVeloPlus().value, 300);
}

TEST_F(Effect, TempoTypesOutsideBecomeNormal)
{
    effect.TempoType(0);
    EXPECT_EQ(effect.tempoType(), 0);
    effect.TempoType(3);
    EXPECT_EQ(effect.tempoType(), 1);
    effect.TempoType(2);
    effect.TempoType(-1);
    EXPECT_EQ(effect.tempoType(), 1);
}

TEST_F(Effect, ATempoTypeSetBeforeItIsConnectedCounts)
{
    effect.Terminate();
    effect.TempoType(2);
    effect.Initialize(nullptr);
    effect.Enable();
    EXPECT_EQ(play(0, 959), (Times{0, 480}));
}

TEST(CLooper, ANewEffectHasItsDefaults)
{
    const CLooper effect;
    EXPECT_EQ(effect.getVeloPlus().value, -10);
    EXPECT_EQ(effect.getRandomVeloMin().value, -15);
    EXPECT_EQ(effect.getRandomVeloMax().value, 10);
    EXPECT_EQ(effect.getRandomVeloStrength().value, 100);
    EXPECT_EQ(effect.getDnDRepeat().value, 1);
    EXPECT_FALSE(effect.isPitchWheelUsed());
    EXPECT_FALSE(effect.isVelocityUsed());
    EXPECT_TRUE(effect.isRandomVelo());
    EXPECT_EQ(effect.channel(), -1);
    EXPECT_EQ(effect.port(), 0);
    EXPECT_FALSE(effect.isEnabled());
    EXPECT_FALSE(effect.isThru());
}

TEST(CLooper, ParametersHaveTheirRanges)
{
    const CLooper effect;
    const auto range = [](CLooper::NumRange r) { return std::pair(r.min, r.max); };
    EXPECT_EQ(range(effect.getDnDRepeat()), std::pair(1, 999));
    EXPECT_EQ(range(effect.getVeloPlus()), std::pair(-127, 127));
    EXPECT_EQ(range(effect.getRandomVeloMin()), std::pair(-127, 0));
    EXPECT_EQ(range(effect.getRandomVeloMax()), std::pair(0, 127));
    EXPECT_EQ(range(effect.getRandomVeloStrength()), std::pair(0, 100));
}

TEST(CLooper, EachFlagIsItsOwn)
{
    CLooper effect;
    effect.usePitchWheel(true);
    effect.setRandomVelo(false);
    EXPECT_TRUE(effect.isPitchWheelUsed());
    EXPECT_FALSE(effect.isVelocityUsed());
    EXPECT_FALSE(effect.isRandomVelo());
    effect.useVelocity(true);
    effect.usePitchWheel(false);
    EXPECT_FALSE(effect.isPitchWheelUsed());
    EXPECT_TRUE(effect.isVelocityUsed());
}

TEST_F(Effect, TheVelocityControllerIsOnChannel16Only)
{
    effect.Enable();
    effect.useVelocity(true);
    EXPECT_EQ(input(0xB0, 127, 40), 1u);
    EXPECT_EQ(input(0xBF, 126, 40), 1u);
    EXPECT_EQ(firstVelocity(), 100);
    EXPECT_EQ(input(0xBF, 127, 40), 0u);
    EXPECT_EQ(firstVelocity(), 80);
}

TEST_F(Effect, TheVelocityControllerHasACurve)
{
    effect.Enable();
    effect.useVelocity(true);
    const std::pair<int, int> curve[] = {{0, 0},   {1, -33}, {40, -20}, {99, 0},
                                         {100, 0}, {101, 0}, {102, 1},  {127, 13}};
    for (const auto& [value, shift] : curve) {
        input(0xBF, 127, value);
        EXPECT_EQ(firstVelocity(), 100 + shift) << value;
    }
}

TEST_F(Effect, TheWheelIsTakenOnAnyChannelWhenUsed)
{
    effect.Enable();
    EXPECT_EQ(input(0xE3, 0, 0), 1u);
    effect.usePitchWheel(true);
    EXPECT_EQ(input(0xE3, 0, 0), 0u);
    EXPECT_EQ(firstVelocity(), 36); // -8192 / 128
}

TEST_F(Effect, UsedEventsLeaveAndTheRestKeepsItsOrder)
{
    effect.Enable();
    queue.Insert(0, 0xC0, 1, 0);
    queue.Insert(1, 0x90, 60, 1);
    queue.Insert(2, 0xC0, 2, 0);
    queue.Insert(3, 0xC0, 3, 0);
    queue.Insert(4, 0x90, 61, 1);
    effect.processInput(queue);
    ASSERT_EQ(queue.events.size(), 2u);
    EXPECT_EQ(queue.events[0].data1, 60);
    EXPECT_EQ(queue.events[1].data1, 61);
}

TEST_F(Effect, AProgramChangeGoesToTheFirstListenerOnly)
{
    effect.Enable();
    EXPECT_EQ(input(0xC5, 7, 0), 0u); // taken, though nobody listens
    Witness first;
    Witness second;
    effect.AddLooperListener(&first);
    effect.AddLooperListener(&second);
    input(0xC5, 7, 0);
    EXPECT_EQ(first.told, "p7");
    EXPECT_EQ(second.told, "");
    effect.RemoveLooperListener(&first);
    effect.RemoveLooperListener(&second);
}

TEST_F(Effect, ListenersHearWhatChanged)
{
    Witness witness;
    effect.AddLooperListener(&witness);
    effect.Enable();
    effect.Enable(); // no change, no word
    effect.Disable();
    effect.VelocityShift(1);
    effect.SetChPort(3, 4);
    effect.processStart(0);
    effect.start_playing();
    effect.PatternTreeIsUpdated();
    effect.disconnect();
    EXPECT_EQ(witness.told, "uuucsstd");
    EXPECT_EQ(effect.channel(), 3);
    EXPECT_EQ(effect.port(), 4);
    effect.RemoveLooperListener(&witness);
}

TEST_F(Effect, AListenerAddedTwiceHearsTwiceAndIsRemovedAtOnce)
{
    Witness witness;
    effect.AddLooperListener(&witness);
    effect.AddLooperListener(&witness);
    effect.VelocityShift(1);
    effect.RemoveLooperListener(&witness);
    effect.VelocityShift(1);
    EXPECT_EQ(witness.told, "uu");
}

TEST_F(Effect, ALoopWritesItsStopBeforeItsStart)
{
    std::string path = std::filesystem::temp_directory_path() / "kv-transport-XXXXXX";
    ::close(::mkstemp(path.data()));
    IOLogOpen(nullptr, nullptr, LogFile::Truncate, path.c_str());
    effect.processLoop(0, 3839);
    IOLogClose();
    std::ostringstream all;
    all << std::ifstream(path).rdbuf();
    EXPECT_NE(all.str().find("  stop at: 3839\n  start at: 0\n"), std::string::npos);
    std::filesystem::remove(path);
}

TEST_F(Effect, TheCursorFollowsTheNextSlice)
{
    effect.Enable();
    EXPECT_EQ(effect.getCurrentTick(), -1); // nothing has been played
    play(0, 2399);
    EXPECT_EQ(effect.getCurrentTick(), 2400);
    EXPECT_EQ(effect.getCurrentLoopTick(), 480);
    effect.set_track(pattern(240, {noteAt(0, 100)}));
    EXPECT_EQ(effect.getCurrentTick(), 1200);
}

TEST_F(Effect, LengthsFollowTheTempoType)
{
    EXPECT_EQ(effect.GetLastTick(nullptr), 1920);
    EXPECT_EQ(effect.GetMeasures(nullptr), 1);
    effect.TempoType(0);
    EXPECT_EQ(effect.GetLastTick(nullptr), 3840);
    effect.TempoType(2);
    EXPECT_EQ(effect.GetLastTick(nullptr), 960);
    const CMidiTrack empty;
    EXPECT_EQ(effect.GetLastTick(&empty), 1);
    EXPECT_EQ(effect.GetMeasures(&empty), 0);
}

TEST_F(Effect, LoopsAreFoundInTheContextsTicks)
{
    effect.TempoType(0); // does not count here
    const Recorder context(240);
    EXPECT_EQ(effect.FindLoop(1000, context), 40);
    EXPECT_EQ(effect.NextLoop(1000, context), 1960);
    effect.Clear();
    EXPECT_EQ(effect.NextLoop(1000, context), 1100);
}

TEST(CLooper, TheVelocityCurveIsNotClamped)
{
    const CLooper effect;
    EXPECT_EQ(effect.recalc_velo(100), 127);
    EXPECT_EQ(effect.recalc_velo(127), 175);
    EXPECT_EQ(effect.recalc_velo(1), 127 - 97);
    EXPECT_EQ(effect.recalc_velo(INT32_MAX), INT32_MAX);
    EXPECT_EQ(effect.recalc_velo(INT32_MIN), -2'104'100'110); // 127 - 97 x 2147483748 / 99
    EXPECT_EQ(effect.recalc_velo(113), 127 + 48 - 25);        // 97 x -14 / 2 = -679, / 27 = -25
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
