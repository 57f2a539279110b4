/// The system's beep.
#pragma once
#include <cstdint>

namespace toolkit {

/// Sounds the desktop's alert where a message loop runs, else the terminal's bell if standard error
/// is a terminal. The duration, in sixtieths of a second, tells one reason from another; how long
/// the sound lasts is the desktop's. Thread: user interface.
void beep(std::int32_t duration);

/// How often `beep` was called in this process, and with what last; 0 before. Thread: any.
std::uint32_t beepCount();
std::int32_t lastBeepDuration();

} // namespace toolkit
