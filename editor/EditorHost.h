/// What a host gives the editor when it attaches it.
#pragma once
#include "platform/toolkit/Window.h"

#include <cstdint>
#include <optional>

/// Told when the user closes the editor's window. Counted by hand; the host's own.
class EditorCloseNotifier
{
public:
    virtual ~EditorCloseNotifier() = default;
    virtual std::int32_t keepRef() = 0;    ///< the new count
    virtual std::int32_t releaseRef() = 0; ///< the new count
    virtual void editorClosed() = 0;       ///< Thread: user interface
};

/// The host's window, where the editor's is to go.
struct EditorHostWindow
{
    toolkit::WindowParent parent;                    ///< nothing for a window of the editor's own
    std::optional<toolkit::WindowClass> windowClass; ///< the class that the editor's adopts
};

/// What attach's first argument points to. Both may be null.
struct EditorHostInfo
{
    EditorCloseNotifier* closeNotifier;
    const EditorHostWindow* window;
};
