/// The window side of our LV2 host: an X window of its own, with the plug-in's window inside.
#pragma once
#include "tests/host/lv2/Lv2Fixture.h"
#include "tests/platform/toolkit/VirtualDisplay.h"

#include <lv2/instance-access/instance-access.h>
#include <lv2/options/options.h>
#include <lv2/ui/ui.h>

#include <array>
#include <chrono>
#include <cstring>
#include <dlfcn.h>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

/// The binary of the plug-in's one window, where its Turtle says.
class Lv2UiBinary
{
public:
    explicit Lv2UiBinary(const Lv2World& world)
    {
        LilvUIs* uis = lilv_plugin_get_uis(world.plugin);
        const LilvUI* ui = lilv_uis_get(uis, lilv_uis_begin(uis));
        char* path = lilv_file_uri_parse(lilv_node_as_uri(lilv_ui_get_binary_uri(ui)), nullptr);
        mLibrary = ::dlopen(path, RTLD_NOW | RTLD_LOCAL);
        lilv_free(path);
        lilv_uis_free(uis);
        if (mLibrary == nullptr)
            throw std::runtime_error(::dlerror());
        const auto find =
            reinterpret_cast<LV2UI_DescriptorFunction>(::dlsym(mLibrary, "lv2ui_descriptor"));
        descriptor = find(0);
    }

    Lv2UiBinary(const Lv2UiBinary&) = delete;
    Lv2UiBinary& operator=(const Lv2UiBinary&) = delete;

    ~Lv2UiBinary() { ::dlclose(mLibrary); }

    template <class Interface>
    const Interface& extension(const char* uri) const
    {
        return *static_cast<const Interface*>(descriptor->extension_data(uri));
    }

    const LV2UI_Descriptor* descriptor = nullptr;

private:
    void* mLibrary = nullptr;
};

/// What a host offers; a test leaves some of it out.
struct Offer
{
    unsigned long parent = 0; ///< 0: none
    bool instance = true;
    bool log = true;
    float scale = 0; ///< 0: none
};

using Write = std::pair<std::uint32_t, float>; ///< port and value
using WriteList = std::vector<Write>;

/// One attempt to open the window of an instance.
class Lv2Window
{
public:
    Lv2Window(Lv2World& world, const Lv2UiBinary& binary, LilvInstance* instance,
              const Offer& offer)
        : mBinary(binary)
        , mMap{LV2_URID__map, &world.urids.mapFeature}
        , mParent{LV2_UI__parent, reinterpret_cast<void*>(offer.parent)}
        // NOLINT(performance-no-int-to-ptr)
        , mInstance{LV2_INSTANCE_ACCESS_URI, lilv_instance_get_handle(instance)}
        , mScale(offer.scale)
    {
        if (offer.scale > 0)
            mOptionList[0] = {LV2_OPTIONS_INSTANCE,
                              0,
                              world.urids.map(LV2_UI__scaleFactor),
                              sizeof mScale,
                              world.urids.map(LV2_ATOM__Float),
                              &mScale};
        std::vector<const LV2_Feature*> features{&mMap, &mResizeFeature, &mIdle, &mOptions};
        if (offer.parent != 0)
            features.push_back(&mParent);
        if (offer.instance)
            features.push_back(&mInstance);
        if (offer.log)
            features.push_back(&mLog);
        features.push_back(nullptr);
        handle =
            binary.descriptor->instantiate(binary.descriptor, "https://korvanel.org/lv2/looper", "",
                                           &write, this, &widget, features.data());
    }

    Lv2Window(const Lv2Window&) = delete;
    Lv2Window& operator=(const Lv2Window&) = delete;

    ~Lv2Window()
    {
        if (handle != nullptr)
            mBinary.descriptor->cleanup(handle);
    }

    int idle() const
    {
        return mBinary.extension<LV2UI_Idle_Interface>(LV2_UI__idleInterface).idle(handle);
    }

    int resize(int width, int height) const
    {
        return mBinary.extension<LV2UI_Resize>(LV2_UI__resize).ui_resize(handle, width, height);
    }

    LV2UI_Handle handle = nullptr; ///< null when there is no window
    LV2UI_Widget widget = nullptr;
    std::vector<std::pair<int, int>> sizes; ///< that the window has asked for
    WriteList writes;
    std::string logged;

private:
    static void write(LV2UI_Controller self, std::uint32_t port, std::uint32_t size,
                      std::uint32_t protocol, const void* data)
    {
        float value = -1;
        if (size == sizeof value && protocol == 0)
            std::memcpy(&value, data, size);
        static_cast<Lv2Window*>(self)->writes.emplace_back(port, value);
    }

    static int takeSize(LV2UI_Feature_Handle self, int width, int height)
    {
        static_cast<Lv2Window*>(self)->sizes.emplace_back(width, height);
        return 0;
    }

    static int print(LV2_Log_Handle self, LV2_URID type, const char* format, ...)
        __attribute__((format(printf, 3, 4)))
    {
        std::va_list arguments;
        va_start(arguments, format);
        const int length = printV(self, type, format, arguments);
        va_end(arguments);
        return length;
    }

    static int printV(LV2_Log_Handle self, LV2_URID, const char* format, std::va_list arguments)
        __attribute__((format(printf, 3, 0)))
    {
        std::array<char, 500> line{};
        const int length = std::vsnprintf(line.data(), line.size(), format, arguments);
        static_cast<Lv2Window*>(self)->logged += line.data();
        return length;
    }

    const Lv2UiBinary& mBinary;
    LV2UI_Resize mResize{this, &takeSize};
    LV2_Log_Log mLogger{this, &print, &printV};
    std::array<LV2_Options_Option, 2> mOptionList{};
    LV2_Feature mMap;
    LV2_Feature mParent;
    LV2_Feature mInstance;
    LV2_Feature mIdle{LV2_UI__idleInterface, nullptr};
    LV2_Feature mResizeFeature{LV2_UI__resize, &mResize};
    LV2_Feature mOptions{LV2_OPTIONS__options, mOptionList.data()};
    LV2_Feature mLog{LV2_LOG__log, &mLogger};
    const float mScale;
};

/// Windows of the host's on a display of the tests' own.
class InLv2Window : public InLv2Host
{
protected:
    InLv2Window()
        : display(VirtualDisplay::get())
        , binary(std::make_unique<Lv2UiBinary>(*world))
    {
        display.moveTo({1599, 1199});
    }

    ~InLv2Window() override
    {
        for (const unsigned long each : parents)
            display.destroyWindow(each);
    }

    unsigned long makeParent(int x = 0, int y = 0, int width = 720, int height = 540)
    {
        return parents.emplace_back(display.makeWindow(x, y, width, height));
    }

    std::unique_ptr<Lv2Window> open(const Lv2Instance& plugin, const Offer& offer)
    {
        return std::make_unique<Lv2Window>(*world, *binary, plugin.instance, offer);
    }

    /// Lets the windows live until a condition holds; a minute is for ever.
    static bool until(const std::vector<Lv2Window*>& windows,
                      const std::function<bool()>& condition)
    {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > limit)
                return false;
            for (const Lv2Window* window : windows)
                window->idle();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }

    /// A host's window is black, the editor nowhere.
    bool untilPainted(Lv2Window& window, toolkit::Point corner = {0, 0})
    {
        return until({&window}, [&] { return display.pixel({corner.x + 3, corner.y + 3}) != 0; });
    }

    VirtualDisplay& display;
    std::unique_ptr<Lv2UiBinary> binary;
    std::vector<unsigned long> parents;
};
