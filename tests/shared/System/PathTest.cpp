#include "shared/System/kvPath.h"
#include "shared/System/kvSwap.h"
#include "tests/support/Folders.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>

using namespace Korvanel;
namespace fs = std::filesystem;

TEST(Path, BackslashesBecomeSlashesButForANetworkPrefix)
{
    char path[] = "\\\\host\\share\\a";
    MakeUnifiedPath(path);
    EXPECT_STREQ(path, "\\\\host/share/a");
    String text("a\\b");
    MakeUnifiedPath(text);
    EXPECT_STREQ(text.c_str(), "a/b");
}

TEST(Path, SlashesBecomeBackslashes)
{
    String text("/a/b");
    MakeWinPath(text);
    EXPECT_STREQ(text.c_str(), "\\a\\b");
}

TEST(Path, ConvertingTheEmptyTextChangesNothing)
{
    String text;
    MakeUnifiedPath(text);
    MakeWinPath(text);
    EXPECT_TRUE(text.IsEmpty());
}

TEST(Path, SplitsFolderAndName)
{
    char part[16];
    EXPECT_EQ(UnifiedPathParseFilePath("/a/b.mid", part, sizeof part), 0);
    EXPECT_STREQ(part, "/a/");
    EXPECT_EQ(UnifiedPathParseFileName("/a/b.mid", part, sizeof part), 0);
    EXPECT_STREQ(part, "b.mid");
    EXPECT_EQ(UnifiedPathParseFilePath("b.mid", part, sizeof part), 0);
    EXPECT_STREQ(part, "");
}

TEST(Path, SaysHowMuchRoomAPartNeeds)
{
    char part[3];
    EXPECT_EQ(UnifiedPathParseFileName("/a/", nullptr, 0), 1); // the empty name
    EXPECT_EQ(UnifiedPathParseFilePath("/a/b", part, 3), 4);
    EXPECT_EQ(UnifiedPathParseFilePath(nullptr, part, 3), -1);
    EXPECT_EQ(UnifiedPathParseFileName(nullptr, part, 3), -1);
}

TEST(Path, ALinkResolvesToItsTarget)
{
    const fs::path folder = fs::temp_directory_path() / ("kv-path-" + std::to_string(::getpid()));
    fs::create_directory(folder);
    std::ofstream(folder / "target").put('x');
    fs::create_symlink("target", folder / "link");
    fs::create_symlink("link", folder / "chain");
    unsigned char isFolder = 1;
    std::array<char, 4096> target{};
    std::uint32_t size = target.size();
    EXPECT_EQ(FullPathResolveAlias((folder / "chain").c_str(), isFolder, size, target.data()), 0);
    EXPECT_EQ(std::string(target.data()), fs::canonical(folder / "target").string());
    EXPECT_EQ(isFolder, 0);
    std::uint32_t tooSmall = 3;
    EXPECT_EQ(FullPathResolveAlias((folder / "chain").c_str(), isFolder, tooSmall, target.data()),
              -92);
    EXPECT_EQ(tooSmall, fs::canonical(folder / "target").string().size() + 1);
    EXPECT_EQ(FullPathResolveAlias(nullptr, isFolder, size, nullptr), -50);
    EXPECT_EQ(FullPathResolveAlias((folder / "missing").c_str(), isFolder, size, nullptr), -43);
    fs::remove_all(folder);
}

TEST(Path, ALinkToAFolderResolvesToAFolder)
{
    const TemporaryFolder folder;
    fs::create_directory(folder / "target");
    fs::create_symlink("target", folder / "link");
    unsigned char isFolder = 0;
    std::array<char, 4096> target{};
    std::uint32_t size = target.size();

    EXPECT_EQ(FullPathResolveAlias((folder / "link").c_str(), isFolder, size, target.data()), 0);

    EXPECT_EQ(isFolder, 1);
    EXPECT_EQ(std::string(target.data()), fs::canonical(folder / "target").string());
}

TEST(Path, AReferenceGivesItsPathBack)
{
    FSSpec spec;
    std::array<char, 64> path{};
    EXPECT_EQ(FullPathMakeFSSpec("/usr/", &spec), 0);
    EXPECT_EQ(spec.name, "usr");
    EXPECT_EQ(FSpGetFullPath(&spec, path.data()), 0);
    EXPECT_STREQ(path.data(), "/usr");
    FSRef ref;
    EXPECT_EQ(FullPathMakeFSRef("/nonexistent", &ref), -43);
    EXPECT_EQ(FullPathMakeFSRef(nullptr, &ref), -50);
}

TEST(Swap, ReversesElementsOfEveryKnownSize)
{
    unsigned char bytes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    OSSwapArray(bytes, 2, 3);
    EXPECT_EQ(std::memcmp(bytes, "\3\2\1\6\5\4\7\10\11\12\13\14", 12), 0);
    OSSwapArray(bytes, 1, 8);
    EXPECT_EQ(std::memcmp(bytes, "\10\7\4\5\6\1\2\3\11\12\13\14", 12), 0);
    OSSwapArrayInt16(bytes, 1);
    OSSwapArrayInt32(bytes + 8, 1);
    EXPECT_EQ(std::memcmp(bytes, "\7\10\4\5\6\1\2\3\14\13\12\11", 12), 0);
}

TEST(Swap, LeavesOtherSizesAlone)
{
    unsigned char bytes[] = {1, 2, 3, 4, 5};
    OSSwapArray(bytes, 1, 5);
    EXPECT_EQ(bytes[0], 1);
}
