// Songs of every kind through the built bundle, in a host that says where it is only on change.
#include "tests/host/lv2/Lv2Fixture.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace {

/// Anything from 1/8 to 15/4, 20 to 400 BPM, 22,050 to 192,000 frames a second.
class AnySong
{
public:
    explicit AnySong(std::mt19937& random)
        : sampleRate(std::uniform_int_distribution<>(22050, 192000)(random))
        , numerator(std::uniform_int_distribution<>(1, 15)(random))
        , denominator(1 << std::uniform_int_distribution<>(0, 3)(random))
        , mTempo(std::uniform_real_distribution<float>(20, 400)(random)) // quarters
    {
    }

    /// Says all that a host knows at the start of a bar.
    void goTo(Lv2Instance& plugin, std::int64_t bar) const
    {
        const auto unit = static_cast<float>(denominator);
        plugin.position(0, {1,
                            {},
                            {{"barBeat", 0},
                             {"beatsPerBar", static_cast<float>(numerator)},
                             {"beatsPerMinute", mTempo * unit / 4}},
                            {{"bar", bar}},
                            {{"beatUnit", denominator}}});
    }

    double quarterFrames() const { return sampleRate * 60.0 / mTempo; }

    double barQuarters() const { return 4.0 * numerator / denominator; }

    double sampleRate;
    int numerator;
    int denominator;

private:
    float mTempo;
};

class Lv2Songs : public InLv2Host
{
protected:
    void runTo(Lv2Instance& plugin, std::int64_t end)
    {
        while (plugin.now < end)
            plugin.run(static_cast<std::uint32_t>(
                std::min<std::int64_t>(1 + random() % 4096, end - plugin.now)));
    }

    unsigned seed = std::random_device{}();
    std::mt19937 random{seed};
};

/// A message is on its place when that falls into its frame.
void expectAt(const Sent& sent, double frame, std::uint8_t status)
{
    EXPECT_EQ(sent.bytes[0], status) << sent;
    EXPECT_EQ(sent.bytes[1], 40) << sent;
    EXPECT_LE(static_cast<double>(sent.frame), frame + 0.001) << sent;
    EXPECT_GT(static_cast<double>(sent.frame), frame - 1.001) << sent;
}

} // namespace

TEST_F(Lv2Songs, NotesFallOnTheirFramesInAnySong)
{
    SCOPED_TRACE(seed);
    for (int i = 0; i < 20; ++i) {
        const AnySong song(random);
        SCOPED_TRACE(testing::Message() << song.numerator << '/' << song.denominator << ", "
                                        << song.sampleRate << ", quarter " << song.quarterFrames());
        const double quarter = song.quarterFrames();
        Lv2Instance plugin(*world, song.sampleRate);
        choose(plugin, 0);
        song.goTo(plugin, 0);
        runTo(plugin, static_cast<std::int64_t>(33.5 * quarter));
        ASSERT_EQ(plugin.sent.size(), 18u); // nine bars of the pattern begin
        for (std::size_t bar = 0; bar < 8; ++bar) {
            expectAt(plugin.sent[2 * bar], static_cast<double>(bar) * 4 * quarter, 0x90);
            expectAt(plugin.sent[2 * bar + 1], (static_cast<double>(bar) * 4 + 1) * quarter, 0x80);
        }
    }
}

// The pattern's bars are 4/4 from the start of the song on: where the song's bar starts with one,
// its note is due at once.
TEST_F(Lv2Songs, TheNoteAtTheGoalIsThereAfterEveryLocateInAnySong)
{
    SCOPED_TRACE(seed);
    for (int i = 0; i < 20; ++i) {
        const AnySong song(random);
        SCOPED_TRACE(testing::Message() << song.numerator << '/' << song.denominator);
        Lv2Instance plugin(*world, song.sampleRate);
        choose(plugin, 0);
        std::int64_t bar = 0;
        for (int locate = 0; locate < 10; ++locate) {
            // To another place; eight bars of any meter are whole bars of 4/4.
            bar = (bar + 8 + 8 * static_cast<std::int64_t>(random() % 99)) % 800;
            song.goTo(plugin, bar);
            const std::int64_t start = plugin.now;
            plugin.run(1 + static_cast<std::uint32_t>(random() % 500));
            ASSERT_FALSE(plugin.sent.empty());
            ASSERT_EQ(plugin.take().back(), on(start, 40)) << "bar " << bar;
        }
    }
}
