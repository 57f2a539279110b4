/// Hosts are built without our headers: they know the order of the virtual operations only. These
/// classes declare it independently.
///
/// They have names that other files could know: of classes that nobody else can derive from, the
/// compiler would know all operations that a call can reach.
#pragma once
#include "effect/MidiQueue.h"
#include "midi/MfxEvent.h"
#include "shared/System/kvString.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// The object as another declaration of its class sees it, and nothing known of where it comes
/// from: the compiler would otherwise call what it knows to be there.
template <typename Seen>
Seen* seenAs(void* object)
{
    asm volatile("" : "+r"(object) : : "memory");
    return static_cast<Seen*>(object);
}

// What a host calls ------------------------------------------------------------------------------

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
    virtual Korvanel::String folder() = 0;
    virtual void render(void*, int) = 0;
    virtual void drop(void*, const char*) = 0;
    virtual void restart() = 0;
    virtual void press() = 0;
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

struct MirrorEditor
{
    virtual ~MirrorEditor() = default;
    virtual void size(int*, int*) = 0;
    virtual std::int32_t attach(void*, int, int) = 0;
    virtual void remove() = 0;
};

// What a host implements, or whoever listens -----------------------------------------------------

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

    virtual void insert(const Korvanel::MidiEvent&) { ++inserted; }

    virtual int count() { return 1 - removed; }

    virtual Korvanel::MidiEvent get(int) { return {0, 0xC0, 5, 0, 0, 0}; }

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

    std::vector<std::string> reached;
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

    mutable std::vector<std::string> reached;
};
