// Formats put together from the input, with arguments of the right kinds; the C library's own
// formatting is the judge.
#include "fuzz/HeapLimit.h"
#include "shared/System/kvString.h"

#include <cstdio>
#include <cstdlib>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>
#include <vector>

using Korvanel::String;

namespace {

template <typename... Arguments>
void check(const std::string& format, Arguments... arguments)
{
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wformat-security"
#pragma clang diagnostic ignored "-Wformat-nonliteral"
    String formatted;
    formatted.Format(format.c_str(), arguments...);
    const int length = std::snprintf(nullptr, 0, format.c_str(), arguments...);
    std::vector<char> expected(static_cast<std::size_t>(length) + 1);
    std::snprintf(expected.data(), expected.size(), format.c_str(), arguments...);
#pragma clang diagnostic pop
    if (std::string(expected.data()) != formatted.c_str())
        std::abort();
}

/// Text between conversions, without a percent sign or a NUL of its own.
std::string plain(FuzzedDataProvider& input)
{
    std::string text = input.ConsumeRandomLengthString(input.ConsumeBool() ? 8 : 100'000);
    for (char& ch : text)
        ch = ch == '%' || ch == 0 ? '.' : ch;
    return input.ConsumeBool() ? text + "%%" : text;
}

std::string conversion(FuzzedDataProvider& input, const char* letters)
{
    std::string text = "%";
    for (const char flag : {'-', '+', '0', ' ', '#'})
        if (input.ConsumeBool())
            text += flag;
    if (input.ConsumeBool())
        text += std::to_string(input.ConsumeIntegralInRange(1, 2000));
    if (input.ConsumeBool())
        text += "." + std::to_string(input.ConsumeIntegralInRange(0, 2000));
    return text + letters[input.ConsumeIntegralInRange<std::size_t>(
                      0, std::char_traits<char>::length(letters) - 1)];
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const HeapLimit limit;
    FuzzedDataProvider input(data, size);
    const std::string text = plain(input);
    switch (input.ConsumeIntegralInRange(0, 4)) {
    case 0:
        check(text + conversion(input, "diuxXoc") + plain(input), input.ConsumeIntegral<int>());
        break;
    case 1:
        check(text + conversion(input, "egGf") + plain(input),
              input.ConsumeFloatingPoint<double>());
        break;
    case 2:
        check(text + conversion(input, "s") + plain(input),
              input.ConsumeRandomLengthString(5000).c_str());
        break;
    case 3:
        check(text + "%*.*d" + plain(input), input.ConsumeIntegralInRange(0, 500),
              input.ConsumeIntegralInRange(0, 500), input.ConsumeIntegral<int>());
        break;
    default:
        check(text, 0);
        break;
    }
    return 0;
}
