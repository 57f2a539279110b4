#include "shared/System/kvException.h"
#include "shared/System/kvModule.h"
#include "tests/support/Folders.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>

using namespace Korvanel;
namespace fs = std::filesystem;

namespace {

std::string text(const String& string)
{
    return string.c_str();
}

fs::path self()
{
    return fs::canonical("/proc/self/exe");
}

/// Folders of the user's own, and a module that has its own paths again afterwards.
class Modules : public testing::Test
{
protected:
    Modules()
    {
        environment.set("XDG_CONFIG_HOME", folder / "config");
        environment.set("XDG_DATA_HOME", folder / "data");
        environment.set("XDG_DATA_DIRS", folder.path());
        Module::InitSelfLocation();
    }

    ~Modules() override { Module::Init(self().c_str(), "Looper", ""); }

    /// Makes an empty executable at a place in the test's folder.
    std::string executable(const std::string& place) const
    {
        fs::create_directories(fs::path(folder / place).parent_path());
        putContent(folder / place, "");
        return folder / place;
    }

    TemporaryFolder folder;
    Environment environment;
};

} // namespace

TEST_F(Modules, KnowTheirOwnFile)
{
    EXPECT_TRUE(Module::InitSelfLocation());
    EXPECT_EQ(text(Module::GetModulePath()), self().parent_path().string() + "/");
    EXPECT_EQ(text(Module::GetContentsPath()), self().parent_path().parent_path().string() + "/");
    EXPECT_EQ(text(Module::GetFolderPath()),
              self().parent_path().parent_path().parent_path().parent_path().string() + "/");
    EXPECT_EQ(text(Module::GetModuleName()), "");
}

TEST_F(Modules, LieWhereTheHostSays)
{
    const std::string file = executable("plug-ins/Looper.bundle/Contents/Linux/Looper.so");
    EXPECT_EQ(Module::Init(file.c_str(), "Looper", nullptr), 0);
    EXPECT_EQ(text(Module::GetModulePath()), folder / "plug-ins/Looper.bundle/Contents/Linux/");
    EXPECT_EQ(text(Module::GetContentsPath()), folder / "plug-ins/Looper.bundle/Contents/");
    EXPECT_EQ(text(Module::GetFolderPath()), folder / "plug-ins/");
    EXPECT_EQ(text(Module::GetPath(kModuleFolder)), folder / "plug-ins/");
}

TEST_F(Modules, AFileThatIsNotThereIsAnError)
{
    const std::string before = text(Module::GetFolderPath());
    EXPECT_EQ(Module::Init("/missing/a/b/c/Looper.so", "Looper", nullptr), kPathNotFound);
    EXPECT_EQ(text(Module::GetModulePath()), "/missing/a/b/c/");
    EXPECT_EQ(text(Module::GetFolderPath()), before);
    EXPECT_EQ(Module::Init("missing", "Looper", nullptr), kPathNotFound);
    EXPECT_EQ(text(Module::GetModulePath()), "missing");
    EXPECT_EQ(Module::Init(nullptr, "Looper", nullptr), kPathBadParameter);
}

TEST_F(Modules, AFileTooHighUpHasNoBundle)
{
    EXPECT_EQ(Module::Init("/proc/self", "Looper", nullptr), kPathNotFound);
}

TEST_F(Modules, SupportFoldersAreMade)
{
    EXPECT_EQ(text(Module::GetPath(kUserSupport)), folder / "data/");
    EXPECT_TRUE(fs::is_directory(folder / "data"));
    EXPECT_EQ(text(Module::GetPath(kUserSupportAgain)), folder / "data/");
    EXPECT_EQ(text(Module::GetPath(kAllUsersSupport)), folder.path() + "/");
}

TEST_F(Modules, APathHasOneSlashAtItsEnd)
{
    environment.set("XDG_DATA_HOME", folder / "data/");
    EXPECT_EQ(text(Module::GetPath(kUserSupport)), folder / "data/");
}

TEST_F(Modules, AnUnknownFolderHasNoPath)
{
    for (const int type : {4, -1}) {
        EXPECT_EQ(text(Module::GetPath(static_cast<AppPathType>(type))), "");
        EXPECT_EQ(text(Module::GetPathSubfolder(static_cast<AppPathType>(type), "a")), "");
    }
}

