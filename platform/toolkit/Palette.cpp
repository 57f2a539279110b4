#include "platform/toolkit/native/Palette.h"

namespace toolkit::native {

const Palette& darkPalette()
{
    static const Palette palette{
        .window = juce::Colour(0xff1d2025),
        .panel = juce::Colour(0xff25292f),
        .field = juce::Colour(0xff16181c),
        .fieldStripe = juce::Colour(0xff1a1d22),
        .control = juce::Colour(0xff363c45),
        .controlOver = juce::Colour(0xff424954),
        .controlDown = juce::Colour(0xff2a2f37),
        .edge = juce::Colour(0xff717b8a),
        .divider = juce::Colour(0xff363c45),
        .text = juce::Colour(0xffeceff3),
        .textDim = juce::Colour(0xffb4bcc8),
        .textDisabled = juce::Colour(0xff808997),
        .accent = juce::Colour(0xff4fb3ff),
        .accentText = juce::Colour(0xff07131d),
        .selection = juce::Colour(0xff3a4552),
    };
    return palette;
}

const Palette& lightPalette()
{
    static const Palette palette{
        .window = juce::Colour(0xfff1f3f5),
        .panel = juce::Colour(0xfffafbfc),
        .field = juce::Colour(0xffffffff),
        .fieldStripe = juce::Colour(0xfff6f8fa),
        .control = juce::Colour(0xffffffff),
        .controlOver = juce::Colour(0xffeaf2fa),
        .controlDown = juce::Colour(0xffd8e3ee),
        .edge = juce::Colour(0xff838c98),
        .divider = juce::Colour(0xffd5dae0),
        .text = juce::Colour(0xff16191d),
        .textDim = juce::Colour(0xff4b535e),
        .textDisabled = juce::Colour(0xff878f99),
        .accent = juce::Colour(0xff0b63b5),
        .accentText = juce::Colour(0xffffffff),
        .selection = juce::Colour(0xffd3dde8),
    };
    return palette;
}

} // namespace toolkit::native
