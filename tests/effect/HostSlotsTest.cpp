// The effect's calls to what others implement, by the order of the virtual operations alone.
#include "effect/CLooper.h"
#include "tests/effect/Fakes.h"
#include "tests/effect/Mirrors.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Korvanel;

namespace {

using Names = std::vector<std::string>;

} // namespace

TEST(HostSlots, TheContextIsAskedThroughThem)
{
    MirrorContext host;
    auto* const asked = seenAs<MidiContext>(&host);
    const ProcessContext_for_MidiContext context(asked);
    EXPECT_EQ(context.ppq, 960);
    EXPECT_EQ(context.convertMbtToTicks(3, 0, 0), 3000);
    int bar = 0;
    int beat = 0;
    int tick = 0;
    context.convertTicksToMbt(0, &bar, &beat, &tick);
    EXPECT_EQ(bar, 7);
    EXPECT_EQ(beat, 8);
    EXPECT_EQ(tick, 9);
    EXPECT_EQ(asked->Tempo(), 60);
    EXPECT_EQ(asked->TimeSigNumerator(), 3);
    EXPECT_EQ(asked->TimeSigDenominator(), 8);
}

TEST(HostSlots, TheNullContextAnswersThroughThem)
{
    NullMidiContext context;
    auto* const mirror = seenAs<MirrorContext>(static_cast<MidiContext*>(&context));
    EXPECT_EQ(mirror->quarter(), 480);
    EXPECT_EQ(mirror->tempo(), 120);
    EXPECT_EQ(mirror->barPosition(1, 0, 0), 1920);
    int bar = 0;
    int beat = 0;
    int tick = 0;
    mirror->getBar(1919, &bar, &beat, &tick);
    EXPECT_EQ(tick, 479);
    EXPECT_EQ(mirror->numerator(), 4);
    EXPECT_EQ(mirror->denominator(), 4);
}

TEST(HostSlots, TheQueueIsFilledAndReadThroughThem)
{
    CLooper looper;
    looper.set_track(pattern(480, {noteAt(0, 10)}));
    looper.Initialize(nullptr);
    looper.Enable();
    MirrorQueue queue;
    looper.process(0, 100, *seenAs<MidiQueue>(&queue));
    EXPECT_EQ(queue.inserted, 1);
    looper.processInput(*seenAs<MidiQueue>(&queue));
    EXPECT_EQ(queue.removed, 1);
    looper.Terminate();
}

TEST(HostSlots, AnObserverIsToldThroughItsFirst)
{
    CLooper::PatternChangeNotifier notifier;
    MirrorObserver observer;
    notifier.observers.add(seenAs<IKVSSExStrumwerks::PatternObserver>(&observer));
    notifier.patternSelected();
    EXPECT_EQ(observer.told, 1);
}

TEST(HostSlots, TheEngineSpeaksToAnyProcessContextThroughThem)
{
    MirrorProcess mirror;
    auto& context = *seenAs<ProcessContext>(&mirror);
    CMidiTrack track = pattern(480, {noteAt(0, 10)});
    CriticalSection lock;
    Looper looper(track, lock, context, nullptr);
    looper.process(0, 100, context, 0);
    EXPECT_EQ(context.convertMbtToTicks(1, 2, 3), 10'203);
    int bar = 0;
    int beat = 0;
    int tick = 9;
    context.convertTicksToMbt(0, &bar, &beat, &tick);
    EXPECT_EQ(bar, 7);
    EXPECT_EQ(context.roundTick(5, 1), 6);
    EXPECT_EQ(mirror.reached, (Names{"output", "toTicks", "toBars", "round"}));
}

TEST(HostSlots, AHostsContextConvertsThroughThem)
{
    const auto& mirror =
        *seenAs<const MirrorProcess>(static_cast<ProcessContext*>(&defaultProcessContext));
    int tick = 0;
    EXPECT_EQ(mirror.ppq, 480);
    EXPECT_EQ(mirror.toTicks(1, 0, 0), 1920);
    mirror.toBars(1919, nullptr, nullptr, &tick);
    EXPECT_EQ(tick, 479);
    EXPECT_EQ(mirror.round(481, 3), 960);
}

TEST(HostSlots, ASlicesContextTakesEventsThroughThem)
{
    ListQueue queue;
    LooperProcessContext slice(queue, 77);
    auto& mirror = *seenAs<MirrorProcess>(static_cast<ProcessContext*>(&slice));
    MfxEvent event = noteAt(0);
    mirror.output(event);
    EXPECT_EQ(queue.events.size(), 1u);
    EXPECT_EQ(mirror.toTicks(9, 9, 9), 77);
    int bar = 5;
    mirror.toBars(0, &bar, nullptr, nullptr);
    EXPECT_EQ(bar, 5);
    EXPECT_EQ(mirror.round(1, 3), 77);
}

TEST(HostSlots, ListenersAreToldThroughThem)
{
    MirrorListener mirror;
    auto* const listener = seenAs<CLooper::Listener>(&mirror);
    listener->disconnect();
    listener->RefreshChPort();
    listener->loaded();
    listener->update();
    listener->startPlaying();
    listener->patternsChanged();
    listener->programChange(0);
    listener->patternSelected();
    EXPECT_EQ(mirror.reached, (Names{"disconnect", "refresh", "loaded", "update", "start",
                                     "patterns", "program", "selected"}));
}
