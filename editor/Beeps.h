/// What the editor's beeps say by their length, in sixtieths of a second.
#pragma once
#include <cstdint>

constexpr std::int32_t kWrittenBeep = 30; ///< a file was written
constexpr std::int32_t kFailureBeep = 60;
