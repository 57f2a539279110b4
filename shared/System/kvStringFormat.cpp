// Formatting: the longest possible result is estimated first, so that one reservation always
// suffices.
#include "shared/System/kvString.h"
#include "shared/System/kvStringAssert.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace Korvanel {

namespace {

/// Estimates above this are not reserved blindly but measured: the estimate grows with the square
/// of the format's length, and a long format must not cost memory that its result does not need.
constexpr std::int64_t kLargestBlindReserve = 1 << 20;

/// One conversion of a format, from its "%" to its letter.
struct Conversion
{
    std::int64_t width = 0;
    std::int64_t precision = 0;
    std::int64_t extra = 0; ///< for the prefix that "#" adds
    int longs = 0;          ///< how many "l" were read
    bool longDouble = false;
    bool sign = false; ///< a sign or a blank stands in front of every number
};

/// Keeps the argument list in one object, so that it can be handed on by reference on every
/// architecture.
struct Arguments
{
    std::va_list list;
};

std::int64_t readNumber(const char*& at)
{
    std::int64_t number = 0;
    for (; *at >= '0' && *at <= '9'; ++at)
        number = std::min<std::int64_t>(number * 10 + (*at - '0'), INT_MAX);
    return number;
}

std::int64_t cutAndPad(std::int64_t length, const Conversion& c)
{
    if (c.precision != 0)
        length = std::min(length, c.precision);
    return std::max(length, c.width);
}

std::int64_t stringItem(const Conversion& c, bool wide, Arguments& arguments)
{
    if (wide) {
        const auto* text = va_arg(arguments.list, const wchar_t*);
        const std::size_t length = text == nullptr ? 6 : std::wcslen(text) * MB_CUR_MAX;
        return cutAndPad(std::max<std::int64_t>(static_cast<std::int64_t>(length), 1), c);
    }
    const auto* text = va_arg(arguments.list, const char*);
    if (text == nullptr)
        return cutAndPad(6, c);
    // With a precision, the text need not be terminated beyond it.
    const std::size_t length =
        c.precision != 0 ? strnlen(text, static_cast<std::size_t>(c.precision)) : std::strlen(text);
    return cutAndPad(std::max<std::int64_t>(static_cast<std::int64_t>(length), 1), c);
}

std::int64_t integerItem(const Conversion& c, Arguments& arguments)
{
    if (c.longs > 0) // NOLINT(bugprone-branch-clone): the types differ
        static_cast<void>(va_arg(arguments.list, long));
    else
        static_cast<void>(va_arg(arguments.list, int));
    // A sign stands in front of all the digits that a precision asks for.
    return std::max<std::int64_t>({c.width + c.precision, c.precision + 1, 32});
}

std::int64_t fixedItem(const Conversion& c, Arguments& arguments)
{
    const int width = static_cast<int>(c.width);
    const int precision = static_cast<int>(std::min<std::int64_t>(c.precision + 6, INT_MAX));
    const int printed = c.longDouble ? std::snprintf(nullptr, 0, "%*.*Lf", width, precision,
                                                     va_arg(arguments.list, long double))
                                     : std::snprintf(nullptr, 0, "%*.*f", width, precision,
                                                     va_arg(arguments.list, double));
    return std::int64_t{printed} +
           (c.sign ? 1 : 0); // infinity has no places whose room a sign could take
}

std::int64_t exponentItem(const Conversion& c, Arguments& arguments)
{
    if (c.longDouble) // NOLINT(bugprone-branch-clone): the types differ
        static_cast<void>(va_arg(arguments.list, long double));
    else
        static_cast<void>(va_arg(arguments.list, double));
    // Sign, first digit, point and exponent stand around the places that a precision asks for.
    return std::max<std::int64_t>({c.width + c.precision, c.precision + 10, 128});
}

std::int64_t itemLength(char letter, const Conversion& c, Arguments& arguments)
{
    switch (letter) {
    case 'c':
    case 'C':
        static_cast<void>(va_arg(arguments.list, int));
        return cutAndPad(2, c) + static_cast<std::int64_t>(MB_CUR_MAX); // a wide character's bytes
    case 's':
    case 'S':
        return stringItem(c, letter == 'S' || c.longs > 0, arguments);
    case 'd':
    case 'i':
    case 'u':
    case 'x':
    case 'X':
    case 'o':
        return integerItem(c, arguments);
    case 'p':
        static_cast<void>(va_arg(arguments.list, void*));
        return std::max<std::int64_t>(c.width + c.precision, 32);
    case 'e':
    case 'g':
    case 'G':
        return exponentItem(c, arguments);
    case 'f':
        return fixedItem(c, arguments);
    case 'n':
        static_cast<void>(va_arg(arguments.list, void*));
        return 0;
    default:
        KV_STRING_ASSERT_TEXT(false, "FALSE");
        return 0;
    }
}

void readFlags(const char*& at, Conversion& c, Arguments& arguments)
{
    for (; *at != 0; ++at) {
        if (*at == '#')
            c.extra += 2;
        else if (*at == '*')
            c.width = va_arg(arguments.list, int);
        else if (std::strchr("-+0 ", *at) == nullptr)
            return;
        c.sign = c.sign || *at == '+' || *at == ' ';
    }
}

void readPrefixes(const char*& at, Conversion& c)
{
    KV_STRING_ASSERT_TEXT(std::strncmp(at, "I64", 3) != 0, "FALSE");
    for (; *at != 0 && std::strchr("hlFLN", *at) != nullptr; ++at) {
        c.longs += *at == 'l' ? 1 : 0;
        c.longDouble = c.longDouble || *at == 'L';
    }
}

/// @param at  behind the "%"; afterwards at the conversion's letter
std::int64_t conversionLength(const char*& at, Arguments& arguments)
{
    Conversion c;
    readFlags(at, c, arguments);
    if (c.width == 0)
        c.width = readNumber(at);
    const std::int64_t nWidth = c.width;
    KV_STRING_ASSERT(nWidth >= 0);
    if (*at == '.') {
        ++at;
        if (*at == '*') {
            c.precision = va_arg(arguments.list, int);
            ++at;
        } else {
            c.precision = readNumber(at);
        }
        const std::int64_t nPrecision = c.precision;
        KV_STRING_ASSERT(nPrecision >= 0);
    }
    readPrefixes(at, c);
    return itemLength(*at, c, arguments) + c.extra;
}

/// Every plain character adds the length of the whole rest of the format from it on. That is far
/// too much on purpose: the buffer can never be short.
std::int64_t longestResult(const char* format, Arguments& arguments)
{
    const char* const end = format + std::strlen(format);
    std::int64_t longest = 0;
    for (const char* at = format; at < end; ++at) {
        if (*at != '%' || at[1] == '%') {
            longest += end - at;
            at += *at == '%' ? 1 : 0;
            continue;
        }
        ++at;
        longest += conversionLength(at, arguments);
    }
    return longest;
}

} // namespace

