// Typed values, texts and arrays read from any bytes, through a buffer that throws and a string
// that runs short. What one reads before its end, the other reads too.
#include "fuzz/HeapLimit.h"
#include "shared/System/kvStream.h"

#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

using namespace Korvanel;

namespace {

/// What one step read, as bytes; nothing when it did not arrive whole.
std::optional<std::string> step(InputStream& stream, unsigned kind)
{
    const auto bytes = [](bool whole, const auto& value) -> std::optional<std::string> {
        if (!whole)
            return std::nullopt;
        return std::string(reinterpret_cast<const char*>(&value), sizeof value);
    };
    switch (kind % 7) {
    case 0: {
        unsigned char value = 0;
        return bytes(stream.Read(value), value);
    }
    case 1: {
        short value = 0;
        return bytes(stream.Read(value), value);
    }
    case 2: {
        std::int32_t value = 0;
        return bytes(stream.Read(value), value);
    }
    case 3: {
        double value = 0;
        return bytes(stream.Read(value), value);
    }
    case 4: {
        String value("old");
        if (!stream.Read(value))
            return std::nullopt;
        return value.c_str();
    }
    default: {
        std::vector<char> value(3000);
        const std::uint32_t size = 1 + kind % 9;
        const std::uint32_t count = readArray(stream, value.data(), 3000 / size, size);
        if (count != 3000 / size)
            return std::nullopt;
        return std::string(value.data(), count * size);
    }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const HeapLimit limit;
    auto* buffer = new StreamBuffer(data, static_cast<std::uint32_t>(size));
    MemoryStream memory(*buffer);
    stringStream text(std::string(reinterpret_cast<const char*>(data), size));
    try {
        for (std::size_t i = 0; i < size && !memory.IsEOF(); ++i) {
            const auto thrown = step(memory, data[i]);
            if (thrown != step(text, data[i]))
                std::abort();
        }
    } catch (const StreamBufferException& exception) {
        if (exception.GetId() != StreamBufferException::ReadPastEnd)
            std::abort();
    }
    buffer->Release();
    return 0;
}
