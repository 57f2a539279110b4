// The controls of the editor's window, bound to the effect.
#include "editor/Beeps.h"
#include "editor/CLooperView.h"
#include "editor/EventView.h"
#include "editor/LibraryFiles.h"
#include "editor/PatternsView.h"
#include "library/PatternTree.h"
#include "platform/toolkit/Beep.h"

#include <array>
#include <cstdio>
#include <string>

using toolkit::Control;
using toolkit::ControlPart;
using toolkit::KeyStroke;
using toolkit::operator""_4cc;

namespace {

enum ControlNumber : int {
    kThru = 102,
    kAddPattern = 104,
    kDeletePattern = 105,
    kDnDRepeat = 106,
    kVeloPlus = 109,
    kUseVelocity = 111,
    kUsePitchWheel = 112,
    kRandomVelo = 113,
    kRandomVeloMin = 114,
    kRandomVeloMax = 116,
    kRandomVeloStrength = 118
};

/// A number: a text that shows it, and behind it in the numbering the arrows that change it.
struct NumberBinding
{
    int text;
    CLooper::NumRange (CLooper::*get)() const;
    void (CLooper::*set)(int);

    int arrows() const { return text + 1; }
};

constexpr std::array kNumbers{
    NumberBinding{kDnDRepeat, &CLooper::getDnDRepeat, &CLooper::setDnDRepeat},
    NumberBinding{kVeloPlus, &CLooper::getVeloPlus, &CLooper::setVeloPlus},
    NumberBinding{kRandomVeloMin, &CLooper::getRandomVeloMin, &CLooper::setRandomVeloMin},
    NumberBinding{kRandomVeloMax, &CLooper::getRandomVeloMax, &CLooper::setRandomVeloMax},
    NumberBinding{kRandomVeloStrength, &CLooper::getRandomVeloStrength,
                  &CLooper::setRandomVeloStrength},
};

/// A flag that a check box shows.
struct SwitchBinding
{
    int box;
    bool (CLooper::*get)() const;
    void (CLooper::*set)(bool);
};

constexpr std::array kSwitches{
    // Straight into the effect: nobody else is told that the player passes notes on.
    SwitchBinding{kThru, &CLooper::isThru, &CLooper::setThru},
    SwitchBinding{kUseVelocity, &CLooper::isVelocityUsed, &CLooper::useVelocity},
    SwitchBinding{kUsePitchWheel, &CLooper::isPitchWheelUsed, &CLooper::usePitchWheel},
    SwitchBinding{kRandomVelo, &CLooper::isRandomVelo, &CLooper::setRandomVelo},
};

CLooperView* viewOf(const Control& control)
{
    return static_cast<CLooperView*>(control.reference());
}

void showNumber(Control& text, int value)
{
    text.setData(toolkit::editTextPart, "text"_4cc, std::to_string(value));
}

/// Steps a value with arrows that leave it to their owner; at its end it stays.
void step(Control& arrows, CLooperView& view, int by)
{
    const std::int32_t value = arrows.value();
    if (by > 0 ? value >= arrows.maximum() : value <= arrows.minimum())
        return;
    arrows.setValue(value + by);
    view.performNumEdit(arrows.id().id, value + by);
}

/// The action of every control.
void NumEdit_Action(Control& control, ControlPart part)
{
    CLooperView* view = viewOf(control);
    if (view == nullptr)
        return;
    switch (part) {
    case toolkit::upArrowPart:
        step(control, *view, 1);
        break;
    case toolkit::downArrowPart:
        step(control, *view, -1);
        break;
    case toolkit::buttonPart:
    case toolkit::checkBoxPart:
        // The box changes after its action: what it shows now is what was.
        view->performCheckbox(control.id().id, control.value() == 0);
        break;
    default:
        break;
    }
}

/// Numbers are typed with digits, a minus and backspace; Return ends the typing.
bool NumEdit_KeyFilter(Control& control, const KeyStroke& key)
{
    constexpr char32_t backspace = 8;
    constexpr char32_t enter = 13;
    if (key.character == enter)
        if (CLooperView* view = viewOf(control))
            view->performEndEdit();
    return (key.character >= U'0' && key.character <= U'9') || key.character == U'-' ||
           key.character == backspace;
}

void NumEdit_TextValidation(Control&) {}

void refreshLibrary()
{
    if (const std::shared_ptr<PatternTree> library = CLooper::patternTree())
        library->updateAndNotify();
}

} // namespace

// Binding -----------------------------------------------------------------------------------------

