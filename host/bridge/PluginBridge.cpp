#include "host/bridge/PluginBridge.h"

#include "host/bridge/Programs.h"
#include "host/bridge/UserLibrary.h"
#include "shared/System/kvException.h"
#include "shared/System/kvStream.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace {

constexpr std::size_t kEventsOfASlice = 8192;
constexpr std::int32_t kFirstVersion = 1; ///< of state chunks

/// Loads it into another effect, so that damage is known before anything has changed.
bool isWhole(std::string_view state)
try {
    const Korvanel::OwnedStreamBuffer buffer(
        new Korvanel::StreamBuffer(state.data(), static_cast<std::uint32_t>(state.size())));
    Korvanel::MemoryStream stream(*buffer);
    if (stream.ReadInt32() < kFirstVersion)
        return false;
    stream.Seek(0, 0);
    CLooper rehearsal;
    return rehearsal.DoLoad(&stream);

} catch (const Korvanel::Exception&) {
    return false;

} catch (const std::exception&) {

    return false;
}

} // namespace

// Life --------------------------------------------------------------------------------------------

PluginBridge::PluginBridge()
    : mParameters(mEffect)
    , mQueue(kEventsOfASlice)
{
    mEffect.AddLooperListener(this); // before any editor: only the first hears of programs
    const std::string installed = mEffect.GetPatternsDir().c_str();
    const std::string library = chooseLibrary(installed, factoryLibrary());
    if (library != installed)
        mEffect.SetPatternsDir(library.c_str());
    mEffect.Initialize(&mContext);
}

PluginBridge::~PluginBridge()
{
    mEffect.Terminate();
    mEffect.RemoveLooperListener(this);
}

void PluginBridge::prepare(double sampleRate)
{
    mTransport.prepare(sampleRate);
    mContext.update(mTransport.position());
    mBlockStart = 0;
}

void PluginBridge::activate()
{
    mTransport.forget();
    mContext.update(mTransport.position());
    mEffect.Enable();
}

void PluginBridge::deactivate()
{
    mMustSilence = true;
    mEffect.Disable();
}

// A block -----------------------------------------------------------------------------------------

void PluginBridge::beginBlock(std::uint32_t frames, MidiSink& sink)
{
    mSink = &sink;
    mFrames = frames;
    mNow = 0;
    if (mOffline)
        work(); // or waits for what another thread has begun
    mGate.sendOwed(0, sink);
    if (std::exchange(mMustSilence, false))
        mGate.silenceAll(0, sink);
    checkSilence();
}

void PluginBridge::position(std::uint32_t frame, const HostPosition& position)
{
    moveTo(frame);
    const std::int32_t before = mTransport.nextTick() - 1;
    const BridgeTransport::Change change = mTransport.report(mBlockStart + mNow, position);
    mContext.update(mTransport.position());
    if (change != BridgeTransport::Change::None)
        mGate.silencePattern(mNow, *mSink);
    switch (change) {
    case BridgeTransport::Change::None:
        return;
    case BridgeTransport::Change::Start:
        return mEffect.processStart(mTransport.nextTick());
    case BridgeTransport::Change::Stop:
        return mEffect.processStop(before);
    case BridgeTransport::Change::Loop:
        return mEffect.processLoop(mTransport.nextTick(), before);
    case BridgeTransport::Change::Locate:
        mEffect.processStop(before);
        return mEffect.processStart(mTransport.nextTick());
    }
}

void PluginBridge::message(std::uint32_t frame, std::span<const std::uint8_t> bytes)
{
    moveTo(frame);
    if (!bytes.empty() && !isUsed(bytes))
        mGate.pass(mNow, bytes, *mSink);
    if (mOffline && wantsWork())
        work();
}

