#include "platform/toolkit/Beep.h"
#include "platform/toolkit/FileManager.h"
#include "platform/toolkit/Pasteboard.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

using namespace toolkit;

namespace {

/// A search path whose only program notes how it was called.
class FileManagerTest : public testing::Test
{
protected:
    void SetUp() override
    {
        mFolder = std::filesystem::path(testing::TempDir()) / "file-manager";
        std::filesystem::create_directories(mFolder);
        mPath = std::getenv("PATH");
        ::setenv("PATH", mFolder.c_str(), 1);
        ::setenv("NOTES", (mFolder / "notes").c_str(), 1);
    }

    void TearDown() override
    {
        ::setenv("PATH", mPath.c_str(), 1);
        std::filesystem::remove_all(mFolder);
    }

    void installOpener()
    {
        const auto program = mFolder / "xdg-open";
        std::ofstream(program) << "#!/bin/sh\nprintf '%s|%s' \"$#\" \"$1\" > \"$NOTES.new\"\n"
                                  "/bin/mv \"$NOTES.new\" \"$NOTES\"\n";
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    }

    std::string make(const std::string& name)
    {
        std::ofstream(mFolder / name) << "text";
        return mFolder / name;
    }

    /// Waits for the other process.
    std::string notes()
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (!std::filesystem::exists(mFolder / "notes") &&
               std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
        std::ifstream file(mFolder / "notes");
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::filesystem::path mFolder;
    std::string mPath;
};

} // namespace

TEST_F(FileManagerTest, TheOpenerGetsTheNameAsItIs)
{
    installOpener();
    const auto path = make("a 'b' $(touch c);d.txt");

    EXPECT_EQ(openDocument(path), noErr);

    EXPECT_EQ(notes(), "1|" + path);
    EXPECT_FALSE(std::filesystem::exists(mFolder / "c"));
}

TEST_F(FileManagerTest, AMissingDocumentIsRefused)
{
    installOpener();
    EXPECT_EQ(openDocument(mFolder / "missing"), fileNotFoundErr);
}

TEST_F(FileManagerTest, ADesktopWithoutAnOpenerIsAStatus)
{
    EXPECT_EQ(openDocument(make("a.txt")), ENOENT);
}

TEST(Beep, IsCountedWithItsDuration)
{
    const auto before = beepCount();
    beep(60);
    EXPECT_EQ(beepCount(), before + 1);
    EXPECT_EQ(lastBeepDuration(), 60);
    beep(30);
    EXPECT_EQ(beepCount(), before + 2);
    EXPECT_EQ(lastBeepDuration(), 30);
}

TEST(Pasteboard, KeepsFlavorsByItem)
{
    Pasteboard pasteboard;
    EXPECT_EQ(pasteboard.putItemFlavor(1, fileUrlFlavor, "file:///a"), noErr);
    EXPECT_EQ(pasteboard.putItemFlavor(1, "hfs ", std::string(80, '\0')), noErr);
    EXPECT_EQ(pasteboard.putItemFlavor(1, fileUrlFlavor, "file:///b"), noErr);

    std::string data;
    EXPECT_TRUE(pasteboard.itemFlavor(1, fileUrlFlavor, data));
    EXPECT_EQ(data, "file:///b");
    EXPECT_TRUE(pasteboard.itemFlavor(1, "hfs ", data));
    EXPECT_EQ(data.size(), 80u);
    EXPECT_FALSE(pasteboard.itemFlavor(2, "hfs ", data));
    EXPECT_EQ(pasteboard.items(), std::vector<Pasteboard::ItemId>{1});
    pasteboard.clear();
    EXPECT_TRUE(pasteboard.items().empty());
}

TEST(Pasteboard, RefusesItemZeroAndAFlavorWithoutAName)
{
    Pasteboard pasteboard;
    EXPECT_EQ(pasteboard.putItemFlavor(0, fileUrlFlavor, ""), paramErr);
    EXPECT_EQ(pasteboard.putItemFlavor(1, "", ""), paramErr);
}

TEST(Pasteboard, AFileUrlEscapesEveryByteThatAUrlDoesNotAllow)
{
    EXPECT_EQ(fileUrl("/tmp/Straight Eight.mid"), "file:///tmp/Straight%20Eight.mid");
    EXPECT_EQ(fileUrl("/a#b%c?d\xc3\xa4"), "file:///a%23b%25c%3Fd%C3%A4");
}