void CLooperView::bindControls()
{
    InitPushButtonControl(kAddPattern);
    InitPushButtonControl(kDeletePattern);
    for (const SwitchBinding& binding : kSwitches)
        InitCheckboxControl(binding.box, binding.get);
    for (const NumberBinding& binding : kNumbers)
        InitNumberControl(binding.text, binding.get);
    if (Control* tempo = initControl(kTempoControl))
        tempo->setValue(static_cast<std::int16_t>(mLooper->tempoType() + 1));
}

Control* CLooperView::initControl(int id)
{
    Control* control = mWindow->findControl({0, id});
    if (control == nullptr)
        return nullptr;
    control->setReference(this);
    control->setAction(&NumEdit_Action);
    return control;
}

void CLooperView::InitPushButtonControl(int id)
{
    initControl(id);
}

void CLooperView::InitCheckboxControl(int id, bool (CLooper::*get)() const)
{
    if (Control* control = initControl(id))
        control->setValue((mLooper->*get)() ? 1 : 0);
}

void CLooperView::InitNumberControl(int id, CLooper::NumRange (CLooper::*get)() const)
{
    const CLooper::NumRange range = (mLooper->*get)();
    if (Control* arrows = initControl(id + 1)) {
        arrows->setMinimum(range.min);
        arrows->setMaximum(range.max);
        arrows->setValue(range.value);
    }
    Control* text = mWindow->findControl({0, id});
    if (text == nullptr)
        return;
    showNumber(*text, range.value);
    text->setReference(this);
    text->setValidation(&NumEdit_TextValidation);
    text->setKeyFilter(&NumEdit_KeyFilter);
    text->setEnabled(false); // it shows the number; the arrows change it
}

void CLooperView::showParameters()
{
    const auto show = [this](int id, int value) {
        Control* control = mWindow->findControl({0, id});
        const bool differs = control != nullptr && control->value() != value;
        if (differs)
            control->setValue(value);
        return differs;
    };
    for (const SwitchBinding& binding : kSwitches)
        show(binding.box, (mLooper->*binding.get)() ? 1 : 0);
    for (const NumberBinding& binding : kNumbers) {
        const int value = (mLooper->*binding.get)().value;
        Control* text = mWindow->findControl({0, binding.text});
        if (show(binding.arrows(), value) && text != nullptr)
            showNumber(*text, value);
    }
    show(kTempoControl, mLooper->tempoType() + 1);
    mEventView->FollowState();
}

// Actions -----------------------------------------------------------------------------------------

void CLooperView::performNumEdit(int controlId, int value)
{
    for (const NumberBinding& binding : kNumbers) {
        if (binding.arrows() != controlId || mLooper == nullptr)
            continue;
        (mLooper->*binding.set)(value);
        Control* text = mWindow == nullptr ? nullptr : mWindow->findControl({0, binding.text});
        if (text != nullptr)
            showNumber(*text, value);
    }
}

void CLooperView::performCheckbox(int controlId, bool value)
{
    if (mLooper == nullptr)
        return;
    bool handled = true;
    if (controlId == kAddPattern) {
        AddPattern();
    } else if (controlId == kDeletePattern) {
        DeletePattern();
    } else {
        handled = false;
        for (const SwitchBinding& binding : kSwitches)
            if (binding.box == controlId) {
                (mLooper->*binding.set)(value);
                handled = true;
            }
    }
    if (handled)
        update();
}

void CLooperView::performTempoChange(short menuValue)
{
    if (mLooper != nullptr)
        mLooper->TempoType(menuValue - 1);
}

void CLooperView::AddPattern()
{
    if (mPatternsView != nullptr)
        mPatternsView->AddPattern();
}

void CLooperView::DeletePattern()
{
    if (mPatternsView != nullptr)
        mPatternsView->DeletePattern();
}

// Styles ------------------------------------------------------------------------------------------

void CLooperView::AddStyle()
{
    if (mPatternsView == nullptr)
        return;
    const Korvanel::String folder = mPatternsView->GetCurrentlySelectedStyle();
    if (!folder.IsEmpty() && !makeStyleFolder(folder.c_str(), "new style", 999).empty())
        refreshLibrary();
}

void CLooperView::DeleteStyle()
{
    if (mPatternsView == nullptr)
        return;
    const Korvanel::String folder = mPatternsView->GetCurrentlySelectedStyle();
    if (folder.IsEmpty())
        return;
    if (std::remove(folder.c_str()) == 0)
        refreshLibrary();
    else
        toolkit::beep(kFailureBeep);
}
