#include "shared/Panes/kvEvents.h"

#include "shared/Panes/kvPane.h"

namespace Korvanel {

void PaneEvent::dispatch_to(Pane& pane)
{
    pane.process(*this);
}

void MouseEvent::dispatch_to(Pane& pane)
{
    pane.process(*this);
}

void KeyEvent::dispatch_to(Pane& pane)
{
    pane.process(*this);
}

void FocusEvent::dispatch_to(Pane& pane)
{
    pane.process(*this);
}

void MouseEventMulticaster::add(MouseListener* listener)
{
    if (listener != nullptr)
        mListeners.add(listener);
}

void MouseEventMulticaster::remove(MouseListener* listener)
{
    mListeners.removeFirst([listener](const MouseListener* held) { return held == listener; });
}

void MouseEventMulticaster::mouseEvent(MouseEvent& event)
{
    mListeners.forEach([&event](MouseListener* listener) { listener->mouseEvent(event); });
}

} // namespace Korvanel
