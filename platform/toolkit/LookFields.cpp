#include "platform/toolkit/native/Look.h"

namespace toolkit::native {

void Look::fillTextEditorBackground(juce::Graphics& g, int width, int height,
                                    juce::TextEditor& editor)
{
    const juce::Rectangle<float> area(0, 0, static_cast<float>(width), static_cast<float>(height));
    drawBody(g, area, palette().field, editor.isEnabled());
}

void Look::drawTextEditorOutline(juce::Graphics& g, int width, int height, juce::TextEditor& editor)
{
    if (editor.hasKeyboardFocus(true))
        drawFocusRing(g, {static_cast<float>(width), static_cast<float>(height)});
}

void Look::drawScrollbar(juce::Graphics& g, juce::ScrollBar&, int x, int y, int width, int height,
                         bool vertical, int thumbStart, int thumbSize, bool over, bool down)
{
    const juce::Rectangle<int> track(x, y, width, height);
    const auto thumb = vertical ? track.withY(thumbStart).withHeight(thumbSize)
                                : track.withX(thumbStart).withWidth(thumbSize);
    g.setColour(palette().edge.withAlpha(over || down ? 1.0f : 0.7f));
    g.fillRoundedRectangle(thumb.toFloat().reduced(2.0f), 3.0f);
}

int Look::getDefaultScrollbarWidth()
{
    return 10;
}

} // namespace toolkit::native
