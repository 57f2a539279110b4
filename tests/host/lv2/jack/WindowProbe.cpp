// Drives a plug-in host with a window on a display of its own, as a user with a pointer does.
//   window_probe LOG HOST ARGUMENTS...     LOG gets what the host says, port_spy's lines included
//
// Exits with 0 when the editor stands in the host's window, fills it, moves the host's ports when
// it is clicked, and goes with the host's window.
#include "tests/platform/toolkit/VirtualDisplay.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <optional>
#include <signal.h>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

constexpr toolkit::Point kMoreVelocity{682, 46};
constexpr toolkit::Point kThru{512, 270};

void expect(bool fact, const std::string& what)
{
    std::printf("%s: %s\n", what.c_str(), fact ? "yes" : "NO");
    if (!fact)
        throw std::string("that must be so");
}

bool until(const std::function<bool()>& condition)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

/// The program under test; it does not outlive this one.
class Host
{
public:
    Host(const char* log, char** command)
        : mProcess(::fork())
    {
        if (mProcess != 0)
            return;
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int file = ::open(log, O_WRONLY | O_CREAT | O_APPEND, 0600);
        ::dup2(file, STDOUT_FILENO);
        ::dup2(file, STDERR_FILENO);
        ::execvp(command[0], command);
        ::_exit(127);
    }

    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    ~Host()
    {
        if (!mStatus) {
            ::kill(mProcess, SIGKILL);
            ::waitpid(mProcess, nullptr, 0);
        }
    }

    bool hasEnded()
    {
        int status = 0;
        if (!mStatus && ::waitpid(mProcess, &status, WNOHANG) == mProcess)
            mStatus = status;
        return mStatus.has_value();
    }

    bool succeeded() const { return mStatus && WIFEXITED(*mStatus) && WEXITSTATUS(*mStatus) == 0; }

private:
    const pid_t mProcess;
    std::optional<int> mStatus;
};

/// Looks at the display's windows.
class Screen
{
public:
    Screen()
        : mDisplay(::XOpenDisplay(nullptr))
    {
        if (mDisplay == nullptr)
            throw std::string("the display does not answer");
        // A window may go between two questions about it.
        ::XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    }

    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    ~Screen() { ::XCloseDisplay(mDisplay); }

    Window root() const { return DefaultRootWindow(mDisplay); }

    std::vector<Window> childrenOf(Window window) const
    {
        Window above[2] = {0, 0};
        Window* first = nullptr;
        unsigned count = 0;
        if (::XQueryTree(mDisplay, window, &above[0], &above[1], &first, &count) == 0 || !first)
            return {};
        std::vector<Window> all(first, first + count);
        ::XFree(first);
        return all;
    }

    /// A visible window of this name below another one, at any depth; 0: none.
    Window find(const std::string& name, Window below) const
    {
        for (const Window child : childrenOf(below)) {
            if (nameOf(child) == name && attributesOf(child).map_state == IsViewable)
                return child;
            if (const Window deeper = find(name, child); deeper != 0)
                return deeper;
        }
        return 0;
    }

    std::pair<int, int> sizeOf(Window window) const
    {
        const XWindowAttributes attributes = attributesOf(window);
        return {attributes.width, attributes.height};
    }

    toolkit::Point placeOf(Window window) const
    {
        int x = 0;
        int y = 0;
        Window child = 0;
        ::XTranslateCoordinates(mDisplay, window, root(), 0, 0, &x, &y, &child);
        return {x, y};
    }

    /// Whether there is more to see in it than a background.
    bool isPainted(Window window) const
    {
        const auto [width, height] = sizeOf(window);
        XImage* image = ::XGetImage(mDisplay, window, 0, 0, static_cast<unsigned>(width),
                                    static_cast<unsigned>(height), AllPlanes, ZPixmap);
        if (image == nullptr)
            return false;
        bool differs = false;
        for (int y = 0; y < height && !differs; ++y)
            for (int x = 0; x < width && !differs; ++x)
                differs = XGetPixel(image, x, y) != XGetPixel(image, 0, 0);
        XDestroyImage(image);
        return differs;
    }

private:
    std::string nameOf(Window window) const
    {
        XTextProperty name{};
        if (::XGetWMName(mDisplay, window, &name) == 0 || name.value == nullptr)
            return "";
        std::string result(reinterpret_cast<const char*>(name.value), name.nitems);
        ::XFree(name.value);
        return result;
    }

    XWindowAttributes attributesOf(Window window) const
    {
        XWindowAttributes attributes{};
        ::XGetWindowAttributes(mDisplay, window, &attributes);
        return attributes;
    }

    Display* mDisplay;
};

/// What port_spy has said of the ports.
std::vector<std::string> portLines(const char* log)
{
    std::vector<std::string> lines;
    std::ifstream file(log);
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("port "))
            lines.push_back(line);
    return lines;
}

/// A click, and the line that the host's port answers with: no other, and none twice. The hand does
/// not stay still behind it: an event that reaches the toolkit with the answer to a question of its
/// own is handled with the next one.
void clickAndExpect(VirtualDisplay& display, toolkit::Point place, const char* log,
                    const std::string& line)
{
    const std::size_t before = portLines(log).size();
    display.click(place);
    until([&, offset = 0]() mutable {
        offset = 1 - offset;
        display.moveTo({place.x + offset, place.y});
        return portLines(log).size() > before;
    });
    const std::vector<std::string> lines = portLines(log);
    expect(lines.size() == before + 1 && lines.back() == line, "after a click " + line);
}

void probe(const char* log, char** command)
{
    VirtualDisplay& display = VirtualDisplay::get();
    const Screen screen;
    display.moveTo({1599, 1199});
    Host host(log, command);

    Window outer = 0;
    Window editor = 0;
    expect(until([&] {
               outer = screen.find("Korvanel Looper", screen.root());
               editor = outer == 0 ? 0 : screen.find("Korvanel Looper", outer);
               return editor != 0 || host.hasEnded();
           }) &&
               editor != 0,
           "the editor stands in the host's window");
    expect(until([&] { return screen.isPainted(editor); }), "it is painted");
    const std::pair size(720, 540);
    expect(until([&] { return screen.sizeOf(editor) == size; }), "it has its size");
    expect(until([&] { return screen.sizeOf(outer) == size; }), "so has the host's window");

    expect(until([&] { return !portLines(log).empty(); }), "the host plays");

    const toolkit::Point corner = screen.placeOf(editor);
    const auto at = [&](toolkit::Point place) {
        return toolkit::Point{corner.x + place.x, corner.y + place.y};
    };
    clickAndExpect(display, at(kMoreVelocity), log, "port 4 is 1");
    clickAndExpect(display, at(kThru), log, "port 11 is 1");
    clickAndExpect(display, at(kThru), log, "port 11 is 0");

    display.askToClose(outer);
    expect(until([&] { return host.hasEnded(); }), "the host ends with its window");
    expect(host.succeeded(), "without complaint");
    expect(screen.find("Korvanel Looper", screen.root()) == 0, "and the editor with it");
    expect(portLines(log).size() == 4, "no port has moved but those");
}

} // namespace

int main(int count, char** arguments)
try {
    if (count < 3)
        throw std::string("window_probe LOG HOST ARGUMENTS...");
    probe(arguments[1], arguments + 2);
    return 0;

} catch (const std::string& problem) {

    std::fprintf(stderr, "window_probe: %s\n", problem.c_str());
    return 1;
}
