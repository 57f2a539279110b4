// Stands between a host and the plug-in in $KV_SPIED: all goes through, and a control port that
// moves between two cycles is told to the error stream. For one instance.
#include <lv2/core/lv2.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

namespace {

constexpr std::uint32_t kFirstControl = 2;

struct Control
{
    const float* port = nullptr;
    float last = 0;
};

std::array<Control, 32> gControls;
bool gRan = false;

const LV2_Descriptor* loadSpied()
{
    void* library = ::dlopen(std::getenv("KV_SPIED"), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        std::fprintf(stderr, "port_spy: %s\n", ::dlerror());
        return nullptr;
    }
    return reinterpret_cast<LV2_Descriptor_Function>(::dlsym(library, "lv2_descriptor"))(0);
}

const LV2_Descriptor* spied()
{
    static const LV2_Descriptor* const descriptor = loadSpied();
    return descriptor;
}

void connectPort(LV2_Handle handle, std::uint32_t port, void* data)
{
    if (port >= kFirstControl)
        gControls.at(port).port = static_cast<const float*>(data);
    spied()->connect_port(handle, port, data);
}

void run(LV2_Handle handle, std::uint32_t frames)
{
    for (Control& control : gControls) {
        if (control.port == nullptr || *control.port == control.last)
            continue;
        control.last = *control.port;
        if (gRan)
            std::fprintf(stderr, "port %d is %g\n", static_cast<int>(&control - gControls.data()),
                         static_cast<double>(control.last));
    }
    if (!gRan)
        std::fprintf(stderr, "port values are read\n");
    gRan = true;
    spied()->run(handle, frames);
}

} // namespace

LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(std::uint32_t index)
{
    if (index != 0 || spied() == nullptr)
        return nullptr;
    static const LV2_Descriptor between = [] {
        LV2_Descriptor made = *spied();
        made.connect_port = &connectPort;
        made.run = &run;
        return made;
    }();
    return &between;
}
