/// The host's maps of meter, tempo and key over a song. The host owns and implements them.
#pragma once
#include <cstdint>

/// Ticks are the host's.
class IMfxMeterMap
{
public:
    /// @param denominatorPower  the beat's note value as a power of two: 2 is a quarter
    virtual void GetMeter(std::int32_t tick, std::int32_t* numerator,
                          std::int32_t* denominatorPower) const = 0;

protected:
    ~IMfxMeterMap() = default;
};

class IMfxTempoMap
{
public:
    /// Hundredths of beats per minute: 12000 is 120 BPM.
    virtual std::int32_t GetTempo(std::int32_t tick) const = 0;

protected:
    ~IMfxTempoMap() = default;
};

class IMfxKeySigMap
{
public:
    /// Sharps (positive) or flats (negative), -7..7.
    virtual std::int32_t GetKeySig(std::int32_t tick) const = 0;

protected:
    ~IMfxKeySigMap() = default;
};
