#include "effect/MidiEffect.h"

#include "midi/TickMath.h"
#include "shared/System/kvStream.h"

namespace Korvanel {

namespace {

constexpr std::int32_t kNullPpq = 480;
constexpr std::int32_t kNullBeats = 4;

} // namespace

std::int32_t NullMidiContext::BarPosition(int bar, int beat, int tick)
{
    return toTicks((std::int64_t{bar} * kNullBeats + beat) * kNullPpq + tick);
}

void NullMidiContext::GetBar(std::int32_t at, int* bar, int* beat, int* tick)
{
    storeTicks(bar, at / kNullPpq / kNullBeats);
    storeTicks(beat, at / kNullPpq % kNullBeats);
    storeTicks(tick, at % kNullPpq);
}

void MidiEffectEditor::getEditorSize(int*, int*) {}

std::int32_t MidiEffectEditor::attach(void*, int, int)
{
    return 0;
}

void MidiEffectEditor::remove() {}

void MidiEffect::LoadFrom(void* data, std::uint32_t size)
{
    const OwnedStreamBuffer buffer(new StreamBuffer(data, size));
    MemoryStream stream(*buffer);
    LoadFrom(stream);
}

} // namespace Korvanel
