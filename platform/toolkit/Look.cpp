#include "platform/toolkit/native/Look.h"

#include <array>

namespace toolkit::native {

namespace {

/// The first family of these that the system has; desktop families first, then what nearly every
/// system carries. Without any of them the system's own default serves.
juce::String chooseFamily()
{
    constexpr std::array wanted = {"Inter",     "Cantarell",       "Noto Sans",   "Ubuntu",
                                   "Open Sans", "Liberation Sans", "Nimbus Sans", "DejaVu Sans"};
    const auto present = juce::Font::findAllTypefaceNames();
    for (const auto* family : wanted)
        if (present.contains(family))
            return family;
    return juce::Font::getDefaultSansSerifFontName();
}

const juce::String& family()
{
    static const juce::String chosen = chooseFamily();
    return chosen;
}

} // namespace

Look::Look()
    : mPalette(&lightPalette())
{
    setColours();
}

void Look::setDark(bool dark)
{
    mPalette = dark ? &darkPalette() : &lightPalette();
    setColours();
}

juce::Font Look::font(float height, bool bold)
{
    return {family(), height, bold ? juce::Font::bold : juce::Font::plain};
}

juce::Typeface::Ptr Look::getTypefaceForFont(const juce::Font& font)
{
    if (font.getTypefaceName() != juce::Font::getDefaultSansSerifFontName())
        return LookAndFeel_V4::getTypefaceForFont(font);
    auto ours = font;
    ours.setTypefaceName(family());
    return juce::Typeface::createSystemTypefaceFor(ours);
}

void Look::setColours()
{
    const auto& p = palette();
    const auto clear = juce::Colours::transparentBlack;
    setColour(juce::ResizableWindow::backgroundColourId, p.window);
    setColour(juce::Label::textColourId, p.text);
    setColour(juce::ComboBox::textColourId, p.text);
    setColour(juce::PopupMenu::backgroundColourId, p.panel);
    setColour(juce::PopupMenu::textColourId, p.text);
    setColour(juce::TextEditor::backgroundColourId, p.field);
    setColour(juce::TextEditor::textColourId, p.text);
    setColour(juce::TextEditor::highlightColourId, p.accent);
    setColour(juce::TextEditor::highlightedTextColourId, p.accentText);
    setColour(juce::TextEditor::outlineColourId, clear);
    setColour(juce::TextEditor::focusedOutlineColourId, clear);
    setColour(juce::TextEditor::shadowColourId, clear);
    setColour(juce::CaretComponent::caretColourId, p.accent);
    setColour(juce::ListBox::backgroundColourId, p.field);
    setColour(juce::ListBox::outlineColourId, clear);
    setColour(juce::ScrollBar::thumbColourId, p.edge);
}

juce::Colour Look::textColour(bool enabled) const
{
    return enabled ? palette().text : palette().textDisabled;
}

void Look::drawFocusRing(juce::Graphics& g, juce::Rectangle<float> area) const
{
    g.setColour(palette().accent);
    g.drawRoundedRectangle(area.reduced(measure::focusRing / 2), measure::corner,
                           measure::focusRing);
}

void Look::drawBody(juce::Graphics& g, juce::Rectangle<float> area, juce::Colour fill,
                    bool enabled) const
{
    const auto inner = area.reduced(0.5f);
    g.setColour(enabled ? fill : fill.withMultipliedAlpha(0.5f));
    g.fillRoundedRectangle(inner, measure::corner);
    g.setColour(enabled ? palette().edge : palette().divider);
    g.drawRoundedRectangle(inner, measure::corner, 1.0f);
}

void Look::drawTriangle(juce::Graphics& g, juce::Rectangle<float> area, float turns,
                        juce::Colour colour) const
{
    juce::Path path;
    path.addTriangle(-4.0f, 2.5f, 4.0f, 2.5f, 0.0f, -2.5f);
    g.setColour(colour);
    g.fillPath(path, juce::AffineTransform::rotation(turns * juce::MathConstants<float>::twoPi)
                         .translated(area.getCentre()));
}

} // namespace toolkit::native
