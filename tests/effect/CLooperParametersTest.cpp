// Parameters and positions.
#include "tests/effect/EffectFixture.h"

#include <utility>

using namespace Korvanel;

namespace {

using Times = std::vector<std::int32_t>;

} // namespace

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
