// Who hears of what, and the transport's notifications.
#include "shared/System/kvLog.h"
#include "tests/effect/EffectFixture.h"
#include "tests/support/Folders.h"
#include "tests/support/Guards.h"

using namespace Korvanel;

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
    const TemporaryFolder folder;
    IOLogOpen(nullptr, nullptr, LogFile::Truncate, (folder / "log").c_str());
    effect.processLoop(0, 3839);
    IOLogClose();
    EXPECT_NE(contentOf(folder / "log").find("  stop at: 3839\n  start at: 0\n"),
              std::string::npos);
}

TEST(CLooper, ALoopStopsAndStartsAsTheEffectDoes)
{
    struct Derived : CLooper
    {
        void processStart(std::int32_t tick) override { told += "start " + std::to_string(tick); }

        void processStop(std::int32_t tick) override
        {
            told += "stop " + std::to_string(tick) + ", ";
        }

        std::string told;
    } effect;

    effect.processLoop(480, 3839);
    EXPECT_EQ(effect.told, "stop 3839, start 480");
}

TEST(CLooper, DisconnectedItHearsOfNoLibraryChangeHoweverOftenItWasConnected)
{
    CLooper effect;
    {
        const LeakAllowance earlierLooper;
        effect.connect(&defaultProcessContext);
    }
    effect.connect(&defaultProcessContext);
    Witness witness;
    effect.AddLooperListener(&witness);
    CLooper::on_tree_change();
    EXPECT_EQ(witness.told, "tt");
    effect.disconnect();
    CLooper::on_tree_change();
    EXPECT_EQ(witness.told, "ttd");
    effect.RemoveLooperListener(&witness);
}
