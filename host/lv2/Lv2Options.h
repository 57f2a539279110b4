/// What a host says about itself when it makes an instance, and may say anew later: how long its
/// cycles are, and its sample rate.
#pragma once
#include "host/lv2/Lv2Uris.h"

#include <lv2/options/options.h>

#include <cstdint>

/// Validated, kept and handed out again. Nothing that plays has a size that hangs on the length of
/// a cycle, so a host that says nothing or breaks its word is served all the same.
///
/// Thread: the one that instantiates; no other function of the instance runs meanwhile.
class Lv2Options
{
public:
    /// @param sampleRate  the instance's, in frames a second; what is no rate gives way to the
    ///                    host's option, else to 48000
    /// @param offered     ends with an option of zeros, or null; what makes no sense is ignored
    Lv2Options(const Lv2Uris& uris, double sampleRate, const LV2_Options_Option* offered);

    double sampleRate() const { return mSampleRate; }

    /// Fills in size, type and value; the value is good until the next set. An option that the host
    /// has never given is as unknown as one that there is not.
    /// @return LV2_Options_Status, those of all options together
    std::uint32_t get(LV2_Options_Option* options) const;

    /// Takes what makes sense, beside options that do not. The sample rate is for life: another one
    /// is a bad value.
    /// @return LV2_Options_Status, those of all options together
    std::uint32_t set(const LV2_Options_Option* options);

private:
    LV2_Options_Status fill(LV2_Options_Option& option) const;
    LV2_Options_Status take(const LV2_Options_Option& option);
    LV2_Options_Status takeLength(std::int32_t& length, const LV2_Options_Option& option) const;
    LV2_Options_Status checkRate(const LV2_Options_Option& option) const;
    double rateAmong(const LV2_Options_Option* offered) const;

    const Lv2Uris& mUris;
    const double mSampleRate;
    const float mRateOption;         ///< the same, as options have it
    std::int32_t mMaxLength = 0;     ///< frames of a cycle; 0: not said
    std::int32_t mNominalLength = 0; ///< likewise
};
