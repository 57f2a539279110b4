// What the effect calls is in part a host's, built without our headers: mirrors of it, which know
// the order of the virtual operations only.
#include "effect/CLooper.h"
#include "tests/effect/Fakes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Korvanel;

namespace {

using Names = std::vector<std::string>;

struct MirrorContext
{
    virtual int quarter() { return 960; }

    virtual double tempo() { return 60; }

    virtual std::int32_t barPosition(int bar, int, int) { return bar * 1000; }

    virtual void getBar(std::int32_t, int* bar, int* beat, int* tick)
    {
        *bar = 7;
        *beat = 8;
        *tick = 9;
    }

    virtual int numerator() { return 3; }

    virtual int denominator() { return 8; }
};

struct MirrorQueue
{
    virtual void one() { ADD_FAILURE() << "the host's own slot"; }

    virtual void two() { ADD_FAILURE() << "the host's own slot"; }

    virtual void insert(const MidiEvent&) { ++inserted; }

    virtual int count() { return 1 - removed; }

    virtual MidiEvent get(int) { return {0, 0xC0, 5, 0, 0, 0}; }

    virtual void six() { ADD_FAILURE() << "the host's own slot"; }

    virtual void remove(int) { ++removed; }

    int inserted = 0;
    int removed = 0;
};

struct MirrorListener
{
    virtual void disconnect() { reached.emplace_back("disconnect"); }

    virtual void refresh() { reached.emplace_back("refresh"); }

    virtual void loaded() { reached.emplace_back("loaded"); }

    virtual void update() { reached.emplace_back("update"); }

    virtual void start() { reached.emplace_back("start"); }

    virtual void patterns() { reached.emplace_back("patterns"); }

    virtual void program(int) { reached.emplace_back("program"); }

    virtual void selected() { reached.emplace_back("selected"); }

    Names reached;
};

/// The one operation of an observer that is known.
struct MirrorObserver
{
    virtual void changed() { ++told; }

    int told = 0;
};

/// The times of a slice are converted and its events taken by one of these.
struct MirrorProcess
{
    std::int32_t ppq = 480;

    virtual ~MirrorProcess() = default;

    virtual void output(MfxEvent&) { reached.emplace_back("output"); }

    virtual std::int32_t toTicks(int bar, int beat, int tick) const
    {
        reached.emplace_back("toTicks");
        return 10'000 * bar + 100 * beat + tick;
    }

    virtual void toBars(std::int32_t, int* bar, int* beat, int* tick) const
    {
        reached.emplace_back("toBars");
        *bar = 7;
        *beat = 1;
        *tick = 0;
    }

    virtual std::int32_t round(std::int32_t at, int) const
    {
        reached.emplace_back("round");
        return at + 1;
    }

    mutable Names reached;
};

} // namespace

TEST(HostSlots, TheContextIsAskedThroughThem)
{
    MirrorContext host;
    const ProcessContext_for_MidiContext context(reinterpret_cast<MidiContext*>(&host));
    EXPECT_EQ(context.ppq, 960);
    EXPECT_EQ(context.convertMbtToTicks(3, 0, 0), 3000);
    int bar = 0;
    int beat = 0;
    int tick = 0;
    context.convertTicksToMbt(0, &bar, &beat, &tick);
    EXPECT_EQ(bar, 7);
    EXPECT_EQ(beat, 8);
    EXPECT_EQ(tick, 9);
    auto* asked = reinterpret_cast<MidiContext*>(&host);
    EXPECT_EQ(asked->Tempo(), 60);
    EXPECT_EQ(asked->TimeSigNumerator(), 3);
    EXPECT_EQ(asked->TimeSigDenominator(), 8);
}

TEST(HostSlots, TheNullContextAnswersThroughThem)
{
    NullMidiContext context;
    auto* const mirror = reinterpret_cast<MirrorContext*>(static_cast<MidiContext*>(&context));
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
    looper.process(0, 100, reinterpret_cast<MidiQueue&>(queue));
    EXPECT_EQ(queue.inserted, 1);
    looper.processInput(reinterpret_cast<MidiQueue&>(queue));
    EXPECT_EQ(queue.removed, 1);
    looper.Terminate();
}

TEST(HostSlots, AnObserverIsToldThroughItsFirst)
{
    CLooper::PatternChangeNotifier notifier;
    MirrorObserver observer;
    notifier.observers.add(reinterpret_cast<IKVSSExStrumwerks::PatternObserver*>(&observer));
    notifier.patternSelected();
    EXPECT_EQ(observer.told, 1);
}

TEST(HostSlots, TheEngineSpeaksToAnyProcessContextThroughThem)
{
    MirrorProcess mirror;
    auto& context = reinterpret_cast<ProcessContext&>(mirror);
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
    const auto& mirror = reinterpret_cast<const MirrorProcess&>(defaultProcessContext);
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
    auto& mirror = reinterpret_cast<MirrorProcess&>(slice);
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
    auto* const listener = reinterpret_cast<CLooper::Listener*>(&mirror);
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
