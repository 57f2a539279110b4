/// One effect in a host of any format: the format's adapter says what its host says, in the order
/// of frames, and gets the messages that are due.
#pragma once
#include "effect/CLooper.h"
#include "host/bridge/BridgeContext.h"
#include "host/bridge/BridgeQueue.h"
#include "host/bridge/BridgeTransport.h"
#include "host/bridge/HostPosition.h"
#include "host/bridge/MidiSink.h"
#include "host/bridge/NoteGate.h"
#include "host/bridge/Parameters.h"
#include "shared/System/kvContracts.h"
#include "shared/System/kvCriticalSection.h"

#include <atomic>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// A block on the [audio thread] is beginBlock, any number of positions and messages, endBlock;
/// frames are those of the block and do not decrease. It allocates nothing, touches no file, and
/// waits for the effect's own lock only, unless the host is offline. Positions hold until the next
/// one: a host need not repeat them.
class PluginBridge final : private CLooper::Listener
{
public:
    /// The effect is connected, and its library in place, which may mean copying the factory
    /// patterns. Exceptions of the effect's construction pass through.
    PluginBridge();
    ~PluginBridge();
    PluginBridge(const PluginBridge&) = delete;
    PluginBridge& operator=(const PluginBridge&) = delete;

    CLooper& effect() { return mEffect; }

    Parameters& parameters() { return mParameters; }

    // Life; not while a block runs ----------------------------------------------------------------
    void prepare(double sampleRate); ///< forgets where the host is
    void activate();                 ///< stopped until the host says where it is
    /// What still sounds is switched off at the start of the next block: a host gives no way out
    /// here.
    void deactivate();

    /// The effect is passed by: nothing of the pattern, and every message goes on. Thread: any
    void setBypassed(bool bypassed) { mBypassed.store(bypassed, std::memory_order_relaxed); }

    /// Whether the host renders faster than time passes, and would rather wait than miss anything:
    /// what a block asks for, or one before it has, is then done before the block goes on.
    /// [audio thread]
    void setOffline(bool offline) { mOffline = offline; }

    // A block; [audio thread]. A frame behind the block's end counts as its last one
    // ---------------------------------------------------------------------
    void beginBlock(std::uint32_t frames, MidiSink& sink); ///< the sink is used until endBlock
    void position(std::uint32_t frame, const HostPosition& position);
    void message(std::uint32_t frame, std::span<const std::uint8_t> bytes);
    void endBlock();

    /// Where the song is at a frame unless the host says otherwise.
    double expectedQuarters(std::uint32_t frame) const
    {
        return mTransport.quartersAt(mBlockStart + frame);
    }

    /// Whether work is to be called on another thread.
    bool wantsWork() const { return mProgram.load(std::memory_order_relaxed) >= 0; }

    // Everything else; [ui thread] or a worker, blocks may run ------------------------------------
    /// What blocks have asked for: loads patterns.
    void work() KV_EXCLUDES(mWorkLock);
    /// Makes the n-th pattern of the current style the effect's, if there is one.
    void chooseProgram(int program) KV_EXCLUDES(mWorkLock);

    std::string saveState();
    /// @return false for damaged data, which change nothing
    bool loadState(std::string_view state) KV_EXCLUDES(mWorkLock);

private:
    void programChange(int program) override;

    bool audible() const;
    void checkSilence();
    void moveTo(std::uint32_t frame);
    void advance(std::uint32_t until);
    void play(BridgeTransport::Slice slice, std::int64_t first, std::int64_t last);
    void endNotes(std::int64_t throughTick, std::int64_t first, std::int64_t last);

    std::uint32_t inBlock(std::int64_t frame) const
    {
        return static_cast<std::uint32_t>(frame - mBlockStart);
    }

    bool isUsed(std::span<const std::uint8_t> bytes);

    BridgeContext mContext;
    CLooper mEffect;
    Parameters mParameters;
    BridgeQueue mQueue;
    BridgeTransport mTransport;
    // What every block looks at lies together; NoteGate begins with the rest of it.
    MidiSink* mSink = nullptr;    ///< during a block
    std::int64_t mBlockStart = 0; ///< frames since prepare
    std::uint32_t mFrames = 0;    ///< of the block
    std::uint32_t mNow = 0;       ///< frames of the block that are done
    bool mOffline = false;
    bool mMustSilence = false;   ///< the last life left notes on
    std::uint32_t mRevision = 0; ///< of the pattern that plays
    std::atomic<bool> mBypassed{false};
    std::atomic<int> mProgram{-1}; ///< asked for; -1: none
    NoteGate mGate;
    /// One pattern comes after the other, the one that was chosen last at the end. The effect's
    /// listeners are told with it held.
    Korvanel::CriticalSection mWorkLock;
};
