#include "host/bridge/NoteGate.h"

#include <algorithm>

namespace {

constexpr std::uint8_t kOffVelocity = 64;

bool isNoteOn(std::span<const std::uint8_t> message)
{
    return message.size() == 3 && (message[0] & 0xF0) == 0x90 && message[2] != 0;
}

bool isNoteOff(std::span<const std::uint8_t> message)
{
    if (message.size() != 3)
        return false;
    const int kind = message[0] & 0xF0;
    return kind == 0x80 || (kind == 0x90 && message[2] == 0);
}

/// All sound off, all notes off, and the mode messages that imply it.
bool endsChannel(std::span<const std::uint8_t> message)
{
    return message.size() == 3 && (message[0] & 0xF0) == 0xB0 &&
           (message[1] == 120 || message[1] >= 123);
}

std::size_t lengthOf(std::uint8_t status)
{
    const int kind = status & 0xF0;
    return kind == 0xC0 || kind == 0xD0 ? 2 : 3;
}

} // namespace

// In and out --------------------------------------------------------------------------------------

void NoteGate::play(std::uint32_t frame, const Korvanel::MidiEvent& event, MidiSink& sink)
{
    const std::array<std::uint8_t, 3> bytes{event.status,
                                            static_cast<std::uint8_t>(event.data1 & 0x7F),
                                            static_cast<std::uint8_t>(event.data2 & 0x7F)};
    if ((event.status & 0xF0) == 0x80 || (event.status & 0xF0) == 0xF0 || event.status < 0x80)
        return;
    if ((event.status & 0xF0) != 0x90) {
        if (endsChannel(bytes))
            silenceChannel(frame, event.status & 0x0F, sink);
        sink.send(frame, {bytes.data(), lengthOf(event.status)});
        return;
    }
    const std::size_t note = noteOf(event.status, event.data1);
    if (bytes[2] == 0 || !makeRoom(frame, note, sink) || !sink.send(frame, bytes))
        return;
    setOwner(note, Owner::Pattern);
    if (event.duration >= 0)
        push(note, std::int64_t{event.time} + std::max(event.duration, 1));
}

void NoteGate::pass(std::uint32_t frame, std::span<const std::uint8_t> message, MidiSink& sink)
{
    if (isNoteOn(message))
        return passOn(frame, message, sink);
    if (isNoteOff(message))
        return passOff(frame, message, sink);
    if (endsChannel(message))
        silenceChannel(frame, message[0] & 0x0F, sink);
    sink.send(frame, message);
}

void NoteGate::passOn(std::uint32_t frame, std::span<const std::uint8_t> message, MidiSink& sink)
{
    const std::size_t note = noteOf(message[0], message[1]);
    mKnown[note] = true; // its off belongs to us even if it is dropped
    if (makeRoom(frame, note, sink) && sink.send(frame, message))
        setOwner(note, Owner::Player);
}

void NoteGate::passOff(std::uint32_t frame, std::span<const std::uint8_t> message, MidiSink& sink)
{
    const std::size_t note = noteOf(message[0], message[1]);
    if (mOwners[note] == Owner::Player)
        setOwner(note, sink.send(frame, message) ? Owner::None : Owner::Owed);
    else if (!mKnown[note] && sink.send(frame, message))
        mKnown[note] = true;
}

void NoteGate::endNext(std::uint32_t frame, MidiSink& sink)
{
    switchOff(frame, mHeap[0].note, sink);
}

void NoteGate::silencePattern(std::uint32_t frame, MidiSink& sink)
{
    for (std::size_t note = 0; note < kNotes && mPatternNotes > 0; ++note)
        if (mOwners[note] == Owner::Pattern)
            switchOff(frame, note, sink);
}

void NoteGate::silenceAll(std::uint32_t frame, MidiSink& sink)
{
    for (std::size_t channel = 0; channel < kNotes / kKeys; ++channel)
        silenceChannel(frame, channel, sink);
}

void NoteGate::silenceChannel(std::uint32_t frame, std::size_t channel, MidiSink& sink)
{
    for (std::size_t note = channel * kKeys; note < (channel + 1) * kKeys; ++note)
        if (mOwners[note] != Owner::None)
            switchOff(frame, note, sink);
}

void NoteGate::sendAllOwed(std::uint32_t frame, MidiSink& sink)
{
    for (std::size_t note = 0; note < kNotes && mOwedNotes > 0; ++note)
        if (mOwners[note] == Owner::Owed)
            if (!switchOff(frame, note, sink))
                return;
}

/// Ends what sounds on the key, if anything. @return false when that cannot be sent
bool NoteGate::makeRoom(std::uint32_t frame, std::size_t note, MidiSink& sink)
{
    return mOwners[note] == Owner::None || switchOff(frame, note, sink);
}

bool NoteGate::switchOff(std::uint32_t frame, std::size_t note, MidiSink& sink)
{
    const std::array<std::uint8_t, 3> off{static_cast<std::uint8_t>(0x80 | note / kKeys),
                                          static_cast<std::uint8_t>(note % kKeys), kOffVelocity};
    const bool sent = sink.send(frame, off);
    setOwner(note, sent ? Owner::None : Owner::Owed);
    return sent;
}

void NoteGate::setOwner(std::size_t note, Owner owner)
{
    Owner& now = mOwners[note];
    if (now == Owner::Pattern) {
        --mPatternNotes;
        remove(note);
    }
    mOwedNotes += (owner == Owner::Owed ? 1 : 0) - (now == Owner::Owed ? 1 : 0);
    mPatternNotes += owner == Owner::Pattern ? 1 : 0;
    now = owner;
    mKnown[note] = true;
}

// The heap of ends --------------------------------------------------------------------------------

void NoteGate::push(std::size_t note, std::int64_t end)
{
    siftUp(mHeapSize++, {end, mOrder++, static_cast<std::uint16_t>(note)});
}

void NoteGate::remove(std::size_t note)
{
    if (mPlaces[note] == 0)
        return; // a note without an end
    const std::size_t at = mPlaces[note] - 1U;
    mPlaces[note] = 0;
    const End last = mHeap[--mHeapSize];
    if (at == mHeapSize)
        return;
    if (at > 0 && last.before(mHeap[(at - 1) / 2]))
        siftUp(at, last);
    else
        siftDown(at, last);
}

void NoteGate::place(std::size_t at, const End& end)
{
    mHeap[at] = end;
    mPlaces[end.note] = static_cast<std::uint16_t>(at + 1);
}

void NoteGate::siftUp(std::size_t at, const End& end)
{
    for (; at > 0 && end.before(mHeap[(at - 1) / 2]); at = (at - 1) / 2)
        place(at, mHeap[(at - 1) / 2]);
    place(at, end);
}

void NoteGate::siftDown(std::size_t at, const End& end)
{
    for (std::size_t child = 2 * at + 1; child < mHeapSize; child = 2 * at + 1) {
        if (child + 1 < mHeapSize && mHeap[child + 1].before(mHeap[child]))
            ++child;
        if (!mHeap[child].before(end))
            break;
        place(at, mHeap[child]);
        at = child;
    }
    place(at, end);
}
