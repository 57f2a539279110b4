#include "platform/toolkit/native/Look.h"

namespace toolkit::native {

namespace {

constexpr int menuRowHeight = 26;
constexpr int menuSeparatorHeight = 9;
constexpr int menuMarkWidth = 28; // left of every text, so that marked and unmarked ones line up
constexpr int tooltipWidth = 320; // a longer text is folded

juce::TextLayout tooltipLayout(const juce::String& text, juce::Colour colour)
{
    juce::AttributedString string;
    string.append(text, Look::font(measure::smallText), colour);
    juce::TextLayout layout;
    layout.createLayoutWithBalancedLineLengths(string, tooltipWidth);
    return layout;
}

} // namespace

juce::Font Look::getPopupMenuFont()
{
    return font(measure::bodyText);
}

void Look::getIdealPopupMenuItemSize(const juce::String& text, bool separator, int, int& width,
                                     int& height)
{
    height = separator ? menuSeparatorHeight : menuRowHeight;
    width = separator ? 64 : menuMarkWidth + getPopupMenuFont().getStringWidth(text) + 24;
}

void Look::drawPopupMenuBackground(juce::Graphics& g, int width, int height)
{
    g.fillAll(palette().panel);
    g.setColour(palette().edge);
    g.drawRect(0, 0, width, height);
}

void Look::drawPopupMenuItem(juce::Graphics& g, const juce::Rectangle<int>& area, bool separator,
                             bool active, bool highlighted, bool ticked, bool,
                             const juce::String& text, const juce::String&, const juce::Drawable*,
                             const juce::Colour*)
{
    const auto& p = palette();
    if (separator) {
        g.setColour(p.divider);
        g.fillRect(
            area.reduced(measure::padding, 0).withSizeKeepingCentre(area.getWidth() - 16, 1));
        return;
    }
    const bool lit = highlighted && active;
    if (lit) {
        g.setColour(p.accent);
        g.fillRoundedRectangle(area.reduced(4, 1).toFloat(), measure::corner);
    }
    g.setColour(lit ? p.accentText : textColour(active));
    if (ticked) {
        const auto mark = getTickShape(10.0f);
        const auto where = area.withWidth(menuMarkWidth).withTrimmedLeft(4).toFloat();
        g.fillPath(mark, mark.getTransformToScaleToFit(where.withSizeKeepingCentre(10, 10), true));
    }
    g.setFont(getPopupMenuFont());
    g.drawText(text, area.withTrimmedLeft(menuMarkWidth), juce::Justification::centredLeft);
}

juce::Rectangle<int> Look::getTooltipBounds(const juce::String& text, juce::Point<int> position,
                                            juce::Rectangle<int> parent)
{
    const auto layout = tooltipLayout(text, palette().text);
    const int width = static_cast<int>(layout.getWidth()) + 2 * measure::padding;
    const int height = static_cast<int>(layout.getHeight()) + measure::padding;
    return juce::Rectangle<int>(position.x + 8, position.y + 20, width, height)
        .constrainedWithin(parent);
}

void Look::drawTooltip(juce::Graphics& g, const juce::String& text, int width, int height)
{
    const juce::Rectangle<int> area(0, 0, width, height);
    drawBody(g, area.toFloat(), palette().panel, true);
    tooltipLayout(text, palette().text)
        .draw(g, area.reduced(measure::padding, measure::padding / 2).toFloat());
}

} // namespace toolkit::native
