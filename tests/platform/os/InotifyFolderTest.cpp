#include "platform/os/InotifyFolder.h"

#include "tests/support/Folders.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

/// The kernel has queued what a change makes before the change returns: nothing is waited for.
class InotifyFolderTest : public testing::Test
{
protected:
    InotifyFolderTest()
    {
        fs::create_directories(folder / "watched/below");
        EXPECT_TRUE(watched.open(folder / "watched/"));
    }

    void moveIn(const std::string& name)
    {
        putContent(elsewhere / "file", "");
        fs::rename(elsewhere / "file", folder / name);
    }

    TemporaryFolder elsewhere;
    TemporaryFolder folder;
    platform::InotifyFolder watched;
};

} // namespace

TEST_F(InotifyFolderTest, WhatIsInTheFolderAndBelowItIsTold)
{
    EXPECT_FALSE(watched.drain());
    moveIn("watched/file");
    EXPECT_TRUE(watched.drain());
    moveIn("watched/below/file");
    EXPECT_TRUE(watched.drain());
    EXPECT_FALSE(watched.drain());
}

TEST_F(InotifyFolderTest, FilesBesideTheFolderAreNotItsContents)
{
    moveIn("beside");
    fs::create_directory(folder / "watched too");
    fs::remove(folder / "beside");

    EXPECT_FALSE(watched.drain());
}

TEST_F(InotifyFolderTest, TheFoldersOwnNameIsTold)
{
    fs::rename(folder / "watched", folder / "away");
    EXPECT_TRUE(watched.drain());
    watched.follow();
    EXPECT_FALSE(watched.drain());

    fs::rename(folder / "away", folder / "watched");

    EXPECT_TRUE(watched.drain());
}

TEST_F(InotifyFolderTest, ANewSubFolderIsWatchedOnceItIsFollowed)
{
    fs::create_directory(folder / "watched/new");
    EXPECT_TRUE(watched.drain());
    watched.follow();
    EXPECT_FALSE(watched.drain());

    moveIn("watched/new/file");

    EXPECT_TRUE(watched.drain());
}

TEST_F(InotifyFolderTest, ASubFolderMovedAwayIsNoLongerWatched)
{
    fs::rename(folder / "watched/below", elsewhere / "below");
    EXPECT_TRUE(watched.drain());
    watched.follow();

    putContent(elsewhere / "below/file", "");

    EXPECT_FALSE(watched.drain());
}

TEST_F(InotifyFolderTest, AHiddenSubFolderIsNotWatched)
{
    fs::create_directory(folder / "watched/.git");
    EXPECT_TRUE(watched.drain());
    watched.follow();

    moveIn("watched/.git/file");

    EXPECT_FALSE(watched.drain());
}
