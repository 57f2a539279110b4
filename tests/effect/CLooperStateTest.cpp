// The state chunk, put together and taken apart by hand.
#include "shared/System/kvStream.h"
#include "tests/effect/EffectFixture.h"

#include <gtest/gtest.h>

using namespace Korvanel;

namespace {

/// A chunk put together by hand.
struct Chunk
{
    explicit Chunk(std::int32_t version) { word(version); }

    Chunk& word(std::int32_t value)
    {
        for (int shift = 0; shift < 32; shift += 8)
            bytes.push_back(static_cast<char>(value >> shift));
        return *this;
    }

    Chunk& text(const std::string& value)
    {
        word(static_cast<std::int32_t>(value.size()));
        bytes += value;
        return *this;
    }

    Chunk& byte(int value)
    {
        bytes.push_back(static_cast<char>(value));
        return *this;
    }

    /// One note of key 60.
    Chunk& track()
    {
        stringStream stream;
        pattern(240, {noteAt(5, 100)}).Save(stream);
        bytes += stream.text();
        return *this;
    }

    std::string bytes;
};

Chunk upTo(std::int32_t version)
{
    Chunk chunk(version);
    if (version > 1)
        chunk.text("/folder").text("Rock").track();
    if (version > 2)
        chunk.word(0x10003).word(-2);
    if (version > 3)
        chunk.word(20).word(1).word(-2).word(3).word(4).word(0x7B);
    if (version > 4)
        chunk.byte(9);
    if (version > 5)
        chunk.byte(2).byte(0x34).byte(0x01); // 308 repetitions
    return chunk;
}

void load(CLooper& effect, const std::string& bytes)
{
    std::string copy = bytes;
    effect.LoadFrom(copy.data(), static_cast<std::uint32_t>(copy.size()));
}

std::string save(CLooper& effect)
{
    stringStream stream;
    effect.SaveTo(stream);
    return stream.text();
}

} // namespace

TEST(StateChunk, Version1HoldsNothing)
{
    CLooper effect;
    const std::string before = save(effect);
    Witness witness;
    effect.AddLooperListener(&witness);
    load(effect, upTo(1).bytes);
    EXPECT_EQ(save(effect), before);
    EXPECT_EQ(witness.told, "");
    effect.RemoveLooperListener(&witness);
}

TEST(StateChunk, Version2BringsStyleAndPattern)
{
    CLooper effect;
    const String folder = effect.GetPatternsDir();
    load(effect, upTo(2).bytes);
    EXPECT_STREQ(effect.GetStyleName().c_str(), "Rock");
    EXPECT_EQ(effect.GetMeasures(nullptr), 1);
    EXPECT_TRUE(effect.GetPatternsDir() == folder); // the saved folder is not used
    EXPECT_EQ(effect.channel(), -1);
}

TEST(StateChunk, EmptyTextsStillLeadToThePattern)
{
    CLooper effect;
    effect.SetCurrentStyle("kept");
    load(effect, Chunk(2).word(0).word(0).track().bytes);
    EXPECT_EQ(effect.GetMeasures(nullptr), 1);
    EXPECT_STREQ(effect.GetStyleName().c_str(), "kept");
}

TEST(StateChunk, Version3BringsTheRoutingInSixteenBits)
{
    CLooper effect;
    Witness witness;
    effect.AddLooperListener(&witness);
    load(effect, upTo(3).bytes);
    EXPECT_EQ(effect.channel(), 3);
    EXPECT_EQ(effect.port(), -2);
    EXPECT_EQ(witness.told, "lc");
    effect.RemoveLooperListener(&witness);
}

TEST(StateChunk, Version4BringsTheParameters)
{
    CLooper effect;
    load(effect, upTo(4).bytes);
    EXPECT_EQ(effect.getVeloPlus().value, 1);
    EXPECT_EQ(effect.getRandomVeloMin().value, -2);
    EXPECT_EQ(effect.getRandomVeloMax().value, 3);
    EXPECT_EQ(effect.getRandomVeloStrength().value, 4);
    EXPECT_TRUE(effect.isPitchWheelUsed()); // 0x7B: bits 0 and 1, and four that nobody knows
    EXPECT_TRUE(effect.isVelocityUsed());
    EXPECT_FALSE(effect.isRandomVelo());
}

TEST(StateChunk, ALongParameterBlockIsSkippedToItsEnd)
{
    CLooper effect;
    Chunk chunk = upTo(3);
    chunk.bytes[0] = 5;
    chunk.word(24).word(1).word(-2).word(3).word(4).word(7).word(99).byte(1);
    load(effect, chunk.bytes);
    EXPECT_EQ(effect.getRandomVeloStrength().value, 4);
    EXPECT_TRUE(effect.isThru());
}

TEST(StateChunk, AShortParameterBlockLeavesDefaults)
{
    CLooper effect;
    effect.setRandomVeloMax(99);
    effect.useVelocity(true);
    Chunk chunk = upTo(3);
    chunk.bytes[0] = 4;
    chunk.word(8).word(5).word(-6);
    load(effect, chunk.bytes);
    EXPECT_EQ(effect.getVeloPlus().value, 5);
    EXPECT_EQ(effect.getRandomVeloMin().value, -6);
    EXPECT_EQ(effect.getRandomVeloMax().value, 10);
    EXPECT_EQ(effect.getRandomVeloStrength().value, 100);
    EXPECT_FALSE(effect.isVelocityUsed());
    EXPECT_TRUE(effect.isRandomVelo());
}

