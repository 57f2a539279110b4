// A track block of any bytes under every function that reads or overwrites one.
#include "fuzz/HeapLimit.h"
#include "midi/MidiFile.h"

#include <cstring>

using namespace Korvanel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const HeapLimit limit;
    MIDIFILE file;
    mf_init(&file);
    _track* block = mf_add_track(&file);
    mf_add_tblk(block, static_cast<std::uint32_t>(size));
    if (size > 0)
        std::memcpy(block->data, data, size);
    block->length = block->capacity;

    short running = 0;
    Pkt pkt{};
    for (std::uint32_t pos = 0; pos < block->length;) {
        unsigned char* text = nullptr;
        std::int32_t length = 0;
        read_delta(block->data, pos);
        read_event(block->data, pos, pkt, running, &text, &length);
    }
    short numerator = 0;
    short power = 0;
    get_meter(block, numerator, power);
    const std::int32_t division = size > 1 ? data[0] << 8 | data[1] : 0;
    msec2tick(block, 100'000, division);
    tick2msec(block, 100'000, division);
    mf_last_netrack(&file);
    set_meter(block, 3, 2);
    set_sig(block, 1);
    mf_free(&file);
    return 0;
}
