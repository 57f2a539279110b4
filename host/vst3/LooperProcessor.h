/// The plug-in as JUCE's wrappers run it: PluginBridge behind a juce::AudioProcessor.
#pragma once
#include "host/bridge/BackgroundWorker.h"
#include "host/bridge/PluginBridge.h"
#include "host/vst3/HostParameter.h"
#include "host/vst3/MidiBufferSink.h"
#include "host/vst3/PlayHeadReader.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <array>
#include <atomic>
#include <cstdint>

/// It has MIDI in and out and no audio: a host that is offered an output takes a plug-in for an
/// instrument, and one that sees none puts it before the track's instrument, where it belongs.
///
/// The wrapper keeps the bypass switch, beside the chunk in a project and not in it, so that other
/// formats load the chunk.
class LooperProcessor final : public juce::AudioProcessor
{
public:
    /// Programs are those of MIDI; one more stands for a pattern that is none of its style's.
    static constexpr int kPrograms = 128;

    LooperProcessor();
    ~LooperProcessor() override;

    PluginBridge& bridge() { return mBridge; }

    const juce::String getName() const override { return "Korvanel Looper"; }

    bool acceptsMidi() const override { return true; }

    bool producesMidi() const override { return true; }

    bool isMidiEffect() const override { return true; }

    double getTailLengthSeconds() const override { return 0; }

    // Life
    void prepareToPlay(double sampleRate, int blockSize) override;
    void releaseResources() override;

    // [audio thread]; a block of any length
    void processBlock(juce::AudioBuffer<float>& audio, juce::MidiBuffer& midi) override;
    void processBlockBypassed(juce::AudioBuffer<float>& audio, juce::MidiBuffer& midi) override;

    // Programs; not on the audio thread
    int getNumPrograms() override { return kPrograms + 1; }

    int getCurrentProgram() override;
    void setCurrentProgram(int program) override;
    const juce::String getProgramName(int program) override;

    void changeProgramName(int, const juce::String&) override {} ///< patterns are renamed on disk

    // State: the effect's chunk. Damaged data changes nothing, and the log says so.
    void getStateInformation(juce::MemoryBlock& state) override;
    void setStateInformation(const void* state, int size) override;

    bool hasEditor() const override { return true; }

    juce::AudioProcessorEditor* createEditor() override;

    /// Tells the host of what others have changed. [ui thread]; that is the host's own only while
    /// an editor is open, so nobody calls this without one.
    void reportChanges();

private:
    void play(int frames, juce::MidiBuffer& midi);
    void takePosition();

    PluginBridge mBridge;
    std::array<HostParameter*, Parameters::kCount> mParameters{}; ///< the base's own
    PlayHeadReader mPlayHead;
    MidiBufferSink mSink;
    std::atomic<bool> mActive{false};
    std::atomic<std::uint32_t> mKnownPattern{0};          ///< to the host; a revision
    BackgroundWorker mWorker{[this] { mBridge.work(); }}; ///< goes first
};
