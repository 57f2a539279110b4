// What a host says about its cycles and its rate, at first and later.
#include "tests/host/lv2/Lv2Fixture.h"

#include <lv2/buf-size/buf-size.h>
#include <lv2/parameters/parameters.h>

#include <limits>

namespace {

constexpr double kNoRate = 0;

class Lv2OptionsOfAHost : public InLv2Host
{
protected:
    LV2_Options_Option option(const char* key, const std::int32_t& value)
    {
        return {LV2_OPTIONS_INSTANCE, 0, number(key), sizeof value, number(LV2_ATOM__Int), &value};
    }

    LV2_Options_Option option(const char* key, const float& value)
    {
        return {LV2_OPTIONS_INSTANCE,    0,     number(key), sizeof value,
                number(LV2_ATOM__Float), &value};
    }

    LV2_URID number(const char* uri) { return world->urids.map(uri); }

    static const LV2_Options_Interface& of(const Lv2Instance& plugin)
    {
        return plugin.extension<LV2_Options_Interface>(LV2_OPTIONS__interface);
    }

    static std::uint32_t set(const Lv2Instance& plugin, const LV2_Options_Option& option)
    {
        const LV2_Options_Option list[]{option, kEnd};
        return of(plugin).set(lilv_instance_get_handle(plugin.instance), list);
    }

    /// @return as the interface does; the option filled in
    std::uint32_t get(const Lv2Instance& plugin, const char* key, LV2_Options_Option& option)
    {
        LV2_Options_Option list[]{{LV2_OPTIONS_INSTANCE, 0, number(key), 0, 0, nullptr}, kEnd};
        const std::uint32_t status =
            of(plugin).get(lilv_instance_get_handle(plugin.instance), list);
        option = list[0];
        return status;
    }

    /// @return 0 for an option that the instance does not know
    int lengthOf(const Lv2Instance& plugin, const char* key)
    {
        LV2_Options_Option option{};
        if (get(plugin, key, option) != LV2_OPTIONS_SUCCESS)
            return 0;
        EXPECT_EQ(option.type, number(LV2_ATOM__Int));
        EXPECT_EQ(option.size, sizeof(std::int32_t));
        return *static_cast<const std::int32_t*>(option.value);
    }

    float rateOf(const Lv2Instance& plugin)
    {
        LV2_Options_Option option{};
        EXPECT_EQ(get(plugin, LV2_PARAMETERS__sampleRate, option), LV2_OPTIONS_SUCCESS);
        EXPECT_EQ(option.type, number(LV2_ATOM__Float));
        EXPECT_EQ(option.size, sizeof(float));
        return *static_cast<const float*>(option.value);
    }

    static constexpr LV2_Options_Option kEnd{LV2_OPTIONS_INSTANCE, 0, 0, 0, 0, nullptr};
    const std::int32_t big = 1024;
    const std::int32_t small = 256;
};

} // namespace

TEST_F(Lv2OptionsOfAHost, WhatTheHostSaysAtFirstItIsToldAgain)
{
    const LV2_Options_Option list[]{option(LV2_BUF_SIZE__maxBlockLength, big),
                                    option(LV2_BUF_SIZE__nominalBlockLength, small), kEnd};
    const Lv2Instance plugin(*world, 44100, true, list);
    EXPECT_EQ(lengthOf(plugin, LV2_BUF_SIZE__maxBlockLength), 1024);
    EXPECT_EQ(lengthOf(plugin, LV2_BUF_SIZE__nominalBlockLength), 256);
    EXPECT_EQ(rateOf(plugin), 44100.0F);
}

TEST_F(Lv2OptionsOfAHost, WhatItNeverSaidIsNotMadeUp)
{
    const Lv2Instance plugin(*world);
    LV2_Options_Option length{};
    EXPECT_EQ(get(plugin, LV2_BUF_SIZE__maxBlockLength, length), LV2_OPTIONS_ERR_BAD_KEY);
    EXPECT_EQ(length.value, nullptr);
    EXPECT_EQ(rateOf(plugin), 48000.0F);
}

TEST_F(Lv2OptionsOfAHost, LengthsMayChangeLater)
{
    const Lv2Instance plugin(*world);
    EXPECT_EQ(set(plugin, option(LV2_BUF_SIZE__maxBlockLength, small)), LV2_OPTIONS_SUCCESS);
    EXPECT_EQ(set(plugin, option(LV2_BUF_SIZE__maxBlockLength, big)), LV2_OPTIONS_SUCCESS);
    EXPECT_EQ(lengthOf(plugin, LV2_BUF_SIZE__maxBlockLength), 1024);
}

