#include "host/lv2/Lv2Plugin.h"

#include "host/lv2/Lv2Output.h"

#include <lv2/atom/util.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

namespace {

/// What a port that the host has not connected says: no number, which is ignored.
constexpr float kUnconnected = std::numeric_limits<float>::quiet_NaN();

template <typename Data>
void take(const Data*& field, const LV2_Feature& feature, const char* uri)
{
    if (std::strcmp(feature.URI, uri) == 0)
        field = static_cast<const Data*>(feature.data);
}

} // namespace

Lv2Features::Lv2Features(const LV2_Feature* const* features)
{
    for (; features != nullptr && *features != nullptr; ++features) {
        take(map, **features, LV2_URID__map);
        take(schedule, **features, LV2_WORKER__schedule);
        take(log, **features, LV2_LOG__log);
        take(options, **features, LV2_OPTIONS__options);
    }
}

Lv2Plugin::Lv2Plugin(double sampleRate, const Lv2Features& features)
    : mFeatures(features)
    , mUris(*features.map)
    , mOptions(mUris, sampleRate, features.options)
{
    mBridge.prepare(mOptions.sampleRate());
    mParameters.fill(&kUnconnected);
    std::transform(Parameters::table().begin(), Parameters::table().end(), mSaid.begin(),
                   [](const Parameter& parameter) {
                       return std::bit_cast<std::uint32_t>(static_cast<float>(parameter.normal));
                   });
    if (mFeatures.schedule == nullptr)
        mWorker = std::make_unique<BackgroundWorker>([this] { work(); });
}

void Lv2Plugin::connect(std::uint32_t port, void* data)
{
    switch (port) {
    case kLv2In:
        mIn = static_cast<const LV2_Atom_Sequence*>(data);
        return;
    case kLv2Out:
        mOut = static_cast<LV2_Atom_Sequence*>(data);
        return;
    case kLv2Enabled:
        mEnabled = static_cast<const float*>(data);
        return;
    case kLv2FreeWheeling:
        mFreeWheeling = static_cast<const float*>(data);
        return;
    default:
        if (const std::size_t index = port - kLv2FirstParameter; index < mParameters.size())
            mParameters[index] = data != nullptr ? static_cast<const float*>(data) : &kUnconnected;
    }
}

void Lv2Plugin::activate()
{
    mTime.prepare(mOptions.sampleRate());
    mBridge.activate();
}

// The audio thread --------------------------------------------------------------------------------

void Lv2Plugin::run(std::uint32_t frames)
{
    if (mOut == nullptr)
        return;
    takeControls();
    Lv2Output output(*mOut, mUris);
    mBridge.beginBlock(frames, output);
    takeEvents();
    mBridge.endBlock();
    askForWork();
}

/// A port counts when it moves, and at first when it is not where ports stand that nobody has
/// touched. So what the window has changed holds before the host has written it back, and so does
/// a state that comes alone, without ports; where a project's ports and its state differ, the ports
/// win at first, being what the host shows, and later whoever comes last.
void Lv2Plugin::takeControls()
{
    if (mEnabled != nullptr)
        mBridge.setBypassed(!(*mEnabled > 0));
    if (mFreeWheeling != nullptr)
        mBridge.setOffline(*mFreeWheeling > 0);
    if (!parametersChanged())
        return;
    for (std::size_t index = 0; index < mParameters.size(); ++index) {
        const float value = *mParameters[index];
        if (std::exchange(mSaid[index], std::bit_cast<std::uint32_t>(value)) !=
            std::bit_cast<std::uint32_t>(value))
            mBridge.parameters().fromHost(index, value);
    }
}

/// Without a branch for each: in most cycles none has.
bool Lv2Plugin::parametersChanged() const
{
    std::uint32_t changed = 0;
    for (std::size_t index = 0; index < mParameters.size(); ++index)
        changed |= std::bit_cast<std::uint32_t>(*mParameters[index]) ^ mSaid[index];
    return changed != 0;
}

void Lv2Plugin::takeEvents()
{
    if (mIn == nullptr)
        return;
    LV2_ATOM_SEQUENCE_FOREACH(mIn, event)
    {
        const auto frame = static_cast<std::uint32_t>(std::clamp<std::int64_t>(
            event->time.frames, 0, std::numeric_limits<std::int32_t>::max()));
        const LV2_Atom& atom = event->body;
        if (atom.type == mUris.midiEvent) {
            mBridge.message(
                frame, {static_cast<const std::uint8_t*>(LV2_ATOM_BODY_CONST(&atom)), atom.size});
            askForWork(); // some hosts do it at once, and it counts from this frame then
        } else if (mTime.isPosition(atom))
            mBridge.position(frame, mTime.read(reinterpret_cast<const LV2_Atom_Object&>(atom),
                                               mBridge.expectedQuarters(frame)));
    }
}

void Lv2Plugin::askForWork()
{
    if (!mBridge.wantsWork() || mWorkAsked.exchange(true))
        return;
    if (mWorker != nullptr)
        return mWorker->wake();
    const std::uint32_t nothing = 0; // some hosts take no empty messages
    const LV2_Worker_Schedule& worker = *mFeatures.schedule;
    if (worker.schedule_work(worker.handle, sizeof nothing, &nothing) != LV2_WORKER_SUCCESS)
        mWorkAsked = false; // there is no room; ask again in the next cycle
}

// Other threads -----------------------------------------------------------------------------------

void Lv2Plugin::work()
{
    mWorkAsked = false; // first: what is asked for from now on needs another call
    mBridge.work();
}

LV2_State_Status Lv2Plugin::save(LV2_State_Store_Function store, LV2_State_Handle handle)
{
    const std::string state = mBridge.saveState();
    return store(handle, mUris.state, state.data(), state.size(), mUris.atomChunk,
                 LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE);
}

LV2_State_Status Lv2Plugin::restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle)
{
    std::size_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t flags = 0;
    const void* state = retrieve(handle, mUris.state, &size, &type, &flags);
    if (state == nullptr)
        return LV2_STATE_ERR_NO_PROPERTY;
    if (type != mUris.atomChunk)
        return LV2_STATE_ERR_BAD_TYPE;
    if (mBridge.loadState({static_cast<const char*>(state), size}))
        return LV2_STATE_SUCCESS;
    logError("Korvanel Looper: the saved state is damaged; nothing of it is used\n");
    return LV2_STATE_ERR_UNKNOWN;
}

void Lv2Plugin::logError(const char* text)
{
    if (mFeatures.log != nullptr)
        mFeatures.log->printf(mFeatures.log->handle, mUris.logError, "%s", text);
}
