#include "host/lv2/Lv2Options.h"

#include <cmath>
#include <cstring>
#include <optional>

namespace {

constexpr double kUsualRate = 48000;

bool isRate(double rate)
{
    return std::isfinite(rate) && rate > 0;
}

template <typename Number>
std::optional<Number> read(const LV2_Options_Option& option, LV2_URID type)
{
    Number number{};
    if (option.type != type || option.size != sizeof number || option.value == nullptr)
        return std::nullopt;
    std::memcpy(&number, option.value, sizeof number); // nobody promises that it is aligned
    return number;
}

/// Those up to the one of zeros.
template <typename Option, typename Each>
std::uint32_t statusOfAll(Option* options, Each each)
{
    if (options == nullptr)
        return LV2_OPTIONS_ERR_UNKNOWN;
    std::uint32_t status = LV2_OPTIONS_SUCCESS;
    for (; options->key != 0; ++options)
        status |= options->context == LV2_OPTIONS_INSTANCE
                      ? static_cast<std::uint32_t>(each(*options))
                      : std::uint32_t{LV2_OPTIONS_ERR_BAD_SUBJECT};
    return status;
}

} // namespace

Lv2Options::Lv2Options(const Lv2Uris& uris, double sampleRate, const LV2_Options_Option* offered)
    : mUris(uris)
    , mSampleRate(isRate(sampleRate) ? sampleRate : rateAmong(offered))
    , mRateOption(static_cast<float>(mSampleRate))
{
    set(offered);
}

double Lv2Options::rateAmong(const LV2_Options_Option* offered) const
{
    double found = kUsualRate;
    statusOfAll(offered, [&](const LV2_Options_Option& option) {
        const auto rate = read<float>(option, mUris.atomFloat);
        if (option.key == mUris.sampleRate && rate && isRate(*rate))
            found = *rate;
        return LV2_OPTIONS_SUCCESS;
    });
    return found;
}

std::uint32_t Lv2Options::get(LV2_Options_Option* options) const
{
    return statusOfAll(options, [this](LV2_Options_Option& option) { return fill(option); });
}

std::uint32_t Lv2Options::set(const LV2_Options_Option* options)
{
    return statusOfAll(options, [this](const LV2_Options_Option& option) { return take(option); });
}

LV2_Options_Status Lv2Options::fill(LV2_Options_Option& option) const
{
    if (option.key == mUris.sampleRate) {
        option.type = mUris.atomFloat;
        option.size = sizeof mRateOption;
        option.value = &mRateOption;
        return LV2_OPTIONS_SUCCESS;
    }
    const std::int32_t* length = option.key == mUris.maxBlockLength       ? &mMaxLength
                                 : option.key == mUris.nominalBlockLength ? &mNominalLength
                                                                          : nullptr;
    if (length == nullptr || *length == 0)
        return LV2_OPTIONS_ERR_BAD_KEY;
    option.type = mUris.atomInt;
    option.size = sizeof *length;
    option.value = length;
    return LV2_OPTIONS_SUCCESS;
}

LV2_Options_Status Lv2Options::take(const LV2_Options_Option& option)
{
    if (option.key == mUris.maxBlockLength)
        return takeLength(mMaxLength, option);
    if (option.key == mUris.nominalBlockLength)
        return takeLength(mNominalLength, option);
    if (option.key == mUris.sampleRate)
        return checkRate(option);
    return LV2_OPTIONS_ERR_BAD_KEY;
}

LV2_Options_Status Lv2Options::takeLength(std::int32_t& length,
                                          const LV2_Options_Option& option) const
{
    const auto told = read<std::int32_t>(option, mUris.atomInt);
    if (!told || *told <= 0)
        return LV2_OPTIONS_ERR_BAD_VALUE;
    length = *told;
    return LV2_OPTIONS_SUCCESS;
}

LV2_Options_Status Lv2Options::checkRate(const LV2_Options_Option& option) const
{
    const auto told = read<float>(option, mUris.atomFloat);
    return told && *told == mRateOption ? LV2_OPTIONS_SUCCESS : LV2_OPTIONS_ERR_BAD_VALUE;
}
