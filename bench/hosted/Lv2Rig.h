/// LV2 plug-ins in a host that does as little as a host can, so that what is measured is theirs.
#pragma once
#include "bench/hosted/Cycles.h"

#include <lv2/urid/urid.h>
#include <lv2/worker/worker.h>

#include <cstdint>
#include <lilv/lilv.h>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// Numbers for names.
class Urids
{
public:
    LV2_URID map(const char* uri);

    LV2_URID_Map feature{this, [](LV2_URID_Map_Handle self, const char* uri) {
                             return static_cast<Urids*>(self)->map(uri);
                         }};

private:
    std::map<std::string, LV2_URID> mNumbers;
};

class Lv2World
{
public:
    Lv2World() = default;
    Lv2World(const Lv2World&) = delete;
    Lv2World& operator=(const Lv2World&) = delete;

    ~Lv2World() { lilv_world_free(world); }

    /// Throws std::runtime_error when the bundle has no such plug-in.
    const LilvPlugin* load(const std::string& bundle, const std::string& uri);

    LilvWorld* world = lilv_world_new();
    Urids urids;
};

/// An instance with an atom port in, one out, and its other ports at their defaults.
class Lv2Rig
{
public:
    /// @param world  outlives this. Throws std::runtime_error when it cannot be used so.
    Lv2Rig(Lv2World& world, const LilvPlugin* plugin);
    Lv2Rig(const Lv2Rig&) = delete;
    Lv2Rig& operator=(const Lv2Rig&) = delete;
    ~Lv2Rig();

    void control(const char* symbol, float value);

    /// What a host does around a plug-in's own work: fills one port and clears the other.
    void fill(const Cycle& in);

    void run(const Cycle& in, std::uint32_t frames)
    {
        fill(in);
        lilv_instance_run(mInstance, frames);
    }

    /// What the last cycle put out.
    std::vector<Message> output() const;

private:
    static constexpr std::size_t kBytes = 65536;

    void connect(std::uint32_t index, const LilvPort* port);
    bool is(const LilvPort* port, const char* type) const;
    static LV2_Worker_Status work(LV2_Worker_Schedule_Handle self, std::uint32_t size,
                                  const void* data);

    Lv2World& mWorld;
    const LilvPlugin* mPlugin;
    std::vector<std::uint64_t> mIn;
    std::vector<std::uint64_t> mOut;
    std::vector<float> mControls;
    std::uint32_t mMidi;
    std::uint32_t mChunk;
    LV2_Worker_Schedule mSchedule{this, &work};
    LilvInstance* mInstance = nullptr;
};

} // namespace bench
