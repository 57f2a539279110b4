/// A generator with the range of the C library's rand() that belongs to one looper, so that no lock
/// and no other thread stand between a note and its velocity.
#pragma once
#include <cstdint>
#include <random>

namespace Korvanel {

/// [audio thread]; allocates nothing.
class RandomSource
{
public:
    /// Starts with a seed of its own.
    RandomSource();

    /// Starts a sequence that is the same for the same seed.
    void seed(std::uint32_t seed) { mEngine.seed(seed); }

    /// 0..2^31-1, each as likely.
    std::int32_t next() { return static_cast<std::int32_t>(mEngine() >> 33); }

private:
    /// Modulo 2^64; its upper bits are the good ones.
    using Engine = std::linear_congruential_engine<std::uint64_t, 6364136223846793005u,
                                                   1442695040888963407u, 0>;

    Engine mEngine;
};

} // namespace Korvanel
