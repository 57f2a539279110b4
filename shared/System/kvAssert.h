/// The system's assertions: a broken contract of the program itself prints one line and stops the
/// process, in every build. Bad input is never a reason for one.
#pragma once

namespace Korvanel {

/// Prints "<source>:<line>: failed assertion `<condition>'" to standard error and aborts.
/// Thread: any.
[[noreturn]] void assertionFailed(const char* source, unsigned line, const char* condition);

} // namespace Korvanel

/// Checks `condition`; `text` is the wording that users report back to us, and stays the same when
/// the code around it changes. `source` is the file's name without its extension.
#define KV_ASSERT_TEXT(source, condition, text)                                                    \
    ((condition) ? static_cast<void>(0) : ::Korvanel::assertionFailed(source, __LINE__, text))
