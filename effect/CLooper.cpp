// Life, transport and slices of the effect.
#include "effect/CLooper.h"

#include "effect/EditorFactory.h"
#include "shared/System/kvLog.h"

#include <cstring>
#include <memory>

std::atomic<std::int32_t> g_lComponents{0};

namespace {

EditorFactory sEditorFactory = nullptr;

constexpr char kLooperInterface[] = "Korvanel::ILooper";

} // namespace

void setEditorFactory(EditorFactory factory)
{
    sEditorFactory = factory;
}

EditorFactory editorFactory()
{
    return sEditorFactory;
}

// Life --------------------------------------------------------------------------------------------

CLooper::CLooper()
{
    SetPatDirToDefault();
    ++g_lComponents;
}

CLooper::~CLooper()
{
    delete mLooper;
    releaseContext(mContext);
    --g_lComponents;
    leaveLoopers();
    closeLibrary();
}

void CLooper::releaseContext(ProcessContext* context)
{
    if (context != &defaultProcessContext)
        delete context;
}

void CLooper::Initialize(Korvanel::MidiContext* context)
{
    connect(new ProcessContext_for_MidiContext(context));
}

void CLooper::connect(ProcessContext* context)
{
    auto looper = std::make_unique<Korvanel::Looper>(mPlayTrack, mLock, *context, &mParams);
    looper->TempoType(tempoType()); // a state may have been loaded before there was a looper
    joinLoopers(); // first: an effect that goes meanwhile must not take the library along
    openLibrary();
    // Nothing of an earlier connection is deleted: hosts connect once, and a slice that still runs
    // may be in the earlier looper. Pinned by
    // CLooper.ConnectedAgainItLeavesTheEarlierLooperToTheSliceThatRuns.
    mContext = context;
    mLooper = looper.release();
}

void CLooper::disconnect()
{
    delete mLooper;
    mLooper = nullptr;
    broadcast_to_listeners(&Listener::disconnect);
    leaveLoopers();
}

void CLooper::Terminate()
{
    ProcessContext* connected = mContext;
    disconnect();
    mContext = &defaultProcessContext;
    releaseContext(connected);
}

void CLooper::Enable()
{
    if (!mEnabled.exchange(true))
        broadcast_to_listeners(&Listener::update);
}

void CLooper::Disable()
{
    if (mEnabled.exchange(false))
        broadcast_to_listeners(&Listener::update);
}

Korvanel::MidiEffectEditor* CLooper::createEditor()
{
    const EditorFactory make = editorFactory();
    return make == nullptr ? nullptr : make(*this);
}

void* CLooper::get_interface(const char* name)
{
    const bool asked =
        name != nullptr && std::strncmp(name, kLooperInterface, sizeof kLooperInterface) == 0;
    return asked ? static_cast<Korvanel::ILooper*>(this) : nullptr;
}

// Transport and slices ----------------------------------------------------------------------------

void CLooper::processStart(std::int32_t tick)
{
    Korvanel::IOLog("  start at: %d\n", tick);
    broadcast_to_listeners(&Listener::startPlaying);
}

void CLooper::processStop(std::int32_t tick)
{
    Korvanel::IOLog("  stop at: %d\n", tick);
}

void CLooper::processLoop(std::int32_t from, std::int32_t to)
{
    processStop(to);
    processStart(from);
}

void CLooper::process(std::int32_t from, std::int32_t to, Korvanel::MidiQueue& queue)
{
    if (mSilent.load(std::memory_order_relaxed)) {
        ProcessContext_for_MidiContext nowhere;
        process(from, to, nowhere, 0); // the position goes on as if it were heard
        return;
    }
    LooperProcessContext slice(queue, from);
    process(from, to, slice, 0);
}

void CLooper::process(std::int32_t from, std::int32_t to, ProcessContext& ctx, std::int32_t base)
{
    if (isEnabled() && !isThru() && mLooper != nullptr)
        mLooper->process(from, to, ctx, base);
}

void CLooper::SilentPlay(bool silent)
{
    mSilent.store(silent, std::memory_order_relaxed);
}

void CLooper::seedRandom(std::uint32_t seed)
{
    if (mLooper != nullptr)
        mLooper->seedRandom(seed);
}

// Listeners ---------------------------------------------------------------------------------------

void CLooper::AddLooperListener(Listener* listener)
{
    mListeners.add(listener);
}

void CLooper::RemoveLooperListener(Listener* listener)
{
    mListeners.remove(listener);
}

void CLooper::broadcast_to_listeners(void (Listener::*notify)())
{
    mListeners.broadcast([notify](Listener& listener) { (listener.*notify)(); });
}

void CLooper::tellFirstListener(void (Listener::*notify)(int), int value)
{
    mListeners.tellFirst([notify, value](Listener& listener) { (listener.*notify)(value); });
}

void CLooper::start_playing()
{
    broadcast_to_listeners(&Listener::startPlaying);
}
