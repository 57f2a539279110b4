// Preference files under real processes: two that write at once, one that is killed, one whose disk
// is full.
#include "platform/os/PreferenceFile.h"
#include "tests/support/Folders.h"

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace platform;

namespace {

/// Runs `work` in a process of its own, whose exit status is what it returns.
pid_t inChild(const std::function<int()>& work)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work());
    return child;
}

/// The child's exit status; -1 when a signal ended it.
int waitFor(pid_t child)
{
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool put(const PreferenceFile& file, const std::string& key, const PreferenceValue& value)
{
    return file.update([&](PreferenceDictionary& settings) {
        settings[key] = value;
        return true;
    });
}

int countTo200(const PreferenceFile& file, const std::string& key)
{
    for (int i = 0; i < 200; ++i) {
        const bool stored = file.update([&](PreferenceDictionary& settings) {
            auto& value = settings[key].value;
            value = std::get<std::int32_t>(value) + 1;
            return true;
        });
        if (!stored)
            return 1;
    }
    return 0;
}

/// Puts the same letter, more and more of them, into two settings until it is killed; says so after
/// each change.
int writeForever(const PreferenceFile& file, int said)
{
    for (std::size_t round = 1;; ++round) {
        const std::string text(round % 5000 * 10, 'x');
        file.update([&](PreferenceDictionary& settings) {
            settings["a"] = {text};
            settings["b"] = {text};
            return true;
        });
        if (::write(said, "", 1) != 1)
            return 1;
    }
}

} // namespace

TEST(PreferenceProcesses, TwoThatWriteAtOnceLoseNoChange)
{
    const TemporaryFolder folder;
    const PreferenceFile file(folder.path(), "d");
    const pid_t a = inChild([&] { return countTo200(file, "a"); });
    const pid_t b = inChild([&] { return countTo200(file, "b"); });
    EXPECT_EQ(waitFor(a), 0);
    EXPECT_EQ(waitFor(b), 0);
    PreferenceDictionary settings;
    EXPECT_TRUE(file.read(settings));
    EXPECT_EQ(settings, (PreferenceDictionary{{"a", {200}}, {"b", {200}}}));
}

TEST(PreferenceProcesses, OneThatIsKilledLeavesTheOldSettingsOrTheNew)
{
    const TemporaryFolder folder;
    const PreferenceFile file(folder.path(), "d");
    ASSERT_TRUE(put(file, "a", {""}) && put(file, "b", {""}));
    for (int round = 1; round <= 30; ++round) {
        int said[2];
        ASSERT_EQ(::pipe(said), 0);
        const pid_t child = inChild([&] { return writeForever(file, said[1]); });
        char byte = 0;
        for (int change = 0; change < round; ++change)
            ASSERT_EQ(::read(said[0], &byte, 1), 1);
        ::kill(child, SIGKILL);
        EXPECT_EQ(waitFor(child), -1);
        ::close(said[0]);
        ::close(said[1]);
        PreferenceDictionary settings;
        ASSERT_TRUE(file.read(settings));
        ASSERT_EQ(settings.size(), 2u);
        EXPECT_EQ(settings["a"], settings["b"]);
    }
    EXPECT_TRUE(put(file, "c", {1})) << "a dead writer holds no lock";
}

TEST(PreferenceProcesses, AFullDiskLeavesTheOldSettings)
{
    const TemporaryFolder folder;
    const PreferenceFile file(folder.path(), "d");
    ASSERT_TRUE(put(file, "a", {1}));
    const pid_t child = inChild([&] {
        ::signal(SIGXFSZ, SIG_IGN); // so that writing fails as on a full disk
        const rlimit limit{4096, 4096};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return 2;
        return put(file, "b", {std::string(100'000, 'x')}) ? 1 : 0;
    });
    EXPECT_EQ(waitFor(child), 0);
    PreferenceDictionary settings;
    EXPECT_TRUE(file.read(settings));
    EXPECT_EQ(settings, (PreferenceDictionary{{"a", {1}}}));
    EXPECT_FALSE(std::filesystem::exists(folder / ".d.json.new"));
}
