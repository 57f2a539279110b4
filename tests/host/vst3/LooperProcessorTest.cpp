#include "host/vst3/LooperProcessor.h"

#include "tests/host/bridge/BridgeHost.h"
#include "tests/host/vst3/SongHead.h"
#include "tests/support/Guards.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>

namespace {

/// What a host is told of a parameter.
struct Told : juce::AudioProcessorParameter::Listener
{
    void parameterValueChanged(int, float value) override { values.push_back(value); }

    void parameterGestureChanged(int, bool starts) override { gestures += starts ? 1 : -1; }

    std::vector<float> values;
    int gestures = 0;
};

struct ToldOfPrograms : juce::AudioProcessorListener
{
    void audioProcessorParameterChanged(juce::AudioProcessor*, int, float) override {}

    void audioProcessorChanged(juce::AudioProcessor*, const ChangeDetails& details) override
    {
        count += details.programChanged ? 1 : 0;
    }

    int count = 0;
};

class Processor : public testing::Test
{
protected:
    Processor()
    {
        library.put("Test/a.mid", midiFileWithNote(40));
        library.put("Test/b.mid", midiFileWithNote(41));
        processor = std::make_unique<LooperProcessor>();
        effect().setVeloPlus(0);
        effect().setRandomVelo(false);
        processor->setPlayHead(&song);
        processor->prepareToPlay(48000, 512);
    }

    CLooper& effect() { return processor->bridge().effect(); }

    SentList play(int frames, bool bypassed = false)
    {
        juce::AudioBuffer<float> audio(0, frames);
        midi.clear();
        midi.addEvents(input, 0, frames, 0);
        input.clear();
        if (bypassed)
            processor->processBlockBypassed(audio, midi);
        else
            processor->processBlock(audio, midi);
        song.advance(frames);
        return sent();
    }

    SentList sent() const
    {
        SentList all;
        for (const juce::MidiMessageMetadata message : midi)
            all.push_back(
                {message.samplePosition, {message.data, message.data + message.numBytes}});
        return all;
    }

    juce::ScopedJuceInitialiser_GUI juce;
    OwnLibrary library;
    SongHead song;
    std::unique_ptr<LooperProcessor> processor;
    juce::MidiBuffer input;
    juce::MidiBuffer midi;
};

} // namespace

// At 48,000 frames a second and 120 BPM a quarter is 24,000 frames.

TEST_F(Processor, NotesFallOnTheirFrames)
{
    effect().set_track(fourQuarters());
    EXPECT_EQ(play(20000), (SentList{on(0, 60), off(12000, 60)}));
    EXPECT_EQ(play(20000), (SentList{on(4000, 62), off(16000, 62)}));
}

TEST_F(Processor, WithoutAPlayHeadItWaits)
{
    processor->setPlayHead(nullptr);
    effect().set_track(fourQuarters());
    EXPECT_EQ(play(20000), SentList{});
}

TEST_F(Processor, ABlockOfNothingIsPlayedToo)
{
    effect().set_track(fourQuarters());
    EXPECT_EQ(play(0), SentList{});
    EXPECT_EQ(play(10), (SentList{on(0, 60)}));
}

TEST_F(Processor, AStopSilencesWhatSounds)
{
    effect().set_track(fourQuarters());
    play(1000);
    song.playing = false;
    EXPECT_EQ(play(1000), (SentList{off(0, 60)}));
}

TEST_F(Processor, ThePatternStartsWithTheBarsBehindAnotherMeter)
{
    effect().set_track(pattern(480, {noteAt(0, 240, 60), noteAt(960, 240, 62)}));
    song.firstBar = 3; // behind one bar of 3/4
    song.quarters = 3;
    const SentList bar{on(0, 60), off(12000, 60), on(48000, 62), off(60000, 62)};
    EXPECT_EQ(play(96000), bar);
    EXPECT_EQ(play(96000), bar);
}

