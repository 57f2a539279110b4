#include "platform/toolkit/native/Look.h"

namespace toolkit::native {

void Look::drawButtonBackground(juce::Graphics& g, juce::Button& button, const juce::Colour&,
                                bool over, bool down)
{
    const auto area = button.getLocalBounds().toFloat();
    const auto& p = palette();
    drawBody(g, area, down ? p.controlDown : over ? p.controlOver : p.control, button.isEnabled());
    if (button.hasKeyboardFocus(false))
        drawFocusRing(g, area);
}

void Look::drawButtonText(juce::Graphics& g, juce::TextButton& button, bool, bool)
{
    g.setFont(font(measure::bodyText));
    g.setColour(textColour(button.isEnabled()));
    g.drawText(button.getButtonText(), button.getLocalBounds().reduced(4, 0),
               juce::Justification::centred);
}

void Look::drawToggleButton(juce::Graphics& g, juce::ToggleButton& button, bool over, bool down)
{
    const auto& p = palette();
    const auto bounds = button.getLocalBounds();
    const auto box = juce::Rectangle<int>(2, (bounds.getHeight() - measure::checkBoxSize) / 2,
                                          measure::checkBoxSize, measure::checkBoxSize)
                         .toFloat();
    const bool on = button.getToggleState();
    const auto off = down ? p.controlDown : over ? p.controlOver : p.control;
    drawBody(g, box, on ? p.accent : off, button.isEnabled());
    if (on) {
        juce::Path tick;
        tick.startNewSubPath(box.getX() + 3.5f, box.getCentreY());
        tick.lineTo(box.getX() + 6.5f, box.getBottom() - 4.5f);
        tick.lineTo(box.getRight() - 3.5f, box.getY() + 4.5f);
        g.setColour(p.accentText);
        g.strokePath(tick, juce::PathStrokeType(2.0f));
    }
    if (button.hasKeyboardFocus(false))
        drawFocusRing(g, box.expanded(2.0f));
    g.setFont(font(measure::bodyText));
    g.setColour(textColour(button.isEnabled()));
    g.drawText(button.getButtonText(),
               bounds.withTrimmedLeft(measure::checkBoxSize + measure::padding + 2),
               juce::Justification::centredLeft);
}

void Look::drawComboBox(juce::Graphics& g, int width, int height, bool down, int, int, int, int,
                        juce::ComboBox& box)
{
    const juce::Rectangle<float> area(0, 0, static_cast<float>(width), static_cast<float>(height));
    const auto& p = palette();
    drawBody(g, area,
             down                    ? p.controlDown
             : box.isMouseOver(true) ? p.controlOver
                                     : p.control,
             box.isEnabled());
    drawTriangle(g, area.withLeft(area.getRight() - 24.0f), 0.5f, textColour(box.isEnabled()));
    if (box.hasKeyboardFocus(true))
        drawFocusRing(g, area);
}

void Look::positionComboBoxText(juce::ComboBox& box, juce::Label& label)
{
    label.setBounds(4, 0, box.getWidth() - 28, box.getHeight());
    label.setFont(getComboBoxFont(box));
}

juce::Font Look::getComboBoxFont(juce::ComboBox&)
{
    return font(measure::bodyText);
}

juce::Font Look::getLabelFont(juce::Label& label)
{
    return label.getFont();
}

} // namespace toolkit::native
