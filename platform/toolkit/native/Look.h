/// How controls are drawn: flat, with one accent colour. One for the process, kept while a window
/// or a menu uses it. Thread: user interface.
#pragma once
#include "platform/toolkit/native/Palette.h"

#include <juce_gui_basics/juce_gui_basics.h>

namespace toolkit::native {

class Look final : public juce::LookAndFeel_V4
{
public:
    Look();

    const Palette& palette() const { return *mPalette; }

    void setDark(bool dark);

    static juce::Font font(float height, bool bold = false);

    /// The ring around what has the keyboard; `area` is the control's own rectangle.
    void drawFocusRing(juce::Graphics& g, juce::Rectangle<float> area) const;
    /// A rounded field or button with its edge.
    void drawBody(juce::Graphics& g, juce::Rectangle<float> area, juce::Colour fill,
                  bool enabled) const;
    /// A triangle that points up, down, or right (turns 0, 0.5, 0.25).
    void drawTriangle(juce::Graphics& g, juce::Rectangle<float> area, float turns,
                      juce::Colour colour) const;
    juce::Colour textColour(bool enabled) const;

    // The toolkit's own operations.
    juce::Typeface::Ptr getTypefaceForFont(const juce::Font& font) override;
    void drawButtonBackground(juce::Graphics& g, juce::Button& button, const juce::Colour& colour,
                              bool over, bool down) override;
    void drawButtonText(juce::Graphics& g, juce::TextButton& button, bool over, bool down) override;
    void drawToggleButton(juce::Graphics& g, juce::ToggleButton& button, bool over,
                          bool down) override;
    void drawComboBox(juce::Graphics& g, int width, int height, bool down, int buttonX, int buttonY,
                      int buttonWidth, int buttonHeight, juce::ComboBox& box) override;
    void positionComboBoxText(juce::ComboBox& box, juce::Label& label) override;
    juce::Font getComboBoxFont(juce::ComboBox& box) override;
    juce::Font getLabelFont(juce::Label& label) override;
    juce::Font getPopupMenuFont() override;
    void getIdealPopupMenuItemSize(const juce::String& text, bool separator, int standardHeight,
                                   int& width, int& height) override;
    void drawPopupMenuBackground(juce::Graphics& g, int width, int height) override;
    void drawPopupMenuItem(juce::Graphics& g, const juce::Rectangle<int>& area, bool separator,
                           bool active, bool highlighted, bool ticked, bool hasSubMenu,
                           const juce::String& text, const juce::String& shortcut,
                           const juce::Drawable* icon, const juce::Colour* colour) override;
    void fillTextEditorBackground(juce::Graphics& g, int width, int height,
                                  juce::TextEditor& editor) override;
    void drawTextEditorOutline(juce::Graphics& g, int width, int height,
                               juce::TextEditor& editor) override;
    void drawScrollbar(juce::Graphics& g, juce::ScrollBar& bar, int x, int y, int width, int height,
                       bool vertical, int thumbStart, int thumbSize, bool over, bool down) override;
    int getDefaultScrollbarWidth() override;
    juce::Rectangle<int> getTooltipBounds(const juce::String& text, juce::Point<int> position,
                                          juce::Rectangle<int> parent) override;
    void drawTooltip(juce::Graphics& g, const juce::String& text, int width, int height) override;

private:
    void setColours();

    const Palette* mPalette;
};

} // namespace toolkit::native