/// Whether the effect takes the message for itself.
bool PluginBridge::isUsed(std::span<const std::uint8_t> bytes)
{
    if (bytes.size() > 3 || bytes[0] < 0x80 || bytes[0] >= 0xF0 || !audible())
        return false;
    mQueue.clear();
    mQueue.Insert(mTransport.nextTick(), bytes[0], bytes.size() > 1 ? bytes[1] : 0,
                  bytes.size() > 2 ? bytes[2] : 0);
    mEffect.processInput(mQueue);
    return mQueue.GetCount() == 0;
}

void PluginBridge::endBlock()
{
    advance(mFrames);
    mBlockStart += mFrames;
    mSink = nullptr;
}

bool PluginBridge::audible() const
{
    return !mBypassed.load(std::memory_order_relaxed) && mEffect.isEnabled() && !mEffect.isThru();
}

/// A pattern that has gone or may not be heard leaves no note behind.
void PluginBridge::checkSilence()
{
    const std::uint32_t revision = mEffect.patternRevision();
    if (revision != mRevision || !audible())
        mGate.silencePattern(mNow, *mSink);
    mRevision = revision;
}

void PluginBridge::moveTo(std::uint32_t frame)
{
    advance(std::min(frame, mFrames > 0 ? mFrames - 1 : 0));
}

void PluginBridge::advance(std::uint32_t until)
{
    if (!mTransport.playing()) // no tick passes
        mNow = std::max(mNow, until);
    const std::int64_t end = mBlockStart + until;
    while (mNow < until) {
        const std::int64_t now = mBlockStart + mNow;
        if (const std::int64_t wrap = mTransport.nextWrap(end); wrap < end) {
            play(mTransport.takeToLoopEnd(), now, wrap);
            const std::int32_t before = mTransport.nextTick() - 1;
            mNow = inBlock(wrap);
            mGate.silencePattern(mNow, *mSink);
            mTransport.wrap(wrap);
            mEffect.processLoop(mTransport.nextTick(), before);
            continue;
        }
        play(mTransport.take(end), now, end - 1);
        mNow = until;
    }
}

void PluginBridge::play(BridgeTransport::Slice slice, std::int64_t first, std::int64_t last)
{
    if (slice.empty())
        return;
    checkSilence();
    if (audible()) {
        mQueue.clear();
        mEffect.process(slice.from, slice.to, mQueue);
        mQueue.sort();
        for (const Korvanel::MidiEvent& event : mQueue.events()) {
            endNotes(event.time, first, last);
            mGate.play(inBlock(mTransport.frameOf(event.time, first, last)), event, *mSink);
        }
    }
    endNotes(slice.to, first, last);
}

void PluginBridge::endNotes(std::int64_t throughTick, std::int64_t first, std::int64_t last)
{
    while (mGate.nextEnd() <= throughTick)
        mGate.endNext(inBlock(mTransport.frameOf(mGate.nextEnd(), first, last)), *mSink);
}

// Patterns and state ------------------------------------------------------------------------------

void PluginBridge::programChange(int program)
{
    mProgram.store(program, std::memory_order_relaxed); // of several, the last one counts
}

void PluginBridge::work()
{
    const Korvanel::ScopedLock hold(mWorkLock);
    if (const int program = mProgram.exchange(-1, std::memory_order_relaxed); program >= 0)
        selectProgram(mEffect, program);
}

void PluginBridge::chooseProgram(int program)
{
    const Korvanel::ScopedLock hold(mWorkLock);
    mProgram.store(-1, std::memory_order_relaxed); // asked for before this one
    selectProgram(mEffect, program);
}

std::string PluginBridge::saveState()
{
    Korvanel::stringStream stream;
    mEffect.SaveTo(stream);
    return stream.text();
}

bool PluginBridge::loadState(std::string_view state)
{
    if (!isWhole(state))
        return false;
    std::string copy(state); // the effect reads from memory that it could write to
    const Korvanel::ScopedLock hold(mWorkLock);
    mProgram.store(-1, std::memory_order_relaxed); // asked for before this state
    mEffect.LoadFrom(copy.data(), static_cast<std::uint32_t>(copy.size()));
    mEffect.TempoType(mEffect.tempoType()); // loading stores it and leaves the engine as it was
    return true;
}
