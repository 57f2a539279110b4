#include "host/lv2/Lv2Time.h"

#include "tests/host/lv2/Lv2Host.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr const char* kArdoursScale = "http://ardour.org/lv2/time#scale";

class PositionObjects : public testing::Test
{
protected:
    PositionObjects() { time.prepare(48000); }

    /// Forges an object, of which all numbers are of the given kind. Names without a colon are of
    /// the time extension.
    template <typename Write>
    HostPosition read(const std::map<std::string, double>& fields, Write write, double expected = 0)
    {
        std::array<std::uint64_t, 128> memory{};
        LV2_Atom_Forge forge{};
        lv2_atom_forge_init(&forge, &urids.mapFeature);
        lv2_atom_forge_set_buffer(&forge, reinterpret_cast<std::uint8_t*>(memory.data()),
                                  sizeof memory);
        LV2_Atom_Forge_Frame frame{};
        lv2_atom_forge_object(&forge, &frame, 0, urids.map(LV2_TIME__Position));
        for (const auto& [name, value] : fields) {
            lv2_atom_forge_key(&forge, urids.map(uriOf(name).c_str()));
            write(forge, value);
        }
        lv2_atom_forge_pop(&forge, &frame);
        const auto& object = *reinterpret_cast<const LV2_Atom_Object*>(memory.data());
        EXPECT_TRUE(time.isPosition(object.atom));
        return time.read(object, expected);
    }

    HostPosition read(const std::map<std::string, double>& fields, double expected = 0)
    {
        return read(
            fields,
            [](LV2_Atom_Forge& forge, double value) { lv2_atom_forge_double(&forge, value); },
            expected);
    }

    static std::string uriOf(const std::string& name)
    {
        return name.find(':') == std::string::npos ? LV2_TIME_PREFIX + name : name;
    }

    UridMap urids;
    Lv2Uris uris{urids.mapFeature};
    Lv2Time time{uris};
};

} // namespace

TEST_F(PositionObjects, BarAndBeatSayWhereTheSongIs)
{
    const HostPosition position = read({{"speed", 1},
                                        {"bar", 10},
                                        {"barBeat", 2.5},
                                        {"beatsPerBar", 3},
                                        {"beatUnit", 4},
                                        {"beatsPerMinute", 90}});
    EXPECT_TRUE(position.playing);
    EXPECT_EQ(position.quarters, 32.5);
    EXPECT_EQ(position.barStart, 30);
    EXPECT_EQ(position.bar, 10);
    EXPECT_EQ(position.tempo, 90);
    EXPECT_EQ(position.numerator, 3);
    EXPECT_EQ(position.denominator, 4);
}

TEST_F(PositionObjects, ABeatIsWhatTheMeterSays)
{
    const HostPosition position = read({{"speed", 1},
                                        {"bar", 1},
                                        {"barBeat", 3},
                                        {"beatsPerBar", 7},
                                        {"beatUnit", 8},
                                        {"beatsPerMinute", 240}});
    EXPECT_EQ(position.quarters, 5);
    EXPECT_EQ(position.tempo, 120);
}

TEST_F(PositionObjects, NumbersOfEveryTypeAreUnderstood)
{
    const std::map<std::string, double> fields{{"speed", 1}, {"bar", 2}, {"barBeat", 1}};
    const auto quarters = [&](auto write) { return read(fields, write).quarters; };
    using Forge = LV2_Atom_Forge;
    EXPECT_EQ(quarters([](Forge& forge, double value) {
                  lv2_atom_forge_int(&forge, static_cast<std::int32_t>(value));
              }),
              9);
    EXPECT_EQ(quarters([](Forge& forge, double value) {
                  lv2_atom_forge_long(&forge, static_cast<std::int64_t>(value));
              }),
              9);
    EXPECT_EQ(quarters([](Forge& forge, double value) {
                  lv2_atom_forge_float(&forge, static_cast<float>(value));
              }),
              9);
    EXPECT_TRUE(std::isnan(
        quarters([](Forge& forge, double) { lv2_atom_forge_string(&forge, "nine", 4); })));
}

TEST_F(PositionObjects, WithoutTheBarItIsTheNearestSuchBeat)
{
    EXPECT_EQ(read({{"speed", 1}, {"barBeat", 3.9}}, 16.1).quarters, 15.9);
    EXPECT_EQ(read({{"speed", 1}, {"barBeat", 0.1}}, 15.9).quarters, 16.1);
}

TEST_F(PositionObjects, ElseTheRunningBeatElseTheFrameSaysWhere)
{
    EXPECT_EQ(read({{"speed", 1}, {"beat", 9.5}, {"frame", 1}}).quarters, 9.5);
    EXPECT_EQ(read({{"speed", 1}, {"frame", 48000}}).quarters, 2);
}

TEST_F(PositionObjects, WhatIsNotRepeatedHolds)
{
    read({{"speed", 1}, {"bar", 4}, {"beatsPerMinute", 77}});
    const HostPosition position = read({{"beatsPerBar", 5}});
    EXPECT_TRUE(position.playing);
    EXPECT_EQ(position.tempo, 77);
    EXPECT_EQ(position.numerator, 5);
    EXPECT_TRUE(std::isnan(position.quarters));
}

TEST_F(PositionObjects, SpeedIsPartOfTheTempoAndBackwardsIsStopped)
{
    EXPECT_EQ(read({{"speed", 2}}).tempo, 240);
    EXPECT_FALSE(read({{"speed", -1}}).playing);
    EXPECT_FALSE(read({{"speed", 0}}).playing);
}

TEST_F(PositionObjects, NonsenseIsLeftOut)
{
    const double nan = std::nan("");
    const HostPosition position = read({{"speed", 1},
                                        {"bar", nan},
                                        {"beatsPerBar", 0},
                                        {"beatUnit", -4},
                                        {"beatsPerMinute", nan}});
    EXPECT_EQ(position.tempo, 120);
    EXPECT_EQ(position.numerator, 4);
    EXPECT_EQ(position.denominator, 4);
}

TEST_F(PositionObjects, ArdoursTempoIsInQuartersAndSoIsWhatLiesBehindABeat)
{
    const HostPosition position = read({{"speed", 1},
                                        {"bar", 2},
                                        {"barBeat", 4.25}, // 4 eighths and a sixteenth
                                        {"beatsPerBar", 6},
                                        {"beatUnit", 8},
                                        {"beatsPerMinute", 120},
                                        {kArdoursScale, 1}});
    EXPECT_EQ(position.tempo, 120);
    EXPECT_EQ(position.barStart, 6);
    EXPECT_EQ(position.quarters, 8.25);
}

TEST_F(PositionObjects, WithBeatsLongerThanAQuarterArdoursFrameIsBelieved)
{
    const HostPosition position = read({{"speed", 1},
                                        {"bar", 1}, // a quarter early
                                        {"barBeat", 0.5},
                                        {"beatsPerBar", 3},
                                        {"beatUnit", 2},
                                        {"beatsPerMinute", 120},
                                        {"frame", 5.5 * 24000},
                                        {kArdoursScale, 1}});
    EXPECT_EQ(position.quarters, 5.5);
    EXPECT_EQ(position.bar, 0);
    EXPECT_EQ(position.barStart, 0);
}
