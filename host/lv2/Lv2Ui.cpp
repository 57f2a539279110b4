#include "host/lv2/Lv2Ui.h"

#include "host/lv2/Lv2Names.h"
#include "host/lv2/Lv2Plugin.h"
#include "platform/toolkit/EventLoop.h"
#include "platform/toolkit/Window.h"

#include <lv2/instance-access/instance-access.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>

namespace {

template <typename Data>
void take(const Data*& field, const LV2_Feature& feature, const char* uri)
{
    if (std::strcmp(feature.URI, uri) == 0)
        field = static_cast<const Data*>(feature.data);
}

PluginBridge& bridgeOf(const Lv2UiFeatures& features)
{
    if (features.parent == nullptr)
        throw std::runtime_error("the host gives no window to put the editor into");
    if (features.instance == nullptr)
        throw std::runtime_error("the host gives no access to the instance that the editor is for");
    return static_cast<Lv2Plugin*>(const_cast<void*>(features.instance))->bridge();
}

const char* reason(std::int32_t status)
{
    switch (status) {
    case toolkit::noDisplayErr:
        return "there is no display";
    case toolkit::parentNotFoundErr:
        return "the host's window is not there";
    default:
        return "its description cannot be read from the bundle's resources";
    }
}

int pixels(int points, double scale)
{
    return static_cast<int>(std::lround(points * scale));
}

} // namespace

// What the host offers ----------------------------------------------------------------------------

Lv2UiFeatures::Lv2UiFeatures(const LV2_Feature* const* features)
{
    for (; features != nullptr && *features != nullptr; ++features) {
        take(parent, **features, LV2_UI__parent);
        take(instance, **features, LV2_INSTANCE_ACCESS_URI);
        take(resize, **features, LV2_UI__resize);
        take(options, **features, LV2_OPTIONS__options);
        take(map, **features, LV2_URID__map);
        take(log, **features, LV2_LOG__log);
    }
}

double Lv2UiFeatures::scaleFactor() const
{
    if (options == nullptr || map == nullptr)
        return 0;
    const LV2_URID wanted = map->map(map->handle, LV2_UI__scaleFactor);
    const LV2_URID number = map->map(map->handle, LV2_ATOM__Float);
    for (const LV2_Options_Option* option = options; option->key != 0; ++option) {
        if (option->key != wanted || option->type != number || option->size != sizeof(float))
            continue;
        const float factor = *static_cast<const float*>(option->value);
        return std::isfinite(factor) && factor > 0 ? static_cast<double>(factor) : 0;
    }
    return 0;
}

void Lv2UiFeatures::logError(const char* line) const
{
    if (log != nullptr && map != nullptr)
        log->printf(log->handle, map->map(map->handle, LV2_LOG__Error),
                    "Korvanel Looper: no editor: %s\n", line);
    else
        std::fprintf(stderr, "Korvanel Looper: no editor: %s\n", line);
}

// The window --------------------------------------------------------------------------------------

Lv2Ui::RunningLoop::RunningLoop()
{
    if (toolkit::EventLoop::start() != toolkit::noErr)
        throw std::runtime_error("another thread of the host has an editor open");
}

Lv2Ui::RunningLoop::~RunningLoop()
{
    toolkit::EventLoop::turn(); // a change of the library that has been posted must not be dropped
    toolkit::EventLoop::stop();
}

Lv2Ui::Lv2Ui(const Lv2UiFeatures& features, const Lv2UiWriter& writer)
    : mWriter(writer)
    , mParameters(bridgeOf(features).parameters())
    , mView(&bridgeOf(features).effect())
{
    attach(features);
    if (const double scale = features.scaleFactor(); scale > 0) {
        toolkit::Window& window = *mView.window();
        window.setScale(scale / window.scaleFactor()); // the display's own is in both
    }
    if (features.resize != nullptr)
        announceSize(*features.resize);
}

void Lv2Ui::attach(const Lv2UiFeatures& features)
{
    const toolkit::ParentX11 parent{reinterpret_cast<std::uintptr_t>(features.parent)};
    const EditorHostWindow window{parent, std::nullopt};
    EditorHostInfo host{nullptr, &window};
    if (const std::int32_t status = mView.attach(&host, 0, 0); status != toolkit::noErr)
        throw std::runtime_error(reason(status));
}

void Lv2Ui::announceSize(const LV2UI_Resize& resize) const
{
    const toolkit::Window& window = *mView.window();
    const double scale = window.scaleFactor();
    resize.ui_resize(resize.handle, pixels(window.width(), scale), pixels(window.height(), scale));
}

LV2UI_Widget Lv2Ui::widget() const
{
    // Hosts take the server's window numbers as pointers.
    return reinterpret_cast<LV2UI_Widget>( // NOLINT(performance-no-int-to-ptr)
        mView.window()->nativeId());
}

bool Lv2Ui::idle()
{
    toolkit::EventLoop::turn();
    // All windows are on one thread, so there is one caller at a time; of several windows of one
    // instance any may tell, for they have one port.
    mParameters.reportChanges([this](std::size_t index, int now) {
        const auto value = static_cast<float>(now);
        const auto port = static_cast<std::uint32_t>(kLv2FirstParameter + index);
        mWriter.write(mWriter.controller, port, sizeof value, 0, &value);
    });
    return mView.window() != nullptr;
}

bool Lv2Ui::setSize(int width, int height)
{
    toolkit::Window* window = mView.window();
    if (window == nullptr)
        return false;
    const double scale = 1 / window->scaleFactor();
    window->setSize(pixels(width, scale), pixels(height, scale));
    return true;
}
