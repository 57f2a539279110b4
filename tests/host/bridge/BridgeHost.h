/// A host for bridge tests: it plays a song in blocks and says where it is only when that changes.
#pragma once
#include "host/bridge/PluginBridge.h"
#include "tests/effect/Fakes.h"
#include "tests/host/bridge/ListSink.h"
#include "tests/support/LibraryFolder.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <vector>

/// A library of the test's own, which a bridge takes for the user's.
class OwnLibrary
{
public:
    OwnLibrary()
    {
        mEnvironment.set("XDG_DATA_HOME", mHome.path());
        std::filesystem::create_directories(path());
    }

    std::string path() const { return mHome / "Korvanel/Loops"; }

    void put(const std::string& name, const std::string& content) const
    {
        mHome.put("Korvanel/Loops/" + name, content);
    }

private:
    LibraryFolder mHome;
    Environment mEnvironment;
};

inline HostPosition playingAt(double quarters, double tempo = 120)
{
    HostPosition position;
    position.playing = true;
    position.quarters = quarters;
    position.tempo = tempo;
    return position;
}

inline HostPosition stoppedAt(double quarters)
{
    HostPosition position;
    position.quarters = quarters;
    return position;
}

class BridgeHost
{
public:
    /// Something that happens at a frame of the song.
    struct Happening
    {
        std::int64_t frame;
        std::function<void(PluginBridge& bridge, std::uint32_t frame)> happen;
    };

    explicit BridgeHost(double sampleRate = 48000)
    {
        CLooper& effect = bridge.effect();
        effect.setVeloPlus(0);
        effect.setRandomVelo(false);
        bridge.prepare(sampleRate);
        bridge.activate();
    }

    void report(std::int64_t frame, const HostPosition& position)
    {
        at(frame,
           [position](PluginBridge& to, std::uint32_t when) { to.position(when, position); });
    }

    void message(std::int64_t frame, const std::vector<std::uint8_t>& bytes)
    {
        at(frame, [bytes](PluginBridge& to, std::uint32_t when) { to.message(when, bytes); });
    }

    /// Plays one block of the song.
    void block(std::uint32_t frames)
    {
        sink.blockStart = now;
        bridge.beginBlock(frames, sink);
        for (const Happening& happening : mSong)
            if (happening.frame >= now && happening.frame < now + frames)
                happening.happen(bridge, static_cast<std::uint32_t>(happening.frame - now));
        bridge.endBlock();
        now += frames;
    }

    std::vector<Sent> take() { return std::exchange(sink.sent, {}); }

    OwnLibrary library;
    PluginBridge bridge;
    ListSink sink;
    std::int64_t now = 0;

private:
    void at(std::int64_t frame, std::function<void(PluginBridge&, std::uint32_t)> happen)
    {
        mSong.push_back({frame, std::move(happen)});
        std::stable_sort(mSong.begin(), mSong.end(),
                         [](const Happening& a, const Happening& b) { return a.frame < b.frame; });
    }

    std::vector<Happening> mSong;
};

using SentList = std::vector<Sent>;

inline Sent on(std::int64_t frame, std::uint8_t key, std::uint8_t velocity = 100)
{
    return {frame, {0x90, key, velocity}};
}

inline Sent off(std::int64_t frame, std::uint8_t key)
{
    return {frame, {0x80, key, 64}};
}

/// One bar of 4/4 at 480 ticks to the quarter: notes on the four quarters, each half a quarter
/// long.
inline Korvanel::CMidiTrack fourQuarters()
{
    return pattern(480, {noteAt(0, 240, 60), noteAt(480, 240, 62), noteAt(960, 240, 64),
                         noteAt(1440, 240, 65)});
}
