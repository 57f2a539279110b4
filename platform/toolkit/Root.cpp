#include "platform/toolkit/Look.h"
#include "platform/toolkit/native/WindowImpl.h"

#include <cmath>

namespace toolkit::native {

namespace {

constexpr int tooltipDelayMs = 600;

} // namespace

Root::Root(Window& window)
    : mWindow(&window)
{
    setOpaque(true);
    setLookAndFeel(&*mLook);
    applyLook();
    addAndMakeVisible(mContent);
    mContent.setFocusContainerType(FocusContainerType::keyboardFocusContainer);
    mContent.addMouseListener(this, true);
    mTips = std::make_unique<Tips>(*this, tooltipDelayMs);
    auto& desktop = juce::Desktop::getInstance();
    desktop.addFocusChangeListener(this);
    desktop.addDarkModeSettingListener(this);
}

Root::~Root()
{
    auto& desktop = juce::Desktop::getInstance();
    desktop.removeDarkModeSettingListener(this);
    desktop.removeFocusChangeListener(this);
    mTips.reset();
    setLookAndFeel(nullptr);
}

void Root::forget()
{
    mWindow = nullptr;
    mFocused = nullptr;
}

void Root::setContent(int width, int height, double scale)
{
    mScale = scale;
    mContent.setTransform(juce::AffineTransform::scale(static_cast<float>(scale)));
    mContent.setSize(width, height);
    setSize(static_cast<int>(std::lround(width * scale)),
            static_cast<int>(std::lround(height * scale)));
}

void Root::limit(int minimumWidth, int minimumHeight, double scale)
{
    mLimits.setMinimumSize(static_cast<int>(std::lround(minimumWidth * scale)),
                           static_cast<int>(std::lround(minimumHeight * scale)));
}

void Root::place(const WindowParent& parent, bool resizable, bool floating)
{
    using Peer = juce::ComponentPeer;
    if (const auto* component = std::get_if<ParentComponent>(&parent)) {
        static_cast<juce::Component*>(component->component)->addAndMakeVisible(this);
        return;
    }
    if (const auto* host = std::get_if<ParentX11>(&parent)) {
        setTopLeftPosition(0, 0);
        // The library passes the server's window numbers as pointers.
        addToDesktop(0, reinterpret_cast<void*>(host->id)); // NOLINT(performance-no-int-to-ptr)
        return;
    }
    setAlwaysOnTop(floating);
    addToDesktop(Peer::windowHasTitleBar | Peer::windowHasCloseButton |
                 Peer::windowHasMinimiseButton | Peer::windowAppearsOnTaskbar |
                 (resizable ? Peer::windowIsResizable : 0));
    if (auto* peer = getPeer(); peer && resizable)
        peer->setConstrainer(&mLimits);
}

void Root::remove()
{
    setVisible(false);
    if (isOnDesktop())
        removeFromDesktop();
    else if (auto* parent = getParentComponent())
        parent->removeChildComponent(this);
}

void Root::paint(juce::Graphics& g)
{
    g.fillAll(mLook->palette().window);
}

void Root::resized()
{
    const auto fits = [this](int content, int own) {
        return static_cast<int>(std::lround(content * mScale)) == own;
    };
    if (!fits(mContent.getWidth(), getWidth()) || !fits(mContent.getHeight(), getHeight()))
        mContent.setSize(static_cast<int>(std::lround(getWidth() / mScale)),
                         static_cast<int>(std::lround(getHeight() / mScale)));
    repaint(); // what grew was asked for at the old size, and cut off there
    if (!mWindow)
        return;
    auto& impl = mWindow->impl();
    if (impl.layOut(mContent.getWidth(), mContent.getHeight()) && mWindow)
        mWindow->send(Event({"wind"_4cc, 27}).set("----"_4cc, mWindow));
}

/// With no control in focus, Tab begins at the first or the last.
bool Root::keyPressed(const juce::KeyPress& key)
{
    if (!key.isKeyCode(juce::KeyPress::tabKey) || hasKeyboardFocus(true))
        return false;
    const auto order = juce::KeyboardFocusTraverser().getAllComponents(&mContent);
    if (order.empty())
        return false;
    (key.getModifiers().isShiftDown() ? order.back() : order.front())->grabKeyboardFocus();
    return true;
}

void Root::userTriedToCloseWindow()
{
    if (mWindow)
        mWindow->dispose();
}

Control* Root::controlOf(const juce::Component* component) const
{
    if (!mWindow)
        return nullptr;
    while (component && component->getParentComponent() != &mContent)
        component = component->getParentComponent();
    for (const auto& control : mWindow->impl().controls)
        if (component && control->impl().view && &control->impl().view->component() == component)
            return control.get();
    return nullptr;
}

/// User panes and browsers send their contextual clicks themselves, before anything else.
void Root::mouseDown(const juce::MouseEvent& event)
{
    if (event.eventComponent == &mContent)
        unfocusAllComponents(); // a click beside the controls ends an editing
    auto* control = event.mods.isPopupMenu() ? controlOf(event.eventComponent) : nullptr;
    if (!control || control->kind() == ControlKind::userPane ||
        control->kind() == ControlKind::dataBrowser)
        return;
    auto& impl = control->impl();
    impl.contextualClick(event.getEventRelativeTo(&impl.view->component()).getPosition());
}

void Root::globalFocusChanged(juce::Component* focused)
{
    const auto alive = mWindow ? mWindow->weak_from_this().lock() : nullptr;
    if (!alive)
        return;
    const auto tell = [](Control* control, std::int32_t part) {
        if (control)
            control->impl().send(Event({"cntl"_4cc, 7}).set("part"_4cc, part));
    };
    auto* now = controlOf(focused);
    auto* before = std::exchange(mFocused, now);
    if (now != before) {
        tell(before, 0);
        tell(now, 1);
    }
    const bool active = getPeer() && getPeer()->isFocused();
    if (mWindow && std::exchange(mActive, active) != active)
        mWindow->send(Event({"wind"_4cc, active ? 5u : 6u}).set("----"_4cc, mWindow));
}

void Root::applyLook()
{
    mLook->setDark(isDark());
    sendLookAndFeelChange();
    repaint();
}

void Root::darkModeSettingChanged()
{
    applyLook();
}

juce::String Root::Tips::getTipFor(juce::Component& component)
{
    const auto* control = owner.controlOf(&component);
    return control && owner.isShowing() ? toJuce(control->tooltip()) : juce::String();
}

} // namespace toolkit::native
