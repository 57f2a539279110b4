/// A library of the test's own for the plug-in, and an instance that plays from it.
#pragma once
#include "tests/host/lv2/Lv2Host.h"

#include <gtest/gtest.h>

#include <filesystem>

inline Sent on(std::int64_t frame, std::uint8_t key, std::uint8_t velocity = 100)
{
    return {frame, {0x90, key, velocity}};
}

inline Sent off(std::int64_t frame, std::uint8_t key)
{
    return {frame, {0x80, key, 64}};
}

using SentList = std::vector<Sent>;

/// The built bundle as a copy, installed in a folder "host" beside a library of its own: Test/a.mid
/// is one bar with a quarter note of key 40 at its start, Test/b.mid the same with key 41.
class InLv2Host : public testing::Test
{
protected:
    InLv2Host()
    {
        library.put("Loops/Test/a.mid", midiFileWithNote(40));
        library.put("Loops/Test/b.mid", midiFileWithNote(41));
        library.makeFolder("host/lib/lv2");
        std::filesystem::copy(KV_LV2_BUNDLE, library / "host/lib/lv2/Looper.lv2",
                              std::filesystem::copy_options::recursive);
        world = std::make_unique<Lv2World>(library / "host/lib/lv2/Looper.lv2/");
    }

    /// Chooses by a program change, as nobody else can reach the effect.
    static void choose(Lv2Instance& instance, std::uint8_t program)
    {
        instance.midi(0, {0xC0, program});
        instance.run(1);
        instance.now = 0;
        instance.take();
    }

    LibraryFolder library;
    std::unique_ptr<Lv2World> world;
};
