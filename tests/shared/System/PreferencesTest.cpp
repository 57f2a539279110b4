#include "platform/os/PreferenceText.h"
#include "shared/System/kvLog.h"
#include "shared/System/kvPreferences.h"
#include "tests/support/Folders.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <regex>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

using namespace Korvanel;

namespace {

constexpr auto kMe = PreferenceUser::Current;

/// A configuration folder and a log of its own for each test.
class PreferencesStore : public testing::Test
{
protected:
    PreferencesStore()
    {
        environment.set("XDG_CONFIG_HOME", folder.path());
        IOLogOpen(nullptr, nullptr, LogFile::Truncate, (folder / "log").c_str());
    }

    ~PreferencesStore() override { IOLogClose(); }

    /// What was logged since the last call, every address as "PTR".
    std::string logged()
    {
        const std::string all = contentOf(folder / "log");
        const std::string fresh = all.substr(mLogged);
        mLogged = all.size();
        return std::regex_replace(fresh, std::regex("0x[0-9a-f]+|\\(nil\\)"), "PTR");
    }

    /// What the file holds, as JSON without white space outside texts.
    std::string stored() const
    {
        return std::regex_replace(contentOf(file()), std::regex("\\s"), "");
    }

    std::string file() const { return folder / "org.example.Test.json"; }

    void store(const std::string& json) const { putContent(file(), json); }

    Preferences opened()
    {
        Preferences preferences("org.example.Test", false);
        logged();
        return preferences;
    }

    TemporaryFolder folder;
    Environment environment;

private:
    std::size_t mLogged = 0;
};

} // namespace

TEST_F(PreferencesStore, OpeningSaysSo)
{
    logged();
    const Preferences preferences("org.example.Test", false);
    EXPECT_EQ(logged(), "Initialize: App 'org.example.Test'\nInitialize: Synchronizing 1\n");
}

TEST_F(PreferencesStore, WithoutANameItIsNotOpened)
{
    logged();
    Preferences preferences(nullptr, false);
    EXPECT_FALSE(preferences.Initialize(nullptr, false));
    EXPECT_EQ(logged(), "");
    const int one = 1;
    EXPECT_FALSE(preferences.SetProfileInt("a", kMe, &one));
    EXPECT_EQ(logged(), "PutObject: Not initialized or invalid Entry (PTR).\n");
    EXPECT_EQ(preferences.GetProfileInt("a", kMe, 7), 7);
    EXPECT_EQ(logged(), "GetObjectOfType: Not initialized or invalid Entry (PTR).\n"
                        "GetInt: result 7\n");
    EXPECT_FALSE(preferences.SetSynchronizeProperty("a", nullptr, kMe));
    EXPECT_TRUE(preferences.Initialize("org.example.Test", false));
}

TEST_F(PreferencesStore, AFileThatCannotBeReadIsNotSynchronised)
{
    std::filesystem::create_directory(file());
    logged();
    Preferences preferences("org.example.Test", false);
    EXPECT_EQ(logged(), "Initialize: App 'org.example.Test'\nInitialize: Synchronizing 0\n");
    EXPECT_FALSE(preferences.Initialize("org.example.Test", false));
    EXPECT_EQ(preferences.GetProfileInt("a", kMe, 7), 7);
}

TEST_F(PreferencesStore, AnApplicationNameThatIsTooLongFails)
{
    Preferences preferences(nullptr, false);
    EXPECT_FALSE(preferences.Initialize(std::string(2'000'000, 'x').c_str(), false));
    EXPECT_NE(logged().find("GetEntryString: CFString NULL\n"), std::string::npos);
}

TEST_F(PreferencesStore, ANullNameIsNoEntry)
{
    auto preferences = opened();
    EXPECT_FALSE(Preferences::GetEntryString(nullptr));
    EXPECT_EQ(logged(), "GetEntryString: CFString NULL\n");
    EXPECT_FALSE(preferences.SetProfileString(nullptr, kMe, "x"));
    EXPECT_EQ(logged(), "PutObject: Not initialized or invalid Entry (PTR).\n");
}

