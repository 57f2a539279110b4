/// A generator with the range of the C library's rand() that belongs to one looper, so that no lock
/// and no other thread stand between a note and its velocity.
#pragma once
#include <array>
#include <cstdint>
#include <cstdlib>

namespace Korvanel {

/// [audio thread]; allocates nothing.
class RandomSource
{
public:
    RandomSource();
    RandomSource(const RandomSource&) = delete;
    RandomSource& operator=(const RandomSource&) = delete;

    /// Starts a sequence that is the same for the same seed. Every source starts with a seed of its
    /// own.
    void seed(std::uint32_t seed);

    /// 0..2^31-1, each as likely.
    std::int32_t next()
    {
        std::int32_t value = 0;
        ::random_r(&mData, &value);
        return value;
    }

private:
    std::array<char, 128> mState{};
    ::random_data mData{};
};

} // namespace Korvanel
