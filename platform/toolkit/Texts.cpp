// Edit text, static text and group boxes.
#include "platform/toolkit/native/ViewBase.h"

namespace toolkit::native {

namespace {

juce::Justification placing(TextAlignment alignment)
{
    switch (alignment) {
    case TextAlignment::centre:
        return juce::Justification::centred;
    case TextAlignment::right:
        return juce::Justification::centredRight;
    case TextAlignment::left:
        break;
    }
    return juce::Justification::centredLeft;
}

juce::Font fontOf(TextStyle style)
{
    switch (style) {
    case TextStyle::heading:
        return Look::font(measure::headingText, true);
    case TextStyle::small:
        return Look::font(measure::smallText);
    case TextStyle::body:
        break;
    }
    return Look::font(measure::bodyText);
}

/// One line of text that the user may edit.
class Field final : public juce::TextEditor, private juce::TextEditor::InputFilter
{
public:
    explicit Field(Control::Impl& control)
        : mControl(control)
    {
        setFont(fontOf(control.description.style));
        setJustification(placing(control.description.alignment));
        setIndents(6, 2);
        setSelectAllWhenFocused(true);
        setInputFilter(this, false);
    }

    void show(const juce::String& text)
    {
        setText(text, false);
        mCommitted = text;
    }

    void commitIfChanged()
    {
        if (getText() == mCommitted)
            return;
        mCommitted = getText();
        mControl.commitText(mCommitted.toStdString());
    }

    bool keyPressed(const juce::KeyPress& key) override
    {
        if (key == juce::KeyPress::escapeKey) {
            show(mCommitted);
            return true;
        }
        if (isAskedAbout(key) && !accepts(key))
            return true;
        if (key == juce::KeyPress::returnKey) {
            commitIfChanged();
            selectAll();
            return true;
        }
        mTyping = true;
        const bool taken = TextEditor::keyPressed(key);
        mTyping = false;
        return taken;
    }

    void focusLost(FocusChangeType cause) override
    {
        TextEditor::focusLost(cause);
        commitIfChanged();
    }

    void enablementChanged() override
    {
        TextEditor::enablementChanged();
        colourText();
    }

    void lookAndFeelChanged() override
    {
        TextEditor::lookAndFeelChanged();
        colourText();
    }

private:
    /// A field that only shows a number is read as often as any other text: dimmed, not faded.
    void colourText()
    {
        const auto* look = dynamic_cast<const Look*>(&getLookAndFeel());
        if (look) // not before it is in a window
            applyColourToAllText(isEnabled() ? look->palette().text : look->palette().textDim);
    }

    static bool isAskedAbout(const juce::KeyPress& key)
    {
        return key != juce::KeyPress::tabKey && !key.isKeyCode(juce::KeyPress::tabKey) &&
               !key.getModifiers().isCommandDown();
    }

    bool accepts(const juce::KeyPress& key)
    {
        return mControl.acceptsKey(
            {key.getKeyCode(), characterOf(key), keyBits(key.getModifiers())});
    }

    /// What is pasted passes the filter character by character; what is typed has passed it.
    juce::String filterNewText(juce::TextEditor&, const juce::String& input) override
    {
        if (mTyping && input.length() == 1)
            return input;
        juce::String kept;
        for (auto at = input.getCharPointer(); !at.isEmpty(); ++at)
            if (mControl.acceptsKey({0, static_cast<char32_t>(*at), 0}))
                kept += *at;
        return kept;
    }

    Control::Impl& mControl;
    juce::String mCommitted;
    bool mTyping = false;
};

class EditTextView final : public ViewBase<Field>
{
public:
    explicit EditTextView(Control::Impl& control)
        : ViewBase(control, control)
    {
        showText();
    }

    void showText() override { mComponent.show(toJuce(state().title)); }

    std::string text() const override { return mComponent.getText().toStdString(); }

    void commit() override { mComponent.commitIfChanged(); }
};

class Words final : public juce::Component
{
public:
    explicit Words(const ControlDescription& state)
        : mState(state)
    {
    }

    void paint(juce::Graphics& g) override
    {
        const auto& look = lookOf(*this);
        const bool dim = mState.style == TextStyle::small;
        g.setColour(isEnabled() && dim ? look.palette().textDim : look.textColour(isEnabled()));
        g.setFont(fontOf(mState.style));
        g.drawText(toJuce(mState.title), getLocalBounds(), placing(mState.alignment));
    }

private:
    const ControlDescription& mState;
};

class StaticTextView final : public ViewBase<Words>
{
public:
    explicit StaticTextView(Control::Impl& control)
        : ViewBase(control, control.description)
    {
    }

    void showText() override { mComponent.repaint(); }
};

/// A panel with a heading; what it groups stands on it but does not belong to it.
class Panel final : public juce::Component
{
public:
    explicit Panel(const ControlDescription& state)
        : mState(state)
    {
        setInterceptsMouseClicks(false, false);
    }

    void paint(juce::Graphics& g) override
    {
        const auto& look = lookOf(*this);
        auto area = getLocalBounds();
        g.setColour(look.palette().panel);
        g.fillRoundedRectangle(area.toFloat(), 6.0f);
        g.setColour(look.palette().divider);
        g.drawRoundedRectangle(area.toFloat().reduced(0.5f), 6.0f, 1.0f);
        g.setColour(look.palette().textDim);
        g.setFont(Look::font(measure::smallText, true));
        g.drawText(toJuce(mState.title), area.reduced(12, 6).removeFromTop(16),
                   juce::Justification::centredLeft);
    }

private:
    const ControlDescription& mState;
};

class GroupBoxView final : public ViewBase<Panel>
{
public:
    explicit GroupBoxView(Control::Impl& control)
        : ViewBase(control, control.description)
    {
    }

    void showText() override { mComponent.repaint(); }
};

} // namespace

std::unique_ptr<ControlView> makeEditText(Control::Impl& control)
{
    return std::make_unique<EditTextView>(control);
}

std::unique_ptr<ControlView> makeStaticText(Control::Impl& control)
{
    return std::make_unique<StaticTextView>(control);
}

std::unique_ptr<ControlView> makeGroupBox(Control::Impl& control)
{
    return std::make_unique<GroupBoxView>(control);
}

} // namespace toolkit::native