TEST_F(PreferencesStore, KeepsNumbers)
{
    auto preferences = opened();
    for (const int number : {0, 20, INT_MIN, INT_MAX}) {
        EXPECT_TRUE(preferences.SetProfileInt("n", kMe, &number));
        EXPECT_EQ(preferences.GetProfileInt("n", kMe, 5), number);
    }
    EXPECT_EQ(stored(), "{\"n\":2147483647}");
}

TEST_F(PreferencesStore, TracesNumbers)
{
    auto preferences = opened();
    const int number = 20;
    preferences.SetProfileInt("n", kMe, &number);
    EXPECT_EQ(logged(), "PutObject: Setting Entry 'n'\n"
                        "SetSynchronizeProperty: Synchronizing 1\n");
    preferences.GetProfileInt("n", kMe, 5);
    EXPECT_EQ(logged(), "GetObjectOfType: Getting Entry 'n'\n"
                        "GetObjectOfType: Found CFType PTR ID 0\n"
                        "GetInt: result 20\n");
    preferences.GetProfileInt("m", kMe, 5);
    EXPECT_EQ(logged(), "GetObjectOfType: Getting Entry 'm'\nGetInt: result 5\n");
}

TEST_F(PreferencesStore, KeepsSwitches)
{
    auto preferences = opened();
    const bool yes = true;
    const bool no = false;
    EXPECT_TRUE(preferences.SetProfileBool("y", kMe, &yes));
    EXPECT_TRUE(preferences.SetProfileBool("n", kMe, &no));
    logged();
    EXPECT_TRUE(preferences.GetProfileBool("y", kMe, false));
    EXPECT_NE(logged().find("GetBool: result 'Yes'\n"), std::string::npos);
    EXPECT_FALSE(preferences.GetProfileBool("n", kMe, true));
    EXPECT_NE(logged().find("GetBool: result 'No'\n"), std::string::npos);
    EXPECT_TRUE(preferences.GetProfileBool("missing", kMe, true));
}

TEST_F(PreferencesStore, KeepsTextsOfAnyEncoding)
{
    auto preferences = opened();
    for (const char* text : {"", "plain",
                             "Gr\xc3\xbc\xc3\x9f"
                             "e",
                             "Gr\xfc\xdf"
                             "e",
                             "a\n\"b\""}) {
        EXPECT_TRUE(preferences.SetProfileString("t", kMe, text));
        EXPECT_STREQ(preferences.GetProfileString("t", kMe, "def").c_str(), text);
    }
    logged();
    preferences.SetProfileString("t", kMe, "blue");
    preferences.GetProfileString("t", kMe, "def");
    EXPECT_NE(logged().find("GetString: result 'blue'\n"), std::string::npos);
    EXPECT_STREQ(preferences.GetProfileString("missing", kMe, "def").c_str(), "def");
    EXPECT_STREQ(preferences.GetProfileString("missing", kMe, nullptr).c_str(), "");
}

TEST_F(PreferencesStore, KeepsBytes)
{
    auto preferences = opened();
    const unsigned char bytes[] = {0, 255, 7};
    EXPECT_TRUE(preferences.SetProfileBinary("b", kMe, bytes, 3));
    unsigned char read[4] = {9, 9, 9, 9};
    std::uint32_t size = 4;
    logged();
    EXPECT_TRUE(preferences.GetProfileBinary("b", kMe, read, size));
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(std::memcmp(read, "\0\xff\7\11", 4), 0);
    EXPECT_NE(logged().find("GetBinary: 3 bytes copied\n"), std::string::npos);
}

TEST_F(PreferencesStore, ABufferTooSmallForTheBytesLearnsTheirNumber)
{
    auto preferences = opened();
    const unsigned char bytes[] = {1, 2, 3};
    preferences.SetProfileBinary("b", kMe, bytes, 3);
    unsigned char read[2] = {9, 9};
    std::uint32_t size = 2;
    logged();
    EXPECT_FALSE(preferences.GetProfileBinary("b", kMe, read, size));
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(read[0], 9);
    EXPECT_NE(logged().find("GetBinary: buffer null or overflow (3 > 2)\n"), std::string::npos);
    size = 100;
    EXPECT_FALSE(preferences.GetProfileBinary("b", kMe, nullptr, size));
    EXPECT_EQ(size, 3u);
    EXPECT_NE(logged().find("GetBinary: buffer null or overflow (3 > 100)\n"), std::string::npos);
}

