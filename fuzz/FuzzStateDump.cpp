// Any bytes as a state chunk to be taken apart: the fields follow each other and end inside the
// chunk.
#include "fuzz/HeapLimit.h"
#include "host/cli/StateDump.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const HeapLimit limit;
    const StateDump dump = dumpState(std::string(reinterpret_cast<const char*>(data), size));
    std::size_t end = 0;
    for (const StateField& field : dump.fields) {
        if (field.offset < end || field.offset + field.bytes > size)
            std::abort();
        end = field.offset + field.bytes;
    }
    for (const StateProblem& problem : dump.problems)
        if (problem.offset > size || problem.what.empty())
            std::abort();
    return 0;
}
