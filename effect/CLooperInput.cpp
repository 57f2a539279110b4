// What the effect takes from the host's incoming events.
#include "effect/CLooper.h"

namespace {

constexpr int kVelocityControl = 127; ///< on channel 16
constexpr int kVelocityStatus = 0xBF;

int kindOf(const Korvanel::MidiEvent& event)
{
    return event.status & 0xF0;
}

/// The controller's middle, 100, changes nothing; below it a third of the distance, above it half.
int velocityShift(int value)
{
    if (value == 0)
        return 0;
    return value < 100 ? (value - 100) / 3 : (value - 100) / 2;
}

} // namespace

void CLooper::processInput(Korvanel::MidiQueue& queue)
{
    for (int i = 0; i < queue.GetCount();) {
        if (process_input(queue.GetEvent(i)))
            queue.RemoveEvent(i);
        else
            ++i;
    }
}

bool CLooper::process_input(Korvanel::MidiEvent event)
{
    if (!isEnabled() || isThru())
        return false;
    switch (kindOf(event)) {
    case 0xE0:
        if (!isPitchWheelUsed())
            return false;
        processPitchWheel(event);
        return true;
    case 0xB0:
        return processControlEvent(event);
    case 0xC0:
        tellFirstListener(&Listener::programChange, event.data1);
        return true;
    default:
        return false;
    }
}

bool CLooper::processControlEvent(const Korvanel::MidiEvent& event)
{
    if (event.status != kVelocityStatus || event.data1 != kVelocityControl)
        return false;
    if (mLooper != nullptr)
        mLooper->setVeloAdd(velocityShift(event.data2));
    return true;
}

bool CLooper::processPitchWheel(const Korvanel::MidiEvent& event)
{
    const int value = event.data1 + 128 * event.data2;
    return mLooper != nullptr &&
           mLooper->processPitchWheel(event.time, value - MfxEvent::kWheelCentre);
}

bool CLooper::isOutputEvent(const MfxEvent& event) const
{
    return Korvanel::Looper::isOutputEvent(event);
}
