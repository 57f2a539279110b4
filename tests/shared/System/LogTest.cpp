#include "shared/System/kvLog.h"
#include "tests/support/Guards.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

using namespace Korvanel;

namespace {

/// A log file of its own for each test, through the module's log.
class Log : public testing::Test
{
protected:
    Log() { ::close(::mkstemp(mPath.data())); }

    ~Log() override
    {
        IOLogClose();
        std::filesystem::remove(mPath);
    }

    std::string text() const
    {
        std::ostringstream all;
        all << std::ifstream(mPath).rdbuf();
        return all.str();
    }

    const char* path() const { return mPath.c_str(); }

private:
    std::string mPath = std::filesystem::temp_directory_path() / "kv-log-XXXXXX";
};

} // namespace

TEST_F(Log, WithNoLogOpenALineCostsNothing)
{
    AllocationGuard guard;
    IOLog("dropped %s\n", "line");
    EXPECT_EQ(guard.count(), 0u);
}

TEST_F(Log, LinesCarryTheTitleAndPrintsDoNot)
{
    IOLogOpen("T: ", nullptr, LogFile::Truncate, path());
    IOLog("a %d\n", 1);
    IOPrint("b %d\n", 2);
    IOLog1(true, "c\n");
    IOLog1(false, "never\n");
    IOPrint1(true, "d\n");
    IOPrint1(false, "never\n");
    const std::string all = text();
    EXPECT_EQ(all.substr(all.find('\n') + 1), "T: a 1\nb 2\nT: c\nd\n");
    EXPECT_EQ(all.rfind("T: Loaded at ", 0), 0u);
}

TEST_F(Log, TheOpeningLineNamesTheModule)
{
    IOLogOpen(nullptr, "Looper", LogFile::Truncate, path());
    EXPECT_EQ(text().rfind("Looper; loaded at ", 0), 0u);
}

TEST_F(Log, ClosingSaysSoAndLaterLinesAreDropped)
{
    IOLogOpen(nullptr, nullptr, LogFile::Truncate, path());
    IOLogClose();
    IOLog("late\n");
    EXPECT_NE(text().find("\nUnloaded at "), std::string::npos);
    EXPECT_EQ(text().find("late"), std::string::npos);
}

TEST_F(Log, ALineIsCutAt258Characters)
{
    IOLogOpen(nullptr, nullptr, LogFile::Truncate, path());
    const std::size_t before = text().size();
    IOLog("%s", std::string(1000, 'x').c_str());
    EXPECT_EQ(text().size() - before, 258u);
}

TEST_F(Log, AppendingKeepsWhatIsThere)
{
    std::ofstream(path()) << "old\n";
    IOLogOpen(nullptr, nullptr, LogFile::Append, path());
    EXPECT_EQ(text().rfind("old\n", 0), 0u);
    IOLogClose();
    IOLogOpen(nullptr, nullptr, LogFile::Truncate, path());
    EXPECT_EQ(text().find("old"), std::string::npos);
}

TEST_F(Log, TheFileIsForEveryone)
{
    IOLogOpen(nullptr, nullptr, LogFile::Truncate, path());

    struct stat found
    {
    };

    ASSERT_EQ(::stat(path(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777u, 0666u);
}

TEST_F(Log, WithoutAFileFlagOnlyTheTitleIsSet)
{
    LogFile log;
    EXPECT_EQ(log.openLog("title", nullptr, 0, path()), 1);
    EXPECT_EQ(log.descriptor(), -1);
    EXPECT_TRUE(text().empty());

    IOLogOpen("A: ", nullptr, LogFile::Truncate, path());
    IOLogOpen("B: ", nullptr, 0, path());
    IOLog("x\n");
    EXPECT_NE(text().find("\nB: x\n"), std::string::npos);
}

TEST_F(Log, WithoutAFileFlagLinesAreDropped)
{
    testing::internal::CaptureStdout();
    IOLogOpen("title", nullptr, 0, path());
    IOLog("dropped\n");
    IOPrint("dropped\n");

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_TRUE(text().empty());
}

TEST_F(Log, TruncatingWinsOverAppending)
{
    std::ofstream(path()) << "old\n";
    IOLogOpen(nullptr, nullptr, 2 | 4, path());
    EXPECT_EQ(text().find("old"), std::string::npos);
    EXPECT_EQ(text().rfind("Loaded at ", 0), 0u);
}

TEST_F(Log, AFileMayBeMeantInTmp)
{
    const std::string name = "kv-log-" + std::to_string(::getpid()) + ".log";
    IOLogOpen(nullptr, "Looper", 0x4000 | 2, name.c_str());
    IOLogClose();

    std::ifstream file("/tmp/" + name);
    std::string line;
    std::getline(file, line);
    EXPECT_EQ(line.rfind("Looper; loaded at ", 0), 0u);
    std::filesystem::remove("/tmp/" + name);
}

TEST_F(Log, ADisabledLogDoesNotOpen)
{
    LogFile log;
    EXPECT_EQ(log.openLog(nullptr, nullptr, LogFile::Disabled | LogFile::Truncate, path()), 1);
    EXPECT_EQ(log.descriptor(), -1);
}

TEST_F(Log, AFileThatCannotBeOpenedSendsLinesToStandardOutput)
{
    LogFile log;
    log.openLog(nullptr, nullptr, LogFile::Truncate, "/nonexistent/log");
    EXPECT_EQ(log.descriptor(), 1);
}

TEST_F(Log, ThePercentSignsOfATitleAreText)
{
    IOLogOpen("100%s ", nullptr, LogFile::Truncate, path());
    IOLog("x\n");
    EXPECT_NE(text().find("100%s x\n"), std::string::npos);
}
