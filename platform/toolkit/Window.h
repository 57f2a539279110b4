/// A window made from an interface description: of its own on the desktop, or inside a window or a
/// component that the host gives. Thread: user interface.
#pragma once
#include "platform/toolkit/Control.h"

#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace toolkit {

struct WindowDescription;

/// A window of the X server that the new one is put into; the host's, and alive at least as long.
struct ParentX11
{
    unsigned long id = 0;
};

/// A component of the toolkit's own library, as a plug-in wrapper has one: a `juce::Component*` of
/// this same binary. The window fills it from the corner. It must outlive the window's closing.
struct ParentComponent
{
    void* component = nullptr;
};

using WindowParent = std::variant<std::monostate, ParentX11, ParentComponent>;

/// Document windows stay in line with others; floating ones above them.
enum class WindowClass : std::uint32_t { floating = 5, document = 6, utility = 8 };

class Window : public EventTarget, public std::enable_shared_from_this<Window>
{
public:
    /// Makes the window with its controls, hidden.
    /// @return noErr; loopNotRunningErr; noDisplayErr; parentNotFoundErr. Only the first sets
    /// `into`.
    static Status create(const WindowDescription& description, const WindowParent& parent,
                         std::shared_ptr<Window>& into);

    /// Disposes of the window if that has not happened.
    ~Window() override;

    /// Sends 'wind' 22 and shows the window, at the desktop's centre the first time.
    /// @return noErr; loopNotRunningErr after the window was disposed of
    Status show();
    void hide();
    bool isVisible() const;

    /// Takes the window down: 'wind' 73 to its handlers, then 'cntl' 1001 to every control, and
    /// browsers report their items as removed. The user's click on the close box does the same.
    /// Nothing happens the second time.
    void dispose();
    bool isOpen() const;

    std::string title() const;
    void setTitle(const std::string& title);

    /// Content size, in window points.
    int width() const;
    int height() const;
    /// Not smaller than the description's minimum. Controls move with their anchors. Sends
    /// 'wind' 27.
    void setSize(int width, int height);

    /// Device pixels in a window point; a host's component around the window has a part in it.
    double scaleFactor() const;
    /// Enlarges everything on top of what the display does; 0.5 to 4, other values are limited.
    void setScale(double scale);

    WindowClass windowClass() const;
    void setWindowClass(WindowClass windowClass);

    /// Null when the description has no such control.
    Control* findControl(ControlID id) const;
    /// In the order of the description.
    std::vector<Control*> controls() const;

    /// No control has the keyboard afterwards; what was being edited is committed.
    void clearKeyboardFocus();
    /// The control that has the keyboard; null for none.
    Control* focusedControl() const;

    /// The pointer, in window points.
    Point mousePosition() const;
    /// From window points to device pixels of the screen; the point itself while the window has not
    /// been shown. Asks the X server each time.
    Point toScreen(Point point) const;

    /// The X server's number of the window that shows the content; 0 while there is none.
    unsigned long nativeId() const;

    /// Writes what the window shows, at its scale, as a PNG file.
    /// @return noErr or paramErr when the file cannot be written
    Status savePicture(const std::string& path) const;

    struct Impl;

    Impl& impl() const { return *mImpl; }

protected:
    std::shared_ptr<void> keepAlive() override;

private:
    explicit Window(const WindowDescription& description);

    std::shared_ptr<Impl> mImpl; // shared with what remains of a closed window for a moment
};

} // namespace toolkit
