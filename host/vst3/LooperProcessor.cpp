#include "host/vst3/LooperProcessor.h"

#include "editor/EditorModule.h"
#include "host/bridge/Programs.h"
#include "host/vst3/LooperEditor.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace {

juce::String text(const Korvanel::String& name)
{
    return juce::String::fromUTF8(name.c_str());
}

} // namespace

LooperProcessor::LooperProcessor()
    : AudioProcessor(BusesProperties())
{
    for (std::size_t index = 0; index < mParameters.size(); ++index) {
        auto parameter = std::make_unique<HostParameter>(mBridge.parameters(), index);
        mParameters[index] = parameter.get();
        addParameter(parameter.release());
    }
}

LooperProcessor::~LooperProcessor()
{
    if (mActive)
        mBridge.deactivate();
}

// Life --------------------------------------------------------------------------------------------

void LooperProcessor::prepareToPlay(double sampleRate, int)
{
    releaseResources(); // some hosts prepare twice
    mSink.prepare();
    mPlayHead.prepare();
    mBridge.prepare(sampleRate);
    mBridge.activate();
    mActive = true;
}

void LooperProcessor::releaseResources()
{
    if (mActive.exchange(false))
        mBridge.deactivate();
}

// The audio thread --------------------------------------------------------------------------------

void LooperProcessor::processBlock(juce::AudioBuffer<float>& audio, juce::MidiBuffer& midi)
{
    mBridge.setBypassed(false);
    play(audio.getNumSamples(), midi);
}

void LooperProcessor::processBlockBypassed(juce::AudioBuffer<float>& audio, juce::MidiBuffer& midi)
{
    mBridge.setBypassed(true);
    play(audio.getNumSamples(), midi);
}

void LooperProcessor::play(int frames, juce::MidiBuffer& midi)
{
    mSink.clear();
    mBridge.setOffline(isNonRealtime());
    mBridge.beginBlock(static_cast<std::uint32_t>(std::max(frames, 0)), mSink);
    takePosition();
    for (const juce::MidiMessageMetadata message : midi)
        mBridge.message(static_cast<std::uint32_t>(std::max(message.samplePosition, 0)),
                        {message.data, static_cast<std::size_t>(message.numBytes)});
    mBridge.endBlock();
    mSink.swapInto(midi);
    if (mBridge.wantsWork())
        mWorker.wake();
}

void LooperProcessor::takePosition()
{
    if (juce::AudioPlayHead* host = getPlayHead(); host != nullptr)
        if (const auto info = host->getPosition())
            mBridge.position(0, mPlayHead.read(*info));
}

// Other threads -----------------------------------------------------------------------------------

int LooperProcessor::getCurrentProgram()
{
    return std::min(currentProgram(mBridge.effect()).value_or(kPrograms), kPrograms);
}

void LooperProcessor::setCurrentProgram(int program)
{
    if (program < kPrograms)
        mBridge.chooseProgram(program);
}

const juce::String LooperProcessor::getProgramName(int program)
{
    if (program >= kPrograms)
        return "No Program";
    const auto found = findProgram(mBridge.effect(), program);
    // A name all the same: some hosts leave nameless programs out, and then count wrongly.
    return found ? text(found->pattern).upToLastOccurrenceOf(".mid", false, true)
                 : "(" + juce::String(program + 1) + ")";
}

void LooperProcessor::getStateInformation(juce::MemoryBlock& state)
{
    const std::string chunk = mBridge.saveState();
    state.replaceAll(chunk.data(), chunk.size());
}

void LooperProcessor::setStateInformation(const void* state, int size)
{
    if (size <= 0 ||
        !mBridge.loadState({static_cast<const char*>(state), static_cast<std::size_t>(size)}))
        juce::Logger::writeToLog(
            "Korvanel Looper: the saved state is damaged; nothing of it is used");
    // A host asks for everything after it has loaded a project.
    mBridge.parameters().reportChanges([](std::size_t, int) {});
    mKnownPattern = mBridge.effect().patternRevision();
}

juce::AudioProcessorEditor* LooperProcessor::createEditor()
{
    return new LooperEditor(*this);
}

void LooperProcessor::reportChanges()
{
    mBridge.parameters().reportChanges(
        [this](std::size_t index, int value) { mParameters[index]->report(value); });
    const std::uint32_t pattern = mBridge.effect().patternRevision();
    if (pattern != mKnownPattern.exchange(pattern))
        updateHostDisplay(ChangeDetails().withProgramChanged(true));
}

/// What every wrapper of JUCE's calls for a new instance.
juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter();

juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter()
{
    static const bool installed = (installEditor(), true); // before there is an effect
    return installed ? new LooperProcessor : nullptr;
}
