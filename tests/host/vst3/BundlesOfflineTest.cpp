// Both built bundles in a host that exports a song as fast as it can.
#include "tests/host/vst3/JuceHost.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

class Exported : public testing::TestWithParam<Format>
{
protected:
    /// A host's project in which the second pattern was chosen.
    juce::MemoryBlock project()
    {
        const auto hosted = bundles.load(GetParam());
        bundles.choose(GetParam(), *hosted, 1);
        juce::MemoryBlock state;
        hosted->plugin->getStateInformation(state);
        return state;
    }

    Bundles bundles;
};

SentList play(HostedPlugin& hosted, int blocks, unsigned seed)
{
    std::mt19937 random(seed);
    for (int block = 0; block < blocks; ++block)
        hosted.run(1 + static_cast<int>(random() % HostedPlugin::kMostFrames));
    return hosted.take();
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Formats, Exported, testing::Values(Format::Lv2, Format::Vst3), nameOf);

TEST_P(Exported, ALongSongHasEveryNoteOnItsFrame)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    constexpr double kTempo = 133;
    constexpr std::size_t kBars = 1000; // half an hour
    const double quarter = 48000 * 60 / kTempo;
    const auto hosted = bundles.load(GetParam());
    bundles.choose(GetParam(), *hosted, 0);
    hosted->goOffline();
    hosted->song.tempo = kTempo;
    std::mt19937 random(seed);
    while (hosted->song.quarters < 4 * kBars)
        hosted->run(1 + static_cast<int>(random() % HostedPlugin::kMostFrames));
    ASSERT_GE(hosted->sent.size(), 2 * kBars);
    for (std::size_t bar = 0; bar < kBars; ++bar) {
        const auto start = static_cast<double>(bar) * 4 * quarter;
        ASSERT_EQ(hosted->sent[2 * bar], on(static_cast<std::int64_t>(start + 0.001), 40));
        ASSERT_EQ(hosted->sent[2 * bar + 1],
                  off(static_cast<std::int64_t>(start + quarter + 0.001), 40));
    }
}

TEST_P(Exported, TheSongSoundsAsItDidInRealTime)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    const auto hosted = bundles.load(GetParam());
    bundles.choose(GetParam(), *hosted, 0);
    const SentList live = play(*hosted, 300, seed);
    EXPECT_GT(live.size(), 5u);
    hosted->song.playing = false;
    hosted->run(1);
    hosted->take();
    hosted->song.playing = true;
    hosted->song.quarters = 0;
    hosted->now = 0;
    hosted->goOffline();
    EXPECT_EQ(play(*hosted, 300, seed), live);
}

TEST_P(Exported, AProjectThatWasJustLoadedPlaysFromItsFirstNote)
{
    const juce::MemoryBlock saved = project();
    for (int i = 0; i < 5; ++i) {
        const auto hosted = bundles.load(GetParam());
        hosted->plugin->setStateInformation(saved.getData(), static_cast<int>(saved.getSize()));
        hosted->goOffline();
        hosted->run(100);
        ASSERT_EQ(hosted->take(), (SentList{on(0, 41)}));
    }
}

TEST_P(Exported, APatternThatWasJustChosenPlaysFromItsFirstNote)
{
    const auto hosted = bundles.load(GetParam());
    hosted->goOffline();
    for (int i = 0; i < 20; ++i) {
        hosted->song.playing = false;
        hosted->run(1);
        hosted->song.playing = true;
        hosted->song.quarters = 0;
        hosted->now = 0;
        if (GetParam() == Format::Vst3)
            hosted->plugin->setCurrentProgram(i % 2);
        else
            hosted->input.addEvent(juce::MidiMessage::programChange(1, i % 2), 0);
        hosted->run(100);
        ASSERT_FALSE(hosted->sent.empty());
        EXPECT_EQ(hosted->take().back(), on(0, static_cast<std::uint8_t>(40 + i % 2))) << i;
    }
}
