/// Dragging data out of a control, to whatever other program the user drops it on.
/// Thread: user interface.
#pragma once
#include "platform/toolkit/Pasteboard.h"

#include <functional>

namespace toolkit {

class Control;

/// The user pane in which a mouse button is held, from which a drag can start; null for none.
Control* pressedControl();

/// Starts a drag that offers the pasteboard's files (flavour `fileUrlFlavor`) as a text/uri-list to
/// copy. Called while a mouse button is held in the control, as a rule from its 'mous' 6; from then
/// on the pointer belongs to the drag, and the control hears of no mouse-up.
/// @param finished  called once when the drag has ended, dropped or not; not called on failure or
/// when the window goes first
/// @return noErr; paramErr without a file to drag, without a held button, or while another drag
/// goes on; loopNotRunningErr when the window is not open
Status startDrag(Control& source, const Pasteboard& pasteboard,
                 std::function<void()> finished = {});

} // namespace toolkit
