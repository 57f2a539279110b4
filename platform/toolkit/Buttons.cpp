// Push buttons, check boxes and pop-up menus.
#include "platform/toolkit/native/ViewBase.h"

namespace toolkit::native {

namespace {

/// Return and the space bar work every button, at once: a click that were only posted could arrive
/// after the window was closed.
template <class Base>
class KeyedButton final : public Base
{
public:
    bool keyPressed(const juce::KeyPress& key) override
    {
        if (key != juce::KeyPress::spaceKey && key != juce::KeyPress::returnKey)
            return false;
        if (this->isEnabled() && this->onClick) {
            const auto click = this->onClick;
            click();
        }
        return true;
    }
};

class PushButtonView final : public ViewBase<KeyedButton<juce::TextButton>>
{
public:
    explicit PushButtonView(Control::Impl& control)
        : ViewBase(control)
    {
        showText();
        mComponent.onClick = [this] { mControl.hit(buttonPart); };
    }

    void showText() override { mComponent.setButtonText(toJuce(state().title)); }
};

class CheckBoxView final : public ViewBase<KeyedButton<juce::ToggleButton>>
{
public:
    explicit CheckBoxView(Control::Impl& control)
        : ViewBase(control)
    {
        showText();
        showValue();
        mComponent.setClickingTogglesState(false); // the control's value leads, the picture follows
        mComponent.onClick = [this] { toggle(); };
    }

    void showText() override { mComponent.setButtonText(toJuce(state().title)); }

    void showValue() override
    {
        mComponent.setToggleState(state().value != 0, juce::dontSendNotification);
    }

private:
    void toggle()
    {
        const std::int32_t before = state().value;
        mControl.hit(checkBoxPart,
                     [this, before] { mControl.control.setValue(before == 0 ? 1 : 0); });
    }
};

class MenuBox final : public juce::ComboBox
{
public:
    bool keyPressed(const juce::KeyPress& key) override
    {
        if (key != juce::KeyPress::spaceKey)
            return ComboBox::keyPressed(key);
        showPopup();
        return true;
    }

    void focusGained(FocusChangeType) override { repaint(); }

    void focusLost(FocusChangeType) override { repaint(); }

    void mouseEnter(const juce::MouseEvent&) override { repaint(); }

    void mouseExit(const juce::MouseEvent&) override { repaint(); }
};

class PopUpMenuView final : public ViewBase<MenuBox>
{
public:
    explicit PopUpMenuView(Control::Impl& control)
        : ViewBase(control)
    {
        showItems();
        mComponent.setWantsKeyboardFocus(true);
        mComponent.onChange = [this] { choose(); };
    }

    void showItems() override
    {
        mComponent.clear(juce::dontSendNotification);
        int itemId = 0;
        for (const auto& item : state().items)
            mComponent.addItem(toJuce(item), ++itemId);
        showValue();
    }

    void showValue() override
    {
        mComponent.setSelectedId(state().value, juce::dontSendNotification);
    }

private:
    void choose()
    {
        mControl.description.value = mComponent.getSelectedId();
        mControl.hit(menuPart);
    }
};

} // namespace

std::unique_ptr<ControlView> makePushButton(Control::Impl& control)
{
    return std::make_unique<PushButtonView>(control);
}

std::unique_ptr<ControlView> makeCheckBox(Control::Impl& control)
{
    return std::make_unique<CheckBoxView>(control);
}

std::unique_ptr<ControlView> makePopUpMenu(Control::Impl& control)
{
    return std::make_unique<PopUpMenuView>(control);
}

} // namespace toolkit::native
