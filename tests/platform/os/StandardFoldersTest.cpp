#include "platform/os/StandardFolders.h"

#include "tests/support/Folders.h"

#include <gtest/gtest.h>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace platform;

namespace {

/// A home of its own, and no variable that points elsewhere.
class StandardFolders : public testing::Test
{
protected:
    StandardFolders()
    {
        environment.set("HOME", home.path());
        for (const char* name : {"XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_HOME", "TMPDIR"})
            environment.set(name, std::nullopt);
    }

    void writeUserDirs(const std::string& text) const
    {
        std::filesystem::create_directories(home / ".config");
        putContent(home / ".config/user-dirs.dirs", text);
    }

    TemporaryFolder home;
    Environment environment;
};

} // namespace

TEST_F(StandardFolders, LieInTheHomeByDefault)
{
    EXPECT_EQ(userDataFolder(), home / ".local/share");
    EXPECT_EQ(userConfigFolder(), home / ".config");
    EXPECT_EQ(desktopFolder(), home / "Desktop");
    EXPECT_EQ(temporaryFolder(), "/tmp");
    EXPECT_EQ(allUsersConfigFolder(), "/etc/xdg");
}

TEST_F(StandardFolders, FollowTheirVariables)
{
    environment.set("XDG_DATA_HOME", home / "data");
    environment.set("XDG_CONFIG_HOME", home / "config");
    environment.set("TMPDIR", home.path());
    EXPECT_EQ(userDataFolder(), home / "data");
    EXPECT_EQ(userConfigFolder(), home / "config");
    EXPECT_EQ(temporaryFolder(), home.path());
}

TEST_F(StandardFolders, RelativeAndEmptyVariablesCountAsUnset)
{
    for (const char* value : {"", "data", "./data", "~/data"}) {
        environment.set("XDG_DATA_HOME", value);
        environment.set("XDG_CONFIG_HOME", value);
        environment.set("TMPDIR", value);
        EXPECT_EQ(userDataFolder(), home / ".local/share") << value;
        EXPECT_EQ(userConfigFolder(), home / ".config") << value;
        EXPECT_EQ(temporaryFolder(), "/tmp") << value;
    }
}

TEST_F(StandardFolders, TheUsersDataFolderIsMadePrivate)
{
    const std::string folder = userDataFolder();

    struct stat found
    {
    };

    ASSERT_EQ(::stat(folder.c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777u, 0700u);
}

TEST_F(StandardFolders, ADataFolderThatCannotBeMadeIsEmpty)
{
    putContent(home / "file", "");
    environment.set("XDG_DATA_HOME", home / "file/data");
    EXPECT_EQ(userDataFolder(), "");
}

TEST_F(StandardFolders, ATemporaryFolderThatIsMissingIsNotUsed)
{
    environment.set("TMPDIR", home / "missing");
    EXPECT_EQ(temporaryFolder(), "/tmp");
}

TEST_F(StandardFolders, AllUsersShareTheFirstFolderThatCanBeWritten)
{
    std::filesystem::create_directories(home / "first");
    std::filesystem::create_directories(home / "second");
    environment.set("XDG_DATA_DIRS",
                    "/proc/missing:relative::" + home / "first" + ":" + (home / "second"));
    EXPECT_EQ(allUsersDataFolder(), home / "first");
}

TEST_F(StandardFolders, TheSystemsDataFoldersAreTheAbsoluteOnesOfTheList)
{
    environment.set("XDG_DATA_DIRS", "/first:relative::/second/");
    EXPECT_EQ(systemDataFolders(), (std::vector<std::string>{"/first", "/second/"}));
}

TEST_F(StandardFolders, TheSystemsDataFoldersAreTwoWithoutAList)
{
    const std::vector<std::string> usual{"/usr/local/share", "/usr/share"};
    EXPECT_EQ(systemDataFolders(), usual);
    environment.set("XDG_DATA_DIRS", "relative:");
    EXPECT_EQ(systemDataFolders(), usual);
}

TEST_F(StandardFolders, WithoutAHomeTheAccountsOwnCounts)
{
    const passwd* account = ::getpwuid(::getuid());
    const std::string expected = account != nullptr ? account->pw_dir : "/";
    environment.set("HOME", std::nullopt);
    EXPECT_EQ(homeFolder(), expected);
    environment.set("HOME", "here");
    EXPECT_EQ(homeFolder(), expected);
}

TEST_F(StandardFolders, TheDesktopIsWhereTheUserPutIt)
{
    writeUserDirs("# comment\nXDG_MUSIC_DIR=\"$HOME/Music\"\n  XDG_DESKTOP_DIR=\"$HOME/On top\"\n");
    EXPECT_EQ(desktopFolder(), home / "On top");
    writeUserDirs("XDG_DESKTOP_DIR=\"/srv/desk\"\n");
    EXPECT_EQ(desktopFolder(), "/srv/desk");
    writeUserDirs("XDG_DESKTOP_DIR=\"$HOME/A \\\"b\\\" \\$c\"");
    EXPECT_EQ(desktopFolder(), home / "A \"b\" $c");
}

TEST_F(StandardFolders, OfTwoDesktopsTheLastCounts)
{
    writeUserDirs("XDG_DESKTOP_DIR=\"/one\"\nXDG_DESKTOP_DIR=\"/two\"\n");
    EXPECT_EQ(desktopFolder(), "/two");
}

TEST_F(StandardFolders, AnUnusableDesktopLineIsPassedOver)
{
    writeUserDirs("#XDG_DESKTOP_DIR=\"/comment\"\nXDG_DESKTOP_DIR=\"relative\"\n"
                  "XDG_DESKTOP_DIR=\"/unclosed\nXDG_DESKTOP_DIR=/bare\n");
    EXPECT_EQ(desktopFolder(), home / "Desktop");
}

TEST_F(StandardFolders, FoldersAreMadeUnderARoot)
{
    EXPECT_TRUE(makeFolders(home / "a//b/c/", 0700));
    EXPECT_TRUE(std::filesystem::is_directory(home / "a/b/c"));
    EXPECT_TRUE(makeFolders("/", 0700));
    EXPECT_FALSE(makeFolders("", 0700));
}
