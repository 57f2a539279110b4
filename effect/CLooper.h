/// The effect: a pattern, its velocity parameters and the engine that plays it, between the host on
/// one side and an editor on the other.
#pragma once
#include "effect/ILooper.h"
#include "effect/ListenerList.h"
#include "effect/Looper.h"
#include "effect/MidiEffect.h"
#include "effect/MidiQueue.h"
#include "effect/ProcessContext.h"
#include "midi/CMidiTrack.h"
#include "shared/System/kvContracts.h"
#include "shared/System/kvCriticalSection.h"
#include "shared/System/kvString.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

class PatternTree;

namespace Korvanel {
class GraphicsContext;
struct Rect;
} // namespace Korvanel

/// Process-wide number of live effects.
extern std::atomic<std::int32_t> g_lComponents;

/// Two locks besides the list of effects: `mEdit` is held by whoever reads or changes the pattern
/// outside of a slice; `mLock` by a slice, and by a change only for the moment in which it swaps
/// the prepared track in. So the processing thread never waits for a copy.
class CLooper : public Korvanel::MidiEffect, public Korvanel::ILooper
{
public:
    /// A numeric parameter as the editor shows it.
    struct NumRange
    {
        std::int32_t min;
        std::int32_t max;
        std::int32_t value;
    };

    /// Who wants to know what changed: the editor, the host's bridge. Called on the thread of the
    /// change: for startPlaying and programChange that is the processing thread, for
    /// patternsChanged it may be the one that watches the library. Whoever made a listener destroys
    /// it, not here; the destructor has the last place among the operations.
    class Listener
    {
    public:
        virtual void disconnect() {}

        virtual void RefreshChPort() {}

        virtual void loaded() {}

        virtual void update() {}

        virtual void startPlaying() {}

        virtual void patternsChanged() {}

        virtual void programChange(int) {}

        virtual void patternSelected() {}

    protected:
        virtual ~Listener() = default;
    };

    /// Passes the choice of a pattern on to the host's observers.
    class PatternChangeNotifier : public Listener
    {
    public:
        void patternSelected() override;

        Korvanel::ListenerList<IKVSSExStrumwerks::PatternObserver> observers;
    };

    CLooper();
    CLooper(const CLooper&) = delete;
    CLooper& operator=(const CLooper&) = delete;
    ~CLooper() override;

    // Korvanel::MidiEffect ----------------------------------------------------------------------
    void Initialize(Korvanel::MidiContext* context) override;
    void Terminate() override;
    void Enable() override;
    void Disable() override;
    void processStart(std::int32_t tick) override;
    void processStop(std::int32_t tick) override;
    void processLoop(std::int32_t from, std::int32_t to) override;
    void process(std::int32_t from, std::int32_t to, Korvanel::MidiQueue& queue) override;
    void processInput(Korvanel::MidiQueue& queue) override;

    bool hasEditor() override { return true; }

    Korvanel::MidiEffectEditor* createEditor() override;
    void SaveTo(Korvanel::OutputStream& stream) override;
    void LoadFrom(Korvanel::InputStream& stream) override;
    using MidiEffect::LoadFrom;
    void* get_interface(const char* name) override;

    // Korvanel::ILooper -------------------------------------------------------------------------
    bool GetCurrentPattern(IKVSSExStrumwerks::Pattern* pattern) override;
    bool SetCurrentPattern(IKVSSExStrumwerks::Pattern* pattern) override;
    bool AddObserver(IKVSSExStrumwerks::PatternObserver* observer) override;
    bool RemoveObserver(IKVSSExStrumwerks::PatternObserver* observer) override;
    void VelocityShift(int shift) override;
    void SilentPlay(bool silent) override;

    // Operations of its own, virtual ones first -------------------------------------------------
    virtual bool GetDocumentPath(Korvanel::String* path); ///< false; there is none
    virtual Korvanel::String GetPatternsDir();            ///< the library's root folder
    /// The pattern as it plays, `repeat` times, as a Standard MIDI File.
    virtual void SaveTrack(Korvanel::OutputStream& stream, int repeat);
    /// Plays the MIDI file in the stream under a name; null keeps the file's own. Exceptions of the
    /// stream pass through, and then nothing has changed.
    virtual void LoadTrack(Korvanel::InputStream& stream, const char* name);

    virtual void stopAndStart() {} ///< the host's transport is the host's

    virtual void pressPlay() {}