TEST_F(PreferencesStore, BytesThatAreNotThereLeaveTheSizeAlone)
{
    auto preferences = opened();
    preferences.SetProfileString("t", kMe, "text");
    unsigned char read[2];
    std::uint32_t size = 2;
    EXPECT_FALSE(preferences.GetProfileBinary("missing", kMe, read, size));
    EXPECT_FALSE(preferences.GetProfileBinary("t", kMe, read, size));
    EXPECT_EQ(size, 2u);
}

TEST_F(PreferencesStore, AnEntryOfAnotherTypeGivesTheDefault)
{
    store(R"({"n": 1, "t": "x", "y": true, "l": [1], "g": {"t": "x"}})");
    const auto preferences = opened();
    EXPECT_EQ(preferences.GetProfileInt("t", kMe, 7), 7);
    EXPECT_EQ(preferences.GetProfileInt("y", kMe, 7), 7);
    EXPECT_EQ(preferences.GetProfileInt("l", kMe, 7), 7);
    EXPECT_EQ(preferences.GetProfileInt("g/t", kMe, 7), 7);
    EXPECT_TRUE(preferences.GetProfileBool("n", kMe, true));
    EXPECT_STREQ(preferences.GetProfileString("n", kMe, "def").c_str(), "def");
}

TEST_F(PreferencesStore, NothingRemovesAnEntry)
{
    store(R"({"a": 1, "b": true, "c": "x", "d": {"$data": "Zg=="}, "e": {"$data": "Zg=="}})");
    auto preferences = opened();
    EXPECT_TRUE(preferences.SetProfileInt("a", kMe, nullptr));
    EXPECT_TRUE(preferences.SetProfileBool("b", kMe, nullptr));
    EXPECT_TRUE(preferences.SetProfileString("c", kMe, nullptr));
    EXPECT_TRUE(preferences.SetProfileBinary("d", kMe, nullptr, 5));
    EXPECT_TRUE(
        preferences.SetProfileBinary("e", kMe, reinterpret_cast<const unsigned char*>(""), 0));
    EXPECT_EQ(stored(), "{}");
    EXPECT_TRUE(preferences.SetProfileString("missing", kMe, nullptr));
}

TEST_F(PreferencesStore, NothingRemovesAnEntryOfAGroup)
{
    store(R"({"Editor": {"Left": 1, "Top": 2}})");
    auto preferences = opened();
    EXPECT_TRUE(preferences.SetProfileString("Editor/Left", kMe, nullptr));
    EXPECT_EQ(stored(), R"({"Editor":{"Top":2}})");
    EXPECT_TRUE(preferences.SetProfileString("Editor/Top", kMe, nullptr));
    EXPECT_EQ(stored(), R"({"Editor":{}})");
}

TEST_F(PreferencesStore, ReadsInsideAGroup)
{
    store(R"({"Editor": {"Left": 20}})");
    const auto preferences = opened();
    EXPECT_EQ(preferences.GetProfileInt("Editor/Left", kMe, 5), 20);
    EXPECT_EQ(logged(), "GetObjectOfType: Getting Entry 'Editor'\n"
                        "GetObjectOfType: Found CFType PTR ID 4\n"
                        "GetObjectOfType: Entering Dictionary PTR\n"
                        "GetDictEntryValue: Getting Entry 'Left'\n"
                        "GetDictEntryValue: Found CFType PTR ID 0\n"
                        "GetDictEntryValue: Returning CFType PTR ID 0\n"
                        "GetInt: result 20\n");
}

TEST_F(PreferencesStore, AGroupIsNoValue)
{
    store(R"({"Editor": {"Left": 20, "Inner": {}}})");
    const auto preferences = opened();
    EXPECT_EQ(preferences.GetProfileInt("Editor", kMe, 5), 5);
    EXPECT_EQ(logged(), "GetObjectOfType: Getting Entry 'Editor'\n"
                        "GetObjectOfType: Found CFType PTR ID 4\n"
                        "GetObjectOfType: Attempt to get Dictionary as value\n"
                        "GetInt: result 5\n");
    EXPECT_EQ(preferences.GetProfileInt("Editor/Inner", kMe, 5), 5);
    EXPECT_EQ(logged(), "GetObjectOfType: Getting Entry 'Editor'\n"
                        "GetObjectOfType: Found CFType PTR ID 4\n"
                        "GetObjectOfType: Entering Dictionary PTR\n"
                        "GetDictEntryValue: Getting Entry 'Inner'\n"
                        "GetDictEntryValue: Found CFType PTR ID 4\n"
                        "GetDictEntryValue: Entering Dictionary PTR\n"
                        "GetDictEntryValue: Attempt to get Dictionary as value\n"
                        "GetDictEntryValue: Returning NULL CFType\n"
                        "GetInt: result 5\n");
}

