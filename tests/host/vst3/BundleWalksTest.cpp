// Random hosts of both bundles: whatever they do, the messages that leave make sense.
#include "tests/host/bridge/Instrument.h"
#include "tests/host/vst3/JuceHost.h"

#include <gtest/gtest.h>

#include <random>

namespace {

class BundleWalk
{
public:
    BundleWalk(std::unique_ptr<HostedPlugin> hosted, unsigned seed)
        : mRandom(seed)
        , mHosted(std::move(hosted))
    {
    }

    /// Some blocks in which anything happens, and then a stop.
    void walk()
    {
        for (int i = 0; i < 6; ++i) {
            happen();
            block(1 + static_cast<int>(below(4096)));
        }
        mHosted->song.playing = false;
        for (int key = 60; key < 68; ++key)
            if (mHeld[static_cast<std::size_t>(key)])
                mHosted->input.addEvent(juce::MidiMessage::noteOff(1, key), 1);
        mHeld.reset();
        block(100);
    }

    /// JUCE's LV2 host lets its worker call an instance that is gone already; so the last of its
    /// calls is waited for.
    void settle(Format format)
    {
        SongHead& song = mHosted->song;
        song.looping = false;
        song.firstBar = 0;
        song.numerator = 4;
        song.denominator = 4;
        mHosted->set("MIDI Thru", 0);
        Bundles::choose(format, *mHosted, 0);
        Bundles::choose(format, *mHosted, 1); // heard behind everything that was asked for
        mHosted->plugin->setNonRealtime(true);
        mHosted->run(1); // waits for a call under way
    }

    Instrument instrument;

private:
    unsigned below(unsigned limit) { return static_cast<unsigned>(mRandom() % limit); }

    bool chance(unsigned oneIn) { return below(oneIn) == 0; }

    double upTo(double limit) { return std::uniform_real_distribution<>(0, limit)(mRandom); }

    void happen()
    {
        if (chance(3))
            anywhere();
        if (chance(20))
            mHosted->input.addEvent(juce::MidiMessage::programChange(1, static_cast<int>(below(2))),
                                    0);
        if (chance(20))
            mHosted->plugin->setCurrentProgram(static_cast<int>(below(2)));
        if (chance(15))
            mHosted->set("Tempo", static_cast<float>(below(3)) / 2);
        if (chance(15))
            mHosted->set("MIDI Thru", chance(2) ? 1 : 0);
        if (chance(2))
            playerActs();
    }

    void anywhere()
    {
        SongHead& song = mHosted->song;
        song.playing = !chance(4);
        song.quarters = upTo(20) - 2;
        song.tempo = 20 + upTo(380);
        song.numerator = 1 + static_cast<int>(below(15));
        song.denominator = 1 << below(4);
        song.firstBar = below(8);
        song.looping = chance(3);
        song.loopStart = upTo(8);
        song.loopEnd = song.loopStart + upTo(2);
    }

    void playerActs()
    {
        const auto key = static_cast<int>(60 + below(8));
        const bool held = mHeld[static_cast<std::size_t>(key)];
        mHosted->input.addEvent(held ? juce::MidiMessage::noteOff(1, key)
                                     : juce::MidiMessage::noteOn(1, key, std::uint8_t{80}),
                                0);
        mHeld.flip(static_cast<std::size_t>(key));
    }

    void block(int frames)
    {
        instrument.begin(static_cast<std::uint32_t>(frames));
        mHosted->now = 0;
        mHosted->run(frames);
        for (const Sent& sent : mHosted->take())
            instrument.send(static_cast<std::uint32_t>(sent.frame), sent.bytes);
    }

    std::mt19937 mRandom;
    std::unique_ptr<HostedPlugin> mHosted;
    std::bitset<128> mHeld;
};

class BundleWalks : public testing::TestWithParam<Format>
{
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Formats, BundleWalks, testing::Values(Format::Lv2, Format::Vst3), nameOf);

TEST_P(BundleWalks, NoNoteHangsOrDoublesInTenThousand)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    constexpr double rates[] = {22050, 44100, 48000, 192000};
    Bundles bundles;
    for (unsigned host = 0; host < 20; ++host) {
        auto hosted = bundles.load(GetParam(), rates[host % 4]);
        bundles.choose(GetParam(), *hosted, 0);
        BundleWalk walk(std::move(hosted), seed + host);
        for (int i = 0; i < 500; ++i) {
            walk.walk();
            ASSERT_EQ(walk.instrument.sounding(), 0u) << "host " << host << ", walk " << i;
            ASSERT_FALSE(testing::Test::HasFailure()) << "host " << host << ", walk " << i;
        }
        EXPECT_GT(walk.instrument.notes(), 200);
        walk.settle(GetParam());
    }
}
