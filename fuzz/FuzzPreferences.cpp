// Any bytes as a preference file: what was read is written to a text that reads back as the same.
#include "fuzz/HeapLimit.h"
#include "platform/os/PreferenceText.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const HeapLimit limit;
    const auto settings =
        platform::parsePreferences(std::string_view(reinterpret_cast<const char*>(data), size));
    if (!settings)
        return 0;
    // White space and base64 may make it too large to be stored; then it is refused as a whole.
    const auto text = platform::formatPreferences(*settings);
    if (text ? platform::parsePreferences(*text) != settings : size < 2000)
        std::abort();
    return 0;
}
