// What the effect takes from the host's incoming events.
#include "tests/effect/EffectFixture.h"

#include <utility>

using namespace Korvanel;

TEST_F(Effect, NeverEnabledItTakesNoInput)
{
    EXPECT_EQ(input(0xC0, 1, 0), 1u);
    EXPECT_EQ(input(0xBF, 127, 40), 1u);
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

TEST_F(Effect, TheVelocityControllerIsTakenAndKeptEvenWhileItIsNotUsed)
{
    effect.Enable();
    effect.useVelocity(false);
    EXPECT_EQ(input(0xBF, 127, 40), 0u);
    EXPECT_EQ(firstVelocity(), 100);
    effect.useVelocity(true);
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
