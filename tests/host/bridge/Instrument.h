/// An instrument behind the output of a random host: it fails the test when what it hears makes no
/// sense.
#pragma once
#include "host/bridge/MidiSink.h"

#include <gtest/gtest.h>

#include <bitset>
#include <cstdint>
#include <random>

/// Listens to the output as an instrument does.
class Instrument : public MidiSink
{
public:
    bool send(std::uint32_t frame, std::span<const std::uint8_t> bytes) override
    {
        EXPECT_GE(frame, mLastFrame);
        EXPECT_TRUE(frame < mFrames || (mFrames == 0 && frame == 0));
        mLastFrame = frame;
        if (random != nullptr && (*random)() % 50 == 0)
            return false; // a port that is full now and then
        const int kind = bytes[0] & 0xF0;
        if (bytes.size() != 3 || (kind != 0x80 && kind != 0x90))
            return true;
        auto key = mSounding[static_cast<std::size_t>((bytes[0] & 0x0F) * 128 + bytes[1])];
        const bool isOn = kind == 0x90 && bytes[2] > 0;
        EXPECT_NE(key, isOn) << (isOn ? "a note sounds twice" : "an off of nothing");
        key = isOn;
        mNotes += isOn ? 1 : 0;
        return true;
    }

    void begin(std::uint32_t frames)
    {
        mFrames = frames;
        mLastFrame = 0;
    }

    std::size_t sounding() const { return mSounding.count(); }

    int notes() const { return mNotes; } ///< that were heard in all

    std::mt19937* random = nullptr; ///< where set, decides when there is no room

private:
    std::bitset<16 * 128> mSounding;
    std::uint32_t mFrames = 0;
    std::uint32_t mLastFrame = 0;
    int mNotes = 0;
};
