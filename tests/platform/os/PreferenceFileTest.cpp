#include "platform/os/PreferenceFile.h"

#include "platform/os/PreferenceText.h"
#include "tests/support/Folders.h"

#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>
#include <thread>

using namespace platform;
namespace fs = std::filesystem;

namespace {

class PreferenceFiles : public testing::Test
{
protected:
    static bool put(const PreferenceFile& file, const std::string& key, PreferenceValue value)
    {
        return file.update([&](PreferenceDictionary& settings) {
            settings[key] = value;
            return true;
        });
    }

    static PreferenceDictionary all(const PreferenceFile& file)
    {
        PreferenceDictionary settings;
        EXPECT_TRUE(file.read(settings));
        return settings;
    }

    TemporaryFolder folder;
    PreferenceFile file{folder.path(), "org.example.Test"};
};

} // namespace

TEST_F(PreferenceFiles, OneThatIsMissingReadsAsEmpty)
{
    PreferenceDictionary settings = {{"old", {1}}};
    EXPECT_TRUE(file.read(settings));
    EXPECT_TRUE(settings.empty());
    EXPECT_FALSE(fs::exists(file.path()));
}

TEST_F(PreferenceFiles, KeepWhatIsPutIn)
{
    EXPECT_TRUE(put(file, "a", {1}));
    EXPECT_TRUE(put(file, "b", {"x"}));
    EXPECT_EQ(all(PreferenceFile(folder.path(), "org.example.Test")),
              (PreferenceDictionary{{"a", {1}}, {"b", {"x"}}}));
    EXPECT_EQ(file.path(), folder / "org.example.Test.json");
}

TEST_F(PreferenceFiles, AChangeThatIsTakenBackLeavesThemAlone)
{
    put(file, "a", {1});
    EXPECT_FALSE(file.update([](PreferenceDictionary& settings) {
        settings.clear();
        return false;
    }));
    EXPECT_EQ(all(file).size(), 1u);
}

