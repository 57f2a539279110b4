#include "bench/peers/PeerPlayers.h"

#include <juce_audio_basics/juce_audio_basics.h>

namespace bench {

struct JucePlayer::Song
{
    juce::MidiMessageSequence sequence;
};

JucePlayer::JucePlayer(const std::vector<MfxEvent>& events, std::int32_t ratio,
                       std::int32_t loopLength)
    : mSong(std::make_unique<Song>())
    , mLoopLength(loopLength)
{
    juce::MidiMessageSequence& sequence = mSong->sequence;
    for (const MfxEvent& event : events) {
        const int channel = event.channel + 1;
        const double start = double{1} * event.time * ratio;
        sequence.addEvent(juce::MidiMessage::noteOn(channel, event.key, event.velocity), start);
        sequence.addEvent(juce::MidiMessage::noteOff(channel, event.key),
                          start + double{1} * event.duration * ratio);
    }
    sequence.updateMatchedPairs();
}

JucePlayer::~JucePlayer() = default;

void JucePlayer::process(std::int32_t from, std::int32_t to, NoteQueue& queue)
{
    const juce::MidiMessageSequence& sequence = mSong->sequence;
    if (from != mNext) {
        mOffset = from / mLoopLength * mLoopLength;
        mCursor = sequence.getNextIndexAtTime(static_cast<double>(from - mOffset));
    }
    mNext = to + 1;
    for (;;) {
        if (mCursor >= sequence.getNumEvents()) {
            mCursor = 0;
            mOffset += mLoopLength;
        }
        const auto* event = sequence.getEventPointer(mCursor);
        const juce::MidiMessage& message = event->message;
        const std::int64_t tick = mOffset + static_cast<std::int64_t>(message.getTimeStamp());
        if (tick > to)
            return;
        if (message.isNoteOn())
            queue.addNote(static_cast<std::int32_t>(tick),
                          static_cast<unsigned>(message.getChannel() - 1),
                          static_cast<unsigned>(message.getNoteNumber()), message.getVelocity(),
                          static_cast<std::int32_t>(event->noteOffObject->message.getTimeStamp() -
                                                    message.getTimeStamp()));
        ++mCursor;
    }
}

} // namespace bench