TEST_F(Processor, TheLoopWrapsInTheMiddleOfABlock)
{
    effect().set_track(fourQuarters());
    song.looping = true;
    song.loopStart = 1;
    song.loopEnd = 2;
    song.quarters = 1.25;
    EXPECT_EQ(play(24000), (SentList{on(18000, 62)}));
    EXPECT_EQ(play(24000), (SentList{off(6000, 62), on(18000, 62)}));
}

TEST_F(Processor, BypassedItPassesEverythingOn)
{
    effect().set_track(fourQuarters());
    play(1000);
    input.addEvent(juce::MidiMessage::programChange(1, 1), 5);
    EXPECT_EQ(play(1000, true), (SentList{off(0, 60), {5, {0xC0, 1}}}));
    EXPECT_EQ(play(24000), (SentList{on(22000, 62)}));
}

TEST_F(Processor, MessagesThatAreNotUsedGoThroughInTheirOrder)
{
    input.addEvent(juce::MidiMessage::noteOn(4, 60, std::uint8_t{1}), 1);
    const std::uint8_t exclusive[] = {0xF0, 1, 2, 3, 4, 5, 6, 0xF7};
    input.addEvent(exclusive, 8, 2);
    EXPECT_EQ(play(10), (SentList{{1, {0x93, 60, 1}}, {2, {0xF0, 1, 2, 3, 4, 5, 6, 0xF7}}}));
}

TEST_F(Processor, ActivationForgetsTheTransportAndSilencesWhatSounded)
{
    effect().set_track(fourQuarters());
    play(1000);
    processor->prepareToPlay(48000, 512); // as some hosts do, without a release
    song.playing = false;
    EXPECT_EQ(play(1000), (SentList{off(0, 60)}));
}

TEST_F(Processor, ABlockAllocatesNothingTouchesNoFileAndTakesTheEffectsLockOnly)
{
    effect().set_track(fourQuarters());
    juce::AudioBuffer<float> audio(0, 4096);
    juce::MidiBuffer noRoom;
    noRoom.addEvent(juce::MidiMessage::pitchWheel(1, 3), 10);
    noRoom.addEvent(juce::MidiMessage::programChange(1, 1), 20);
    song.looping = true;
    song.loopStart = 0.99;
    song.loopEnd = 1.03;
    song.quarters = 0.99;
    const AllocationGuard allocations;
    const LockCounter locks;
    const FileCounter files;
    processor->processBlock(audio, noRoom);
    EXPECT_EQ(allocations.count(), 0u);
    EXPECT_EQ(files.count(), 0u);
    EXPECT_LE(locks.count(), LockCounter::counts ? 12u : 0u); // one for each slice and message
    EXPECT_GT(noRoom.getNumEvents(), 2);
}

// Parameters --------------------------------------------------------------------------------------

TEST_F(Processor, EveryParameterIsListedAutomatableAndShown)
{
    ASSERT_EQ(processor->getParameters().size(), static_cast<int>(Parameters::kCount));
    for (std::size_t index = 0; index < Parameters::kCount; ++index) {
        const auto& row = Parameters::table()[index];
        auto* parameter = dynamic_cast<juce::AudioProcessorParameterWithID*>(
            processor->getParameters()[static_cast<int>(index)]);
        ASSERT_NE(parameter, nullptr);
        EXPECT_EQ(parameter->paramID, row.id);
        EXPECT_EQ(parameter->getName(100), row.name);
        EXPECT_EQ(parameter->getLabel(), row.unit);
        EXPECT_TRUE(parameter->isAutomatable());
        EXPECT_TRUE(parameter->getCurrentValueAsText().isNotEmpty());
    }
}

TEST_F(Processor, TheHostHearsOfWhatTheEditorChanges)
{
    Told told;
    processor->getParameters()[0]->addListener(&told);
    processor->reportChanges();
    told.values.clear();
    effect().setVeloPlus(127);
    processor->reportChanges();
    processor->reportChanges();
    EXPECT_EQ(told.values, std::vector<float>{1.0F});
    EXPECT_EQ(told.gestures, 0);
    processor->getParameters()[0]->removeListener(&told);
}

