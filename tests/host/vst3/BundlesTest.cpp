// Both built bundles in one host of JUCE's hosting classes.
#include "tests/host/vst3/JuceHost.h"
#include "tests/support/Guards.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <regex>

namespace {

class InJuceHost : public testing::TestWithParam<Format>
{
protected:
    std::unique_ptr<HostedPlugin> load(double sampleRate = 48000)
    {
        auto hosted = bundles.load(GetParam(), sampleRate);
        bundles.choose(GetParam(), *hosted, 0);
        return hosted;
    }

    Bundles bundles;
};

INSTANTIATE_TEST_SUITE_P(Formats, InJuceHost, testing::Values(Format::Lv2, Format::Vst3), nameOf);

/// A song that any host might play.
struct AnySong
{
    explicit AnySong(std::mt19937& random, Format format)
    {
        constexpr double rates[] = {22050, 44100, 48000, 88200, 96000, 192000};
        sampleRate = rates[random() % 6];
        // LV2 hosts say the tempo in single precision.
        tempo = static_cast<float>(20 + std::uniform_real_distribution<>(0, 380)(random));
        numerator = 1 + static_cast<int>(random() % 15);
        // JUCE's LV2 host counts the beats of a bar in quarters in every meter.
        denominator = format == Format::Lv2 ? 4 : 1 << random() % 4;
    }

    void play(HostedPlugin& hosted) const
    {
        hosted.song.tempo = tempo;
        hosted.song.numerator = numerator;
        hosted.song.denominator = denominator;
    }

    double sampleRate;
    double tempo;
    int numerator;
    int denominator;
};

void runTo(HostedPlugin& hosted, std::int64_t end, std::mt19937& random)
{
    while (hosted.now < end)
        hosted.run(static_cast<int>(
            std::min<std::int64_t>(1 + static_cast<int>(random() % 4096), end - hosted.now)));
}

/// A message is on its place when that falls into its frame.
void expectAt(const Sent& sent, double frame, std::uint8_t status)
{
    EXPECT_EQ(sent.bytes[0], status) << sent;
    EXPECT_EQ(sent.bytes[1], 40) << sent;
    EXPECT_LE(static_cast<double>(sent.frame), frame + 0.001) << sent;
    EXPECT_GT(static_cast<double>(sent.frame), frame - 1.001) << sent;
}

} // namespace

TEST_P(InJuceHost, NotesFallOnTheirFramesInAnySong)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int i = 0; i < 12; ++i) {
        const AnySong song(random, GetParam());
        SCOPED_TRACE(testing::Message() << song.tempo << " BPM, " << song.numerator << '/'
                                        << song.denominator << ", " << song.sampleRate);
        const auto hosted = load(song.sampleRate);
        song.play(*hosted);
        const double quarter = hosted->song.quarterFrames();
        runTo(*hosted, static_cast<std::int64_t>(33.5 * quarter), random);
        ASSERT_EQ(hosted->sent.size(), 18u); // nine bars of four quarters begin
        for (std::size_t bar = 0; bar < 8; ++bar) {
            expectAt(hosted->sent[2 * bar], static_cast<double>(bar) * 4 * quarter, 0x90);
            expectAt(hosted->sent[2 * bar + 1], (static_cast<double>(bar) * 4 + 1) * quarter, 0x80);
        }
    }
}

TEST_P(InJuceHost, TheOutputDoesNotDependOnTheBlocks)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const AnySong song(random, GetParam());
    std::vector<SentList> all;
    for (int i = 0; i < 3; ++i) {
        const auto hosted = load(song.sampleRate);
        song.play(*hosted);
        runTo(*hosted, static_cast<std::int64_t>(100 * hosted->song.quarterFrames()), random);
        all.push_back(hosted->take());
    }
    EXPECT_GT(all[0].size(), 40u);
    EXPECT_EQ(all[1], all[0]);
    EXPECT_EQ(all[2], all[0]);
}

TEST_P(InJuceHost, TheFirstNoteIsThereAfterStartAndLocate)
{
    const auto hosted = load();
    hosted->song.quarters = 8;
    hosted->run(100);
    hosted->song.quarters = 400;
    hosted->run(100);
    hosted->song.playing = false;
    hosted->run(100);
    hosted->song.playing = true;
    hosted->song.quarters = 4;
    hosted->run(100);
    EXPECT_EQ(hosted->take(),
              (SentList{on(0, 40), off(100, 40), on(100, 40), off(200, 40), on(300, 40)}));
}

