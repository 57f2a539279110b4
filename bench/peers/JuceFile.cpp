// JUCE's MidiFile: one message object for each event, note-ons linked to their note-offs.
#include "bench/FileSubject.h"

#include <juce_audio_basics/juce_audio_basics.h>

namespace bench {

namespace {

class JuceFile final : public FileSubject
{
public:
    const char* name() const override { return "JUCE"; }

    void read(std::span<const std::uint8_t> file) override
    {
        juce::MemoryInputStream stream(file.data(), file.size(), false);
        mFile = std::make_unique<juce::MidiFile>();
        mFile->readFrom(stream); // matches the pairs
    }

    void write() override
    {
        mOut = std::make_unique<juce::MemoryOutputStream>();
        mFile->writeTo(*mOut, 0);
    }

    std::span<const std::uint8_t> written() override
    {
        return {static_cast<const std::uint8_t*>(mOut->getData()), mOut->getDataSize()};
    }

    std::size_t notes() const override
    {
        std::size_t paired = 0;
        for (int track = 0; track < mFile->getNumTracks(); ++track)
            for (const auto* event : *mFile->getTrack(track))
                paired += event->noteOffObject != nullptr ? 1 : 0;
        return paired;
    }

private:
    std::unique_ptr<juce::MidiFile> mFile;
    std::unique_ptr<juce::MemoryOutputStream> mOut;
};

} // namespace

std::unique_ptr<FileSubject> makeJuce()
{
    return std::make_unique<JuceFile>();
}

} // namespace bench
