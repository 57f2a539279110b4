#include "effect/ProcessContext.h"
#include "tests/effect/Fakes.h"

#include <gtest/gtest.h>

using namespace Korvanel;

namespace {

MidiEvent queued(const MfxEvent& event, std::int32_t sliceStart = 1000)
{
    ListQueue queue;
    LooperProcessContext context(queue, sliceStart);
    MfxEvent copy = event;
    context.outputEvent(copy);
    EXPECT_EQ(queue.events.size(), 1u);
    return queue.events.at(0);
}

MfxEvent event(std::int32_t type)
{
    MfxEvent made{};
    made.time = 7;
    made.type = type;
    made.channel = 18; // masked to 2
    made.key = 60;
    made.velocity = 100;
    made.amount = 33;
    made.duration = 50;
    return made;
}

void expectEvent(const MidiEvent& made, int status, int data1, int data2, int duration)
{
    EXPECT_EQ(made.time, 7);
    EXPECT_EQ(made.status, status);
    EXPECT_EQ(made.data1, data1);
    EXPECT_EQ(made.data2, data2);
    EXPECT_EQ(made.extra, 0);
    EXPECT_EQ(made.duration, duration);
}

MidiEvent wheel(std::int16_t value)
{
    MfxEvent made = event(MfxEvent::Wheel);
    made.setWheel(value);
    return queued(made);
}

/// A host that notes how it was asked.
class AskedContext : public NullMidiContext
{
public:
    void GetBar(std::int32_t at, int* bar, int* beat, int* tick) override
    {
        allValid = bar != nullptr && beat != nullptr && tick != nullptr;
        NullMidiContext::GetBar(at, bar, beat, tick);
    }

    bool allValid = false;
};

} // namespace

TEST(NullMidiContext, IsFourFourAt480And120)
{
    NullMidiContext context;
    EXPECT_EQ(context.QuarterNoteLength(), 480);
    EXPECT_EQ(context.Tempo(), 120.0);
    EXPECT_EQ(context.TimeSigNumerator(), 4);
    EXPECT_EQ(context.TimeSigDenominator(), 4);
    EXPECT_EQ(context.BarPosition(1, 0, 0), 1920);
    EXPECT_EQ(context.BarPosition(1, 2, 3), 2883);
    EXPECT_EQ(context.BarPosition(INT32_MAX, 0, 0), INT32_MAX);
    EXPECT_EQ(context.BarPosition(INT32_MIN, 0, 0), INT32_MIN);
}

TEST(NullMidiContext, SplitsTicksAndSkipsNullPointers)
{
    NullMidiContext context;
    int bar = 9;
    int beat = 9;
    int tick = 9;
    context.GetBar(1919, &bar, &beat, &tick);
    EXPECT_EQ(bar, 0);
    EXPECT_EQ(beat, 3);
    EXPECT_EQ(tick, 479);
    context.GetBar(1920, &bar, &beat, nullptr);
    EXPECT_EQ(bar, 1);
    EXPECT_EQ(beat, 0);
    EXPECT_EQ(tick, 479);
    context.GetBar(-1, &bar, nullptr, &tick);
    EXPECT_EQ(bar, 0);
    EXPECT_EQ(tick, -1);
}

TEST(LooperProcessContext, TurnsEachKindIntoItsMessage)
{
    expectEvent(queued(event(MfxEvent::Note)), 0x92, 60, 100, 50);
    expectEvent(queued(event(MfxEvent::KeyAftertouch)), 0xA2, 60, 33, 0);
    expectEvent(queued(event(MfxEvent::Controller)), 0xB2, 60, 100, 0);
    expectEvent(queued(event(MfxEvent::Patch)), 0xC2, 60, 0, 0);
    expectEvent(queued(event(MfxEvent::ChannelAftertouch)), 0xD2, 33, 0, 0);
}

TEST(LooperProcessContext, SplitsTheWheel)
{
    expectEvent(wheel(0), 0xE2, 0x00, 0x40, 0);
    expectEvent(wheel(-8192), 0xE2, 0x00, 0x00, 0);
    expectEvent(wheel(8191), 0xE2, 0x7F, 0x7F, 0);
}

TEST(LooperProcessContext, InsertsOtherRecordsAsZeroesAtTheirTime)
{
    expectEvent(queued(event(9)), 0, 0, 0, 0);
    expectEvent(queued(event(-1)), 0, 0, 0, 0);
}

