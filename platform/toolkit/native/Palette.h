/// The colours and measures of all controls. Text on its background keeps a contrast of at least
/// 7:1, the focus ring and control edges of at least 3:1.
#pragma once
#include <juce_graphics/juce_graphics.h>

namespace toolkit::native {

struct Palette
{
    juce::Colour window;      ///< behind everything
    juce::Colour panel;       ///< group boxes
    juce::Colour field;       ///< lists and edit text
    juce::Colour fieldStripe; ///< every other row
    juce::Colour control;     ///< buttons
    juce::Colour controlOver; ///< under the pointer
    juce::Colour controlDown;
    juce::Colour edge;    ///< control outlines
    juce::Colour divider; ///< lines that only separate
    juce::Colour text;
    juce::Colour textDim; ///< headings of columns, units
    juce::Colour textDisabled;
    juce::Colour accent;     ///< check marks, selection, focus ring
    juce::Colour accentText; ///< on the accent
    juce::Colour selection;  ///< selected row of a list without the keyboard
};

const Palette& darkPalette();
const Palette& lightPalette();

/// Points. Everything stands on a grid of 4.
namespace measure {
constexpr float corner = 4.0f;
constexpr float focusRing = 2.0f;
constexpr int rowHeight = 24;
constexpr int headerHeight = 24;
constexpr int checkBoxSize = 16;
constexpr int padding = 8;
constexpr int indent = 16;
constexpr float bodyText = 14.0f;
constexpr float smallText = 12.5f;
constexpr float headingText = 16.0f;
} // namespace measure

} // namespace toolkit::native