TEST_P(InJuceHost, TheFirstNoteOfEveryRoundOfALoopIsThere)
{
    const auto hosted = load();
    hosted->song.looping = true;
    hosted->song.loopStart = 4;
    hosted->song.loopEnd = 4.5;
    hosted->song.quarters = 4;
    for (int round = 0; round < 10; ++round) {
        hosted->run(4096); // the host cuts its blocks at the loop's end
        hosted->run(4096);
        hosted->run(12000 - 2 * 4096);
    }
    ASSERT_EQ(hosted->sent.size(), 19u);
    for (int round = 0; round < 10; ++round)
        EXPECT_EQ(hosted->sent[static_cast<std::size_t>(2 * round)], on(12000 * round, 40));
}

TEST_P(InJuceHost, NotesFallOnTheirFramesWhileTheTempoChanges)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto hosted = load();
    std::vector<double> due; // the frames of the bars and the quarters behind them
    for (int block = 0; block < 2000; ++block) {
        hosted->song.tempo = static_cast<float>(210 + 190 * std::sin(block / 50.0));
        const double quarters = hosted->song.quarters;
        const auto now = static_cast<double>(hosted->now);
        const double quarter = hosted->song.quarterFrames();
        const auto next = 4 * static_cast<double>(due.size() / 2) + (due.size() % 2 == 1 ? 1 : 0);
        const int frames = 1 + static_cast<int>(random() % 4096);
        if ((next - quarters) * quarter < frames)
            due.push_back(now + (next - quarters) * quarter);
        hosted->run(frames);
    }
    ASSERT_GT(due.size(), 100u);
    ASSERT_EQ(hosted->sent.size(), due.size());
    for (std::size_t i = 0; i < due.size(); ++i)
        expectAt(hosted->sent[i], due[i], i % 2 == 0 ? 0x90 : 0x80);
}

TEST_P(InJuceHost, EveryParameterIsListedAutomatableAndShown)
{
    struct Shown
    {
        const char* name;
        const char* label;
        const char* lowest;
        const char* highest;
        int steps;
    };

    const auto hosted = bundles.load(GetParam());
    // JUCE's LV2 host shows no units.
    const char* percent = GetParam() == Format::Vst3 ? "%" : "";
    for (const Shown& row :
         {Shown{"Velocity Add", "", "-127", "127", 255},
          Shown{"Random Minimum", "", "-127", "0", 128},
          Shown{"Random Maximum", "", "0", "127", 128},
          Shown{"Random Strength", percent, "0", "100", 101},
          Shown{"Use Pitch Wheel", "", "Off", "On", 2},
          Shown{"Use Velocity Controller", "", "Off", "On", 2},
          Shown{"Random Velocity", "", "Off", "On", 2}, Shown{"MIDI Thru", "", "Off", "On", 2},
          Shown{"Tempo", "", "Half", "Double", 3}, Shown{"Drag Repeat", "", "1", "999", 999}}) {
        const juce::AudioProcessorParameter* parameter = hosted->parameter(row.name);
        EXPECT_TRUE(parameter->isAutomatable()) << row.name;
        EXPECT_EQ(parameter->getLabel(), row.label) << row.name;
        EXPECT_EQ(parameter->getText(0, 100), row.lowest) << row.name;
        EXPECT_EQ(parameter->getText(1, 100), row.highest) << row.name;
        EXPECT_EQ(parameter->getNumSteps(), row.steps) << row.name;
    }
}

TEST_P(InJuceHost, AutomationIsHeard)
{
    const auto hosted = load();
    hosted->set("Velocity Add", 97.0F / 254); // -30
    hosted->set("Tempo", 1);
    for (int i = 0; i < 13; ++i)
        hosted->run(1000);
    EXPECT_EQ(hosted->take(), (SentList{on(0, 40, 70), off(12000, 40)}));
}

TEST_P(InJuceHost, ItIsAMidiEffectWithoutAudio)
{
    const auto hosted = bundles.load(GetParam());
    EXPECT_TRUE(hosted->plugin->acceptsMidi());
    EXPECT_TRUE(hosted->plugin->producesMidi());
    EXPECT_EQ(hosted->plugin->getTotalNumInputChannels(), 0);
    EXPECT_EQ(hosted->plugin->getTotalNumOutputChannels(), 0);
    EXPECT_EQ(hosted->plugin->getName(), "Korvanel Looper");
}

