#include "platform/toolkit/native/Display.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <memory>
#include <xcb/xcb.h>

namespace toolkit::native {

namespace {

/// The X library is loaded when first needed and not linked: the effect must load on machines
/// without one.
class Connection
{
    using Reply = std::unique_ptr<void, decltype(&std::free)>;

public:
    Connection()
        : mLibrary(::dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL))
    {
        const auto connect = find<decltype(&xcb_connect)>("xcb_connect");
        if (connect)
            mConnection = connect(nullptr, nullptr);
    }

    ~Connection()
    {
        const auto disconnect = find<decltype(&xcb_disconnect)>("xcb_disconnect");
        if (mConnection && disconnect)
            disconnect(mConnection);
        if (mLibrary)
            ::dlclose(mLibrary);
    }

    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool works() const
    {
        const auto hasError = find<decltype(&xcb_connection_has_error)>("xcb_connection_has_error");
        return mConnection && hasError && hasError(mConnection) == 0;
    }

    bool knows(std::uint32_t window) const
    {
        const auto ask = find<decltype(&xcb_get_window_attributes)>("xcb_get_window_attributes");
        const auto answer =
            find<decltype(&xcb_get_window_attributes_reply)>("xcb_get_window_attributes_reply");
        if (!works() || !ask || !answer)
            return false;
        xcb_generic_error_t* error = nullptr;
        auto* reply = answer(mConnection, ask(mConnection, window), &error);
        const bool known = reply != nullptr;
        std::free(reply);
        std::free(error);
        return known;
    }

    std::optional<Point> position(std::uint32_t window) const
    {
        const auto ask = find<decltype(&xcb_get_geometry)>("xcb_get_geometry");
        const auto answer = find<decltype(&xcb_get_geometry_reply)>("xcb_get_geometry_reply");
        const auto askWhere =
            find<decltype(&xcb_translate_coordinates)>("xcb_translate_coordinates");
        const auto answerWhere =
            find<decltype(&xcb_translate_coordinates_reply)>("xcb_translate_coordinates_reply");
        if (!works() || !ask || !answer || !askWhere || !answerWhere)
            return std::nullopt;
        const Reply geometry(answer(mConnection, ask(mConnection, window), nullptr), std::free);
        if (!geometry)
            return std::nullopt;
        const auto root = static_cast<xcb_get_geometry_reply_t*>(geometry.get())->root;
        const Reply where(
            answerWhere(mConnection, askWhere(mConnection, window, root, 0, 0), nullptr),
            std::free);
        if (!where)
            return std::nullopt;
        const auto* found = static_cast<xcb_translate_coordinates_reply_t*>(where.get());
        return Point{found->dst_x, found->dst_y};
    }

    void makeName(const char* name) const
    {
        const auto ask = find<decltype(&xcb_intern_atom)>("xcb_intern_atom");
        const auto answer = find<decltype(&xcb_intern_atom_reply)>("xcb_intern_atom_reply");
        if (ask && answer)
            std::free(answer(
                mConnection,
                ask(mConnection, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr));
    }

    void ring() const
    {
        const auto bell = find<decltype(&xcb_bell)>("xcb_bell");
        const auto flush = find<decltype(&xcb_flush)>("xcb_flush");
        if (!works() || !bell || !flush)
            return;
        bell(mConnection, 0); // 0 is the loudness that the user has set
        flush(mConnection);
    }

private:
    template <class Function>
    Function find(const char* name) const
    {
        return mLibrary ? reinterpret_cast<Function>(::dlsym(mLibrary, name)) : nullptr;
    }

    void* mLibrary;
    xcb_connection_t* mConnection = nullptr;
};

} // namespace

std::shared_ptr<void> openDisplay()
{
    const char* name = std::getenv("DISPLAY");
    auto connection = name && *name ? std::make_shared<Connection>() : nullptr;
    if (!connection || !connection->works())
        return nullptr;
    for (const char* atom :
         {"WM_PROTOCOLS", "WM_TAKE_FOCUS", "WM_DELETE_WINDOW", "WM_CHANGE_STATE", "WM_STATE",
          "_NET_WM_PING", "_NET_WM_STATE", "_NET_WM_STATE_HIDDEN", "_NET_WM_WINDOW_TYPE",
          "_NET_WM_WINDOW_TYPE_NORMAL", "_NET_WM_WINDOW_TYPE_COMBO"})
        connection->makeName(atom);
    return connection;
}

bool windowExists(unsigned long id)
{
    return id != 0 && id <= UINT32_MAX && Connection().knows(static_cast<std::uint32_t>(id));
}

std::optional<Point> positionOnScreen(unsigned long id)
{
    return Connection().position(static_cast<std::uint32_t>(id));
}

void ringBell()
{
    Connection().ring();
}

} // namespace toolkit::native