TEST_F(Modules, APathHas259BytesAtMost)
{
    const std::string longest = folder / std::string(259 - folder.path().size() - 1, 'x');
    environment.set("XDG_DATA_HOME", longest);
    EXPECT_EQ(text(Module::GetPath(kUserSupport)), longest + "/");
    environment.set("XDG_DATA_HOME", longest + "x");
    EXPECT_EQ(text(Module::GetPath(kUserSupport)), "");
}

TEST_F(Modules, EmptyComponentsOfASubfolderAreLeftOut)
{
    EXPECT_EQ(text(Module::GetPathSubfolder(kUserSupport, "a//b/")), folder / "data/a/b/");
    EXPECT_EQ(text(Module::GetPathSubfolder(kUserSupport, "/a")), folder / "data/a/");
    EXPECT_EQ(text(Module::GetPathSubfolder(kUserSupport, "")), folder / "data/");
    EXPECT_EQ(text(Module::GetPathSubfolder(kUserSupport, nullptr)), folder / "data/");
    EXPECT_FALSE(fs::exists(folder / "data/a"));
}

TEST_F(Modules, SubfoldersAreMadeOneByOne)
{
    for (int again = 0; again < 2; ++again)
        EXPECT_EQ(text(Module::GetPathCreateSubfolder(kUserSupport, "a//b/")),
                  folder / "data/a/b/");
    EXPECT_TRUE(fs::is_directory(folder / "data/a/b"));
}

TEST_F(Modules, ASubfolderThatCannotBeMadeFallsBackOnTheModulesFolder)
{
    const std::string fallback = text(Module::GetFolderPath());
    fs::create_directories(folder / "data");
    putContent(folder / "data/file", "");
    EXPECT_EQ(text(Module::GetPathCreateSubfolder(kUserSupport, "file/b")), fallback);
    EXPECT_EQ(text(Module::GetPathCreateSubfolder(static_cast<AppPathType>(4), "b")), fallback);
    EXPECT_FALSE(fs::exists("b"));
}

TEST_F(Modules, TheirOwnSubfolderHasNoDoubleSlash)
{
    Module::Init("Looper", "");
    EXPECT_EQ(text(Module::GetAppSubfolder()), "Korvanel/Looper/");
    Module::Init("Looper", "1.2");
    EXPECT_EQ(text(Module::GetAppSubfolder()), "Korvanel/Looper/1.2/");
    Module::Init("Looper", nullptr);
    EXPECT_EQ(text(Module::GetAppSubfolder()), "Korvanel/Looper/");
}

TEST_F(Modules, TheirBundleIsThreeLevelsAboveTheirFile)
{
    const Bundle& bundle = Module::getBundleMacho();
    EXPECT_EQ(text(bundle.folder), self().parent_path().parent_path().parent_path().string() + "/");
    EXPECT_EQ(&Module::getBundleMacho(), &bundle);
}

TEST_F(Modules, AHostThatLiesInNoBundleHasItsOwnFolder)
{
    const Bundle host = Module::getMainBundle();
    EXPECT_EQ(text(host.folder), self().parent_path().string() + "/");
}

TEST_F(Modules, TheProfileKeepsNumbersAndTexts)
{
    Module::Init("Looper", nullptr);
    EXPECT_EQ(Module::GetProfileInt("Editor", "Left", 5, false), 5);
    EXPECT_EQ(Module::WriteProfileInt("Editor", "Left", 20, false), 0);
    EXPECT_EQ(Module::GetProfileInt("Editor", "Left", 5, false), 20);
    EXPECT_EQ(Module::WriteProfileString("Editor", "Skin", "dark", false), 0);
    EXPECT_EQ(text(Module::GetProfileString("Editor", "Skin", "light", false)), "dark");
    EXPECT_TRUE(fs::exists(folder / "config/org.korvanel.Looper.json"));
}

TEST_F(Modules, AnEntryWithoutATextIsRemoved)
{
    Module::Init("Looper", nullptr);
    Module::WriteProfileString("", "Skin", "dark", false);
    EXPECT_EQ(Module::WriteProfileString("", "Skin", nullptr, false), 0);
    EXPECT_EQ(text(Module::GetProfileString("", "Skin", "light", false)), "light");
}