TEST_P(InJuceHost, SixtyFourInstancesPlayAtOnce)
{
    std::vector<std::unique_ptr<HostedPlugin>> all;
    for (int i = 0; i < 64; ++i) {
        all.push_back(bundles.load(GetParam()));
        bundles.choose(GetParam(), *all.back(), i % 2);
    }
    for (int block = 0; block < 50; ++block)
        for (const auto& one : all)
            one->run(1000);
    for (std::size_t i = 0; i < all.size(); ++i) {
        const auto key = static_cast<std::uint8_t>(40 + i % 2);
        EXPECT_EQ(all[i]->take(), (SentList{on(0, key), off(24000, key)})) << i;
    }
}

// The VST3 alone ----------------------------------------------------------------------------------

class InVst3Host : public testing::Test
{
protected:
    Bundles bundles;
};

TEST_F(InVst3Host, ABlockAllocatesNothingAndTouchesNoFile)
{
    const auto hosted = bundles.load(Format::Vst3);
    bundles.choose(Format::Vst3, *hosted, 0);
    const auto note = juce::MidiMessage::noteOn(2, 60, std::uint8_t{1});
    hosted->input.addEvent(note, 10); // the host's own lists have their room then
    hosted->run(1000);
    hosted->song.quarters = 31.9;
    hosted->midi.clear();
    hosted->midi.addEvent(note, 10);
    const AllocationGuard allocations;
    const FileCounter files;
    hosted->processOnly(4096);
    EXPECT_EQ(allocations.count(), 0u);
    EXPECT_EQ(files.count(), 0u);
    // The old note's end, the end of the player's note and its repeat, the new note.
    EXPECT_EQ(hosted->midi.getNumEvents(), 4);
}

TEST_F(InVst3Host, ABlockTakesNoLockButTheEffectsBesideTheWrappersOwn)
{
    const auto hosted = bundles.load(Format::Vst3);
    bundles.choose(Format::Vst3, *hosted, 0);
    const auto locks = [&] {
        hosted->run(1000);
        hosted->midi.clear();
        const LockCounter counter;
        hosted->processOnly(1000);
        return counter.count();
    };
    const std::size_t playing = locks();
    hosted->song.playing = false;                                // nothing is asked of the effect
    EXPECT_EQ(playing, locks() + (LockCounter::counts ? 1 : 0)); // one slice was played
}

TEST_F(InVst3Host, ProgramsAreThePatternsOfTheStyle)
{
    const auto hosted = bundles.load(Format::Vst3);
    EXPECT_EQ(hosted->plugin->getProgramName(0), "a");
    EXPECT_EQ(hosted->plugin->getProgramName(1), "b");
    bundles.choose(Format::Vst3, *hosted, 1);
    hosted->run(100);
    bundles.choose(Format::Vst3, *hosted, 0);
    hosted->song.quarters = 4;
    hosted->run(100);
    EXPECT_EQ(hosted->take(), (SentList{off(0, 41), on(0, 40)}));
}

TEST_F(InVst3Host, PatternsStartWithTheBarsBehindAnotherMeter)
{
    const auto hosted = bundles.load(Format::Vst3);
    bundles.choose(Format::Vst3, *hosted, 0);
    hosted->song.firstBar = 3; // behind a bar of 3/4
    hosted->song.quarters = 3;
    for (int block = 0; block < 97; ++block)
        hosted->run(1000);
    EXPECT_EQ(hosted->take(), (SentList{on(0, 40), off(24000, 40), on(96000, 40)}));
}

TEST_F(InVst3Host, BypassedItSilencesThePattern)
{
    const auto hosted = bundles.load(Format::Vst3);
    bundles.choose(Format::Vst3, *hosted, 0);
    hosted->run(1000);
    hosted->set("Bypass", 1);
    hosted->run(1000);
    hosted->run(1000);
    EXPECT_EQ(hosted->take(), (SentList{on(0, 40), off(1000, 40)}));
}

TEST_F(InVst3Host, AnInstallationWithoutPatternsFillsTheUsersLibrary)
{
    Environment environment;
    environment.set("XDG_DATA_HOME", bundles.library / "data");
    bundles.library.remove("Loops");
    const auto hosted = bundles.load(Format::Vst3);
    EXPECT_TRUE(std::filesystem::exists(bundles.library / "data/Korvanel/Loops/Jazz/Waltz.mid"));
}

// Projects from one format to the other -----------------------------------------------------------

