// The built program, run as a user runs it.
#include "tests/host/cli/RunLooper.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

const std::string kPattern = KV_LOOPS "/Rock/Straight Eight.mid";

class Command : public testing::Test
{
protected:
    Command() { fs::create_directory(folder); }

    ~Command() override
    {
        fs::permissions(folder, fs::perms::all);
        fs::remove_all(folder);
    }

    static std::string contents(const fs::path& path)
    {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    pid_t start(std::vector<std::string> arguments)
    {
        return startLooper(std::move(arguments), folder);
    }

    Outcome finish(pid_t child) { return finishLooper(child, folder); }

    Outcome run(std::vector<std::string> arguments) { return finish(start(std::move(arguments))); }

    std::string file(const std::string& name, const std::string& bytes)
    {
        std::ofstream(folder / name, std::ios::binary) << bytes;
        return folder / name;
    }

    std::string path(const std::string& name) const { return folder / name; }

    fs::path folder = fs::temp_directory_path() / ("kv-cli-" + std::to_string(::getpid()));
};

/// Every note that was switched on is off at the end.
void expectSilence(const std::string& bytes)
{
    std::map<std::pair<int, int>, int> sounding;
    int notes = 0;
    for (std::size_t i = 0; i + 2 < bytes.size(); i += 3) {
        const int status = static_cast<unsigned char>(bytes[i]);
        const std::pair key(status & 15, int{bytes[i + 1]});
        if ((status & 0xF0) == 0x90) {
            ++notes;
            sounding[key] += 1;
        } else if ((status & 0xF0) == 0x80) {
            sounding[key] -= 1;
        }
    }
    EXPECT_GT(notes, 0);
    for (const auto& [key, count] : sounding)
        EXPECT_EQ(count, 0) << "key " << key.second;
}

} // namespace

TEST_F(Command, ShowsAPattern)
{
    const Outcome shown = run({"show", kPattern});
    EXPECT_EQ(shown.code, 0);
    EXPECT_NE(
        shown.out.find("name    Rock/Straight Eight\n  meter   4/4, 2 bars\n  tempo   124.0 BPM"),
        std::string::npos);
    EXPECT_NE(shown.out.find("  C2   36│█   ·   █ █ ·   │█   · ▓ █ █ ·   │"), std::string::npos)
        << shown.out;
}

TEST_F(Command, ShowsJsonForPrograms)
{
    const auto shown =
        nlohmann::json::parse(run({"show", "--json", KV_LOOPS "/Latin/Seven.mid"}).out);
    EXPECT_EQ(shown["numerator"], 7);
    EXPECT_EQ(shown["denominator"], 8);
    EXPECT_EQ(shown["bars"], 2);
    EXPECT_EQ(shown["notes"], 26);
    EXPECT_EQ(nlohmann::json::parse(run({"show", "--json", kPattern, kPattern}).out).size(), 2u);
}

TEST_F(Command, RendersThroughThePlugIn)
{
    const Outcome rendered = run({"render", kPattern, "--repeat", "3", "-o", path("out.mid")});
    EXPECT_EQ(rendered.code, 0) << rendered.err;
    const auto before = nlohmann::json::parse(run({"show", "--json", kPattern}).out);
    const auto after = nlohmann::json::parse(run({"show", "--json", path("out.mid")}).out);
    EXPECT_EQ(after["notes"], 3 * before["notes"].get<int>());
    EXPECT_EQ(after["bars"], 6);
    EXPECT_EQ(after["ticksPerQuarter"], 240);
    EXPECT_NEAR(after["tempo"], before["tempo"], 0.01); // hosts give hundredths
}

