#include "effect/RandomSource.h"

#include <atomic>
#include <chrono>

namespace Korvanel {

namespace {

std::uint32_t freshSeed()
{
    static std::atomic<std::uint32_t> made{0};
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    return static_cast<std::uint32_t>(now) + 0x9E3779B9u * ++made;
}

} // namespace

RandomSource::RandomSource()
    : mEngine(freshSeed())
{
}

} // namespace Korvanel
