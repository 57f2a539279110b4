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
    const int note = noteOf(event.status, event.data1);
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
    const int note = noteOf(message[0], message[1]);
    mKnown[static_cast<std::size_t>(note)] = true; // its off belongs to us even if it is dropped
    if (makeRoom(frame, note, sink) && sink.send(frame, message))
        setOwner(note, Owner::Player);
}

void NoteGate::passOff(std::uint32_t frame, std::span<const std::uint8_t> message, MidiSink& sink)
{
    const auto note = static_cast<std::size_t>(noteOf(message[0], message[1]));
    if (mOwners[note] == Owner::Player)
        setOwner(static_cast<int>(note), sink.send(frame, message) ? Owner::None : Owner::Owed);
    else if (!mKnown[note] && sink.send(frame, message))
        mKnown[note] = true;
}

void NoteGate::endNext(std::uint32_t frame, MidiSink& sink)
{
    switchOff(frame, mHeap[0].note, sink);
}

void NoteGate::silencePattern(std::uint32_t frame, MidiSink& sink)
{
    for (int note = 0; note < kNotes && mPatternNotes > 0; ++note)
        if (mOwners[static_cast<std::size_t>(note)] == Owner::Pattern)
            switchOff(frame, note, sink);
}

void NoteGate::silenceAll(std::uint32_t frame, MidiSink& sink)
{
    for (int channel = 0; channel < kNotes / kKeys; ++channel)
        silenceChannel(frame, channel, sink);
}

void NoteGate::silenceChannel(std::uint32_t frame, int channel, MidiSink& sink)
{
    for (int note = channel * kKeys; note < (channel + 1) * kKeys; ++note)
        if (mOwners[static_cast<std::size_t>(note)] != Owner::None)
            switchOff(frame, note, sink);
}

void NoteGate::sendOwed(std::uint32_t frame, MidiSink& sink)
{
    for (int note = 0; note < kNotes && mOwedNotes > 0; ++note)
        if (mOwners[static_cast<std::size_t>(note)] == Owner::Owed)
            if (!switchOff(frame, note, sink))
                return;
}

/// Ends what sounds on the key, if anything. @return false when that cannot be sent
bool NoteGate::makeRoom(std::uint32_t frame, int note, MidiSink& sink)
{
    return mOwners[static_cast<std::size_t>(note)] == Owner::None || switchOff(frame, note, sink);
}

bool NoteGate::switchOff(std::uint32_t frame, int note, MidiSink& sink)
{
    const std::array<std::uint8_t, 3> off{static_cast<std::uint8_t>(0x80 | note / kKeys),
                                          static_cast<std::uint8_t>(note % kKeys), kOffVelocity};
    const bool sent = sink.send(frame, off);
    setOwner(note, sent ? Owner::None : Owner::Owed);
    return sent;
}

void NoteGate::setOwner(int note, Owner owner)
{
    Owner& now = mOwners[static_cast<std::size_t>(note)];
    if (now == Owner::Pattern) {
        --mPatternNotes;
        remove(note);
    }
    mOwedNotes += (owner == Owner::Owed ? 1 : 0) - (now == Owner::Owed ? 1 : 0);
    mPatternNotes += owner == Owner::Pattern ? 1 : 0;
    now = owner;
    mKnown[static_cast<std::size_t>(note)] = true;
}

// The heap of ends --------------------------------------------------------------------------------

void NoteGate::push(int note, std::int64_t end)
{
    siftUp(mHeapSize++, {end, mOrder++, static_cast<std::uint16_t>(note)});
}

void NoteGate::remove(int note)
{
    const int at = mPlaces[static_cast<std::size_t>(note)] - 1;
    if (at < 0)
        return; // a note without an end
    mPlaces[static_cast<std::size_t>(note)] = 0;
    const End last = mHeap[static_cast<std::size_t>(--mHeapSize)];
    if (at == mHeapSize)
        return;
    if (at > 0 && last.before(mHeap[static_cast<std::size_t>((at - 1) / 2)]))
        siftUp(at, last);
    else
        siftDown(at, last);
}

void NoteGate::place(int at, const End& end)
{
    mHeap[static_cast<std::size_t>(at)] = end;
    mPlaces[end.note] = static_cast<std::uint16_t>(at + 1);
}

void NoteGate::siftUp(int at, const End& end)
{
    while (at > 0 && end.before(mHeap[static_cast<std::size_t>((at - 1) / 2)])) {
        place(at, mHeap[static_cast<std::size_t>((at - 1) / 2)]);
        at = (at - 1) / 2;
    }
    place(at, end);
}

void NoteGate::siftDown(int at, const End& end)
{
    for (int child = 2 * at + 1; child < mHeapSize; child = 2 * at + 1) {
        if (child + 1 < mHeapSize && mHeap[static_cast<std::size_t>(child + 1)].before(
                                         mHeap[static_cast<std::size_t>(child)]))
            ++child;
        if (!mHeap[static_cast<std::size_t>(child)].before(end))
            break;
        place(at, mHeap[static_cast<std::size_t>(child)]);
        at = child;
    }
    place(at, end);
}
