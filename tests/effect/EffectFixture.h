/// An effect that plays, and somebody who listens to it.
#pragma once
#include "effect/CLooper.h"
#include "tests/effect/Fakes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// An effect in a 480 host, playing one bar of two notes at 0 and 960.
class Effect : public testing::Test
{
protected:
    Effect()
    {
        effect.setRandomVelo(false);
        effect.setVeloPlus(0);
        effect.set_track(pattern(480, {noteAt(0, 100), noteAt(960, 100)}));
        effect.Initialize(nullptr);
    }

    ~Effect() override { effect.Terminate(); }

    std::vector<std::int32_t> play(std::int32_t from, std::int32_t to)
    {
        queue.events.clear();
        effect.process(from, to, queue);
        std::vector<std::int32_t> times;
        for (const Korvanel::MidiEvent& event : queue.events)
            times.push_back(event.time);
        return times;
    }

    /// What is left of one event after the effect has seen it.
    std::size_t input(int status, int data1, int data2)
    {
        queue.events.clear();
        queue.Insert(0, status, data1, data2);
        effect.processInput(queue);
        return queue.events.size();
    }

    int firstVelocity()
    {
        ++bar;
        play(1920 * bar, 1920 * bar + 10);
        return queue.events.at(0).data2;
    }

    CLooper effect;
    ListQueue queue;
    int bar = 0;
};

/// Writes a letter for each notification.
struct Witness : CLooper::Listener
{
    void disconnect() override { told += "d"; }

    void RefreshChPort() override { told += "c"; }

    void loaded() override { told += "l"; }

    void update() override { told += "u"; }

    void startPlaying() override { told += "s"; }

    void patternsChanged() override { told += "t"; }

    void programChange(int program) override { told += "p" + std::to_string(program); }

    void patternSelected() override { told += "n"; }

    std::string told;
};