void String::Format(const char* lpszFormat, ...)
{
    std::va_list arguments;
    va_start(arguments, lpszFormat);
    FormatV(lpszFormat, arguments);
    va_end(arguments);
}

void String::FormatV(const char* lpszFormat, std::va_list argList)
{
    KV_STRING_ASSERT_TEXT(lpszFormat != nullptr, "gIsValidString(lpszFormat)");
    Arguments walked;
    va_copy(walked.list, argList);
    std::int64_t longest = longestResult(lpszFormat, walked);
    va_end(walked.list);
    if (longest > kLargestBlindReserve) {
        std::va_list measured;
        va_copy(measured, argList);
        longest = std::min<std::int64_t>(longest, std::vsnprintf(nullptr, 0, lpszFormat, measured));
        va_end(measured);
        longest = std::max<std::int64_t>(longest, 0); // a result that no int can count is none
    }

    String formatted; // an argument may be this string's own text
    char* buffer = formatted.GetBuffer(static_cast<int>(longest));
    const int r = longest == 0 ? 0
                               : std::vsnprintf(buffer, static_cast<std::size_t>(longest) + 1,
                                                lpszFormat, argList);
    KV_STRING_ASSERT_TEXT(r <= formatted.GetAllocLength(), "r <= GetAllocLength()");
    formatted.ReleaseBuffer();
    *this = formatted;
}

} // namespace Korvanel
