/// What must be settled with the X server before the toolkit's library is let near it.
/// Thread: user interface.
#pragma once
#include "platform/toolkit/Geometry.h"

#include <memory>
#include <optional>

namespace toolkit::native {

/// A connection to the display, of our own. While it lives the names that the library only looks
/// up, and that a window manager would have made, exist; without one it would use numbers of
/// nothing. Null when no server answers.
std::shared_ptr<void> openDisplay();

/// Whether the server knows a window of this number.
bool windowExists(unsigned long id);

/// Where the window's corner is on the screen, in device pixels. The library does not hear of it
/// when a host moves the window that ours is in.
std::optional<Point> positionOnScreen(unsigned long id);

/// Sounds the server's bell, the desktop's alert. Nothing without a server.
void ringBell();

/// From now until the loop stops an error that the server reports is ignored. The X library's
/// default is to end the process, and in a plug-in the library leaves it at that: a host's window
/// that goes a moment before ours would take the host with it. A handler that the host has set
/// itself is left alone.
void surviveErrors();

} // namespace toolkit::native
