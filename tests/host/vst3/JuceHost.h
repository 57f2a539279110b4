/// A host on JUCE's hosting classes: loads the built bundles and plays a song through them.
#pragma once
#include "tests/host/bridge/ListSink.h"
#include "tests/host/vst3/SongHead.h"
#include "tests/support/LibraryFolder.h"

#include <gtest/gtest.h>
#include <juce_audio_processors/juce_audio_processors.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using SentList = std::vector<Sent>;

inline Sent on(std::int64_t frame, std::uint8_t key, std::uint8_t velocity = 100)
{
    return {frame, {0x90, key, velocity}};
}

inline Sent off(std::int64_t frame, std::uint8_t key)
{
    return {frame, {0x80, key, 64}};
}

/// One instance, and the song that it plays.
class HostedPlugin
{
public:
    static constexpr int kMostFrames = 4096;

    HostedPlugin(std::unique_ptr<juce::AudioPluginInstance> loaded, double sampleRate)
        : plugin(std::move(loaded))
        , mAudio(2, kMostFrames)
    {
        song.sampleRate = sampleRate;
        plugin->setPlayHead(&song);
        plugin->setRateAndBufferSizeDetails(sampleRate, kMostFrames);
        plugin->prepareToPlay(sampleRate, kMostFrames);
        midi.ensureSize(65536);
        playAsWritten();
    }

    HostedPlugin(const HostedPlugin&) = delete;
    HostedPlugin& operator=(const HostedPlugin&) = delete;

    ~HostedPlugin() { plugin->releaseResources(); }

    /// From now on as fast as possible, as hosts play that export a song.
    void goOffline()
    {
        plugin->releaseResources();
        plugin->setNonRealtime(true);
        plugin->prepareToPlay(song.sampleRate, kMostFrames);
        playAsWritten(); // JUCE's LV2 host forgets what no block has taken yet
    }

    juce::AudioProcessorParameter* parameter(const juce::String& name) const
    {
        for (juce::AudioProcessorParameter* one : plugin->getParameters())
            if (one->getName(100) == name)
                return one;
        throw std::runtime_error("there is no parameter " + name.toStdString());
    }

    void set(const juce::String& name, float value)
    {
        parameter(name)->setValueNotifyingHost(value);
    }

    /// Only what a host's audio thread does; what comes out is in `midi`.
    void processOnly(int frames)
    {
        float* channels[] = {mAudio.getWritePointer(0), mAudio.getWritePointer(1)};
        juce::AudioBuffer<float> block(channels, plugin->getTotalNumOutputChannels(), frames);
        plugin->processBlock(block, midi);
    }

    void run(int frames)
    {
        midi.clear();
        midi.addEvents(input, 0, frames, 0);
        input.clear();
        processOnly(frames);
        for (const juce::MidiMessageMetadata message : midi)
            sent.push_back(
                {now + message.samplePosition, {message.data, message.data + message.numBytes}});
        now += frames;
        song.advance(frames);
    }

    SentList take() { return std::exchange(sent, {}); }

    std::unique_ptr<juce::AudioPluginInstance> plugin;
    SongHead song;
    juce::MidiBuffer input; ///< for the next block
    juce::MidiBuffer midi;
    SentList sent;
    std::int64_t now = 0;

private:
    void playAsWritten()
    {
        set("Velocity Add", 127.0F / 254);
        set("Random Velocity", 0);
    }

    juce::AudioBuffer<float> mAudio;
};

enum class Format { Lv2, Vst3 };

inline std::string nameOf(const testing::TestParamInfo<Format>& format)
{
    return format.param == Format::Lv2 ? "Lv2" : "Vst3";
}

/// Bundles installed in a folder "host" beside a library of the test's own: Test/a.mid is one bar
/// of 4/4 with a quarter note of key 40 at its start, Test/b.mid the same with key 41.
class Bundles
{
public:
    /// @param hasDisplay  whether DISPLAY names one that the test may use
    explicit Bundles(bool hasDisplay = false)
    {
        // Without a display's name the wrapper takes the first one there is, and ends the program
        // when that goes away.
        if (!hasDisplay)
            mEnvironment.set("DISPLAY", ":9999");
        constexpr auto recursive = std::filesystem::copy_options::recursive;
        library.put("Loops/Test/a.mid", midiFileWithNote(40));
        library.put("Loops/Test/b.mid", midiFileWithNote(41));
        library.makeFolder("host/lib/plug-ins");
        std::filesystem::copy(KV_VST3_BUNDLE, library / "host/lib/plug-ins/Looper.vst3", recursive);
        std::filesystem::copy(KV_LV2_BUNDLE, library / "host/lib/plug-ins/Looper.lv2", recursive);
        mLv2.searchPathsForPlugins(juce::FileSearchPath(library / "host/lib/plug-ins"), false,
                                   false);
    }

    juce::AudioPluginFormat& format(Format which)
    {
        if (which == Format::Vst3)
            return mVst3;
        return mLv2;
    }

    juce::PluginDescription describe(Format which)
    {
        juce::OwnedArray<juce::PluginDescription> found;
        format(which).findAllTypesForFile(found, which == Format::Vst3
                                                     ? library / "host/lib/plug-ins/Looper.vst3"
                                                     : "https://korvanel.org/lv2/looper");
        if (found.size() != 1)
            throw std::runtime_error("the bundle holds not one plug-in");
        return *found[0];
    }

    std::unique_ptr<HostedPlugin> load(Format which, double sampleRate = 48000)
    {
        juce::String error;
        auto plugin = format(which).createInstanceFromDescription(describe(which), sampleRate,
                                                                  HostedPlugin::kMostFrames, error);
        if (plugin == nullptr)
            throw std::runtime_error(error.toStdString());
        return std::make_unique<HostedPlugin>(std::move(plugin), sampleRate);
    }

    /// Chooses a pattern as hosts of that format do, and goes back to the start of the song.
    static void choose(Format which, HostedPlugin& hosted, int program)
    {
        if (which == Format::Vst3)
            hosted.plugin->setCurrentProgram(program);
        else
            chooseByMessage(hosted, program);
        hosted.now = 0;
        hosted.sent.clear();
    }

    LibraryFolder library;

private:
    /// The host's worker loads the pattern soon.
    static void chooseByMessage(HostedPlugin& hosted, int program)
    {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        hosted.input.addEvent(juce::MidiMessage::programChange(1, program), 0);
        do {
            hosted.song.playing = false;
            hosted.run(1);
            hosted.sent.clear();
            hosted.song.quarters = 0;
            hosted.song.playing = true;
            hosted.run(1);
            std::this_thread::yield();
        } while (!(hosted.sent.size() == 1 && hosted.sent[0].bytes[1] == 40 + program) &&
                 std::chrono::steady_clock::now() < limit);
        hosted.song.playing = false;
        hosted.run(1);
        hosted.song.quarters = 0;
        hosted.song.playing = true;
    }

    Environment mEnvironment;
    juce::ScopedJuceInitialiser_GUI mJuce;
    juce::VST3PluginFormat mVst3;
    juce::LV2PluginFormat mLv2;
};
