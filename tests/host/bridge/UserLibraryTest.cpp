#include "host/bridge/UserLibrary.h"

#include "tests/support/Folders.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

/// A user without a library, and factory patterns somewhere.
class UserLibrary : public testing::Test
{
protected:
    UserLibrary()
    {
        environment.set("XDG_DATA_HOME", home / "data");
        fs::create_directories(home / "factory/Rock");
        putContent(home / "factory/Rock/a.mid", "pattern");
        putContent(home / "factory/Rock/Rock.txt", "about");
    }

    TemporaryFolder home;
    Environment environment;
    const std::string user = home / "data/Korvanel/Loops";
};

} // namespace

TEST_F(UserLibrary, TheInstalledOneIsTakenWhereThereIsOne)
{
    fs::create_directories(home / "Loops");
    EXPECT_EQ(chooseLibrary(home / "Loops", home / "factory"), home / "Loops");
    EXPECT_FALSE(fs::exists(user));
}

TEST_F(UserLibrary, IsMadeFromTheFactoryPatternsOnFirstUse)
{
    EXPECT_EQ(chooseLibrary(home / "Loops", home / "factory"), user);
    EXPECT_EQ(contentOf(user + "/Rock/a.mid"), "pattern");
    EXPECT_EQ(contentOf(user + "/Rock/Rock.txt"), "about");
}

TEST_F(UserLibrary, NothingIsLeftBesideIt)
{
    chooseLibrary(home / "Loops", home / "factory");
    const fs::directory_iterator all(home / "data/Korvanel");
    EXPECT_EQ(std::distance(begin(all), end(all)), 1);
}

TEST_F(UserLibrary, IsNeverTouchedOnceItIsThere)
{
    fs::create_directories(user + "/Rock");
    putContent(user + "/Rock/a.mid", "mine");
    EXPECT_EQ(chooseLibrary(home / "Loops", home / "factory"), user);
    EXPECT_EQ(contentOf(user + "/Rock/a.mid"), "mine");
    EXPECT_FALSE(fs::exists(user + "/Rock/Rock.txt"));
}

TEST_F(UserLibrary, AFileInItsPlaceIsLeftAlone)
{
    fs::create_directories(home / "data/Korvanel");
    putContent(user, "mine");
    EXPECT_EQ(chooseLibrary(home / "Loops", home / "factory"), home / "Loops");
    EXPECT_EQ(contentOf(user), "mine");
}

TEST_F(UserLibrary, WithoutFactoryPatternsThereIsNone)
{
    EXPECT_EQ(chooseLibrary(home / "Loops", ""), home / "Loops");
    EXPECT_EQ(chooseLibrary(home / "Loops", home / "gone"), home / "Loops");
    EXPECT_FALSE(fs::exists(user));
}

TEST_F(UserLibrary, FactoryPatternsAreFoundInTheSystemsDataFolders)
{
    fs::create_directories(home / "share/Korvanel/Loops");
    environment.set("XDG_DATA_DIRS",
                    std::string("relative:") + home / "none" + ":" + home / "share");
    EXPECT_EQ(factoryLibrary(), home / "share/Korvanel/Loops");
    environment.set("XDG_DATA_DIRS", home / "none");
    EXPECT_EQ(factoryLibrary(), "");
}
