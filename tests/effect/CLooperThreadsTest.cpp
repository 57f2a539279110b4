// One thread plays while another does everything that a user does meanwhile. The thread sanitizer
// is the judge.
#include "effect/CLooper.h"
#include "shared/System/kvStream.h"
#include "tests/effect/Fakes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace Korvanel;

TEST(CLooperThreads, PlayingGoesOnWhileEverythingChanges)
{
    CLooper effect;
    const CMidiTrack one = pattern(480, {noteAt(0, 100), noteAt(960, 100)});
    const CMidiTrack two =
        pattern(240, {noteAt(0, 100, 70), noteAt(100, 10, 3), noteAt(2000, 10, 5)});
    effect.set_track(one);
    effect.Initialize(nullptr);
    effect.Enable();

    std::atomic<bool> done{false};
    std::atomic<int> played{0};
    std::thread audio([&] {
        ListQueue queue;
        for (std::int32_t at = 0; !done; at = (at + 64) % 1'000'000) {
            queue.events.clear();
            effect.process(at, at + 63, queue);
            played += static_cast<int>(queue.events.size());
            queue.Insert(at, 0xE0, 1, 2);
            queue.Insert(at, 0xC0, 1, 2);
            effect.processInput(queue);
            if (at % 6400 == 0)
                effect.processLoop(0, at);
        }
    });

    struct Listener : CLooper::Listener
    {
        void startPlaying() override { ++told; }

        void programChange(int) override { ++told; }

        std::atomic<int> told{0};
    } listener;

    std::string saved;
    for (int i = 0; i < 300; ++i) {
        effect.AddLooperListener(&listener);
        effect.set_track(i % 2 == 0 ? one : two);
        effect.TempoType(i % 3);
        effect.setVeloPlus(i % 50);
        effect.setRandomVelo(i % 2 == 0);
        effect.usePitchWheel(i % 3 == 0);
        effect.SilentPlay(i % 5 == 0);
        effect.SetPatternName("name");
        stringStream state;
        effect.SaveTo(state);
        stringStream render;
        effect.SaveTrack(render, 2);
        stringStream load(state.text());
        effect.LoadFrom(load);
        effect.getCurrentLoopTick();
        effect.RemoveLooperListener(&listener);
    }
    effect.SilentPlay(false);
    effect.set_track(one);
    const int before = played;
    while (played == before)
        std::this_thread::yield();
    done = true;
    audio.join();
    effect.Terminate();
    EXPECT_GT(played, 0);
}
