#include "bench/hosted/Lv2Rig.h"

#include <lv2/atom/util.h>
#include <lv2/core/lv2.h>
#include <lv2/midi/midi.h>

#include <cstring>
#include <stdexcept>

namespace bench {

LV2_URID Urids::map(const char* uri)
{
    return mNumbers.try_emplace(uri, static_cast<LV2_URID>(mNumbers.size() + 1)).first->second;
}

const LilvPlugin* Lv2World::load(const std::string& bundle, const std::string& uri)
{
    LilvNode* folder = lilv_new_file_uri(world, nullptr, bundle.c_str());
    lilv_world_load_bundle(world, folder);
    lilv_node_free(folder);
    LilvNode* name = lilv_new_uri(world, uri.c_str());
    const LilvPlugin* plugin = lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world), name);
    lilv_node_free(name);
    if (plugin == nullptr)
        throw std::runtime_error("there is no " + uri + " in " + bundle);
    return plugin;
}

Lv2Rig::Lv2Rig(Lv2World& world, const LilvPlugin* plugin)
    : mWorld(world)
    , mPlugin(plugin)
    , mIn(kBytes / sizeof(std::uint64_t))
    , mOut(kBytes / sizeof(std::uint64_t))
    , mControls(lilv_plugin_get_num_ports(plugin))
    , mMidi(world.urids.map(LV2_MIDI__MidiEvent))
    , mChunk(world.urids.map(LV2_ATOM__Chunk))
{
    const LV2_Feature map{LV2_URID__map, &world.urids.feature};
    const LV2_Feature schedule{LV2_WORKER__schedule, &mSchedule};
    const LV2_Feature* features[] = {&map, &schedule, nullptr};
    mInstance = lilv_plugin_instantiate(plugin, kSampleRate, features);
    if (mInstance == nullptr)
        throw std::runtime_error("a plug-in makes no instance");
    lilv_plugin_get_port_ranges_float(plugin, nullptr, nullptr, mControls.data());
    for (std::uint32_t index = 0; index < mControls.size(); ++index)
        connect(index, lilv_plugin_get_port_by_index(plugin, index));
    lilv_instance_activate(mInstance);
}

Lv2Rig::~Lv2Rig()
{
    if (mInstance == nullptr)
        return;
    lilv_instance_deactivate(mInstance);
    lilv_instance_free(mInstance);
}

bool Lv2Rig::is(const LilvPort* port, const char* type) const
{
    LilvNode* node = lilv_new_uri(mWorld.world, type);
    const bool result = lilv_port_is_a(mPlugin, port, node);
    lilv_node_free(node);
    return result;
}

void Lv2Rig::connect(std::uint32_t index, const LilvPort* port)
{
    if (is(port, LV2_CORE__ControlPort))
        lilv_instance_connect_port(mInstance, index, &mControls[index]);
    else if (!is(port, LV2_ATOM__AtomPort))
        throw std::runtime_error("a plug-in has other ports than atoms and controls");
    else if (is(port, LV2_CORE__InputPort))
        lilv_instance_connect_port(mInstance, index, mIn.data());
    else
        lilv_instance_connect_port(mInstance, index, mOut.data());
}

void Lv2Rig::control(const char* symbol, float value)
{
    LilvNode* name = lilv_new_string(mWorld.world, symbol);
    const LilvPort* port = lilv_plugin_get_port_by_symbol(mPlugin, name);
    lilv_node_free(name);
    if (port == nullptr)
        throw std::runtime_error(std::string("there is no port ") + symbol);
    mControls[lilv_port_get_index(mPlugin, port)] = value;
}

void Lv2Rig::fill(const Cycle& in)
{
    std::memcpy(mIn.data(), in.data(), in.size());
    auto& out = *reinterpret_cast<LV2_Atom*>(mOut.data());
    out.size = kBytes - sizeof(LV2_Atom);
    out.type = mChunk;
}

std::vector<Message> Lv2Rig::output() const
{
    std::vector<Message> all;
    const auto* out = reinterpret_cast<const LV2_Atom_Sequence*>(mOut.data());
    LV2_ATOM_SEQUENCE_FOREACH(out, event)
    {
        const auto* bytes = static_cast<const std::uint8_t*>(LV2_ATOM_BODY_CONST(&event->body));
        if (event->body.type == mMidi && event->body.size == 3)
            all.push_back({event->time.frames, {bytes[0], bytes[1], bytes[2]}});
    }
    return all;
}

/// At once: patterns are loaded before anything is timed.
LV2_Worker_Status Lv2Rig::work(LV2_Worker_Schedule_Handle self, std::uint32_t size,
                               const void* data)
{
    LilvInstance* instance = static_cast<Lv2Rig*>(self)->mInstance;
    const auto* worker = static_cast<const LV2_Worker_Interface*>(
        lilv_instance_get_extension_data(instance, LV2_WORKER__interface));
    const auto nobody = [](LV2_Worker_Respond_Handle, std::uint32_t, const void*) {
        return LV2_WORKER_SUCCESS;
    };
    return worker->work(lilv_instance_get_handle(instance), nobody, nullptr, size, data);
}

} // namespace bench
