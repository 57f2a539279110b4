#include "platform/toolkit/Beep.h"

#include "platform/toolkit/EventLoop.h"
#include "platform/toolkit/native/Display.h"

#include <atomic>
#include <cstdio>
#include <unistd.h>

namespace toolkit {

namespace {

std::atomic<std::uint32_t> count{0};
std::atomic<std::int32_t> last{0};

} // namespace

void beep(std::int32_t duration)
{
    last = duration;
    ++count;
    // Not the library's own beep: it writes to standard output, which may carry somebody's data.
    if (EventLoop::isRunning())
        native::ringBell();
    else if (::isatty(STDERR_FILENO) == 1)
        std::fputc('\a', stderr);
}

std::uint32_t beepCount()
{
    return count;
}

std::int32_t lastBeepDuration()
{
    return last;
}

} // namespace toolkit
