#include "tests/platform/toolkit/VirtualDisplay.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <cstdlib>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// Reads the number that the server writes once it is ready for clients.
std::string readLine(int fd)
{
    std::string line;
    char byte = 0;
    while (::read(fd, &byte, 1) == 1 && byte != '\n')
        line += byte;
    return line;
}

pid_t startServer(std::string& display)
{
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0)
        throw std::runtime_error("no pipe");
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child == 0) {
        // A test that crashes must not leave its server behind.
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (::getppid() != parent)
            ::_exit(1);
        ::close(ends[0]);
        const int quiet = ::open("/dev/null", O_WRONLY);
        ::dup2(quiet, STDERR_FILENO);
        const std::string fd = std::to_string(ends[1]);
        ::execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", "1600x1200x24",
                 "-nolisten", "tcp", static_cast<char*>(nullptr));
        ::_exit(1);
    }
    ::close(ends[1]);
    display = ":" + readLine(ends[0]);
    ::close(ends[0]);
    return child;
}

} // namespace

struct VirtualDisplay::Impl
{
    pid_t server = -1;
    Display* display = nullptr;

    void fakeKey(const std::string& name, bool down)
    {
        const KeySym symbol = ::XStringToKeysym(name.c_str());
        const KeyCode code = ::XKeysymToKeycode(display, symbol);
        if (code == 0)
            throw std::runtime_error("no key " + name);
        ::XTestFakeKeyEvent(display, code, down, CurrentTime);
        ::XSync(display, False);
    }
};

VirtualDisplay& VirtualDisplay::get()
{
    static VirtualDisplay display;
    return display;
}

VirtualDisplay::VirtualDisplay()
    : mImpl(std::make_unique<Impl>())
{
    std::string name;
    mImpl->server = startServer(name);
    ::setenv("DISPLAY", name.c_str(), 1);
    mImpl->display = ::XOpenDisplay(name.c_str());
    if (!mImpl->display)
        throw std::runtime_error("the virtual display " + name + " does not answer");
}

VirtualDisplay::~VirtualDisplay()
{
    ::XCloseDisplay(mImpl->display);
    ::kill(mImpl->server, SIGTERM);
    ::waitpid(mImpl->server, nullptr, 0);
}

void VirtualDisplay::moveTo(toolkit::Point point)
{
    ::XTestFakeMotionEvent(mImpl->display, -1, point.x, point.y, CurrentTime);
    ::XSync(mImpl->display, False);
}

void VirtualDisplay::press(unsigned button)
{
    ::XTestFakeButtonEvent(mImpl->display, button, True, CurrentTime);
    ::XSync(mImpl->display, False);
}

void VirtualDisplay::release(unsigned button)
{
    ::XTestFakeButtonEvent(mImpl->display, button, False, CurrentTime);
    ::XSync(mImpl->display, False);
}

void VirtualDisplay::click(toolkit::Point point, unsigned button)
{
    moveTo(point);
    press(button);
    release(button);
}

void VirtualDisplay::keyDown(const std::string& name)
{
    mImpl->fakeKey(name, true);
}

void VirtualDisplay::keyUp(const std::string& name)
{
    mImpl->fakeKey(name, false);
}

void VirtualDisplay::key(const std::string& name, const std::string& held)
{
    if (!held.empty())
        keyDown(held);
    keyDown(name);
    keyUp(name);
    if (!held.empty())
        keyUp(held);
}

void VirtualDisplay::type(const std::string& letters)
{
    for (const char letter : letters) {
        const bool capital = letter >= 'A' && letter <= 'Z';
        const std::string name = letter == '-'   ? "minus"
                                 : letter == ' ' ? "space"
                                                 : std::string(1, letter);
        key(name, capital ? "Shift_L" : "");
    }
}

unsigned VirtualDisplay::pixel(toolkit::Point point)
{
    XImage* image = ::XGetImage(mImpl->display, DefaultRootWindow(mImpl->display), point.x, point.y,
                                1, 1, AllPlanes, ZPixmap);
    const auto colour = static_cast<unsigned>(XGetPixel(image, 0, 0)) & 0xffffffu;
    XDestroyImage(image);
    return colour;
}

unsigned long VirtualDisplay::makeWindow(int x, int y, int width, int height)
{
    const auto window =
        ::XCreateSimpleWindow(mImpl->display, DefaultRootWindow(mImpl->display), x, y,
                              static_cast<unsigned>(width), static_cast<unsigned>(height), 0, 0, 0);
    ::XMapWindow(mImpl->display, window);
    ::XSync(mImpl->display, False);
    return window;
}

void VirtualDisplay::destroyWindow(unsigned long window)
{
    ::XDestroyWindow(mImpl->display, window);
    ::XSync(mImpl->display, False);
}

unsigned VirtualDisplay::childrenOf(unsigned long window)
{
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned count = 0;
    if (::XQueryTree(mImpl->display, window, &root, &parent, &children, &count) != 0 && children)
        ::XFree(children);
    return count;
}

bool VirtualDisplay::hasMenu()
{
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned count = 0;
    if (::XQueryTree(mImpl->display, DefaultRootWindow(mImpl->display), &root, &parent, &children,
                     &count) == 0)
        return false;
    bool found = false;
    for (unsigned i = 0; i < count && !found; ++i) {
        XWindowAttributes attributes{};
        found = ::XGetWindowAttributes(mImpl->display, children[i], &attributes) != 0 &&
                attributes.map_state == IsViewable && attributes.override_redirect;
    }
    if (children != nullptr)
        ::XFree(children);
    return found;
}

void VirtualDisplay::askToClose(unsigned long window)
{
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = ::XInternAtom(mImpl->display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] =
        static_cast<long>(::XInternAtom(mImpl->display, "WM_DELETE_WINDOW", False));
    ::XSendEvent(mImpl->display, window, False, NoEventMask, &event);
    ::XSync(mImpl->display, False);
}