TEST_F(PreferencesStore, ReadsThroughSeveralGroups)
{
    store(R"({"a": {"b": {"c": 3}}, "": {"": 4}})");
    const auto preferences = opened();
    EXPECT_EQ(preferences.GetProfileInt("a/b/c", kMe, 5), 3);
    EXPECT_EQ(preferences.GetProfileInt("a/b/d", kMe, 5), 5);
    EXPECT_EQ(preferences.GetProfileInt("a/d/c", kMe, 5), 5);
    EXPECT_EQ(preferences.GetProfileInt("/", kMe, 5), 4);
}

TEST_F(PreferencesStore, APathThatGoesOnBehindAValueGivesTheValue)
{
    store(R"({"n": 1, "g": {"m": 2}})");
    const auto preferences = opened();
    EXPECT_EQ(preferences.GetProfileInt("n/x", kMe, 5), 1);
    EXPECT_EQ(preferences.GetProfileInt("g/m/x/y", kMe, 5), 2);
}

TEST_F(PreferencesStore, WritesInsideAGroup)
{
    store(R"({"Editor": {"Top": 2}})");
    auto preferences = opened();
    const int left = 20;
    EXPECT_TRUE(preferences.SetProfileInt("Editor/Left", kMe, &left));
    EXPECT_EQ(logged(), "PutObject: Setting Entry 'Editor'\n"
                        "GetDictEntryValue: Setting Entry 'Left'\n"
                        "SetSynchronizeProperty: Synchronizing 1\n");
    EXPECT_EQ(stored(), R"({"Editor":{"Left":20,"Top":2}})");
}

TEST_F(PreferencesStore, AGroupTakesANumbersPlace)
{
    store(R"({"Editor": 5, "a": {"b": 1, "z": 0}})");
    auto preferences = opened();
    const int left = 20;
    EXPECT_TRUE(preferences.SetProfileInt("Editor/Left", kMe, &left));
    EXPECT_TRUE(preferences.SetProfileInt("a/b/c", kMe, &left));
    EXPECT_EQ(stored(), R"({"Editor":{"Left":20},"a":{"b":{"c":20},"z":0}})");
}

TEST_F(PreferencesStore, TheTraceOfAWalkNamesThePathThatIsLeft)
{
    auto preferences = opened();
    preferences.SetProfileString("a/b/c", kMe, "x");
    EXPECT_EQ(logged(), "PutObject: Setting Entry 'a'\n"
                        "GetDictEntryValue: Setting Entry 'b/c'\n"
                        "GetDictEntryValue: Setting Entry 'c'\n"
                        "SetSynchronizeProperty: Synchronizing 1\n");
}

TEST_F(PreferencesStore, APathTooDeepIsRefused)
{
    store(R"({"a": 1})");
    auto preferences = opened();
    std::string path = "a";
    for (int level = 0; level < 1'000'000; ++level)
        path += "/a";
    EXPECT_FALSE(preferences.SetProfileString(path.c_str(), kMe, "x"));
    EXPECT_EQ(logged(), "PutObject: Setting Entry 'a'\nPutObject: Out of memory.");
    EXPECT_EQ(preferences.GetProfileInt("a", kMe, 5), 1);
}

TEST_F(PreferencesStore, ADepthThatTheFileDoesNotTakeIsNotStored)
{
    store(R"({"b": 1})");
    auto preferences = opened();
    std::string path = "a";
    for (int level = 1; level < 64; ++level)
        path += "/a";
    EXPECT_TRUE(preferences.SetProfileString(path.c_str(), kMe, "x"));
    EXPECT_STREQ(preferences.GetProfileString(path.c_str(), kMe, "").c_str(), "x");
    EXPECT_FALSE(preferences.SetProfileString((path + "/a").c_str(), kMe, "x"));
    EXPECT_STREQ(preferences.GetProfileString(path.c_str(), kMe, "").c_str(), "x");
}

