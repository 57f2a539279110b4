/// One instance of the LV2 plug-in.
#pragma once
#include "host/bridge/BackgroundWorker.h"
#include "host/bridge/PluginBridge.h"
#include "host/lv2/Lv2Names.h"
#include "host/lv2/Lv2Options.h"
#include "host/lv2/Lv2Time.h"
#include "host/lv2/Lv2Uris.h"

#include <lv2/atom/atom.h>
#include <lv2/core/lv2.h>
#include <lv2/log/log.h>
#include <lv2/state/state.h>
#include <lv2/worker/worker.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>

/// What a host offers; what it does not is null.
struct Lv2Features
{
    explicit Lv2Features(const LV2_Feature* const* features);

    const LV2_URID_Map* map = nullptr;
    const LV2_Worker_Schedule* schedule = nullptr;
    const LV2_Log_Log* log = nullptr;
    const LV2_Options_Option* options = nullptr; ///< for the constructor's time
};

/// run is the audio thread's, save and restore may come from another one meanwhile, the rest comes
/// while nothing runs.
class Lv2Plugin
{
public:
    /// @param features  with a map
    Lv2Plugin(double sampleRate, const Lv2Features& features);

    void connect(std::uint32_t port, void* data);
    void activate();

    void deactivate() { mBridge.deactivate(); }

    void run(std::uint32_t frames);
    void work(); ///< on the host's worker or on ours

    LV2_State_Status save(LV2_State_Store_Function store, LV2_State_Handle handle);
    LV2_State_Status restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle);

    Lv2Options& options() { return mOptions; }

    PluginBridge& bridge() { return mBridge; }

private:
    void takeControls();
    bool parametersChanged() const;
    void takeEvents();
    void askForWork();
    void logError(const char* text);

    const Lv2Features mFeatures;
    const Lv2Uris mUris;
    Lv2Options mOptions;
    Lv2Time mTime{mUris};
    const LV2_Atom_Sequence* mIn = nullptr;
    LV2_Atom_Sequence* mOut = nullptr;
    const float* mEnabled = nullptr;
    const float* mFreeWheeling = nullptr;
    std::array<const float*, Parameters::kCount> mParameters;
    std::array<std::uint32_t, Parameters::kCount> mSaid{}; ///< by the ports last: the bits
    std::atomic<bool> mWorkAsked{false};
    PluginBridge mBridge;
    std::unique_ptr<BackgroundWorker> mWorker; ///< where the host has none; goes first
};
