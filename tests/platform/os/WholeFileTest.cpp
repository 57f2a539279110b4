#include "platform/os/WholeFile.h"

#include "tests/support/FileSizeLimit.h"
#include "tests/support/Folders.h"

#include <gtest/gtest.h>

#include <filesystem>

using platform::createWholeFile;
using platform::FileCreation;
namespace fs = std::filesystem;

TEST(CreateWholeFile, MakesAFileWithTheText)
{
    const TemporaryFolder folder;
    EXPECT_EQ(createWholeFile(folder / "new", std::string("a\0b", 3)), FileCreation::Done);
    EXPECT_EQ(contentOf(folder / "new"), std::string("a\0b", 3));
}

TEST(CreateWholeFile, WhatIsThereIsLeftAlone)
{
    const TemporaryFolder folder;
    putContent(folder / "old", "old");
    EXPECT_EQ(createWholeFile(folder / "old", "new"), FileCreation::Exists);
    EXPECT_EQ(contentOf(folder / "old"), "old");
}

TEST(CreateWholeFile, ALinkThatLeadsNowhereIsThereToo)
{
    const TemporaryFolder folder;
    fs::create_symlink(folder / "target", folder / "link");
    EXPECT_EQ(createWholeFile(folder / "link", "new"), FileCreation::Exists);
    EXPECT_FALSE(fs::exists(folder / "target"));
}

TEST(CreateWholeFile, NoFolderIsAFailure)
{
    const TemporaryFolder folder;
    EXPECT_EQ(createWholeFile(folder / "missing/new", "new"), FileCreation::Failed);
}

TEST(CreateWholeFile, NothingRemainsOfAFileThatDoesNotFit)
{
    const TemporaryFolder folder;
    const FileSizeLimit limit(1000);

    EXPECT_EQ(createWholeFile(folder / "large", std::string(5000, 'x')), FileCreation::Failed);
    EXPECT_TRUE(fs::is_empty(folder.path()));
}