TEST_F(Command, RendersAtHalfAndDoubleTempo)
{
    run({"render", kPattern, "--tempo-type", "half", "-o", path("half.mid")});
    run({"render", kPattern, "--tempo-type", "double", "-o", path("double.mid")});
    EXPECT_EQ(nlohmann::json::parse(run({"show", "--json", path("half.mid")}).out)["bars"], 4);
    const auto fast = nlohmann::json::parse(run({"show", "--json", path("double.mid")}).out);
    EXPECT_EQ(fast["bars"], 1);
    EXPECT_EQ(fast["ticksPerQuarter"], 480);
}

TEST_F(Command, RendersTempoMeterAndVelocity)
{
    EXPECT_EQ(run({"render", kPattern, "--tempo", "60", "--meter", "7/8", "--velocity", "-127",
                   "-o", path("o.mid")})
                  .code,
              0);
    const auto shown = nlohmann::json::parse(run({"show", "--json", path("o.mid")}).out);
    EXPECT_EQ(shown["tempo"], 60.0);
    EXPECT_EQ(shown["numerator"], 7);
    const std::string bytes = contents(path("o.mid"));
    for (std::size_t at = bytes.find('\x99'); at != std::string::npos;
         at = bytes.find('\x99', at + 1)) {
        EXPECT_EQ(bytes[at + 2], 1);
    }
}

TEST_F(Command, WithoutRandomVelocityARenderIsTheSameEachTimeAndWithItIsNot)
{
    run({"render", kPattern, "-o", path("a.mid")});
    run({"render", kPattern, "-o", path("b.mid")});
    run({"render", kPattern, "--random", "-60:60:100", "-o", path("c.mid")});
    EXPECT_EQ(contents(path("a.mid")), contents(path("b.mid")));
    EXPECT_NE(contents(path("a.mid")), contents(path("c.mid")));
}

TEST_F(Command, RendersToStandardOutput)
{
    EXPECT_EQ(run({"render", kPattern, "-o", "-"}).out.substr(0, 4), "MThd");
}

TEST_F(Command, APathTooLongForAHostsRecordPlaysAllTheSame)
{
    fs::path deep = folder;
    for (int i = 0; i < 6; ++i)
        deep /= std::string(60, 'x');
    fs::create_directories(deep);
    fs::copy_file(kPattern, deep / "p.mid");
    EXPECT_EQ(run({"render", deep / "p.mid", "-o", path("o.mid")}).code, 0);
}

TEST_F(Command, BadPatternsAreNamedWithWhatIsWrong)
{
    expectRefused(run({"show", path("missing.mid")}), 2, "missing.mid: does not exist");
    expectRefused(run({"show", folder}), 2, "is a folder");
    expectRefused(run({"show", file("text.mid", "hello, world")}), 2, "is not a MIDI file");
    expectRefused(run({"show", file("empty.mid", "")}), 2, "is not a MIDI file");
    expectRefused(
        run({"show", file("long.mid", std::string("MThd\0\0\0\x08", 8) + std::string(99, 'x'))}), 2,
        "header of 8 bytes");
    expectRefused(run({"show", file("cut.mid", contents(kPattern).substr(0, 16))}), 2, "damaged");
    const std::string head("MThd\0\0\0\x06\0\0\0\x01\0\x60MTrk\0\0\0\x04\0\xFF\x2F\0", 26);
    expectRefused(run({"render", file("silent.mid", head), "-o", path("o.mid")}), 2,
                  "has no notes");
    EXPECT_FALSE(fs::exists(path("o.mid")));
}

TEST_F(Command, HostileFilesNeitherCrashNorHang)
{
    const std::string whole = contents(kPattern);
    for (std::size_t length = 0; length < whole.size(); length += 7) {
        const Outcome shown = run({"show", file("cut.mid", whole.substr(0, length))});
        EXPECT_TRUE(shown.code == 0 || shown.code == 2) << length << ": " << shown.code;
    }
}

