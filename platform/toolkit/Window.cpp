#include "platform/toolkit/Window.h"

#include "platform/toolkit/DataBrowser.h"
#include "platform/toolkit/EventLoop.h"
#include "platform/toolkit/Look.h"
#include "platform/toolkit/native/Display.h"
#include "platform/toolkit/native/Graveyard.h"
#include "platform/toolkit/native/WindowImpl.h"

#include <algorithm>
#include <set>

namespace toolkit {

namespace {

/// The windows that `stop` closes and that a change of look reaches.
std::set<Window*>& openWindows()
{
    static std::set<Window*> windows;
    return windows;
}

void closeAllWindows()
{
    while (!openWindows().empty())
        (*openWindows().begin())->dispose();
}

bool isFocusable(ControlKind kind)
{
    return kind != ControlKind::staticText && kind != ControlKind::groupBox;
}

/// Numbered controls first, by number, then the others as the file has them.
void setTabOrder(const std::vector<std::unique_ptr<Control>>& controls)
{
    std::vector<Control*> order;
    for (const auto& control : controls)
        if (isFocusable(control->kind()))
            order.push_back(control.get());
    std::stable_sort(order.begin(), order.end(), [](const Control* a, const Control* b) {
        const auto rank = [](const Control* control) {
            const int number = control->impl().description.tabOrder;
            return number == 0 ? INT32_MAX : number;
        };
        return rank(a) < rank(b);
    });
    int place = 0;
    for (auto* control : order)
        control->impl().view->component().setExplicitFocusOrder(++place);
}

Status checkParent(const WindowParent& parent)
{
    if (const auto* host = std::get_if<ParentX11>(&parent))
        return native::windowExists(host->id) ? noErr : parentNotFoundErr;
    if (const auto* host = std::get_if<ParentComponent>(&parent))
        return host->component ? noErr : parentNotFoundErr;
    return noErr;
}

std::int32_t moved(bool near, bool far, std::int32_t edge, std::int32_t growth)
{
    return edge + (far && !near ? growth : 0);
}

std::int32_t stretched(bool near, bool far, std::int32_t length, std::int32_t growth)
{
    return near && far ? std::max(length + growth, 0) : length;
}

/// What is left of a closed window until nothing on the stack can need it: the views go first.
struct Remains
{
    std::shared_ptr<Window::Impl> impl;
    std::unique_ptr<native::Root> root;
    std::vector<std::unique_ptr<ControlView>> views;
};

} // namespace

bool Window::Impl::layOut(int newWidth, int newHeight)
{
    const bool changed = newWidth != width || newHeight != height;
    width = newWidth;
    height = newHeight;
    const int wider = width - description.width;
    const int higher = height - description.height;
    for (const auto& control : controls) {
        const auto& a = control->impl().description.anchors;
        const auto& base = control->impl().baseBounds;
        if (wider == 0 && higher == 0 && !changed)
            continue;
        control->setBounds({moved(a.left, a.right, base.x, wider),
                            moved(a.top, a.bottom, base.y, higher),
                            stretched(a.left, a.right, base.width, wider),
                            stretched(a.top, a.bottom, base.height, higher)});
    }
    return changed;
}

Window::Window(const WindowDescription& description)
    : mImpl(std::make_shared<Impl>(description))
{
    mImpl->width = description.width;
    mImpl->height = description.height;
    mImpl->root = std::make_unique<native::Root>(*this);
    auto& content = mImpl->root->content();
    for (const auto& each : description.controls) {
        mImpl->controls.push_back(std::make_unique<Control>(*this, each));
        auto& component = mImpl->controls.back()->impl().view->component();
        component.setBounds(native::toJuce(each.bounds));
        component.setEnabled(each.enabled);
        content.addChildComponent(component);
        component.setVisible(each.visible);
    }
    setTabOrder(mImpl->controls);
    mImpl->root->setName(native::toJuce(description.title));
    mImpl->root->setContent(description.width, description.height, mImpl->scale);
    mImpl->root->limit(description.minimumWidth, description.minimumHeight, mImpl->scale);
    openWindows().insert(this);
    native::whenLoopStops(closeAllWindows);
}

Window::~Window()
{
    dispose();
}

Status Window::create(const WindowDescription& description, const WindowParent& parent,
                      std::shared_ptr<Window>& into)
{
    if (!EventLoop::isThisThread())
        return loopNotRunningErr;
    const auto display = native::openDisplay();
    if (!display)
        return noDisplayErr;
    native::surviveErrors();
    const Status status = checkParent(parent);
    if (status != noErr)
        return status;
    into.reset(new Window(description));
    into->mImpl->parent = parent;
    return noErr;
}

Status Window::show()
{
    if (!isOpen())
        return loopNotRunningErr;
    const auto alive = shared_from_this();
    send(Event({"wind"_4cc, 22}).set("----"_4cc, this));
    if (!isOpen())
        return loopNotRunningErr;
    auto& root = *mImpl->root;
    const bool own = std::holds_alternative<std::monostate>(mImpl->parent);
    if (!std::exchange(mImpl->shown, true)) {
        if (own)
            root.centreWithSize(root.getWidth(), root.getHeight());
        root.place(mImpl->parent, mImpl->description.resizable,
                   mImpl->windowClass != WindowClass::document);
    }
    root.setVisible(true);
    if (own)
        root.toFront(true);
    return noErr;
}

void Window::hide()
{
    if (isOpen())
        mImpl->root->setVisible(false);
}

bool Window::isVisible() const
{
    return isOpen() && mImpl->root->isShowing();
}

bool Window::isOpen() const
{
    return mImpl->open;
}

void Window::dispose()
{
    if (!std::exchange(mImpl->open, false))
        return;
    const auto alive = weak_from_this().lock();
    openWindows().erase(this);
    juce::PopupMenu::dismissAllActiveMenus();
    send(Event({"wind"_4cc, 73}).set("----"_4cc, this));
    const auto remains = std::make_shared<Remains>();
    for (const auto& control : mImpl->controls) {
        auto& impl = control->impl();
        impl.send(Event({"cntl"_4cc, 1001}));
        if (impl.browser)
            impl.browser->removeAllItems();
        impl.closed = true;
        remains->views.push_back(std::move(impl.view));
    }
    mImpl->root->forget();
    mImpl->root->remove();
    remains->impl = mImpl;
    remains->root = std::move(mImpl->root);
    native::releaseLater(remains);
}

std::string Window::title() const
{
    return mImpl->description.title;
}

void Window::setTitle(const std::string& title)
{
    mImpl->description.title = title;
    if (isOpen())
        mImpl->root->setName(native::toJuce(title));
}

int Window::width() const
{
    return mImpl->width;
}

int Window::height() const
{
    return mImpl->height;
}

void Window::setSize(int width, int height)
{
    if (isOpen())
        mImpl->root->setContent(std::max(width, mImpl->description.minimumWidth),
                                std::max(height, mImpl->description.minimumHeight), mImpl->scale);
}

double Window::scaleFactor() const
{
    if (!isOpen())
        return mImpl->scale;
    const auto* peer = mImpl->root->getPeer();
    const auto* display = juce::Desktop::getInstance().getDisplays().getPrimaryDisplay();
    const double platform = peer ? peer->getPlatformScaleFactor() : display ? display->scale : 1.0;
    const auto* host = mImpl->root->getParentComponent();
    const double hosts = host ? juce::Component::getApproximateScaleFactorForComponent(host) : 1.0F;
    return platform * hosts * mImpl->scale;
}

void Window::setScale(double scale)
{
    mImpl->scale = std::clamp(scale, 0.5, 4.0);
    if (!isOpen())
        return;
    mImpl->root->limit(mImpl->description.minimumWidth, mImpl->description.minimumHeight,
                       mImpl->scale);
    mImpl->root->setContent(mImpl->width, mImpl->height, mImpl->scale);
}

WindowClass Window::windowClass() const
{
    return mImpl->windowClass;
}

void Window::setWindowClass(WindowClass windowClass)
{
    mImpl->windowClass = windowClass;
    if (isOpen() && mImpl->root->isOnDesktop())
        mImpl->root->setAlwaysOnTop(windowClass != WindowClass::document);
}

Control* Window::findControl(ControlID id) const
{
    for (const auto& control : mImpl->controls)
        if (control->id() == id)
            return control.get();
    return nullptr;
}

std::vector<Control*> Window::controls() const
{
    std::vector<Control*> result;
    for (const auto& control : mImpl->controls)
        result.push_back(control.get());
    return result;
}

void Window::clearKeyboardFocus()
{
    if (focusedControl())
        juce::Component::unfocusAllComponents();
}

Control* Window::focusedControl() const
{
    for (const auto& control : mImpl->controls)
        if (control->hasFocus())
            return control.get();
    return nullptr;
}

Point Window::mousePosition() const
{
    if (!isOpen())
        return {};
    const auto position = mImpl->root->content().getMouseXYRelative();
    return {position.x, position.y};
}

Point Window::toScreen(Point point) const
{
    auto* peer = isOpen() ? mImpl->root->getPeer() : nullptr;
    const auto corner = peer ? native::positionOnScreen(nativeId()) : std::nullopt;
    if (!corner)
        return point;
    const juce::Point<float> inContent(static_cast<float>(point.x), static_cast<float>(point.y));
    const auto inPeer = peer->getComponent().getLocalPoint(&mImpl->root->content(), inContent);
    const auto pixels = (inPeer * static_cast<float>(peer->getPlatformScaleFactor())).roundToInt();
    return {corner->x + pixels.x, corner->y + pixels.y};
}

unsigned long Window::nativeId() const
{
    const auto* peer = isOpen() ? mImpl->root->getPeer() : nullptr;
    return peer ? reinterpret_cast<unsigned long>(peer->getNativeHandle()) : 0;
}

Status Window::savePicture(const std::string& path) const
{
    if (!isOpen())
        return paramErr;
    auto& root = *mImpl->root;
    const auto pixels = static_cast<float>(scaleFactor() / mImpl->scale);
    const auto image = root.createComponentSnapshot(root.getLocalBounds(), true, pixels);
    const auto file = juce::File::getCurrentWorkingDirectory().getChildFile(native::toJuce(path));
    const juce::TemporaryFile beside(file);
    {
        juce::FileOutputStream stream(beside.getFile());
        if (!stream.openedOk() || !juce::PNGImageFormat().writeImageToStream(image, stream))
            return paramErr;
    }
    return beside.overwriteTargetFileWithTemporary() ? noErr : paramErr;
}

std::shared_ptr<void> Window::keepAlive()
{
    return weak_from_this().lock();
}

namespace {

Appearance& chosenAppearance()
{
    static Appearance chosen = Appearance::followDesktop;
    return chosen;
}

} // namespace

Appearance appearance()
{
    return chosenAppearance();
}

void setAppearance(Appearance appearance)
{
    chosenAppearance() = appearance;
    for (auto* window : openWindows())
        window->impl().root->applyLook();
}

bool isDark()
{
    if (appearance() != Appearance::followDesktop)
        return appearance() == Appearance::dark;
    return juce::Desktop::getInstance().isDarkModeActive();
}

} // namespace toolkit