TEST_F(Modules, AllSectionsOfTheProfileShareTheirEntries)
{
    Module::Init("Looper", nullptr);
    Module::WriteProfileInt("Editor", "Left", 20, false);
    EXPECT_EQ(Module::GetProfileInt("Browser", "Left", 5, false), 20);
    EXPECT_EQ(Module::GetProfileInt(nullptr, "Left", 5, false), 20);
}

TEST_F(Modules, EachVersionHasAProfileOfItsOwn)
{
    Module::Init("Looper", "2");
    Module::WriteProfileInt("", "Left", 20, false);
    EXPECT_TRUE(fs::exists(folder / "config/org.korvanel.Looper.2.json"));
    Module::Init("Looper", "");
    EXPECT_EQ(Module::GetProfileInt("", "Left", 5, false), 5);
}

TEST_F(Modules, ANumberThatIsAskedForAndMissingThrows)
{
    Module::Init("Looper", nullptr);
    EXPECT_THROW(Module::GetProfileInt_ThrowExcept("", "Left", false), Exception);
    Module::WriteProfileString("", "Left", "20", false);
    EXPECT_THROW(Module::GetProfileInt_ThrowExcept("", "Left", false), Exception);
    Module::WriteProfileInt("", "Left", 20, false);
    EXPECT_EQ(Module::GetProfileInt_ThrowExcept("", "Left", false), 20);
}

TEST_F(Modules, AProfileThatCannotBeReadGivesTheDefaultAndMinusOne)
{
    Module::Init("Looper", nullptr);
    fs::create_directories(folder / "config/org.korvanel.Looper.json");
    EXPECT_EQ(Module::GetProfileInt("", "Left", 5, false), 5);
    EXPECT_EQ(text(Module::GetProfileString("", "Skin", "light", false)), "light");
    EXPECT_EQ(Module::WriteProfileInt("", "Left", 20, false), -1);
    EXPECT_EQ(Module::WriteProfileString("", "Skin", "dark", false), -1);
}

TEST_F(Modules, TheProfileOfAllUsersIsAnother)
{
    Module::Init("Looper", nullptr);
    Module::WriteProfileInt("", "kv-test-entry", 20, false);
    EXPECT_EQ(Module::GetProfileInt("", "kv-test-entry", 5, true), 5);
}

TEST_F(Modules, TheirFolderMayLieDeeperThanACallersBuffer)
{
    const std::string deep = std::string(200, 'd') + "/" + std::string(200, 'e') + "/";
    const std::string file = executable(deep + "Looper.bundle/Contents/Linux/Looper.so");
    EXPECT_EQ(Module::Init(file.c_str(), "Looper", nullptr), 0);
    EXPECT_EQ(text(Module::GetFolderPath()), folder / deep);
}

namespace {

/// Becomes a copy of this program whose folder is gone, and runs one test there.
void runWithoutFolder(const std::string& test)
{
    const std::string filter = "--gtest_filter=" + test;
    int copied = -1;
    {
        const TemporaryFolder gone;
        fs::create_directories(gone / "Looper.bundle/Contents/Linux");
        const std::string copy = gone / "Looper.bundle/Contents/Linux/program";
        fs::copy_file(self(), copy);
        copied = ::open(copy.c_str(), O_RDONLY | O_CLOEXEC);
    }
    std::string program = "program";
    char* arguments[] = {program.data(), const_cast<char*>(filter.c_str()), nullptr};
    ::fexecve(copied, arguments, environ);
}

} // namespace

TEST(ModuleDeathTest, AModuleWhoseBundleIsGoneHasNone)
{
    EXPECT_DEATH(runWithoutFolder("Modules.TheirBundleIsThreeLevelsAboveTheirFile"),
                 "shared/System/kvModule:[0-9]+: failed assertion `ref != 0'");
}

TEST(ModuleDeathTest, AHostWhoseFolderIsGoneHasNoBundle)
{
    EXPECT_DEATH(runWithoutFolder("Modules.AHostThatLiesInNoBundleHasItsOwnFolder"),
                 "shared/System/kvModule:[0-9]+: failed assertion `mainBundle != 0'");
}

TEST(ModuleDeathTest, TheProfileIsNotThereBeforeInit)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe"; // a new process, where nobody called it
    EXPECT_DEATH(Module::GetProfileInt("", "Left", 5, false),
                 "shared/System/kvModule:[0-9]+: failed assertion `sInited'");
    EXPECT_DEATH(Module::WriteProfileString("", "Left", "", false), "`sInited'");
}
