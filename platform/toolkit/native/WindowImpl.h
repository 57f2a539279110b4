/// The inside of a window: the component on the desktop, the content in it, and the controls.
#pragma once
#include "platform/toolkit/InterfaceDescription.h"
#include "platform/toolkit/Window.h"
#include "platform/toolkit/native/ControlImpl.h"
#include "platform/toolkit/native/Look.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <memory>
#include <vector>

namespace toolkit {

namespace native {

/// What the desktop or the host's window holds: fills itself with the content, scaled.
class Root final : public juce::Component,
                   private juce::FocusChangeListener,
                   private juce::DarkModeSettingListener
{
public:
    explicit Root(Window& window);
    ~Root() override;

    /// Content and window follow the scale; the content keeps its size in window points.
    void setContent(int width, int height, double scale);
    /// Puts the component where the parent says. Floating counts for windows of their own.
    void place(const WindowParent& parent, bool resizable, bool floating);
    void remove();
    void limit(int minimumWidth, int minimumHeight, double scale);
    void applyLook();
    /// The window is going: nothing here may call it again.
    void forget();

    juce::Component& content() { return mContent; }

    double contentScale() const { return mScale; }

    void paint(juce::Graphics& g) override;
    void resized() override;
    bool keyPressed(const juce::KeyPress& key) override;
    void userTriedToCloseWindow() override;
    void mouseDown(const juce::MouseEvent& event) override; // of everything inside

private:
    /// Tooltips of whatever control the pointer is over.
    struct Tips final : juce::TooltipWindow
    {
        Tips(Root& root, int delayMs)
            : TooltipWindow(&root.mContent, delayMs)
            , owner(root)
        {
        }

        juce::String getTipFor(juce::Component& component) override;

        Root& owner;
    };

    void globalFocusChanged(juce::Component* focused) override;
    void darkModeSettingChanged() override;
    Control* controlOf(const juce::Component* component) const;

    juce::SharedResourcePointer<Look> mLook;
    Window* mWindow;
    juce::Component mContent;
    juce::ComponentBoundsConstrainer mLimits;
    std::unique_ptr<Tips> mTips;
    double mScale = 1.0;
    Control* mFocused = nullptr;
    bool mActive = false;
};

} // namespace native

struct Window::Impl
{
    explicit Impl(const WindowDescription& itsDescription)
        : description(itsDescription)
    {
    }

    WindowDescription description;
    WindowParent parent;
    WindowClass windowClass = WindowClass::document;
    double scale = 1.0;
    int width = 0; // content, as laid out last
    int height = 0;
    bool shown = false;
    bool open = true;
    std::vector<std::unique_ptr<Control>> controls;
    std::unique_ptr<native::Root> root;

    /// Moves every control to where its anchors put it in a content of this size.
    /// @return whether the size is another than before
    bool layOut(int width, int height);
};

} // namespace toolkit
