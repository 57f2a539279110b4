#include "host/standalone/RunningTransport.h"

#include "host/cli/HostQueue.h"

#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kSlice{5};

} // namespace

RunningTransport::RunningTransport(Korvanel::MidiEffect& effect, HostContext& time)
    : mEffect(effect)
    , mTime(time)
    , mThread([this] { run(); })
{
}

RunningTransport::~RunningTransport()
{
    mStop = true;
    mThread.join();
}

void RunningTransport::run()
{
    const double ticksPerSecond = mTime.Tempo() / 60 * mTime.QuarterNoteLength();
    HostQueue queue;
    const Clock::time_point start = Clock::now();
    Clock::time_point due = start;
    std::int32_t at = 0;
    mEffect.processStart(at);
    while (!mStop) {
        due += kSlice;
        std::this_thread::sleep_until(due);
        const std::chrono::duration<double> elapsed = due - start;
        const auto end = static_cast<std::int32_t>(elapsed.count() * ticksPerSecond);
        if (end > at)
            mEffect.process(at, end - 1, queue);
        at = end;
        queue.clear();
    }
    mEffect.processStop(at);
}