namespace {

/// The chunk in an LV2 host's project, and the text around it.
struct Lv2Project
{
    explicit Lv2Project(HostedPlugin& hosted)
    {
        juce::MemoryBlock state;
        hosted.plugin->getStateInformation(state);
        text = state.toString().toStdString();
        std::smatch match;
        const std::regex coded("\"([A-Za-z0-9+/=\\s]+)\"+\\^\\^xsd:base64Binary");
        if (!std::regex_search(text, match, coded))
            return;
        at = static_cast<std::size_t>(match.position(1));
        length = static_cast<std::size_t>(match.length(1));
        juce::MemoryOutputStream bytes(chunk, false);
        juce::Base64::convertFromBase64(bytes, juce::String(match.str(1)).removeCharacters("\r\n"));
    }

    void load(HostedPlugin& hosted) const
    {
        std::string changed = text;
        changed.replace(at, length,
                        juce::Base64::toBase64(chunk.getData(), chunk.getSize()).toStdString());
        hosted.plugin->setStateInformation(changed.data(), static_cast<int>(changed.size()));
    }

    std::string text;
    std::size_t at = 0; ///< the coded chunk in the text
    std::size_t length = 0;
    juce::MemoryBlock chunk;
};

/// The chunk in a VST3 host's project.
struct Vst3Project
{
    explicit Vst3Project(HostedPlugin& hosted)
    {
        juce::MemoryBlock state;
        hosted.plugin->getStateInformation(state);
        xml = juce::AudioProcessor::getXmlFromBinary(state.getData(),
                                                     static_cast<int>(state.getSize()));
        chunk.fromBase64Encoding(xml->getChildByName("IComponent")->getAllSubText());
    }

    void load(HostedPlugin& hosted) const
    {
        juce::XmlElement* component = xml->getChildByName("IComponent");
        component->deleteAllTextElements();
        component->addTextElement(chunk.toBase64Encoding());
        juce::MemoryBlock state;
        juce::AudioProcessor::copyXmlToBinary(*xml, state);
        hosted.plugin->setStateInformation(state.getData(), static_cast<int>(state.getSize()));
    }

    std::unique_ptr<juce::XmlElement> xml;
    juce::MemoryBlock chunk;
};

void expectSecondPatternAtVelocity70(HostedPlugin& hosted)
{
    hosted.run(100);
    EXPECT_EQ(hosted.take(), (SentList{on(0, 41, 70)}));
}

void makeProject(Format format, HostedPlugin& hosted)
{
    Bundles::choose(format, hosted, 1);
    hosted.set("Velocity Add", 97.0F / 254); // -30
    hosted.song.playing = false;
    hosted.run(10);
}

} // namespace

class Projects : public testing::Test
{
protected:
    Bundles bundles;
    std::unique_ptr<HostedPlugin> lv2 = bundles.load(Format::Lv2);
    std::unique_ptr<HostedPlugin> vst3 = bundles.load(Format::Vst3);
};

TEST_F(Projects, OfLv2LoadInVst3)
{
    makeProject(Format::Lv2, *lv2);
    Vst3Project project(*vst3);
    project.chunk = Lv2Project(*lv2).chunk;
    ASSERT_GT(project.chunk.getSize(), 100u);
    project.load(*vst3);
    EXPECT_EQ(vst3->parameter("Velocity Add")->getCurrentValueAsText(), "-30");
    expectSecondPatternAtVelocity70(*vst3);
}

TEST_F(Projects, OfVst3LoadInLv2)
{
    makeProject(Format::Vst3, *vst3);
    makeProject(Format::Lv2, *lv2);
    Lv2Project project(*lv2);
    project.chunk = Vst3Project(*vst3).chunk;
    ASSERT_GT(project.chunk.getSize(), 100u);
    const auto another = bundles.load(Format::Lv2);
    project.load(*another);
    expectSecondPatternAtVelocity70(*another);
}

TEST_F(Projects, OfVst3LoadInVst3WithTheirBypass)
{
    makeProject(Format::Vst3, *vst3);
    vst3->set("Bypass", 1);
    const Vst3Project project(*vst3);
    const auto another = bundles.load(Format::Vst3);
    project.load(*another);
    another->run(100);
    EXPECT_EQ(another->take(), SentList{});
    another->set("Bypass", 0);
    another->song.quarters = 4;
    another->run(100);
    EXPECT_EQ(another->take(), (SentList{on(100, 41, 70)}));
}
