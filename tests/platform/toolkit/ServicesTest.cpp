#include "platform/toolkit/Beep.h"
#include "platform/toolkit/FileManager.h"
#include "platform/toolkit/Pasteboard.h"
#include "tests/support/ProcessTally.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>
#include <unistd.h>

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

    /// @param noting  what writes the notes, in the shell's language
    /// @param after   what it does then
    void installOpener(const std::string& noting = R"(printf '%s|%s' "$#" "$1")",
                       const std::string& after = "")
    {
        const auto program = mFolder / "xdg-open";
        std::ofstream(program) << "#!/bin/sh\n{\n" + noting + "\n} > \"$NOTES.new\"\n" +
                                      "/bin/mv \"$NOTES.new\" \"$NOTES\"\n" + after + "\n";
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    }

    /// Processes that this one would have to wait for.
    static int children()
    {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
            std::string pid;
            std::string name;
            std::string state;
            int parent = 0;
            std::ifstream(entry.path() / "stat") >> pid >> name >> state >> parent;
            count += parent == ::getpid() ? 1 : 0;
        }
        return count;
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

TEST_F(FileManagerTest, AnOpenerThatStaysIsNobodysChildAndHoldsNoThread)
{
    installOpener("echo", R"(while [ -e "$NOTES" ]; do /bin/sleep 0.05; done)");
    const auto path = make("a.txt");
    const int childrenBefore = children();
    const auto before = ProcessTally::now();

    EXPECT_EQ(openDocument(path), noErr);

    EXPECT_EQ(notes(), "\n"); // it runs, and goes on as long as they are there
    EXPECT_EQ(children(), childrenBefore);
    EXPECT_EQ(ProcessTally::now(), before);
}

TEST_F(FileManagerTest, TheOpenerInheritsNoDescriptorOfTheHost)
{
    installOpener("echo /proc/$$/fd/*");
    constexpr int hosts = 77;
    ASSERT_EQ(::dup2(STDERR_FILENO, hosts), hosts);

    EXPECT_EQ(openDocument(make("a.txt")), noErr);

    const auto open = notes();
    EXPECT_NE(open.find("/fd/2"), std::string::npos) << open;
    EXPECT_EQ(open.find("/fd/77"), std::string::npos) << open;
    ::close(hosts);
}

TEST_F(FileManagerTest, TheOpenerStartsWithTheSystemsSignalSettings)
{
    // The shell itself blocks signals while it starts a program: here it starts none.
    installOpener("while read -r line; do case $line in SigBlk:*|SigIgn:*) echo \"$line\";; esac; "
                  "done < /proc/$$/status");
    sigset_t mask;
    sigset_t before;
    sigemptyset(&mask);
    sigaddset(&mask, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &mask, &before);
    const auto pipe = std::signal(SIGPIPE, SIG_IGN);

    EXPECT_EQ(openDocument(make("a.txt")), noErr);

    EXPECT_EQ(notes(), "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n");
    std::signal(SIGPIPE, pipe);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

TEST_F(FileManagerTest, ANonProgramInTheOpenersPlaceIsAStatus)
{
    make("xdg-open");
    EXPECT_EQ(openDocument(make("a.txt")), EACCES);
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
