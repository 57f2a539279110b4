// Another program for the tests of dragging: a window that takes files dropped on it by the XDND
// protocol. Prints "ready" once it is shown, and then what it was given, with "action" and its
// name first. Arguments: x, y, and "refuse" to take nothing.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

class DropTarget
{
public:
    DropTarget(int x, int y, bool refuse)
        : mRefuse(refuse)
        , mDisplay(::XOpenDisplay(nullptr))
    {
        if (!mDisplay)
            std::exit(1);
        mWindow = ::XCreateSimpleWindow(mDisplay, DefaultRootWindow(mDisplay), x, y, 200, 150, 0, 0,
                                        0x336633);
        const Atom version = 5;
        ::XChangeProperty(mDisplay, mWindow, atom("XdndAware"), XA_ATOM, 32, PropModeReplace,
                          reinterpret_cast<const unsigned char*>(&version), 1);
        ::XSelectInput(mDisplay, mWindow, ExposureMask);
        ::XMapWindow(mDisplay, mWindow);
    }

    /// Until something was dropped.
    void run()
    {
        for (bool done = false; !done;) {
            XEvent event;
            ::XNextEvent(mDisplay, &event);
            if (event.type == Expose)
                say("ready\n");
            else if (event.type == ClientMessage)
                message(event.xclient);
            else if (event.type == SelectionNotify)
                done = receive(event.xselection);
        }
        ::XCloseDisplay(mDisplay);
    }

private:
    Atom atom(const char* name) const { return ::XInternAtom(mDisplay, name, False); }

    static void say(const std::string& text)
    {
        std::fputs(text.c_str(), stdout);
        std::fflush(stdout);
    }

    void message(const XClientMessageEvent& event)
    {
        if (event.message_type == atom("XdndPosition")) {
            mSource = static_cast<Window>(event.data.l[0]);
            say("action " + nameOf(static_cast<Atom>(event.data.l[4])) + "\n");
            const Atom action = atom("XdndActionCopy");
            answer("XdndStatus", mRefuse ? 0 : 1, static_cast<long>(mRefuse ? None : action));
        } else if (event.message_type == atom("XdndLeave"))
            say("left\n");
        else if (event.message_type == atom("XdndDrop"))
            ::XConvertSelection(mDisplay, atom("XdndSelection"), atom("text/uri-list"),
                                atom("DROPPED"), mWindow, static_cast<Time>(event.data.l[2]));
    }

    std::string nameOf(Atom value) const
    {
        char* name = ::XGetAtomName(mDisplay, value);
        const std::string result = name;
        ::XFree(name);
        return result;
    }

    void answer(const char* name, long flags, long action)
    {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = mSource;
        event.xclient.message_type = atom(name);
        event.xclient.format = 32;
        event.xclient.data.l[0] = static_cast<long>(mWindow);
        event.xclient.data.l[1] = flags;
        event.xclient.data.l[4] = action;
        ::XSendEvent(mDisplay, mSource, False, NoEventMask, &event);
        ::XFlush(mDisplay);
    }

    bool receive(const XSelectionEvent& event)
    {
        if (event.property == None) {
            say("nothing\n");
            return true;
        }
        Atom type = None;
        int format = 0;
        unsigned long count = 0;
        unsigned long left = 0;
        unsigned char* data = nullptr;
        ::XGetWindowProperty(mDisplay, mWindow, event.property, 0, 65536, False, AnyPropertyType,
                             &type, &format, &count, &left, &data);
        say(nameOf(type) + " " + std::string(reinterpret_cast<char*>(data), count) + "\n");
        ::XFree(data);
        answer("XdndFinished", 1, static_cast<long>(atom("XdndActionCopy")));
        return true;
    }

    bool mRefuse;
    Display* mDisplay;
    Window mWindow = 0;
    Window mSource = 0;
};

} // namespace

int main(int count, char** arguments)
{
    if (count < 3)
        return 2;
    const bool refuse = count > 3 && std::strcmp(arguments[3], "refuse") == 0;
    DropTarget(std::atoi(arguments[1]), std::atoi(arguments[2]), refuse).run();
    return 0;
}