TEST_F(PreferenceFiles, MakeTheirFolderPrivate)
{
    const PreferenceFile deep(folder / "a/b", "d");
    EXPECT_TRUE(put(deep, "a", {1}));

    struct stat found
    {
    };

    ASSERT_EQ(::stat((folder / "a/b").c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777u, 0700u);
}

TEST_F(PreferenceFiles, NoDomainLeavesTheFolder)
{
    const std::string inner = folder / "inner";
    for (const char* domain :
         {"../x", "/etc/x", "..", ".", ".hidden", "a/../../x", "a\nb", "%2F"}) {
        const PreferenceFile escaping(inner, domain);
        EXPECT_TRUE(put(escaping, "a", {1})) << domain;
        EXPECT_EQ(fs::path(escaping.path()).parent_path(), inner) << domain;
        EXPECT_TRUE(fs::is_regular_file(escaping.path())) << domain;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
}

TEST_F(PreferenceFiles, DifferentDomainsHaveDifferentFiles)
{
    put(PreferenceFile(folder.path(), "a/b"), "k", {1});
    EXPECT_TRUE(all(PreferenceFile(folder.path(), "a%2Fb")).empty());
    EXPECT_EQ(PreferenceFile(folder.path(), "a/b").path(), folder / "a%2Fb.json");
}

TEST_F(PreferenceFiles, ADomainWithoutANameOrWithTooLongAOneFails)
{
    PreferenceDictionary settings;
    for (const std::string& domain : {std::string(), std::string(300, 'x')}) {
        const PreferenceFile impossible(folder.path(), domain);
        EXPECT_FALSE(impossible.read(settings));
        EXPECT_FALSE(put(impossible, "a", {1}));
    }
}

TEST_F(PreferenceFiles, ADamagedOneReadsAsEmptyAndStays)
{
    putContent(file.path(), "{\"a\": 1");
    EXPECT_TRUE(all(file).empty());
    EXPECT_EQ(contentOf(file.path()), "{\"a\": 1");
}

TEST_F(PreferenceFiles, ADamagedOneIsKeptAsideByTheFirstChange)
{
    putContent(file.path(), "{\"a\": 1");
    EXPECT_TRUE(put(file, "b", {2}));
    EXPECT_EQ(all(file), (PreferenceDictionary{{"b", {2}}}));
    EXPECT_EQ(contentOf(file.path() + ".damaged"), "{\"a\": 1");
}

TEST_F(PreferenceFiles, AHugeOneIsDamaged)
{
    putContent(file.path(), "{}");
    fs::resize_file(file.path(), std::uintmax_t{1} << 40); // sparse: costs no disk
    EXPECT_TRUE(all(file).empty());
    EXPECT_TRUE(put(file, "b", {2}));
    EXPECT_EQ(fs::file_size(file.path() + ".damaged"), std::uintmax_t{1} << 40);
}

TEST_F(PreferenceFiles, WhatIsNoFileFailsAndIsNotWaitedFor)
{
    PreferenceDictionary settings;
    ASSERT_EQ(::mkfifo(file.path().c_str(), 0600), 0);
    EXPECT_FALSE(file.read(settings));
    EXPECT_FALSE(put(file, "a", {1}));
    EXPECT_TRUE(fs::is_fifo(file.path()));
    fs::remove(file.path());
    fs::create_directory(file.path());
    EXPECT_FALSE(file.read(settings));
    EXPECT_FALSE(put(file, "a", {1}));
}

TEST_F(PreferenceFiles, SettingsThatAreTooLargeLeaveTheOldOnes)
{
    put(file, "a", {1});
    EXPECT_FALSE(put(file, "b", {std::string(kMostPreferenceBytes, 'x')}));
    EXPECT_EQ(all(file), (PreferenceDictionary{{"a", {1}}}));
}

TEST_F(PreferenceFiles, AFolderThatCannotBeMadeFails)
{
    putContent(folder / "file", "");
    EXPECT_FALSE(put(PreferenceFile(folder / "file", "d"), "a", {1}));
}

TEST_F(PreferenceFiles, ALinkStaysALink)
{
    fs::create_directory(folder / "dotfiles");
    const std::string target = folder / "dotfiles/settings.json";
    putContent(target, "{\"a\": 1}");
    fs::create_symlink("dotfiles/settings.json", file.path());
    EXPECT_TRUE(put(file, "b", {2}));
    EXPECT_TRUE(fs::is_symlink(file.path()));
    EXPECT_EQ(parsePreferences(contentOf(target)), (PreferenceDictionary{{"a", {1}}, {"b", {2}}}));
}

TEST_F(PreferenceFiles, ALinkToNothingYetIsFilled)
{
    fs::create_symlink(folder / "later.json", file.path());
    EXPECT_TRUE(all(file).empty());
    EXPECT_TRUE(put(file, "a", {1}));
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder / "later.json")));
    EXPECT_TRUE(fs::is_symlink(file.path()));
}

TEST_F(PreferenceFiles, ALinkToItselfFails)
{
    fs::create_symlink(file.path(), file.path());
    PreferenceDictionary settings;
    EXPECT_FALSE(file.read(settings));
    EXPECT_FALSE(put(file, "a", {1}));
}

TEST_F(PreferenceFiles, PermissionsStay)
{
    put(file, "a", {1});
    fs::permissions(file.path(), fs::perms{0640});
    put(file, "a", {2});
    EXPECT_EQ(fs::status(file.path()).permissions(), fs::perms{0640});
}

TEST_F(PreferenceFiles, ALeftOverOfADeadWriterIsNoHindrance)
{
    putContent(folder / ".org.example.Test.json.new", "{\"half");
    EXPECT_TRUE(put(file, "a", {1}));
    EXPECT_FALSE(fs::exists(folder / ".org.example.Test.json.new"));
}

TEST_F(PreferenceFiles, TwoThreadsLoseNoChange)
{
    const auto count = [this](const std::string& key) {
        for (int i = 0; i < 50; ++i)
            file.update([&](PreferenceDictionary& settings) {
                auto& value = settings[key].value;
                value = std::get<std::int32_t>(value) + 1;
                return true;
            });
    };
    std::thread other(count, "a");
    count("b");
    other.join();
    EXPECT_EQ(all(file), (PreferenceDictionary{{"a", {50}}, {"b", {50}}}));
}
