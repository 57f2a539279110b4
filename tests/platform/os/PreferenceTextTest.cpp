#include "platform/os/PreferenceText.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

using namespace platform;

namespace {

std::string nested(int depth)
{
    std::string text;
    for (int level = 1; level < depth; ++level)
        text += "{\"a\":";
    return text + "{}" + std::string(static_cast<std::size_t>(depth - 1), '}');
}

/// What is written for the settings reads back as the same.
void expectSurvives(const PreferenceDictionary& settings)
{
    const auto text = formatPreferences(settings);
    ASSERT_TRUE(text);
    EXPECT_EQ(parsePreferences(*text), settings) << *text;
}

} // namespace

TEST(PreferenceText, IsReadableByPeople)
{
    const PreferenceDictionary settings = {
        {"Editor", {PreferenceDictionary{{"Left", {20}}, {"Open", {true}}}}}, {"Name", {"Grüße"}}};
    EXPECT_EQ(formatPreferences(settings), "{\n"
                                           "    \"Editor\": {\n"
                                           "        \"Left\": 20,\n"
                                           "        \"Open\": true\n"
                                           "    },\n"
                                           "    \"Name\": \"Grüße\"\n"
                                           "}\n");
}

TEST(PreferenceText, BytesAndTextsOfOtherEncodingsStandInBase64)
{
    const PreferenceDictionary settings = {{"d", {PreferenceData{"foo"}}}, {"t", {"\xfc"}}};
    EXPECT_EQ(formatPreferences(settings), "{\n"
                                           "    \"d\": {\n"
                                           "        \"$data\": \"Zm9v\"\n"
                                           "    },\n"
                                           "    \"t\": {\n"
                                           "        \"$text\": \"/A==\"\n"
                                           "    }\n"
                                           "}\n");
}

TEST(PreferenceText, EveryKindOfValueSurvives)
{
    expectSurvives({});
    expectSurvives({{"max", {INT_MAX}}, {"min", {INT_MIN}}, {"yes", {true}}, {"no", {false}}});
    expectSurvives({{"empty", {""}}, {"none", {PreferenceData{}}}, {"", {1}}});
    expectSurvives({{"t", {std::string("a\0\"\\\n\x7f", 6)}}, {"latin", {"\xe4\xf6\xfc"}}});
    expectSurvives({{"surrogate", {"\xed\xa0\x80"}}, {"cut", {"\xe2\x82"}}});
    expectSurvives({{"group", {PreferenceDictionary{}}}});
    expectSurvives(
        {{"list", {PreferenceForeign{"[1,2.5,null]"}}}, {"f", {PreferenceForeign{"1.5"}}}});
}

TEST(PreferenceText, KeysAreAnyBytes)
{
    expectSurvives({{"\xff", {1}}, {std::string("a\0b", 3), {2}}, {"a/b", {3}}});
    expectSurvives({{"$data", {1}}, {"$", {2}}, {"$key:Zg==", {3}}});
}

TEST(PreferenceText, AGroupIsNeverTakenForBytes)
{
    expectSurvives({{"g", {PreferenceDictionary{{"$data", {"Zm9v"}}}}}});
    expectSurvives({{"g", {PreferenceDictionary{{"$text", {"Zm9v"}}}}}});
}

TEST(PreferenceText, WhatIsNoBase64StaysAGroup)
{
    const auto settings = parsePreferences(R"({"g": {"$data": "?"}, "h": {"$data": 1}})");
    ASSERT_TRUE(settings);
    EXPECT_EQ(settings->at("g").type(), PreferenceValue::Dictionary);
    EXPECT_EQ(settings->at("h").type(), PreferenceValue::Dictionary);
}

TEST(PreferenceText, NumbersThatNoSettingHoldsAreKeptAsTheyAre)
{
    const auto settings = parsePreferences(
        R"({"a": 2147483648, "b": -2147483649, "c": 18446744073709551615, "d": 1e3})");
    ASSERT_TRUE(settings);
    EXPECT_EQ(settings->at("a"), PreferenceValue{PreferenceForeign{"2147483648"}});
    EXPECT_EQ(settings->at("b"), PreferenceValue{PreferenceForeign{"-2147483649"}});
    EXPECT_EQ(settings->at("c"), PreferenceValue{PreferenceForeign{"18446744073709551615"}});
    EXPECT_EQ(settings->at("d").type(), PreferenceValue::Foreign);
}

TEST(PreferenceText, IsDamagedWhenItIsNoObject)
{
    for (const char* text : {"", " ", "{", "[]", "1", "null", "{}x", "{\"a\":}", "{\"a\":\"\xff\"}",
                             "{\"a\":\"\\ud800\"}", "{'a':1}"})
        EXPECT_FALSE(parsePreferences(text)) << text;
}

TEST(PreferenceText, EveryCutIsDamage)
{
    const auto text =
        formatPreferences({{"g", {PreferenceDictionary{{"\xff", {1}}}}}, {"t", {"x"}}});
    ASSERT_TRUE(text);
    for (std::size_t length = 0; length + 1 < text->size(); ++length)
        EXPECT_FALSE(parsePreferences(text->substr(0, length))) << length;
}

TEST(PreferenceText, ADepthOf64IsTheMost)
{
    EXPECT_TRUE(parsePreferences(nested(64)));
    EXPECT_FALSE(parsePreferences(nested(65)));
    EXPECT_FALSE(parsePreferences(nested(100'000)));
    EXPECT_FALSE(parsePreferences("{\"a\":" + std::string(500'000, '[')));
}

TEST(PreferenceText, BracketsInsideTextsAreNotDepth)
{
    const PreferenceDictionary settings = {{"a", {std::string(100, '{') + "\"\\" + "[["}}};
    expectSurvives(settings);
    EXPECT_FALSE(parsePreferences("{\"\\\"\":" + nested(64) + "}"));
}

TEST(PreferenceText, AMegabyteOfGroupsIsReadAtOnce) // by the square of their number it took minutes
{
    std::string list = "{\"a\":[";
    while (list.size() < kMostPreferenceBytes - 10)
        list += "{},";
    EXPECT_TRUE(parsePreferences(list + "1]}"));
}

TEST(PreferenceText, WhatCouldNotBeReadBackIsNotWritten)
{
    PreferenceDictionary deep;
    for (int level = 1; level < 64; ++level)
        deep = {{"a", {std::move(deep)}}};
    expectSurvives(deep);
    EXPECT_FALSE(formatPreferences({{"a", {deep}}}));
    EXPECT_FALSE(formatPreferences({{"a", {std::string(kMostPreferenceBytes, 'x')}}}));
    EXPECT_FALSE(formatPreferences({{"a", {PreferenceForeign{"["}}}}));
}
