// Hosts are built without our headers: they know the order of the virtual operations only. These
// mirrors declare it independently.
#include "effect/CLooper.h"
#include "tests/effect/Fakes.h"

#include <gtest/gtest.h>

using namespace Korvanel;

namespace {

struct MirrorEffect
{
    virtual ~MirrorEffect() = default;
    virtual void initialize(void*) = 0;
    virtual void terminate() = 0;
    virtual void enable() = 0;
    virtual void disable() = 0;
    virtual void start(std::int32_t) = 0;
    virtual void stop(std::int32_t) = 0;
    virtual void loop(std::int32_t, std::int32_t) = 0;
    virtual void slice(std::int32_t, std::int32_t, void*) = 0; // a reference is passed as a pointer
    virtual void input(void*) = 0;
    virtual bool hasEditor() = 0;
    virtual void* editor() = 0;
    virtual void save(void*) = 0;
    virtual void load(void*) = 0;
    virtual void loadBytes(void*, std::uint32_t) = 0;
    virtual void* find(const char*) = 0;
    // The effect's own, behind the host's.
    virtual bool current(void*) = 0;
    virtual bool choose(void*) = 0;
    virtual bool add(void*) = 0;
    virtual bool removeObserver(void*) = 0;
    virtual void shift(int) = 0;
    virtual void silent(bool) = 0;
    virtual bool document(void*) = 0;
};

struct MirrorLooper
{
    virtual bool current(void*) = 0;
    virtual bool choose(void*) = 0;
    virtual bool add(void*) = 0;
    virtual bool remove(void*) = 0;
    virtual void shift(int) = 0;
    virtual void silent(bool) = 0;

protected:
    ~MirrorLooper() = default;
};

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
    virtual void disconnect() { last = 1; }

    virtual void refresh() { last = 2; }

    virtual void loaded() { last = 3; }

    virtual void update() { last = 4; }

    virtual void start() { last = 5; }

    virtual void patterns() { last = 6; }

    virtual void program(int) { last = 7; }

    virtual void selected() { last = 8; }

    int last = 0;
};

struct MirrorObserver
{
    virtual void changed() { ++told; }

    int told = 0;
};

} // namespace

TEST(Slots, AHostDrivesTheEffectThroughThem)
{
    CLooper looper;
    looper.set_track(pattern(960, {noteAt(0, 10)}));
    auto* effect = reinterpret_cast<MirrorEffect*>(static_cast<MidiEffect*>(&looper));
    MirrorContext context;
    MirrorQueue queue;
    effect->initialize(&context);
    effect->enable();
    EXPECT_TRUE(looper.isEnabled());
    effect->slice(0, 100, &queue);
    EXPECT_EQ(queue.inserted, 1);
    effect->input(&queue);
    EXPECT_EQ(queue.removed, 1);
    EXPECT_TRUE(effect->hasEditor());
    EXPECT_EQ(effect->editor(), nullptr);
    EXPECT_EQ(effect->find("Korvanel::ILooper"), static_cast<ILooper*>(&looper));
    effect->shift(500);
    EXPECT_EQ(looper.getVeloPlus().value, 127);
    EXPECT_FALSE(effect->document(nullptr));
    char bytes[4] = {1, 0, 0, 0};
    effect->loadBytes(bytes, 4);
    effect->disable();
    EXPECT_FALSE(looper.isEnabled());
    effect->terminate();
    EXPECT_EQ(looper.getCurrentTick(), 0);
}

TEST(Slots, TheContextIsAskedThroughThem)
{
    MirrorContext host;
    const ProcessContext_for_MidiContext context(reinterpret_cast<MidiContext*>(&host));
    EXPECT_EQ(context.ppq, 960);
    EXPECT_EQ(context.convertMbtToTicks(3, 0, 0), 3000);
    int bar = 0;
    int beat = 0;
    int tick = 0;
    context.convertTicksToMbt(0, &bar, &beat, &tick);
    EXPECT_EQ(bar + beat + tick, 24);
    auto* asked = reinterpret_cast<MidiContext*>(&host);
    EXPECT_EQ(asked->Tempo(), 60);
    EXPECT_EQ(asked->TimeSigNumerator(), 3);
    EXPECT_EQ(asked->TimeSigDenominator(), 8);
}

TEST(Slots, TheLooperInterfaceHasThem)
{
    CLooper looper;
    auto* mirror = static_cast<MirrorLooper*>(looper.get_interface("Korvanel::ILooper"));
    MirrorObserver observer;
    EXPECT_TRUE(mirror->add(&observer));
    looper.AddLooperListener(nullptr);
    looper.RemoveLooperListener(nullptr);
    EXPECT_TRUE(mirror->remove(&observer));
    EXPECT_FALSE(mirror->current(nullptr));
    EXPECT_FALSE(mirror->choose(nullptr));
    mirror->shift(-500);
    EXPECT_EQ(looper.getVeloPlus().value, -127);
    mirror->silent(true);
}

TEST(Slots, ListenersAreToldThroughThem)
{
    CLooper looper;
    MirrorListener mirror;
    auto* listener = reinterpret_cast<CLooper::Listener*>(&mirror);
    looper.AddLooperListener(listener);
    looper.SetChPort(1, 1);
    EXPECT_EQ(mirror.last, 2);
    looper.VelocityShift(1);
    EXPECT_EQ(mirror.last, 4);
    looper.processStart(0);
    EXPECT_EQ(mirror.last, 5);
    looper.PatternTreeIsUpdated();
    EXPECT_EQ(mirror.last, 6);
    looper.Enable();
    looper.process_input({0, 0xC0, 5, 0, 0, 0});
    EXPECT_EQ(mirror.last, 7);
    listener->patternSelected();
    EXPECT_EQ(mirror.last, 8);
    looper.disconnect();
    EXPECT_EQ(mirror.last, 1);
    looper.RemoveLooperListener(listener);
}