TEST_F(Processor, TheHostIsNotToldOfItsOwnChange)
{
    processor->reportChanges();
    Told told;
    processor->getParameters()[0]->addListener(&told);
    processor->getParameters()[0]->setValue(0.25F);
    processor->reportChanges();
    EXPECT_EQ(told.values, std::vector<float>{});
    processor->getParameters()[0]->removeListener(&told);
}

// Programs and state ------------------------------------------------------------------------------

TEST_F(Processor, ProgramsAreThePatternsOfTheStyle)
{
    EXPECT_EQ(processor->getProgramName(0), "a");
    EXPECT_EQ(processor->getProgramName(1), "b");
    EXPECT_EQ(processor->getProgramName(2), "(3)"); // hosts trip over programs without a name
    EXPECT_EQ(processor->getCurrentProgram(), LooperProcessor::kPrograms); // none yet
    processor->setCurrentProgram(1);
    EXPECT_EQ(processor->getCurrentProgram(), 1);
    processor->setCurrentProgram(5);
    processor->setCurrentProgram(LooperProcessor::kPrograms);
    processor->setCurrentProgram(-1);
    EXPECT_EQ(processor->getCurrentProgram(), 1);
    EXPECT_EQ(play(10), (SentList{on(0, 41)}));
}

TEST_F(Processor, TheHostHearsOnceOfAnotherPattern)
{
    ToldOfPrograms told;
    processor->reportChanges();
    processor->addListener(&told);
    effect().ChangePattern("Test", "b.mid");
    processor->reportChanges();
    processor->reportChanges();
    EXPECT_EQ(told.count, 1);
    processor->removeListener(&told);
}

TEST_F(Processor, AProgramChangeInTheMusicIsFollowedSoon)
{
    input.addEvent(juce::MidiMessage::programChange(1, 1), 0);
    EXPECT_EQ(play(10), SentList{});
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (processor->getCurrentProgram() != 1 && std::chrono::steady_clock::now() < limit)
        std::this_thread::yield();
    EXPECT_EQ(processor->getCurrentProgram(), 1);
}

TEST_F(Processor, OfflineAProgramChangeInTheMusicIsFollowedAtOnce)
{
    processor->setNonRealtime(true);
    input.addEvent(juce::MidiMessage::programChange(1, 0), 0);
    input.addEvent(juce::MidiMessage::programChange(1, 1), 5);
    EXPECT_EQ(play(10), (SentList{on(0, 40), off(5, 40)}));
    EXPECT_EQ(processor->getCurrentProgram(), 1);
}

TEST_F(Processor, AProjectBringsPatternAndParametersBack)
{
    processor->setCurrentProgram(1);
    effect().setVeloPlus(-30);
    juce::MemoryBlock state;
    processor->getStateInformation(state);

    LooperProcessor second;
    second.setStateInformation(state.getData(), static_cast<int>(state.getSize()));
    EXPECT_EQ(second.getCurrentProgram(), 1);
    EXPECT_EQ(second.bridge().effect().getVeloPlus().value, -30);
    EXPECT_EQ(second.getParameters()[0]->getValue(), 97.0F / 254);
}

TEST_F(Processor, ADamagedProjectIsLoggedAndChangesNothing)
{
    struct Log : juce::Logger
    {
        void logMessage(const juce::String& message) override { text += message; }

        juce::String text;
    } log;

    processor->setCurrentProgram(1);
    juce::Logger::setCurrentLogger(&log);
    processor->setStateInformation("nonsense", 8);
    processor->setStateInformation(nullptr, 0);
    juce::Logger::setCurrentLogger(nullptr);
    EXPECT_TRUE(log.text.contains("damaged"));
    EXPECT_EQ(processor->getCurrentProgram(), 1);
}

TEST_F(Processor, HostsSeeAMidiEffectWithoutAudio)
{
    EXPECT_TRUE(processor->isMidiEffect());
    EXPECT_TRUE(processor->acceptsMidi());
    EXPECT_TRUE(processor->producesMidi());
    EXPECT_EQ(processor->getTotalNumInputChannels(), 0);
    EXPECT_EQ(processor->getTotalNumOutputChannels(), 0);
}
