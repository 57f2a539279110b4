#include "editor/DragFolder.h"

#include "tests/support/Folders.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

/// A folder for everybody's temporary files.
class DragFolderTest : public testing::Test
{
protected:
    static bool isForItsOwnerAlone(const std::string& folder)
    {
        return fs::symlink_status(folder).permissions() == fs::perms::owner_all &&
               fs::is_directory(fs::symlink_status(folder));
    }

    std::string found() const { return dragFolder(everybodys.path()); }

    /// Another folder was made, which is the same each time.
    void expectAnother() const
    {
        const std::string other = found();
        EXPECT_NE(other, usual);
        EXPECT_EQ(fs::path(other).parent_path(), everybodys.path());
        EXPECT_TRUE(isForItsOwnerAlone(other));
        EXPECT_EQ(found(), other);
    }

    TemporaryFolder everybodys;
    std::string usual = everybodys / ("korvanel-" + std::to_string(::geteuid()));
};

} // namespace

TEST_F(DragFolderTest, IsTheUsersOwnAndFoundAgain)
{
    EXPECT_EQ(found(), usual);
    EXPECT_TRUE(isForItsOwnerAlone(usual));
    EXPECT_EQ(found(), usual);
}

TEST_F(DragFolderTest, AFolderThatOthersMayReadIsNotTaken)
{
    fs::create_directory(usual);
    fs::permissions(usual, fs::perms::owner_all | fs::perms::group_read);
    expectAnother();
}

TEST_F(DragFolderTest, AnotherUsersFolderIsNotTaken)
{
    fs::create_directory(usual);
    fs::permissions(usual, fs::perms::owner_all);
    if (::chown(usual.c_str(), 65534, 65534) == 0)
        expectAnother();
    else // only the superuser gives folders away, so the folder is still this user's
        EXPECT_EQ(found(), usual);
}

TEST_F(DragFolderTest, ALinkIsNotTaken)
{
    const TemporaryFolder elsewhere;
    fs::create_directory_symlink(elsewhere.path(), usual);
    expectAnother();
}

TEST_F(DragFolderTest, AFileOfThatNameIsNotInTheWay)
{
    putContent(usual, "");
    expectAnother();
}

TEST_F(DragFolderTest, IsMadeAnewWhenItHasGone)
{
    putContent(usual, "");
    fs::remove(found());
    expectAnother();
}

TEST_F(DragFolderTest, WithoutAPlaceThereIsNone)
{
    EXPECT_EQ(dragFolder(everybodys / "missing"), "");
}