TEST_F(PreferencesStore, AValueThatIsTooLargeCannotBeMade)
{
    auto preferences = opened();
    const std::string large(platform::kMostPreferenceBytes + 1, 'x');
    EXPECT_FALSE(preferences.SetProfileString("t", kMe, large.c_str()));
    EXPECT_EQ(logged(), "SetString: CFString NULL\n");
    EXPECT_FALSE(preferences.SetProfileBinary("b", kMe,
                                              reinterpret_cast<const unsigned char*>(large.data()),
                                              static_cast<std::uint32_t>(large.size())));
    EXPECT_EQ(logged(), "SetBinary: CFData NULL\n");
}

TEST_F(PreferencesStore, WhatCannotBeStoredIsReported)
{
    auto preferences = opened();
    environment.set("XDG_CONFIG_HOME", "/proc/missing");
    EXPECT_FALSE(preferences.SetProfileString("t", kMe, "x"));
    EXPECT_EQ(logged(), "PutObject: Setting Entry 't'\nSetSynchronizeProperty: Synchronizing 0\n");
    EXPECT_FALSE(preferences.SetProfileString("g/t", kMe, "x"));
    EXPECT_EQ(logged(), "PutObject: Setting Entry 'g'\nSetSynchronizeProperty: Synchronizing 0\n");
}

TEST_F(PreferencesStore, WithoutAGroupAWalkFails)
{
    char path[] = "a";
    const PreferenceValue value{1};
    logged();
    EXPECT_EQ(Preferences::GetDictEntryValue(true, nullptr, path), nullptr);
    EXPECT_EQ(logged(), "GetDictEntryValue: NULL Dictionary given.\n");
    EXPECT_FALSE(Preferences::SetTargetDictValue(true, nullptr, path, &value));
    EXPECT_EQ(logged(), "GetDictEntryValue: NULL Dictionary given.\n");
}

TEST_F(PreferencesStore, AQuietWalkLogsOnlyFailures)
{
    PreferenceDictionary group;
    char setPath[] = "a/b";
    const PreferenceValue value{1};
    logged();
    EXPECT_TRUE(Preferences::SetTargetDictValue(false, &group, setPath, &value));
    char getPath[] = "a/b";
    const PreferenceValue* found = Preferences::GetDictEntryValue(false, &group, getPath);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(*found, value);
    EXPECT_EQ(logged(), "");
    char missing[] = "b";
    EXPECT_EQ(Preferences::GetDictEntryValue(false, &group, missing), nullptr);
    EXPECT_EQ(logged(), "GetDictEntryValue: Returning NULL CFType\n");
}

TEST_F(PreferencesStore, AllUsersHaveSettingsOfTheirOwn)
{
    store(R"({"a": 1})");
    const Preferences preferences("org.example.Test", true);
    EXPECT_EQ(preferences.GetProfileInt("a", PreferenceUser::Any, 5), 5);
    EXPECT_EQ(preferences.GetProfileInt("a", PreferenceUser::Current, 5), 1);
}

TEST_F(PreferencesStore, EveryStringOfAGroupedKeySurvives)
{
    auto preferences = opened();
    EXPECT_TRUE(preferences.SetProfileString("\xfc/$data", kMe, "x"));
    EXPECT_STREQ(preferences.GetProfileString("\xfc/$data", kMe, "").c_str(), "x");
}

TEST_F(PreferencesStore, TwoProcessesThatFillOneGroupLoseNothing)
{
    IOLogClose();
    const auto fill = [](const std::string& prefix) {
        Preferences preferences("org.example.Test", false);
        bool all = true;
        for (int i = 0; i < 50; ++i)
            all = preferences.SetProfileInt(("g/" + prefix + std::to_string(i)).c_str(), kMe, &i) &&
                  all;
        return all;
    };
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(fill("b") ? 0 : 1);
    EXPECT_TRUE(fill("a"));
    int status = 1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    const auto settings = platform::parsePreferences(contentOf(file()));
    ASSERT_TRUE(settings);
    EXPECT_EQ(std::get<PreferenceDictionary>(settings->at("g").value).size(), 100u);
}
