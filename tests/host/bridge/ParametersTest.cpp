#include "host/bridge/Parameters.h"

#include "tests/support/Guards.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <set>
#include <string>

namespace {

class HostParameters : public testing::Test
{
protected:
    static std::size_t indexOf(const std::string& id)
    {
        for (std::size_t i = 0; i < Parameters::table().size(); ++i)
            if (id == Parameters::table()[i].id)
                return i;
        throw std::out_of_range(id);
    }

    void fromHost(const std::string& id, float value) { parameters.fromHost(indexOf(id), value); }

    std::map<std::string, int> changes()
    {
        std::map<std::string, int> all;
        parameters.reportChanges(
            [&](std::size_t index, int value) { all[Parameters::table()[index].id] = value; });
        return all;
    }

    CLooper effect;
    Parameters parameters{effect};
};

using Changes = std::map<std::string, int>;

} // namespace

TEST_F(HostParameters, TheTableSaysWhatANewEffectHas)
{
    std::set<std::string> ids;
    for (std::size_t i = 0; i < Parameters::table().size(); ++i) {
        const Parameter& parameter = Parameters::table()[i];
        EXPECT_EQ(parameters.value(i), parameter.normal) << parameter.id;
        EXPECT_LE(parameter.min, parameter.normal);
        EXPECT_GE(parameter.max, parameter.normal);
        ids.insert(parameter.id);
    }
    EXPECT_EQ(ids.size(), 10u);
}

TEST_F(HostParameters, EveryValueOfEveryParameterReachesTheEffect)
{
    for (std::size_t i = 0; i < Parameters::table().size(); ++i) {
        const Parameter& parameter = Parameters::table()[i];
        for (int value = parameter.min; value <= parameter.max; ++value) {
            parameters.fromHost(i, static_cast<float>(value));
            ASSERT_EQ(parameters.value(i), value) << parameter.id;
        }
    }
    EXPECT_EQ(effect.getVeloPlus().value, 127);
    EXPECT_EQ(effect.getRandomVeloMin().value, 0);
    EXPECT_EQ(effect.getRandomVeloMax().value, 127);
    EXPECT_EQ(effect.getRandomVeloStrength().value, 100);
    EXPECT_EQ(effect.getDnDRepeat().value, 999);
    EXPECT_TRUE(effect.isPitchWheelUsed() && effect.isVelocityUsed() && effect.isRandomVelo());
    EXPECT_TRUE(effect.isThru());
    EXPECT_EQ(effect.tempoType(), 2);
}

TEST_F(HostParameters, ValuesAreRoundedAndKeptInTheirRange)
{
    fromHost("velocity_add", 3.6F);
    EXPECT_EQ(effect.getVeloPlus().value, 4);
    fromHost("velocity_add", 1e30F);
    EXPECT_EQ(effect.getVeloPlus().value, 127);
    fromHost("velocity_add", std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(effect.getVeloPlus().value, 127);
    fromHost("thru", 0.4F);
    EXPECT_FALSE(effect.isThru());
}

TEST_F(HostParameters, AHostThatRepeatsItselfDoesNotUndoTheEditor)
{
    fromHost("velocity_add", 20);
    effect.setVeloPlus(30);
    fromHost("velocity_add", 20);
    EXPECT_EQ(effect.getVeloPlus().value, 30);
}

TEST_F(HostParameters, TheHostHearsOfTheEditorsChangesOnce)
{
    effect.setVeloPlus(30);
    effect.TempoType(0);
    EXPECT_EQ(changes(), (Changes{{"velocity_add", 30}, {"tempo_type", 0}}));
    EXPECT_EQ(changes(), Changes{});
    fromHost("velocity_add", 20); // another value than it knows
    EXPECT_EQ(effect.getVeloPlus().value, 20);
    EXPECT_EQ(changes(), Changes{});
}

TEST_F(HostParameters, WhatTheEffectHoldsBeyondTheRangeIsReportedAtItsEdge)
{
    effect.setVeloPlus(300);
    EXPECT_EQ(changes(), (Changes{{"velocity_add", 127}}));
    EXPECT_EQ(effect.getVeloPlus().value, 300);
}

TEST_F(HostParameters, SettingAllocatesNothing)
{
    const AllocationGuard allocations;
    for (std::size_t i = 0; i < Parameters::table().size(); ++i)
        parameters.fromHost(i, 1);
    EXPECT_EQ(allocations.count(), 0u);
}
