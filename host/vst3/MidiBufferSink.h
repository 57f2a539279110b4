/// The messages of one block, on their way into the buffer that JUCE's wrappers pass around.
#pragma once
#include "host/bridge/MidiSink.h"

#include <juce_audio_basics/juce_audio_basics.h>

/// [audio thread] but for prepare
class MidiBufferSink : public MidiSink
{
public:
    void prepare(); ///< makes room, so that nothing allocates later

    void clear();

    bool send(std::uint32_t frame, std::span<const std::uint8_t> message) override;

    /// Exchanges the messages for the buffer's. From the second block on the caller's buffer is as
    /// large as ours, when the caller always brings the same.
    void swapInto(juce::MidiBuffer& buffer);

private:
    /// The VST3 wrapper hands no more events to the host and loses the rest, note-offs included;
    /// the bridge keeps those for the next block.
    static constexpr int kMostEvents = 2048;
    static constexpr int kBytes = 64 * 1024;

    juce::MidiBuffer mMessages;
    juce::MidiBuffer mSpare; ///< as large; takes the place of the caller's first buffer
    bool mSpareUsed = false;
    int mCount = 0;
};