    /// Creates the engine on a context, which the effect then owns unless it is
    /// `defaultProcessContext`. The engine starts with the effect's tempo type.
    void connect(ProcessContext* context);
    void disconnect();

    // Pattern
    /// Plays a pattern of the library, by its style's path with backslashes and its file's name.
    /// Nothing happens when there is none or it cannot be read.
    void ChangePattern(const char* style, const char* pattern) KV_EXCLUDES(mEdit, mLock);
    void set_track(const Korvanel::CMidiTrack& src) KV_EXCLUDES(mEdit, mLock);
    void Clear() KV_EXCLUDES(mEdit, mLock);

    /// Another number after each change of what plays: whoever keeps notes of the old pattern
    /// sounding has to end them, and not every change has a notification. Thread: any.
    std::uint32_t patternRevision() const { return mRevision.load(std::memory_order_acquire); }

    void SetStyleName(const char* name);    ///< of the pattern and the effect
    void SetPatternName(const char* name);  ///< of the pattern and the effect; null changes nothing
    void SetCurrentStyle(const char* name); ///< of the effect only
    Korvanel::String GetStyleName() const;
    Korvanel::String GetPatternName() const;
    void SetPatternsDir(const char* folder);
    /// "Loops" beside the folder that lies two levels above the one with our bundle. A bundle
    /// inside
    /// a host's own (HOST/Contents/PLUGINS/BUNDLE) has it beside the host's.
    void SetPatDirToDefault();
    /// Renders with the host's maps; each may be null.
    void save_track(Korvanel::OutputStream& stream, int repeat, IMfxMeterMap* meterMap,
                    IMfxTempoMap* tempoMap, IMfxKeySigMap* keySigMap) KV_EXCLUDES(mEdit);
    void save_track(Korvanel::OutputStream& stream) const
        KV_EXCLUDES(mEdit); ///< the pattern as it was loaded

    // For the editor, and defined with it
    /// Draws the loaded pattern as a piano roll, in pixels of the context. Thread: [ui thread], as
    /// the next two.
    void DrawEvents(Korvanel::GraphicsContext& g, const Korvanel::Rect& r) KV_EXCLUDES(mEdit);
    /// Starts a drag of the pattern as a MIDI file, from the control in which a mouse button is
    /// held. Where that fails, nothing happens.
    void DragEvents();
    /// Writes the pattern as a MIDI file onto the desktop, beside what is there.
    void ExportEvents();

    // Parameters: stored as given; the ranges are the editor's
    NumRange getDnDRepeat() const;
    NumRange getVeloPlus() const;
    NumRange getRandomVeloMin() const;
    NumRange getRandomVeloMax() const;
    NumRange getRandomVeloStrength() const;
    void setDnDRepeat(int repeat);
    void setVeloPlus(int shift);
    void setRandomVeloMin(int step);
    void setRandomVeloMax(int step);
    void setRandomVeloStrength(int percent);

    void updateDnDRepeat(void**) {}

    void updateVeloPlus(void**) {}

    void updateRandomVeloMin(void**) {}

    void updateRandomVeloMax(void**) {}

    void updateRandomVeloStrength(void**) {}

    void usePitchWheel(bool use) { setFlag(LooperParameters::PitchWheel, use); }

    void useVelocity(bool use) { setFlag(LooperParameters::VelocityController, use); }

    void setRandomVelo(bool use) { setFlag(LooperParameters::RandomVelocity, use); }

    bool isPitchWheelUsed() const { return flag(LooperParameters::PitchWheel); }

    bool isVelocityUsed() const { return flag(LooperParameters::VelocityController); }

    bool isRandomVelo() const { return flag(LooperParameters::RandomVelocity); }

    bool isThru() const { return mThru.load(std::memory_order_relaxed) != 0; }

    void setThru(bool thru) { mThru.store(thru ? 1 : 0, std::memory_order_relaxed); }

    bool isEnabled() const { return mEnabled.load(std::memory_order_relaxed); }

    void TempoType(int type); ///< 0, 1 or 2; anything else becomes 1

    int tempoType() const { return mTempoType.load(std::memory_order_relaxed); }

    void SetChPort(std::int16_t channel, std::int16_t port);

    std::int16_t channel() const { return mChannel; }

    std::int16_t port() const { return mPort; }

    /// The editor's velocity curve. Not clamped: 127 gives 175 with the usual range.
    int recalc_velo(int v) const;