TEST(StateChunk, ABlockThatEndsInsideANumberLeavesItsRestToTheNextFields)
{
    CLooper effect;
    Chunk chunk = upTo(3);
    chunk.bytes[0] = 5;
    chunk.word(6).word(5).byte(0).byte(1).byte(
        1); // two bytes of the block are left; the first is taken as thru
    load(effect, chunk.bytes);
    EXPECT_EQ(effect.getVeloPlus().value, 5);
    EXPECT_FALSE(effect.isThru());
}

TEST(StateChunk, Version5And6BringThruTempoTypeAndRepeat)
{
    CLooper effect;
    load(effect, upTo(6).bytes);
    EXPECT_TRUE(effect.isThru());
    EXPECT_EQ(effect.tempoType(), 2);
    EXPECT_EQ(effect.getDnDRepeat().value, 308);
}

TEST(StateChunk, LoadingTellsOfThePatternAndTheRoutingOnly)
{
    CLooper effect;
    Witness witness;
    effect.AddLooperListener(&witness);
    load(effect, upTo(6).bytes);
    EXPECT_EQ(witness.told, "lc");
    effect.RemoveLooperListener(&witness);
}

TEST_F(Effect, ATempoTypeFromAChunkIsPlayedOnceItIsSetOrConnected)
{
    load(effect, upTo(6).bytes); // double tempo, thru, a note at 5 of a bar of 960
    effect.setThru(false);
    effect.Enable();
    EXPECT_EQ(play(0, 1919), (std::vector<std::int32_t>{10}));
    effect.TempoType(effect.tempoType());
    EXPECT_EQ(play(1920, 3839), (std::vector<std::int32_t>{1925, 2885}));

    load(effect, upTo(6).bytes);
    effect.setThru(false);
    effect.Terminate();
    effect.Initialize(nullptr);
    EXPECT_EQ(play(0, 1919), (std::vector<std::int32_t>{5, 965}));
}

TEST(StateChunk, TempoTypeAndRepeatAreClamped)
{
    const auto loaded = [](int type, int repeat) {
        CLooper effect;
        Chunk chunk = upTo(5);
        chunk.bytes[0] = 6;
        chunk.byte(type).byte(repeat & 0xFF).byte(repeat >> 8);
        load(effect, chunk.bytes);
        return std::pair(effect.tempoType(), effect.getDnDRepeat().value);
    };
    EXPECT_EQ(loaded(3, 0), std::pair(1, 1));
    EXPECT_EQ(loaded(-1, 5000), std::pair(1, 999));
    EXPECT_EQ(loaded(0, -1), std::pair(0, 1));
}

TEST(StateChunk, SavesEveryFieldInItsPlace)
{
    CLooper effect;
    effect.SetPatternsDir("/folder");
    load(effect, upTo(6).bytes);
    Chunk expected = upTo(5);
    expected.bytes[0] = 6;
    expected.byte(2).byte(0x34).byte(0x01);
    std::string bytes = expected.bytes;
    const std::size_t thru = bytes.size() - 4;
    bytes[thru] = 1;
    bytes[thru - 4] = 3;                      // flags: known bits only
    bytes[bytes.size() - 4 - 24 - 8 + 2] = 0; // the channel's upper half is gone
    EXPECT_EQ(save(effect), bytes);
}

TEST(StateChunk, SavingThenLoadingIsTheIdentity)
{
    CLooper effect;
    effect.set_track(
        pattern(480, {noteAt(0, 100), noteAt(50, MfxEvent::kOpen, 70), noteAt(700, 20, 3)}));
    effect.SetCurrentStyle("Style");
    effect.SetPatternName("Pattern");
    effect.SetChPort(9, -4);
    effect.setVeloPlus(-77);
    effect.setRandomVeloMin(-5);
    effect.setRandomVeloMax(6);
    effect.setRandomVeloStrength(7);
    effect.usePitchWheel(true);
    effect.setRandomVelo(false);
    effect.setThru(true);
    effect.TempoType(0);
    effect.setDnDRepeat(42);
    CLooper other;
    load(other, save(effect));
    EXPECT_EQ(save(other), save(effect));
    EXPECT_STREQ(other.GetPatternName().c_str(), "Pattern");
}

TEST(StateChunk, EveryTruncationLeavesAPlayableEffect)
{
    const std::string whole = upTo(6).bytes;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        CLooper effect;
        try {
            load(effect, whole.substr(0, length));
        } catch (const StreamBufferException&) {
        }
        effect.Initialize(nullptr);
        effect.Enable();
        ListQueue queue;
        effect.process(0, 5000, queue);
        effect.Terminate();
    }
    SUCCEED();
}

TEST(StateChunk, ADamagedPatternKeepsTheOneThatPlays)
{
    CLooper effect;
    load(effect, upTo(2).bytes);
    Chunk chunk(2);
    chunk.text("").text("Jazz").bytes += "no pattern here";
    load(effect, chunk.bytes);
    EXPECT_EQ(effect.GetMeasures(nullptr), 1);
}

TEST(StateChunk, FalseLengthsCostNothing)
{
    CLooper effect;
    EXPECT_THROW(load(effect, Chunk(6).word(INT32_MAX).bytes), StreamBufferException);
    EXPECT_THROW(load(effect, Chunk(6).word(0).word(INT32_MAX).bytes), StreamBufferException);
    stringStream endless(Chunk(6).word(INT32_MAX).bytes); // a stream that does not throw
    effect.LoadFrom(endless);
    stringStream negative(Chunk(6).word(-1).word(-1).bytes);
    effect.LoadFrom(negative);
    SUCCEED();
}
