/// A screen of the tests' own, with a pointer and a keyboard that tests can move. Nothing here
/// names a window system, whose header would rename half of ours.
#pragma once
#include "platform/toolkit/Geometry.h"

#include <memory>
#include <string>

class VirtualDisplay
{
public:
    /// Starts the server on a free display and sets DISPLAY for this process and its children.
    /// Once for the process; the server goes with it.
    static VirtualDisplay& get();

    // Device pixels of the screen. Buttons: 1 left, 2 middle, 3 right, 4 and 5 wheel up and down.
    void moveTo(toolkit::Point point);
    void press(unsigned button = 1);
    void release(unsigned button = 1);
    void click(toolkit::Point point, unsigned button = 1);

    /// "Return", "Tab", "Escape", "a"...: the window system's names, with Shift or Control held.
    void key(const std::string& name, const std::string& held = "");
    void keyDown(const std::string& name);
    void keyUp(const std::string& name);
    void type(const std::string& letters);

    /// The colour of a pixel of the screen, 0xRRGGBB.
    unsigned pixel(toolkit::Point point);

    /// Makes a bare window, as a host would; mapped. @return its number
    unsigned long makeWindow(int x, int y, int width, int height);
    void destroyWindow(unsigned long window);
    /// How many windows stand in this one.
    unsigned childrenOf(unsigned long window);
    /// Whether a window is on the screen that no window manager would touch, as menus are.
    bool hasMenu();
    /// Asks a window to close, as a window manager does for the close box.
    void askToClose(unsigned long window);

    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;
    ~VirtualDisplay();

private:
    VirtualDisplay();

    struct Impl;
    std::unique_ptr<Impl> mImpl;
};
