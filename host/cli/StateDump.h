/// A state chunk taken apart (docs/formats/state-chunk.md).
#pragma once
#include <cstddef>
#include <string>
#include <variant>
#include <vector>

struct StateField
{
    const char* name;
    std::size_t offset; ///< of its first byte in the chunk
    std::size_t bytes;
    std::variant<long long, std::string> value;
};

/// Something in a chunk that the effect does not take as it stands.
struct StateProblem
{
    std::size_t offset;
    std::string what;
};

struct StateDump
{
    std::vector<StateField> fields; ///< in their order, up to where the chunk ends or is damaged
    std::vector<StateProblem> problems;
};

/// Takes apart a chunk of any version, as the effect reads it. Never fails: what is wrong is in
/// `problems`.
StateDump dumpState(const std::string& chunk);