TEST_F(Command, WhatCannotBeWrittenIsSaidAndLeavesNothingBehind)
{
    expectRefused(run({"render", kPattern, "-o", path("no/such/folder.mid")}), 3,
                  "No such file or directory");
    expectRefused(run({"render", kPattern, "-o", "/dev/full"}), 3,
                  "/dev/full: No space left on device");
    const std::string own = file("own.mid", contents(kPattern));
    expectRefused(run({"render", own, "-o", own}), 3, "is the pattern itself");
    EXPECT_EQ(contents(own), contents(kPattern));
    for (const auto& entry : fs::directory_iterator(folder))
        EXPECT_EQ(entry.path().filename().string().find("mid."), std::string::npos) << entry.path();
}

TEST_F(Command, WrongOptionsAreUsageErrors)
{
    expectRefused(run({"render", kPattern, "-o", path("o.mid"), "--meter", "4/5"}), 1, "4/5");
    expectRefused(run({"render", kPattern, "-o", path("o.mid"), "--random", "5"}), 1,
                  "min:max:strength");
    expectRefused(run({"render", kPattern, "-o", path("o.mid"), "--velocity", "500"}), 1,
                  "--velocity");
    expectRefused(run({"render", kPattern, "-o", path("o.mid"), "--tempo-type", "slow"}), 1,
                  "slow");
    expectRefused(run({"render", kPattern}), 1, "--output");
    expectRefused(run({"play"}), 1, "files");
    EXPECT_EQ(run({}).code, 1);
    EXPECT_EQ(run({"--help"}).code, 0);
    EXPECT_NE(run({"--version"}).out.find("looper 0"), std::string::npos);
}

TEST_F(Command, AMissingPlugInIsSaid)
{
    expectRefused(run({"render", kPattern, "-o", path("o.mid"), "--bundle", path("none.bundle")}),
                  5, "cannot be loaded");
}

TEST_F(Command, PlaysToARawDeviceInTime)
{
    // One bar at 960 BPM is a quarter of a second.
    const Outcome played =
        run({"play", kPattern, "--bars", "1", "--tempo", "960", "--device", file("midi", "")});
    EXPECT_EQ(played.code, 0) << played.err;
    expectSilence(contents(path("midi")));
    EXPECT_NE(played.out.find("1.1  round 1  960.0 BPM"), std::string::npos) << played.out;
}

TEST_F(Command, SeveralFilesPlayOneAfterTheOther)
{
    const Outcome played = run({"play", kPattern, KV_LOOPS "/Jazz/Waltz.mid", "--tempo", "1000",
                                "--device", file("midi", "")});
    EXPECT_EQ(played.code, 0) << played.err;
    expectSilence(contents(path("midi")));
}

TEST_F(Command, AnInterruptEndsWithEveryNoteOff)
{
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    const pid_t child = start({"play", KV_LOOPS "/Funk/Bass in E.mid", "--device", path("pipe")});
    const int reader = ::open(path("pipe").c_str(), O_RDONLY);
    std::string bytes;
    std::array<char, 3> message{};
    while (bytes.size() < 9 && ::read(reader, message.data(), 3) > 0) // it plays
        bytes.append(message.data(), 3);
    ::kill(child, SIGINT);
    for (ssize_t count = 1; count > 0;) { // to the end of the pipe
        count = ::read(reader, message.data(), 3);
        bytes.append(message.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    ::close(reader);
    EXPECT_EQ(finish(child).code, 0);
    expectSilence(bytes);
    EXPECT_EQ(bytes.substr(bytes.size() - 3),
              "\xB1\x7B" + std::string(1, '\0')); // all notes off, channel 2
}

TEST_F(Command, WithoutASequencerItNamesRender)
{
    if (fs::exists("/dev/snd/seq"))
        return; // then playing works, which needs ears
    expectRefused(run({"play", kPattern}), 4, "looper render");
    expectRefused(run({"play", "--list-ports"}), 4, "looper render");
}

TEST_F(Command, ADeviceThatCannotBeOpenedIsSaid)
{
    expectRefused(run({"play", kPattern, "--device", path("no/such")}), 4,
                  "No such file or directory");
}