TEST(LooperProcessContext, SpeaksOnlyOfItsSlice)
{
    ListQueue queue;
    const LooperProcessContext context(queue, 1234);
    EXPECT_EQ(context.ppq, 240);
    EXPECT_EQ(context.convertMbtToTicks(0, 0, 0), 1234);
    EXPECT_EQ(context.convertMbtToTicks(9, 3, 100), 1234);
    int bar = 5;
    context.convertTicksToMbt(99, &bar, nullptr, nullptr);
    EXPECT_EQ(bar, 5);
}

TEST(ProcessContext, RoundsUpToABeat)
{
    const Recorder context;
    EXPECT_EQ(context.roundTick(480, 3), 480);
    EXPECT_EQ(context.roundTick(481, 3), 960);
}

TEST(ProcessContext, TimesBeforeTheStartThatCutToNoBeatStay)
{
    const Recorder context; // cuts towards zero: bar 0, beat 0, tick -1
    EXPECT_EQ(context.roundTick(-1, 3), -1);
}

TEST(ProcessContext, ABeatPastTheLimitIsTheLimitInTheNextBar)
{
    const Recorder context;
    EXPECT_EQ(context.roundTick(1441, 3), 1920 + 3 * 480);
}

TEST(ProcessContext, RoundsUnitsOfAnotherResolution)
{
    const Recorder context;
    // 482 of ours round to beat 2, past the limit of beat 1: beat 1 of the next bar, 2400 of ours.
    EXPECT_EQ(context.roundUnit(241, 240), 1200);
    EXPECT_EQ(context.roundUnit(240, 240), 240);
}

TEST(ProcessContext, RoundsUnitsOfItsOwnResolution)
{
    const Recorder context;
    EXPECT_EQ(context.roundUnit(1, 480), 480);
    EXPECT_EQ(context.roundUnit(0, 240), 0);
}

TEST(ProcessContext, UnitsAreRoundedAsTheContextRoundsTicks)
{
    struct ToHundreds : Recorder
    {
        std::int32_t roundTick(std::int32_t at, int maxBeat) const override
        {
            EXPECT_EQ(maxBeat, 1);
            return (at + 99) / 100 * 100;
        }
    };

    EXPECT_EQ(ToHundreds().roundUnit(101, 480), 200);
    EXPECT_EQ(ToHundreds().roundUnit(101, 240), 150); // 202 of its own, 300 rounded
}

TEST(ProcessContext_for_MidiContext, GivesTheHostThreeValidPointers)
{
    AskedContext host;
    const ProcessContext_for_MidiContext context(&host);
    int bar = 0;
    context.convertTicksToMbt(1920, &bar, nullptr, nullptr);
    EXPECT_TRUE(host.allValid);
    EXPECT_EQ(bar, 1);
    EXPECT_EQ(context.convertMbtToTicks(1, 0, 0), 1920);
    EXPECT_EQ(context.ppq, 480);
}

TEST(ProcessContext_for_MidiContext, WithoutAHostTheNullContextStandsIn)
{
    EXPECT_EQ(ProcessContext_for_MidiContext(nullptr).ppq, 480);
    EXPECT_EQ(defaultProcessContext.ppq, 480);
    EXPECT_EQ(defaultProcessContext.convertMbtToTicks(1, 0, 0), 1920);
}

TEST(MidiQueue, InsertCutsBytes)
{
    ListQueue queue;
    queue.Insert(5, 0x190, 0x13C, 0x140);
    EXPECT_EQ(queue.events[0].time, 5);
    EXPECT_EQ(queue.events[0].status, 0x90);
    EXPECT_EQ(queue.events[0].data1, 0x3C);
    EXPECT_EQ(queue.events[0].data2, 0x40);
}

TEST(MidiQueue, InsertNoteMasksTheChannelAndPassesAnyVelocity)
{
    ListQueue queue;
    queue.InsertNote(5, 99, 17, 60, 0);
    EXPECT_EQ(queue.events[0].status, 0x91);
    EXPECT_EQ(queue.events[0].data2, 0);
    EXPECT_EQ(queue.events[0].duration, 99);
}

TEST(MidiQueue, InsertDataUnpacksAWord)
{
    ListQueue queue;
    queue.InsertData(5, 0x00403C90);
    EXPECT_EQ(queue.events[0].status, 0x90);
    EXPECT_EQ(queue.events[0].data1, 0x3C);
    EXPECT_EQ(queue.events[0].data2, 0x40);
    EXPECT_EQ(queue.events[0].extra, 0);
    EXPECT_EQ(queue.events[0].duration, 0);
}
