// The plug-in's window as hosts load it: C functions around Lv2Ui.
//
// It is in the plug-in's own binary, not in one beside it, because an effect and its editor share
// what is static in a binary: the library of patterns and the thread that watches it. An instance
// that only plays stays clear of the window system all the same, which is loaded when the first
// window opens and is not linked.
#include "editor/EditorModule.h"
#include "host/lv2/Lv2Names.h"
#include "host/lv2/Lv2Ui.h"

#include <cstring>
#include <exception>
#include <memory>

namespace {

/// When the binary is loaded, as nothing comes earlier: the first effect must find it done.
[[maybe_unused]] const bool kInstalled = (installEditor(), true);

Lv2Ui& ui(LV2UI_Handle handle)
{
    return *static_cast<Lv2Ui*>(handle);
}

LV2UI_Handle instantiate(const LV2UI_Descriptor*, const char*, const char*,
                         LV2UI_Write_Function write, LV2UI_Controller controller,
                         LV2UI_Widget* widget, const LV2_Feature* const* features)
{
    const Lv2UiFeatures offered(features);
    try {
        auto made = std::make_unique<Lv2Ui>(offered, Lv2UiWriter{write, controller});
        *widget = made->widget();
        return made.release();
    } catch (const std::exception& error) {
        offered.logError(error.what());
        return nullptr; // how hosts are told that there is no window
    }
}

void cleanup(LV2UI_Handle handle)
{
    delete &ui(handle);
}

/// The editor looks at the effect itself, which hears of a port's value before any window.
void portEvent(LV2UI_Handle, std::uint32_t, std::uint32_t, std::uint32_t, const void*) {}

int idle(LV2UI_Handle handle)
{
    return ui(handle).idle() ? 0 : 1;
}

int resize(LV2UI_Feature_Handle handle, int width, int height)
{
    return ui(handle).setSize(width, height) ? 0 : 1;
}

const void* extensionData(const char* uri)
{
    static const LV2UI_Idle_Interface idleInterface{&idle};
    static const LV2UI_Resize resizeInterface{nullptr, &resize};
    if (std::strcmp(uri, LV2_UI__idleInterface) == 0)
        return &idleInterface;
    if (std::strcmp(uri, LV2_UI__resize) == 0)
        return &resizeInterface;
    return nullptr;
}

const LV2UI_Descriptor kUiDescriptor{kLv2UiUri, &instantiate, &cleanup, &portEvent, &extensionData};

} // namespace

LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(std::uint32_t index)
{
    return index == 0 ? &kUiDescriptor : nullptr;
}
