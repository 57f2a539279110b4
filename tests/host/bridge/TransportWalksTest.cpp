// Random hosts: whatever they do, the messages that leave make sense.
#include "tests/host/bridge/BridgeHost.h"
#include "tests/host/bridge/Instrument.h"

#include <gtest/gtest.h>

#include <array>
#include <bitset>
#include <random>

namespace {

class Walk
{
public:
    explicit Walk(unsigned seed)
        : mRandom(seed)
    {
        mHost.bridge.prepare(pick({22050.0, 44100.0, 48000.0, 192000.0}));
        newPattern();
    }

    /// Some blocks in which anything happens, and then a stop.
    void walk()
    {
        instrument.random = chance(4) ? &mRandom : nullptr;
        for (int i = 0; i < 6; ++i) {
            beforeBlock();
            block();
        }
        instrument.random = nullptr;
        standStill();
    }

    Instrument instrument;

private:
    unsigned below(unsigned limit) { return static_cast<unsigned>(mRandom() % limit); }

    bool chance(unsigned oneIn) { return below(oneIn) == 0; }

    double upTo(double limit) { return std::uniform_real_distribution<>(0, limit)(mRandom); }

    template <typename T, std::size_t N>
    T pick(const T (&values)[N])
    {
        return values[mRandom() % N];
    }

    void newPattern()
    {
        std::vector<MfxEvent> notes;
        for (int i = 0; i < 24; ++i) {
            const auto time = static_cast<std::int32_t>(below(1920));
            const std::uint32_t duration = chance(12) ? MfxEvent::kOpen : below(1500);
            notes.push_back(noteAt(time, duration, static_cast<int>(60 + below(6))));
        }
        mHost.bridge.effect().set_track(pattern(480, notes));
    }

    void beforeBlock()
    {
        if (chance(20))
            newPattern();
        if (chance(40))
            mHost.bridge.effect().Clear();
        if (chance(15))
            mHost.bridge.setBypassed(chance(2));
        if (chance(15))
            mHost.bridge.parameters().fromHost(7, chance(2) ? 1.0F : 0.0F); // thru
        if (chance(15))
            mHost.bridge.parameters().fromHost(8, static_cast<float>(below(3))); // tempo type
        if (chance(30)) {
            mHost.bridge.deactivate();
            mHost.bridge.activate();
        }
    }

    HostPosition anyPosition()
    {
        HostPosition position;
        position.playing = !chance(4);
        position.quarters = upTo(20) - 2;
        position.tempo = 20 + upTo(380);
        position.looping = chance(3);
        position.loopStart = upTo(8);
        position.loopEnd = position.loopStart + upTo(2);
        return position;
    }

    void playerActs(std::uint32_t frame)
    {
        const auto key = static_cast<std::uint8_t>(60 + below(8));
        if (chance(10))
            return mHost.bridge.message(frame, std::array<std::uint8_t, 3>{0xB0, 123, 0});
        if (mHeld[key])
            release(frame, key);
        else
            mHost.bridge.message(frame, std::array<std::uint8_t, 3>{0x90, key, 80});
        mHeld.flip(key);
    }

    void release(std::uint32_t frame, std::uint8_t key)
    {
        mHost.bridge.message(frame, std::array<std::uint8_t, 3>{0x80, key, 0});
    }

    void block()
    {
        const std::uint32_t frames = chance(20) ? 0 : below(4096) + 1;
        instrument.begin(frames);
        mHost.bridge.beginBlock(frames, instrument);
        for (std::uint32_t frame = 0; frame < frames; frame += 1 + below(2000)) {
            if (chance(3))
                mHost.bridge.position(frame, anyPosition());
            if (chance(3))
                playerActs(frame);
        }
        mHost.bridge.endBlock();
    }

    void standStill()
    {
        instrument.begin(100);
        mHost.bridge.beginBlock(100, instrument);
        mHost.bridge.position(50, stoppedAt(0));
        for (std::uint8_t key = 60; key < 68; ++key)
            if (mHeld[key])
                release(60, key);
        mHeld.reset();
        mHost.bridge.endBlock();
    }

    std::mt19937 mRandom;
    BridgeHost mHost;
    std::bitset<128> mHeld;
};

} // namespace

TEST(TransportWalks, NoNoteHangsOrDoublesInTenThousand)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    for (unsigned host = 0; host < 20; ++host) {
        Walk walk(seed + host);
        for (int i = 0; i < 500; ++i) {
            walk.walk();
            ASSERT_EQ(walk.instrument.sounding(), 0u) << "host " << host << ", walk " << i;
            ASSERT_FALSE(testing::Test::HasFailure()) << "host " << host << ", walk " << i;
        }
        EXPECT_GT(walk.instrument.notes(), 500);
    }
}
