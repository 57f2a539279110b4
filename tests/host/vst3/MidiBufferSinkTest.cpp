#include "host/vst3/MidiBufferSink.h"

#include "tests/support/Guards.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

constexpr std::array<std::uint8_t, 3> kNote{0x90, 60, 100};

} // namespace

TEST(MidiBufferSink, KeepsMessagesInTheirOrder)
{
    MidiBufferSink sink;
    sink.prepare();
    EXPECT_TRUE(sink.send(5, std::array<std::uint8_t, 3>{0x80, 60, 64}));
    EXPECT_TRUE(sink.send(5, kNote));
    juce::MidiBuffer buffer;
    sink.swapInto(buffer);
    std::vector<int> sent;
    for (const auto message : buffer) {
        EXPECT_EQ(message.samplePosition, 5);
        EXPECT_EQ(message.numBytes, 3);
        sent.push_back(message.data[0]);
    }
    EXPECT_EQ(sent, (std::vector<int>{0x80, 0x90}));
}

TEST(MidiBufferSink, TakesNoMoreThanTheWrapperHandsOn)
{
    MidiBufferSink sink;
    sink.prepare();
    for (int i = 0; i < 2048; ++i)
        ASSERT_TRUE(sink.send(0, kNote));
    EXPECT_FALSE(sink.send(0, kNote));
    sink.clear();
    EXPECT_TRUE(sink.send(0, kNote));
}

TEST(MidiBufferSink, RefusesAMessageThatWouldNotFit)
{
    MidiBufferSink sink;
    sink.prepare();
    EXPECT_FALSE(sink.send(0, std::vector<std::uint8_t>(70000, 0xF0)));
    EXPECT_FALSE(sink.send(0, std::vector<std::uint8_t>(65535, 0xF0)));
    EXPECT_TRUE(sink.send(0, std::vector<std::uint8_t>(60000, 0xF0)));
}

TEST(MidiBufferSink, FullBlocksAllocateNothingFromTheFirstOn)
{
    MidiBufferSink sink;
    sink.prepare();
    juce::MidiBuffer buffer; // with no room at all
    const AllocationGuard allocations;
    for (int block = 0; block < 5; ++block) {
        sink.clear();
        while (sink.send(0, kNote)) {
        }
        sink.swapInto(buffer);
    }
    EXPECT_EQ(allocations.count(), 0u);
    EXPECT_EQ(buffer.getNumEvents(), 2048);
}
