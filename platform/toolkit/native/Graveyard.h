/// Where closed windows wait for the end of the event that closed them, because the button that was
/// clicked is still on the stack. Thread: user interface.
#pragma once
#include <memory>

namespace toolkit::native {

/// Releases `object` when no event is being handled, at the latest when the loop stops.
void releaseLater(std::shared_ptr<void> object);

/// Calls `last` once when the loop stops, before anything of the toolkit is taken down. Asking
/// twice for the same function asks once.
void whenLoopStops(void (*last)());

/// While one lives, a loop runs inside the handling of an event, and nothing is released.
class NestedLoop
{
public:
    NestedLoop();
    ~NestedLoop();
    NestedLoop(const NestedLoop&) = delete;
    NestedLoop& operator=(const NestedLoop&) = delete;
};

} // namespace toolkit::native
