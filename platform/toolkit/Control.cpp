#include "platform/toolkit/Control.h"

#include "platform/toolkit/DataBrowser.h"
#include "platform/toolkit/Window.h"
#include "platform/toolkit/native/ControlImpl.h"

#include <algorithm>
#include <cmath>

namespace toolkit {

Control::Control(Window& window, const ControlDescription& description)
    : mImpl(std::make_unique<Impl>(*this, window, description))
{
    if (description.kind == ControlKind::dataBrowser)
        mImpl->browser = std::make_unique<DataBrowser>(*this);
    mImpl->view = native::makeView(*mImpl);
}

Control::~Control() = default;

ControlID Control::id() const
{
    return mImpl->description.id;
}

ControlKind Control::kind() const
{
    return mImpl->description.kind;
}

Window& Control::window() const
{
    return mImpl->window;
}

std::int32_t Control::value() const
{
    return mImpl->description.value;
}

void Control::setValue(std::int32_t value)
{
    auto& state = mImpl->description;
    state.value = std::clamp(value, state.minimum, state.maximum);
    if (mImpl->view)
        mImpl->view->showValue();
}

std::int32_t Control::minimum() const
{
    return mImpl->description.minimum;
}

void Control::setMinimum(std::int32_t minimum)
{
    auto& state = mImpl->description;
    state.minimum = minimum;
    state.maximum = std::max(state.maximum, minimum);
    setValue(state.value);
}

std::int32_t Control::maximum() const
{
    return mImpl->description.maximum;
}

void Control::setMaximum(std::int32_t maximum)
{
    auto& state = mImpl->description;
    state.maximum = maximum;
    state.minimum = std::min(state.minimum, maximum);
    setValue(state.value);
}

void* Control::reference() const
{
    return mImpl->reference;
}

void Control::setReference(void* reference)
{
    mImpl->reference = reference;
}

void Control::setAction(Action action)
{
    mImpl->action = std::move(action);
}

void Control::setValidation(Validation validation)
{
    mImpl->validation = std::move(validation);
}

void Control::setKeyFilter(KeyFilter filter)
{
    mImpl->keyFilter = std::move(filter);
}

Status Control::setData(ControlPart part, FourCharCode tag, const std::string& data)
{
    const bool hasText = kind() == ControlKind::editText || kind() == ControlKind::staticText;
    if (!hasText || tag != "text"_4cc || (part != entireControl && part != editTextPart))
        return propertyNotSupportedErr;
    mImpl->description.title = data;
    if (mImpl->view)
        mImpl->view->showText();
    return noErr;
}

Status Control::data(ControlPart part, FourCharCode tag, std::string& into) const
{
    const bool isEdit = kind() == ControlKind::editText;
    const bool hasText = isEdit || kind() == ControlKind::staticText;
    if (!hasText || tag != "text"_4cc || (part != entireControl && part != editTextPart))
        return propertyNotSupportedErr;
    into = isEdit && mImpl->view ? mImpl->view->text() : mImpl->description.title;
    return noErr;
}

std::string Control::title() const
{
    return mImpl->description.title;
}

void Control::setTitle(const std::string& title)
{
    mImpl->description.title = title;
    if (mImpl->view)
        mImpl->view->showText();
}

std::string Control::tooltip() const
{
    return mImpl->description.tooltip;
}

void Control::setTooltip(const std::string& tooltip)
{
    mImpl->description.tooltip = tooltip; // the window's tooltip reads it from here
}

Status Control::setItems(const std::vector<std::string>& items)
{
    if (kind() != ControlKind::popUpMenu)
        return propertyNotSupportedErr;
    auto& state = mImpl->description;
    state.items = items;
    state.minimum = items.empty() ? 0 : 1;
    state.maximum = static_cast<std::int32_t>(items.size());
    state.value = std::clamp(state.value, state.minimum, state.maximum);
    if (mImpl->view)
        mImpl->view->showItems();
    return noErr;
}

bool Control::isEnabled() const
{
    return mImpl->description.enabled;
}

void Control::setEnabled(bool enabled)
{
    mImpl->description.enabled = enabled;
    if (mImpl->view)
        mImpl->view->component().setEnabled(enabled);
}

bool Control::isVisible() const
{
    return mImpl->description.visible;
}

void Control::setVisible(bool visible)
{
    mImpl->description.visible = visible;
    if (mImpl->view)
        mImpl->view->component().setVisible(visible);
}

Rect Control::bounds() const
{
    return mImpl->description.bounds;
}

Rect Control::pixelBounds() const
{
    return native::pixelsOf(bounds(), mImpl->window.scaleFactor());
}

void Control::setBounds(const Rect& bounds)
{
    const Rect before = std::exchange(mImpl->description.bounds, bounds);
    if (mImpl->view)
        mImpl->view->component().setBounds(native::toJuce(bounds));
    if (before != bounds)
        mImpl->send(Event({"cntl"_4cc, 154}).set("orct"_4cc, before).set("crct"_4cc, bounds));
}

void Control::invalidate()
{
    if (mImpl->view)
        mImpl->view->component().repaint();
}

void Control::invalidate(const Rect& area)
{
    if (!mImpl->view)
        return;
    // At other than whole scales a source's pixel may begin before the point that it belongs to.
    const double scale = mImpl->window.scaleFactor();
    const int around = scale == std::floor(scale) ? 0 : 1;
    mImpl->view->component().repaint(native::toJuce(area).expanded(around));
}

bool Control::focus()
{
    if (!mImpl->isOpen())
        return false;
    mImpl->view->component().grabKeyboardFocus();
    return hasFocus();
}

bool Control::hasFocus() const
{
    return mImpl->isOpen() && mImpl->view->component().hasKeyboardFocus(true);
}

void Control::setPixelSource(PixelSource* source)
{
    mImpl->pixels = source;
    invalidate();
}

DataBrowser* Control::dataBrowser() const
{
    return mImpl->browser.get();
}

EventTarget* Control::nextTarget()
{
    return mImpl->closed ? nullptr : &mImpl->window;
}

std::shared_ptr<void> Control::keepAlive()
{
    return mImpl->closed ? nullptr : mImpl->window.weak_from_this().lock();
}

} // namespace toolkit
