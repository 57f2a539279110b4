#include "platform/toolkit/native/ViewBase.h"

namespace toolkit::native {

namespace {

constexpr int firstRepeatMs = 400; // long enough that a click counts once
constexpr int nextRepeatMs = 60;

class Arrows final : public juce::Component, private juce::Timer
{
public:
    explicit Arrows(Control::Impl& control)
        : mControl(control)
    {
        setWantsKeyboardFocus(true);
        setMouseClickGrabsKeyboardFocus(true);
    }

    void paint(juce::Graphics& g) override
    {
        const auto area = getLocalBounds().toFloat();
        const auto& look = lookOf(*this);
        look.drawBody(g, area, look.palette().control, isEnabled());
        auto halves = area;
        const auto upper = halves.removeFromTop(area.getHeight() / 2);
        drawHalf(g, upper, upArrowPart, 0.0f);
        drawHalf(g, halves, downArrowPart, 0.5f);
        if (hasKeyboardFocus(false))
            look.drawFocusRing(g, area);
    }

    void mouseDown(const juce::MouseEvent& event) override
    {
        if (!event.mods.isLeftButtonDown())
            return;
        mHeld = event.y < getHeight() / 2 ? upArrowPart : downArrowPart;
        startTimer(firstRepeatMs);
        fire();
    }

    void mouseUp(const juce::MouseEvent&) override { release(); }

    bool keyPressed(const juce::KeyPress& key) override
    {
        const bool up = key == juce::KeyPress::upKey;
        if (!up && key != juce::KeyPress::downKey)
            return false;
        mControl.hit(up ? upArrowPart : downArrowPart);
        return true;
    }

    void focusGained(FocusChangeType) override { repaint(); }

    void focusLost(FocusChangeType) override { repaint(); }

    void enablementChanged() override { release(); }

private:
    void drawHalf(juce::Graphics& g, juce::Rectangle<float> half, ControlPart part,
                  float turns) const
    {
        const auto& look = lookOf(*this);
        if (mHeld == part) {
            g.setColour(look.palette().controlDown);
            g.fillRoundedRectangle(half.reduced(1.5f), measure::corner - 1.0f);
        }
        look.drawTriangle(g, half, turns, look.textColour(isEnabled()));
    }

    void timerCallback() override
    {
        startTimer(nextRepeatMs);
        fire();
    }

    void fire()
    {
        repaint();
        mControl.hit(mHeld);
    }

    void release()
    {
        stopTimer();
        mHeld = entireControl;
        repaint();
    }

    Control::Impl& mControl;
    ControlPart mHeld = entireControl;
};

class LittleArrowsView final : public ViewBase<Arrows>
{
public:
    explicit LittleArrowsView(Control::Impl& control)
        : ViewBase(control, control)
    {
    }
};

} // namespace

std::unique_ptr<ControlView> makeLittleArrows(Control::Impl& control)
{
    return std::make_unique<LittleArrowsView>(control);
}

} // namespace toolkit::native
