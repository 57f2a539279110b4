/// An LV2 host on lilv: loads the built bundle, runs cycles, and says where it is only on change.
#pragma once
#include "tests/host/bridge/ListSink.h"
#include "tests/support/LibraryFolder.h"

#include <lv2/atom/atom.h>
#include <lv2/atom/forge.h>
#include <lv2/atom/util.h>
#include <lv2/log/log.h>
#include <lv2/midi/midi.h>
#include <lv2/options/options.h>
#include <lv2/state/state.h>
#include <lv2/time/time.h>
#include <lv2/urid/urid.h>
#include <lv2/worker/worker.h>

#include <array>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <lilv/lilv.h>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

/// Numbers for names, as every host gives them.
class UridMap
{
public:
    LV2_URID map(const char* uri)
    {
        const auto [at, isNew] =
            mNumbers.try_emplace(uri, static_cast<LV2_URID>(mNumbers.size() + 1));
        if (isNew)
            mNames.push_back(uri);
        return at->second;
    }

    const char* unmap(LV2_URID number) const { return mNames.at(number - 1).c_str(); }

    LV2_URID_Map mapFeature{this, [](LV2_URID_Map_Handle self, const char* uri) {
                                return static_cast<UridMap*>(self)->map(uri);
                            }};
    LV2_URID_Unmap unmapFeature{this, [](LV2_URID_Unmap_Handle self, LV2_URID number) {
                                    return static_cast<UridMap*>(self)->unmap(number);
                                }};

private:
    std::map<std::string, LV2_URID> mNumbers;
    std::vector<std::string> mNames;
};

/// What a Position may say; what is not set is not sent.
struct ToldPosition
{
    float speed = 1;
    std::map<std::string, double> doubles;
    std::map<std::string, float> floats;
    std::map<std::string, std::int64_t> longs;
    std::map<std::string, std::int32_t> ints;
};

/// The world that a host loads once.
class Lv2World
{
public:
    /// @param folder  of the bundle, with a trailing slash
    explicit Lv2World(const std::string& folder = KV_LV2_BUNDLE)
    {
        LilvNode* bundle = lilv_new_file_uri(world, nullptr, folder.c_str());
        lilv_world_load_specifications(world);
        lilv_world_load_bundle(world, bundle);
        lilv_node_free(bundle);
        LilvNode* uri = lilv_new_uri(world, "https://korvanel.org/lv2/looper");
        plugin = lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world), uri);
        lilv_node_free(uri);
        if (plugin == nullptr)
            throw std::runtime_error("lilv does not find the plug-in");
    }

    Lv2World(const Lv2World&) = delete;
    Lv2World& operator=(const Lv2World&) = delete;

    ~Lv2World() { lilv_world_free(world); }

    LilvWorld* world = lilv_world_new();
    const LilvPlugin* plugin = nullptr;
    UridMap urids;
};

/// What a host's worker does with one piece of work.
inline LV2_Worker_Status callWorker(const LV2_Worker_Interface& worker, LV2_Handle handle)
{
    const auto nobody = [](LV2_Worker_Respond_Handle, std::uint32_t, const void*) {
        return LV2_WORKER_SUCCESS;
    };
    return worker.work(handle, nobody, nullptr, 0, nullptr);
}

class Lv2Instance
{
public:
    static constexpr std::size_t kBytes = 65536;

    /// @param options  for the instance's first moments; null: none
    explicit Lv2Instance(Lv2World& world, double rate = 48000, bool offersWorker = true,
                         const LV2_Options_Option* options = nullptr)
        : mWorld(world)
        , mIn(kBytes / sizeof(std::uint64_t))
        , mOut(kBytes / sizeof(std::uint64_t))
    {
        std::vector<const LV2_Feature*> features{&mMap, &mUnmap, &mLog};
        if (offersWorker)
            features.push_back(&mSchedule);
        const LV2_Feature optionsFeature{LV2_OPTIONS__options,
                                         const_cast<LV2_Options_Option*>(options)};
        if (options != nullptr)
            features.push_back(&optionsFeature);
        features.push_back(nullptr);
        instance = lilv_plugin_instantiate(world.plugin, rate, features.data());
        if (instance == nullptr)
            throw std::runtime_error("the plug-in makes no instance");
        lv2_atom_forge_init(&mForge, &world.urids.mapFeature);
        lilv_instance_connect_port(instance, 0, mIn.data());
        lilv_instance_connect_port(instance, 1, mOut.data());
        controls.resize(lilv_plugin_get_num_ports(world.plugin));
        lilv_plugin_get_port_ranges_float(world.plugin, nullptr, nullptr, controls.data());
        for (std::uint32_t port = 2; port < controls.size(); ++port)
            lilv_instance_connect_port(instance, port, &controls[port]);
        control("velocity_add") = 0;
        control("random_velocity") = 0;
        lilv_instance_activate(instance);
        begin();
    }

    Lv2Instance(const Lv2Instance&) = delete;
    Lv2Instance& operator=(const Lv2Instance&) = delete;

    ~Lv2Instance()
    {
        lilv_instance_deactivate(instance);
        lilv_instance_free(instance);
    }

    float& control(const char* symbol)
    {
        LilvNode* name = lilv_new_string(mWorld.world, symbol);
        const LilvPort* port = lilv_plugin_get_port_by_symbol(mWorld.plugin, name);
        lilv_node_free(name);
        return controls.at(lilv_port_get_index(mWorld.plugin, port));
    }

