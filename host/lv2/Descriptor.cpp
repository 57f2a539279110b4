// The plug-in as hosts load it: C functions around Lv2Plugin.
#include "host/lv2/LiveInstances.h"
#include "host/lv2/Lv2Plugin.h"

#include <cstring>
#include <exception>
#include <memory>

namespace {

LiveInstances& instances()
{
    static LiveInstances all;
    return all;
}

Lv2Plugin& plugin(LV2_Handle handle)
{
    return *static_cast<Lv2Plugin*>(handle);
}

LV2_Handle instantiate(const LV2_Descriptor*, double sampleRate, const char*,
                       const LV2_Feature* const* features)
try {
    const Lv2Features offered(features);
    if (offered.map == nullptr)
        return nullptr;
    auto made = std::make_unique<Lv2Plugin>(sampleRate, offered);
    instances().add(made.get());
    return made.release();

} catch (const std::exception&) {

    return nullptr; // how hosts are told that there is no instance
}

void cleanup(LV2_Handle handle)
{
    instances().remove(handle);
    delete &plugin(handle);
}

LV2_State_Status save(LV2_Handle handle, LV2_State_Store_Function store, LV2_State_Handle state,
                      std::uint32_t, const LV2_Feature* const*)
try {
    return plugin(handle).save(store, state);

} catch (const std::exception&) {

    return LV2_STATE_ERR_UNKNOWN;
}

LV2_State_Status restore(LV2_Handle handle, LV2_State_Retrieve_Function retrieve,
                         LV2_State_Handle state, std::uint32_t, const LV2_Feature* const*)
try {
    return plugin(handle).restore(retrieve, state);

} catch (const std::exception&) {

    return LV2_STATE_ERR_UNKNOWN;
}

/// A late call may also meet a new instance at the address of one that is gone: it then does what
/// that one has asked for itself, or nothing.
LV2_Worker_Status work(LV2_Handle handle, LV2_Worker_Respond_Function, LV2_Worker_Respond_Handle,
                       std::uint32_t, const void*)
try {
    const bool done = instances().call(handle, [&] { plugin(handle).work(); });
    return done ? LV2_WORKER_SUCCESS : LV2_WORKER_ERR_UNKNOWN;

} catch (const std::exception&) {

    return LV2_WORKER_ERR_UNKNOWN;
}

LV2_Worker_Status workResponse(LV2_Handle, std::uint32_t, const void*)
{
    return LV2_WORKER_SUCCESS; // there is nothing to answer
}

std::uint32_t getOptions(LV2_Handle handle, LV2_Options_Option* options)
{
    return plugin(handle).options().get(options);
}

std::uint32_t setOptions(LV2_Handle handle, const LV2_Options_Option* options)
{
    return plugin(handle).options().set(options);
}

const void* extensionData(const char* uri)
{
    static const LV2_State_Interface state{&save, &restore};
    static const LV2_Worker_Interface worker{&work, &workResponse, nullptr};
    static const LV2_Options_Interface options{&getOptions, &setOptions};
    if (std::strcmp(uri, LV2_OPTIONS__interface) == 0)
        return &options;
    if (std::strcmp(uri, LV2_STATE__interface) == 0)
        return &state;
    if (std::strcmp(uri, LV2_WORKER__interface) == 0)
        return &worker;
    return nullptr;
}

const LV2_Descriptor kDescriptor{
    kLv2Uri,
    &instantiate,
    [](LV2_Handle handle, std::uint32_t port, void* data) { plugin(handle).connect(port, data); },
    [](LV2_Handle handle) { plugin(handle).activate(); },
    [](LV2_Handle handle, std::uint32_t frames) { plugin(handle).run(frames); },
    [](LV2_Handle handle) { plugin(handle).deactivate(); },
    &cleanup,
    &extensionData,
};

} // namespace

LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(std::uint32_t index)
{
    return index == 0 ? &kDescriptor : nullptr;
}