TEST_F(Lv2OptionsOfAHost, NonsenseAtFirstIsIgnored)
{
    const std::int32_t negative = -5;
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    const LV2_Options_Option list[]{option(LV2_BUF_SIZE__maxBlockLength, negative),
                                    option("urn:test:unknown", big),
                                    option(LV2_BUF_SIZE__nominalBlockLength, notANumber),
                                    option(LV2_PARAMETERS__sampleRate, notANumber), kEnd};
    Lv2Instance plugin(*world, 48000, true, list);
    EXPECT_EQ(lengthOf(plugin, LV2_BUF_SIZE__maxBlockLength), 0);
    EXPECT_EQ(lengthOf(plugin, LV2_BUF_SIZE__nominalBlockLength), 0);
    choose(plugin, 0);
    plugin.playAt(0, 0, 0);
    plugin.run(30000);
    EXPECT_EQ(plugin.take(), (SentList{on(0, 40), off(24000, 40)}));
}

TEST_F(Lv2OptionsOfAHost, EachKindOfMistakeHasItsCode)
{
    const Lv2Instance plugin(*world);
    const std::int32_t zero = 0;
    const float length = 64;
    LV2_Options_Option ofAPort = option(LV2_BUF_SIZE__maxBlockLength, big);
    ofAPort.context = LV2_OPTIONS_PORT;
    LV2_Options_Option tooSmall = option(LV2_BUF_SIZE__maxBlockLength, big);
    tooSmall.size = 2;
    LV2_Options_Option nothing = option(LV2_BUF_SIZE__maxBlockLength, big);
    nothing.value = nullptr;
    EXPECT_EQ(set(plugin, option("urn:test:unknown", big)), LV2_OPTIONS_ERR_BAD_KEY);
    EXPECT_EQ(set(plugin, ofAPort), LV2_OPTIONS_ERR_BAD_SUBJECT);
    for (const LV2_Options_Option& bad :
         {option(LV2_BUF_SIZE__maxBlockLength, zero), option(LV2_BUF_SIZE__maxBlockLength, length),
          tooSmall, nothing})
        EXPECT_EQ(set(plugin, bad), LV2_OPTIONS_ERR_BAD_VALUE);
    const LV2_Handle handle = lilv_instance_get_handle(plugin.instance);
    EXPECT_EQ(of(plugin).set(handle, nullptr), LV2_OPTIONS_ERR_UNKNOWN);
    EXPECT_EQ(of(plugin).get(handle, nullptr), LV2_OPTIONS_ERR_UNKNOWN);
    EXPECT_EQ(lengthOf(plugin, LV2_BUF_SIZE__maxBlockLength), 0);
}

TEST_F(Lv2OptionsOfAHost, AListKeepsItsGoodOnesAndReportsAllItsBadOnes)
{
    const Lv2Instance plugin(*world);
    const std::int32_t negative = -1;
    const LV2_Options_Option list[]{option("urn:test:unknown", big),
                                    option(LV2_BUF_SIZE__nominalBlockLength, negative),
                                    option(LV2_BUF_SIZE__maxBlockLength, big), kEnd};
    EXPECT_EQ(of(plugin).set(lilv_instance_get_handle(plugin.instance), list),
              std::uint32_t{LV2_OPTIONS_ERR_BAD_KEY} | LV2_OPTIONS_ERR_BAD_VALUE);
    EXPECT_EQ(lengthOf(plugin, LV2_BUF_SIZE__maxBlockLength), 1024);
}

TEST_F(Lv2OptionsOfAHost, AnInstanceKeepsItsRate)
{
    const float same = 44100;
    const float other = 96000;
    const Lv2Instance plugin(*world, 44100);
    EXPECT_EQ(set(plugin, option(LV2_PARAMETERS__sampleRate, same)), LV2_OPTIONS_SUCCESS);
    EXPECT_EQ(set(plugin, option(LV2_PARAMETERS__sampleRate, other)), LV2_OPTIONS_ERR_BAD_VALUE);
    EXPECT_EQ(rateOf(plugin), 44100.0F);
}

TEST_F(Lv2OptionsOfAHost, ARateAmongTheOptionsHelpsAHostThatNamesNone)
{
    const float rate = 24000;
    const LV2_Options_Option list[]{option(LV2_PARAMETERS__sampleRate, rate), kEnd};
    Lv2Instance plugin(*world, kNoRate, true, list);
    EXPECT_EQ(rateOf(plugin), 24000.0F);
    choose(plugin, 0);
    plugin.playAt(0, 0, 0);
    plugin.run(15000);
    EXPECT_EQ(plugin.take(), (SentList{on(0, 40), off(12000, 40)}));
}

TEST_F(Lv2OptionsOfAHost, CyclesBeyondTheDeclaredMaximumPlayAll)
{
    const std::int32_t one = 1;
    const LV2_Options_Option list[]{option(LV2_BUF_SIZE__maxBlockLength, one),
                                    option(LV2_BUF_SIZE__nominalBlockLength, one), kEnd};
    Lv2Instance plugin(*world, 48000, true, list);
    choose(plugin, 0);
    plugin.playAt(0, 0, 0);
    plugin.run(130'000);
    EXPECT_EQ(plugin.take(),
              (SentList{on(0, 40), off(24000, 40), on(96000, 40), off(120'000, 40)}));
}
