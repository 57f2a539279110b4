#include "host/vst3/HostParameter.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

struct HostParameters : testing::Test
{
    CLooper effect;
    Parameters parameters{effect};
    HostParameter velocity{parameters, 0}; ///< -127..127
    HostParameter thru{parameters, 7};
    HostParameter tempo{parameters, 8};
};

} // namespace

TEST_F(HostParameters, BothEndsAndTheMiddleAreTheEffectsValues)
{
    velocity.setValue(0);
    EXPECT_EQ(effect.getVeloPlus().value, -127);
    velocity.setValue(1);
    EXPECT_EQ(effect.getVeloPlus().value, 127);
    velocity.setValue(0.5F);
    EXPECT_EQ(effect.getVeloPlus().value, 0);
    EXPECT_EQ(velocity.getValue(), 0.5F);
}

TEST_F(HostParameters, EveryValueComesBackFromItsFraction)
{
    for (int value = -127; value <= 127; ++value) {
        effect.setVeloPlus(value);
        const float fraction = velocity.getValue();
        effect.setVeloPlus(value == 0 ? 1 : 0);
        velocity.setValue(fraction);
        EXPECT_EQ(effect.getVeloPlus().value, value);
    }
}

TEST_F(HostParameters, ValuesOutsideAreClampedAndNoNumberIsIgnored)
{
    velocity.setValue(7);
    EXPECT_EQ(effect.getVeloPlus().value, 127);
    velocity.setValue(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(effect.getVeloPlus().value, 127);
}

TEST_F(HostParameters, ValuesHaveNames)
{
    EXPECT_EQ(velocity.getText(0, 100), "-127");
    EXPECT_EQ(thru.getText(1, 100), "On");
    EXPECT_EQ(tempo.getText(0, 100), "Half");
    EXPECT_EQ(tempo.getText(1, 3), "Dou");
    EXPECT_EQ(velocity.getValueForText("0"), 0.5F);
    EXPECT_EQ(velocity.getValueForText("999"), 1.0F);
    EXPECT_EQ(thru.getValueForText("off"), 0.0F);
    EXPECT_EQ(tempo.getValueForText("Normal"), 0.5F);
}

TEST_F(HostParameters, HostsSeeSteps)
{
    EXPECT_EQ(velocity.getNumSteps(), 255);
    EXPECT_EQ(tempo.getNumSteps(), 3);
    EXPECT_TRUE(thru.isBoolean());
    EXPECT_FALSE(tempo.isBoolean());
    EXPECT_TRUE(tempo.isDiscrete());
    EXPECT_TRUE(tempo.isAutomatable());
}
