// The pattern on its way out of the editor: dragged to another program, or onto the desktop.
#include "editor/Beeps.h"
#include "editor/DragFolder.h"
#include "editor/PatternFile.h"
#include "effect/CLooper.h"
#include "platform/os/StandardFolders.h"
#include "platform/toolkit/Beep.h"
#include "platform/toolkit/Drag.h"
#include "platform/toolkit/Pasteboard.h"
#include "shared/System/kvStream.h"

#include <filesystem>
#include <system_error>

namespace {

constexpr toolkit::Pasteboard::ItemId kFileItem = 1;

std::string rendered(CLooper& looper)
{
    Korvanel::stringStream stream;
    looper.SaveTrack(stream, looper.getDnDRepeat().value);
    return stream.text();
}

} // namespace

// The file stays behind: a target may read it long after the drop, and the next drag of the
// pattern replaces it.
void CLooper::DragEvents()
{
    const std::string bytes = rendered(*this);
    const std::string folder = dragFolder(platform::temporaryFolder());
    const std::string path = folder + "/" + draggedFileName(GetPatternName().c_str());
    if (folder.empty() || !writeDraggedFile(path, bytes)) {
        toolkit::beep(kFailureBeep);
        return;
    }
    toolkit::Pasteboard pasteboard;
    pasteboard.putItemFlavor(kFileItem, toolkit::fileUrlFlavor, toolkit::fileUrl(path));
    if (toolkit::Control* source = toolkit::pressedControl())
        toolkit::startDrag(*source, pasteboard);
}

void CLooper::ExportEvents()
{
    const std::string bytes = rendered(*this);
    const std::string desktop = platform::desktopFolder();
    std::error_code error;
    if (!std::filesystem::is_directory(desktop, error))
        return; // an account without a desktop; it is not ours to make one
    const std::string base = exportedBaseName(GetPatternName().c_str());
    toolkit::beep(writeExportedFile(desktop, base, bytes) ? kWrittenBeep : kFailureBeep);
}