    // Input
    bool
    process_input(Korvanel::MidiEvent event); ///< true when it is used and must leave the queue
    bool processControlEvent(const Korvanel::MidiEvent& event);
    bool processPitchWheel(const Korvanel::MidiEvent& event);
    bool isOutputEvent(const MfxEvent& event) const;

    // Positions for the editor's cursor, in ticks of the loaded pattern unless said otherwise
    std::int32_t getCurrentTick() const;
    std::int32_t getCurrentLoopTick() const;
    std::int32_t
    GetLastTick(const Korvanel::CMidiTrack* track) const; ///< at least 1; null: the loaded pattern
    std::int32_t GetMeasures(const Korvanel::CMidiTrack* track) const;
    std::int32_t FindLoop(std::int32_t at,
                          const ProcessContext& ctx) const; ///< in the context's ticks
    std::int32_t NextLoop(std::int32_t at,
                          const ProcessContext& ctx) const; ///< in the context's ticks

    // Listeners, not owned. When RemoveLooperListener returns, no other thread is still calling it.
    void AddLooperListener(Listener* listener);
    void RemoveLooperListener(Listener* listener);
    void start_playing();
    void PatternTreeIsUpdated();

    // The library, which all effects of the process share
    /// Made by the first effect that connects; gone, once nobody holds it, when an effect goes and
    /// no other is connected. Null before and after. Thread: any but the processing one.
    static std::shared_ptr<PatternTree> patternTree() KV_EXCLUDES(mPatternsLock);
    /// Tells every connected effect that the library changed, on the calling thread and with the
    /// list of effects locked: a listener must not wait for another thread that connects or goes.
    static void on_tree_change() KV_EXCLUDES(mLoopersLock);

    // State
    void DoSave(Korvanel::OutputStream* stream, bool);
    /// @return false when the pattern in it is damaged; what stands before it has been taken then
    bool DoLoad(Korvanel::InputStream* stream);
    void write_parameters(Korvanel::OutputStream& stream) const;
    void read_parameters(Korvanel::InputStream& stream);

    /// Makes the random velocities a known sequence; nothing before Initialize.
    void seedRandom(std::uint32_t seed);

private:
    void process(std::int32_t from, std::int32_t to, ProcessContext& ctx, std::int32_t base);
    void setFlag(LooperParameters::Flag which, bool on);
    bool flag(LooperParameters::Flag which) const;
    void broadcast_to_listeners(void (Listener::*notify)());
    void tellFirstListener(void (Listener::*notify)(int), int value);
    std::int32_t repetitionIn(const ProcessContext& ctx) const;
    void releaseContext(ProcessContext* context);
    void leaveLoopers();
    void joinLoopers();
    void openLibrary();
    static void closeLibrary();

    mutable Korvanel::CriticalSection mEdit KV_BEFORE(mLock);
    mutable Korvanel::CriticalSection mLock;
    Korvanel::CMidiTrack mSourceTrack KV_GUARDED_BY(mEdit); ///< as loaded; what is saved
    Korvanel::CMidiTrack mPlayTrack; ///< prepared; written with both locks held
    ProcessContext* mContext = &defaultProcessContext;
    Korvanel::Looper* mLooper = nullptr; ///< from connect to disconnect
    Korvanel::String mStyleName KV_GUARDED_BY(mEdit);
    Korvanel::String mPatternName KV_GUARDED_BY(mEdit);
    Korvanel::String mPatternsDir KV_GUARDED_BY(mEdit);
    LooperParameters mParams;
    // Shared with the processing thread like the parameters.
    std::atomic<std::int32_t> mThru{0};
    std::int32_t mVeloRangeLow = 30;
    std::int32_t mVeloRangeHigh = 127;
    std::atomic<std::int32_t> mTempoType{1};
    std::atomic<std::int32_t> mDnDRepeat{1};
    std::atomic<std::int16_t> mChannel{-1};
    std::atomic<std::int16_t> mPort{0};
    std::atomic<bool> mEnabled{false};
    std::atomic<bool> mSilent{false};
    std::atomic<std::uint32_t> mRevision{0};
    Korvanel::ListenerList<Listener> mListeners;
    PatternChangeNotifier mNotifier;

    static Korvanel::CriticalSection mPatternsLock;
    static std::shared_ptr<PatternTree> mPatternTree KV_GUARDED_BY(mPatternsLock);
    static Korvanel::CriticalSection mLoopersLock KV_BEFORE(mPatternsLock);
    static std::vector<CLooper*> mLoopers KV_GUARDED_BY(mLoopersLock); ///< connected effects
};
