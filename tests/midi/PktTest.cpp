#include "midi/Pkt.h"

#include <gtest/gtest.h>

using Korvanel::Pkt;

namespace {

MfxEvent record(std::int32_t type)
{
    MfxEvent event{};
    event.type = type;
    event.channel = 5;
    return event;
}

MfxEvent wheel(std::int16_t value)
{
    MfxEvent event = record(MfxEvent::Wheel);
    event.setWheel(value);
    return event;
}

} // namespace

TEST(Pkt, ANoteRecordBecomesANoteOn)
{
    MfxEvent note = record(MfxEvent::Note);
    note.key = 60;
    note.velocity = 0; // a note-on all the same
    Pkt pkt{};
    ASSERT_TRUE(pkt.Assign(note));
    EXPECT_EQ(pkt.status, 0x95);
    EXPECT_EQ(pkt.data1, 60);
    EXPECT_EQ(pkt.data2, 0);
}

TEST(Pkt, PressureComesFromItsOwnByte)
{
    MfxEvent event = record(MfxEvent::KeyAftertouch);
    event.key = 61;
    event.velocity = 1;
    event.amount = 77;
    Pkt pkt{};
    ASSERT_TRUE(pkt.Assign(event));
    EXPECT_EQ(pkt.status, 0xA5);
    EXPECT_EQ(pkt.data2, 77);
    event.type = MfxEvent::ChannelAftertouch;
    ASSERT_TRUE(pkt.Assign(event));
    EXPECT_EQ(pkt.status, 0xD5);
    EXPECT_EQ(pkt.data1, 77);
    EXPECT_EQ(pkt.Len(), 2);
}

TEST(Pkt, AControllerKeepsNumberAndValue)
{
    MfxEvent event = record(MfxEvent::Controller);
    event.key = 1;
    event.velocity = 64;
    Pkt pkt{};
    ASSERT_TRUE(pkt.Assign(event));
    EXPECT_EQ(pkt.status, 0xB5);
    EXPECT_EQ(pkt.data1, 1);
    EXPECT_EQ(pkt.data2, 64);
    EXPECT_EQ(MfxEvent(pkt).velocity, 64);
}

TEST(Pkt, APatchBecomesAPacketButNeverComesBack)
{
    MfxEvent patch = record(MfxEvent::Patch);
    patch.key = 12;
    Pkt pkt{};
    ASSERT_TRUE(pkt.Assign(patch));
    EXPECT_EQ(pkt.status, 0xC5);
    EXPECT_EQ(pkt.data1, 12);
    EXPECT_EQ(pkt.Len(), 2);
    EXPECT_EQ(MfxEvent(pkt).type, -1);
}

TEST(Pkt, TheWheelIsSplitInSevenBits)
{
    Pkt pkt{};
    pkt.Assign(wheel(-8192));
    EXPECT_EQ(pkt.data1, 0);
    EXPECT_EQ(pkt.data2, 0);
    pkt.Assign(wheel(0));
    EXPECT_EQ(pkt.data1, 0);
    EXPECT_EQ(pkt.data2, 64);
    pkt.Assign(wheel(8191));
    EXPECT_EQ(pkt.data1, 127);
    EXPECT_EQ(pkt.data2, 127);
}

TEST(Pkt, EveryWheelValueSurvivesThePacket)
{
    for (int value = -8192; value <= 8191; ++value) {
        Pkt pkt{};
        pkt.Assign(wheel(static_cast<std::int16_t>(value)));
        ASSERT_EQ(MfxEvent(pkt).wheel(), value);
    }
}

TEST(Pkt, ANoteOnOfNoVelocityIsANoteOff)
{
    const Pkt pkt{0x93, 60, 0};
    EXPECT_FALSE(pkt.IsNoteOn());
    EXPECT_TRUE(pkt.IsNoteOff());
    EXPECT_TRUE(pkt.IsNote());
}

TEST(Pkt, ANoteOffConvertsToANote)
{
    const Pkt pkt{0x85, 60, 64};
    EXPECT_TRUE(pkt.IsNoteOff());
    EXPECT_FALSE(pkt.IsNoteOn());
    const MfxEvent event = pkt;
    EXPECT_EQ(event.type, 0);
    EXPECT_EQ(event.channel, 5);
    EXPECT_EQ(event.velocity, 64);
    EXPECT_EQ(event.releaseVelocity, 0);
}

TEST(Pkt, OtherRecordsMakeNoPacketAndLeaveItAlone)
{
    Pkt pkt{1, 2, 3};
    EXPECT_FALSE(pkt.Assign(record(9)));
    EXPECT_FALSE(pkt.Assign(record(-1)));
    EXPECT_EQ(pkt.status, 1);
    EXPECT_EQ(pkt.data2, 3);
}

TEST(Pkt, SystemMessagesCountThreeBytesAndMakeNoRecord)
{
    const Pkt meta{0xFF, 0x51, 0};
    EXPECT_EQ(meta.Len(), 3);
    EXPECT_EQ(MfxEvent(meta).type, -1);
    EXPECT_EQ(MfxEvent(meta).channel, 0); // its low bits are no channel
    EXPECT_FALSE(meta.IsNote());
}
