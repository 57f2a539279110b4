#include "platform/os/FolderListing.h"

#include "tests/support/Folders.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>

namespace fs = std::filesystem;
using platform::FolderEntry;
using platform::FolderListing;
using platform::FolderStamp;

namespace {

bool everything(std::string_view name, bool)
{
    return name != "." && name != "..";
}

bool foldersOnly(std::string_view name, bool isFolder)
{
    return everything(name, isFolder) && isFolder;
}

std::vector<std::string> namesIn(const std::string& folder, platform::EntryFilter wanted)
{
    FolderListing listing;
    EXPECT_TRUE(platform::readFolder(folder, wanted, listing));
    std::vector<std::string> names;
    for (const FolderEntry& entry : listing.entries)
        names.push_back(std::string(listing.nameOf(entry)) + (entry.isFolder ? "/" : ""));
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

TEST(FolderListing, ListsFilesAndFolders)
{
    const TemporaryFolder folder;
    putContent(folder / "file", "");
    fs::create_directory(folder / "below");

    EXPECT_EQ(namesIn(folder.path(), everything), (std::vector<std::string>{"below/", "file"}));
    EXPECT_EQ(namesIn(folder.path(), foldersOnly), (std::vector<std::string>{"below/"}));
}

TEST(FolderListing, ALinkIsAFileWhereItLeadsToOne)
{
    const TemporaryFolder folder;
    putContent(folder / "file", "");
    fs::create_directory(folder / "below");
    fs::create_symlink("file", folder / "link");
    fs::create_symlink("below", folder / "folder link");
    fs::create_symlink("nowhere", folder / "broken");

    EXPECT_EQ(namesIn(folder.path(), everything),
              (std::vector<std::string>{"below/", "file", "link"}));
}

TEST(FolderListing, WhatCouldBlockAReaderIsNotListed)
{
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    fs::create_symlink("pipe", folder / "link to it");

    EXPECT_TRUE(namesIn(folder.path(), everything).empty());
}

TEST(FolderListing, WhatIsNoFolderCannotBeRead)
{
    const TemporaryFolder folder;
    putContent(folder / "file", "");
    FolderListing listing;
    FolderStamp stamp;

    EXPECT_FALSE(platform::readFolder(folder / "file", everything, listing));
    EXPECT_FALSE(platform::readFolder(folder / "nowhere", everything, listing));
    EXPECT_FALSE(platform::stampOf(folder / "file", stamp));
    EXPECT_FALSE(platform::stampOf(folder / "nowhere", stamp));
}

TEST(FolderListing, AFreshFolderMayChangeAgainWithinItsClocksTick)
{
    const TemporaryFolder folder;
    FolderListing listing;

    ASSERT_TRUE(platform::readFolder(folder.path(), everything, listing));

    EXPECT_FALSE(listing.stampIsSure);
}

TEST(FolderListing, AFolderThatHasLongBeenQuietIsSure)
{
    FolderListing listing;

    ASSERT_TRUE(platform::readFolder("/usr", everything, listing));

    EXPECT_TRUE(listing.stampIsSure);
    FolderStamp now;
    ASSERT_TRUE(platform::stampOf("/usr", now));
    EXPECT_EQ(now, listing.stamp);
}

TEST(FolderListing, AChangedFolderHasAnotherStamp)
{
    const TemporaryFolder folder;
    fs::last_write_time(folder.path(), fs::file_time_type::clock::now() - std::chrono::hours(1));
    FolderStamp before;
    ASSERT_TRUE(platform::stampOf(folder.path(), before));

    putContent(folder / "new", "");

    FolderStamp after;
    ASSERT_TRUE(platform::stampOf(folder.path(), after));
    EXPECT_NE(after, before);
}