    // What comes with the next cycle, in the order of frames
    void midi(std::int64_t frame, const std::vector<std::uint8_t>& bytes)
    {
        lv2_atom_forge_frame_time(&mForge, frame);
        lv2_atom_forge_atom(&mForge, static_cast<std::uint32_t>(bytes.size()),
                            mWorld.urids.map(LV2_MIDI__MidiEvent));
        lv2_atom_forge_write(&mForge, bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    }

    void position(std::int64_t frame, const ToldPosition& told)
    {
        lv2_atom_forge_frame_time(&mForge, frame);
        LV2_Atom_Forge_Frame object{};
        lv2_atom_forge_object(&mForge, &object, 0, mWorld.urids.map(LV2_TIME__Position));
        lv2_atom_forge_key(&mForge, mWorld.urids.map(LV2_TIME__speed));
        lv2_atom_forge_float(&mForge, told.speed);
        for (const auto& [name, value] : told.doubles) {
            key(name);
            lv2_atom_forge_double(&mForge, value);
        }
        for (const auto& [name, value] : told.floats) {
            key(name);
            lv2_atom_forge_float(&mForge, value);
        }
        for (const auto& [name, value] : told.longs) {
            key(name);
            lv2_atom_forge_long(&mForge, value);
        }
        for (const auto& [name, value] : told.ints) {
            key(name);
            lv2_atom_forge_int(&mForge, value);
        }
        lv2_atom_forge_pop(&mForge, &object);
    }

    /// Bar, beat in the bar and tempo, in 4/4, in the types that hosts mostly send.
    void playAt(std::int64_t frame, std::int64_t bar, float barBeat, float tempo = 120)
    {
        position(frame, {1,
                         {},
                         {{"barBeat", barBeat}, {"beatsPerBar", 4}, {"beatsPerMinute", tempo}},
                         {{"bar", bar}},
                         {{"beatUnit", 4}}});
    }

    void stop(std::int64_t frame) { position(frame, {0, {}, {}, {}, {}}); }

    /// One cycle, and then what the worker was asked for.
    void run(std::uint32_t frames)
    {
        runOnly(frames);
        collect();
        work();
        now += frames;
        begin();
    }

    void runOnly(std::uint32_t frames)
    {
        lv2_atom_forge_pop(&mForge, &mSequence);
        auto* out = reinterpret_cast<LV2_Atom_Sequence*>(mOut.data());
        out->atom.size = static_cast<std::uint32_t>(room);
        out->atom.type = mChunk;
        lilv_instance_run(instance, frames);
    }

    template <class Interface>
    const Interface& extension(const char* uri) const
    {
        return *static_cast<const Interface*>(lilv_instance_get_extension_data(instance, uri));
    }

    void work()
    {
        for (; asked > 0; --asked)
            callWorker(extension<LV2_Worker_Interface>(LV2_WORKER__interface),
                       lilv_instance_get_handle(instance));
    }

    std::vector<Sent> take() { return std::exchange(sent, {}); }

    LilvInstance* instance = nullptr;
    std::vector<float> controls; ///< by port
    std::vector<Sent> sent;      ///< frames from the start
    std::int64_t now = 0;
    std::size_t room = kBytes - sizeof(LV2_Atom); ///< of the output port, in bytes
    int asked = 0;                                ///< work
    bool worksAtOnce = false;                     ///< when it is asked
    std::string logged;

private:
    void key(const std::string& name)
    {
        lv2_atom_forge_key(&mForge, mWorld.urids.map((LV2_TIME_PREFIX + name).c_str()));
    }

    void begin()
    {
        lv2_atom_forge_set_buffer(&mForge, reinterpret_cast<std::uint8_t*>(mIn.data()), kBytes);
        lv2_atom_forge_sequence_head(&mForge, &mSequence, 0);
    }

    void collect()
    {
        const auto* out = reinterpret_cast<const LV2_Atom_Sequence*>(mOut.data());
        LV2_ATOM_SEQUENCE_FOREACH(out, event)
        {
            const auto* bytes = static_cast<const std::uint8_t*>(LV2_ATOM_BODY_CONST(&event->body));
            sent.push_back({now + event->time.frames, {bytes, bytes + event->body.size}});
        }
    }

    static LV2_Worker_Status schedule(LV2_Worker_Schedule_Handle self, std::uint32_t, const void*)
    {
        auto& instance = *static_cast<Lv2Instance*>(self);
        ++instance.asked;
        if (instance.worksAtOnce)
            instance.work();
        return LV2_WORKER_SUCCESS;
    }

    static int print(LV2_Log_Handle self, LV2_URID, const char* format, ...)
        __attribute__((format(printf, 3, 4)))
    {
        std::va_list arguments;
        va_start(arguments, format);
        const int length = printV(self, 0, format, arguments);
        va_end(arguments);
        return length;
    }

    static int printV(LV2_Log_Handle self, LV2_URID, const char* format, std::va_list arguments)
        __attribute__((format(printf, 3, 0)))
    {
        std::array<char, 500> line{};
        std::vsnprintf(line.data(), line.size(), format, arguments);
        static_cast<Lv2Instance*>(self)->logged += line.data();
        return 0;
    }

    Lv2World& mWorld;
    std::vector<std::uint64_t> mIn;
    std::vector<std::uint64_t> mOut;
    LV2_Atom_Forge mForge{};
    LV2_Atom_Forge_Frame mSequence{};
    const LV2_URID mChunk = mWorld.urids.map(LV2_ATOM__Chunk);
    LV2_Worker_Schedule mWorkerSchedule{this, &schedule};
    LV2_Log_Log mLogger{this, &print, &printV};
    LV2_Feature mMap{LV2_URID__map, &mWorld.urids.mapFeature};
    LV2_Feature mUnmap{LV2_URID__unmap, &mWorld.urids.unmapFeature};
    LV2_Feature mSchedule{LV2_WORKER__schedule, &mWorkerSchedule};
    LV2_Feature mLog{LV2_LOG__log, &mLogger};
};
