// What a block costs in a host on JUCE's classes, which is most of it: ours as VST3 and as LV2, and
// beside them the LV2 plug-in that does the least. Debian has no other MIDI plug-in in VST3.
#include "bench/hosted/Cycles.h"
#include "bench/hosted/OwnBundle.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <stdexcept>

namespace {

constexpr int kFrames = 512;

class Song : public juce::AudioPlayHead
{
public:
    juce::Optional<PositionInfo> getPosition() const override
    {
        PositionInfo info;
        info.setIsPlaying(rolls);
        info.setBpm(120.0);
        info.setTimeSignature(TimeSignature{4, 4});
        info.setPpqPosition(quarters());
        info.setPpqPositionOfLastBarStart(4 * static_cast<double>(frame / bench::kBarFrames));
        info.setBarCount(frame / bench::kBarFrames);
        info.setTimeInSamples(frame);
        return info;
    }

    double quarters() const
    {
        return 4 * static_cast<double>(frame) / static_cast<double>(bench::kBarFrames);
    }

    bool rolls = false;
    std::int64_t frame = 0;
};

/// One instance that plays four bars again and again.
class Player
{
public:
    Player(std::unique_ptr<juce::AudioPluginInstance> loaded, bool rolls,
           const std::vector<bench::Message>& messages)
        : mPlugin(std::move(loaded))
        , mBlocks(bench::kPeriodFrames / kFrames)
    {
        for (const bench::Message& message : messages)
            mBlocks[static_cast<std::size_t>(message.frame / kFrames)].addEvent(
                message.bytes.data(), 3, static_cast<int>(message.frame % kFrames));
        mPlugin->setPlayHead(&mSong);
        mPlugin->setNonRealtime(true); // what is chosen is there with the next block
        mPlugin->setRateAndBufferSizeDetails(bench::kSampleRate, kFrames);
        mPlugin->prepareToPlay(bench::kSampleRate, kFrames);
        mPlugin->setCurrentProgram(0);
        mMidi.ensureSize(65536);
        mMidi.addEvent(juce::MidiMessage::programChange(1, 0), 0);
        mPlugin->processBlock(mAudio, mMidi);
        mSong.rolls = rolls;
    }

    ~Player() { mPlugin->releaseResources(); }

    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    void block()
    {
        mMidi.clear();
        mMidi.addEvents(mBlocks[mNext], 0, kFrames, 0);
        mPlugin->processBlock(mAudio, mMidi);
        mNext = (mNext + 1) % mBlocks.size();
        mSong.frame += mSong.rolls ? kFrames : 0;
    }

    /// The note-ons of four bars.
    int countNotes()
    {
        int notes = 0;
        for (std::size_t i = 0; i < mBlocks.size(); ++i) {
            block();
            for (const juce::MidiMessageMetadata message : mMidi)
                notes += message.getMessage().isNoteOn() ? 1 : 0;
        }
        return notes;
    }

private:
    Song mSong;
    std::unique_ptr<juce::AudioPluginInstance> mPlugin;
    std::vector<juce::MidiBuffer> mBlocks;
    juce::AudioBuffer<float> mAudio{0, kFrames};
    juce::MidiBuffer mMidi;
    std::size_t mNext = 0;
};

struct Subject
{
    std::string who;
    juce::AudioPluginFormat* format;
    juce::String file; ///< or the name that LV2 has for it
    bool plays;        ///< by itself; the other gets the notes
    int notesPerNote;
};

std::unique_ptr<Player> load(const Subject& subject, bool rolls)
{
    juce::OwnedArray<juce::PluginDescription> found;
    subject.format->findAllTypesForFile(found, subject.file);
    if (found.size() != 1)
        throw std::runtime_error("there is no " + subject.file.toStdString());
    juce::String error;
    auto plugin = subject.format->createInstanceFromDescription(*found[0], bench::kSampleRate,
                                                                kFrames, error);
    if (plugin == nullptr)
        throw std::runtime_error(error.toStdString());
    return std::make_unique<Player>(std::move(plugin), rolls,
                                    rolls && !subject.plays ? bench::patternNotes()
                                                            : std::vector<bench::Message>());
}

void check(const Subject& subject)
{
    if (load(subject, false)->countNotes() != 0)
        throw std::runtime_error(subject.who + " plays while the transport stands");
    const auto expected = static_cast<int>(bench::patternNotes().size() / 2);
    if (load(subject, true)->countNotes() != expected * subject.notesPerNote)
        throw std::runtime_error(subject.who + " plays other notes");
}

void add(const Subject& subject, bool rolls)
{
    const std::string name =
        std::string("JUCE host/") + (rolls ? "playing" : "stopped") + ", 512 frames/" + subject.who;
    benchmark::RegisterBenchmark(name.c_str(), [&subject, rolls](benchmark::State& state) {
        const auto player = load(subject, rolls);
        for (auto _ : state)
            player->block();
    });
}

} // namespace

int main(int argc, char** argv)
try {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    ::setenv("DISPLAY", ":9999", 1); // else the wrapper takes the first one there is
    const juce::ScopedJuceInitialiser_GUI initialiser;
    const bench::OwnBundle lv2Bundle(KV_LV2_BUNDLE);
    const bench::OwnBundle vst3Bundle(KV_VST3_BUNDLE);
    juce::VST3PluginFormat vst3;
    juce::LV2PluginFormat lv2;
    const auto folder = [](const std::string& bundle) {
        return juce::File(bundle).getParentDirectory().getFullPathName();
    };
    juce::FileSearchPath path(folder(lv2Bundle.path()));
    path.add(juce::File("/usr/lib/lv2"));
    lv2.searchPathsForPlugins(path, false, false);
    const std::vector<Subject> subjects{
        {"ours", &vst3, vst3Bundle.path(), true, 1},
        {"ours as LV2", &lv2, "https://korvanel.org/lv2/looper", true, 1},
        {"fifths as LV2", &lv2, "http://lv2plug.in/plugins/eg-fifths", false, 2}};
    for (const Subject& subject : subjects)
        check(subject);
    for (const bool rolls : {false, true})
        for (const Subject& subject : subjects)
            add(subject, rolls);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;

} catch (const std::exception& problem) {

    std::fprintf(stderr, "juce_host_bench: %s\n", problem.what());
    return 1;
}
