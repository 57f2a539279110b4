// Any bytes as an effect's state: afterwards it plays, and what it saves loads again to the same.
#include "effect/CLooper.h"
#include "effect/MidiQueue.h"
#include "fuzz/HeapLimit.h"
#include "shared/System/kvStream.h"

#include <string>
#include <vector>

using namespace Korvanel;

namespace {

struct Queue : MidiQueue
{
    void hostSlot1() override {}

    void hostSlot2() override {}

    void InsertEvent(const MidiEvent& event) override { last = event; }

    int GetCount() override { return 0; }

    MidiEvent GetEvent(int) override { return last; }

    void hostSlot6() override {}

    void RemoveEvent(int) override {}

    MidiEvent last{};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static CLooper keeper; // keeps the library open between inputs
    static const bool connected = (keeper.Initialize(nullptr), true);
    const HeapLimit limit;
    CLooper effect;
    std::vector<std::uint8_t> bytes(data, data + size);
    try {
        effect.LoadFrom(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    } catch (const StreamBufferException&) {
    }
    effect.Initialize(nullptr);
    effect.Enable();
    Queue queue;
    effect.process(0, 5000, queue);
    effect.process(1'000'000'000, 1'000'005'000, queue);
    stringStream saved;
    effect.SaveTo(saved);
    effect.Terminate();
    return connected ? 0 : -1;
}
