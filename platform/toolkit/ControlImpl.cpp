#include "platform/toolkit/native/ControlImpl.h"

#include "platform/toolkit/DataBrowser.h"
#include "platform/toolkit/Window.h"

namespace toolkit {

Control::Impl::Impl(Control& owner, Window& itsWindow, const ControlDescription& itsDescription)
    : control(owner)
    , window(itsWindow)
    , description(itsDescription)
    , baseBounds(itsDescription.bounds)
{
}

Control::Impl::~Impl() = default;

void Control::Impl::act(ControlPart part)
{
    const auto call = action; // the action may set another one
    if (call && !closed)
        call(control, part);
}

void Control::Impl::hit(ControlPart part, const std::function<void()>& change)
{
    if (closed)
        return;
    const auto alive = window.weak_from_this().lock(); // the action may close the window
    act(part);
    if (closed)
        return;
    if (change)
        change();
    send(Event({"cntl"_4cc, 1}).set("part"_4cc, static_cast<std::int32_t>(part)));
}

void Control::Impl::commitText(const std::string& text)
{
    if (closed)
        return;
    const auto alive = window.weak_from_this().lock();
    description.title = text;
    const auto validate = validation;
    if (validate)
        validate(control);
    act(editTextPart);
}

bool Control::Impl::acceptsKey(const KeyStroke& key)
{
    const auto filter = keyFilter;
    return !filter || closed || filter(control, key);
}

Status Control::Impl::send(Event event)
{
    if (closed)
        return eventNotHandledErr;
    event.set("----"_4cc, &control);
    return control.send(event);
}

Status Control::Impl::contextualClick(juce::Point<int> position)
{
    return send(Event({"cntl"_4cc, 12}).set("mloc"_4cc, toWindow(position)));
}

Point Control::Impl::toWindow(juce::Point<int> position) const
{
    return {position.x + description.bounds.x, position.y + description.bounds.y};
}

namespace native {

std::unique_ptr<ControlView> makeView(Control::Impl& control)
{
    switch (control.description.kind) {
    case ControlKind::pushButton:
        return makePushButton(control);
    case ControlKind::checkBox:
        return makeCheckBox(control);
    case ControlKind::popUpMenu:
        return makePopUpMenu(control);
    case ControlKind::littleArrows:
        return makeLittleArrows(control);
    case ControlKind::editText:
        return makeEditText(control);
    case ControlKind::staticText:
        return makeStaticText(control);
    case ControlKind::groupBox:
        return makeGroupBox(control);
    case ControlKind::userPane:
        return makeUserPane(control);
    case ControlKind::dataBrowser:
        return makeDataBrowser(control);
    }
    return nullptr;
}

} // namespace native

} // namespace toolkit
