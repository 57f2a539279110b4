/// The window of an instance of the LV2 plug-in, inside a window that the host gives.
#pragma once
#include "editor/CLooperView.h"
#include "host/bridge/Parameters.h"

#include <lv2/atom/atom.h>
#include <lv2/core/lv2.h>
#include <lv2/log/log.h>
#include <lv2/options/options.h>
#include <lv2/ui/ui.h>
#include <lv2/urid/urid.h>

/// What a host offers to a window; what it does not is null.
struct Lv2UiFeatures
{
    explicit Lv2UiFeatures(const LV2_Feature* const* features);

    /// The enlargement that the host asks for; 0 when it asks for none.
    double scaleFactor() const;
    /// To the host's log or else the error stream.
    void logError(const char* line) const;

    const void* parent = nullptr;   ///< the X server's number of the host's window
    const void* instance = nullptr; ///< the Lv2Plugin, in this same process
    const LV2UI_Resize* resize = nullptr;
    const LV2_Options_Option* options = nullptr;
    const LV2_URID_Map* map = nullptr;
    const LV2_Log_Log* log = nullptr;
};

/// How the host is told of a port's new value.
struct Lv2UiWriter
{
    LV2UI_Write_Function write;
    LV2UI_Controller controller;
};

/// There may be any number, of one instance too. Thread: one for all windows of the process that
/// are open at a time, the user interface's. The instance outlives its windows, and plays
/// meanwhile.
class Lv2Ui
{
public:
    /// Opens the window and tells the host its size. Throws std::runtime_error, with a line for the
    /// user, when a feature is missing or the window cannot be opened.
    Lv2Ui(const Lv2UiFeatures& features, const Lv2UiWriter& writer);
    Lv2Ui(const Lv2Ui&) = delete;
    Lv2Ui& operator=(const Lv2Ui&) = delete;

    LV2UI_Widget widget() const; ///< the X server's number of the window

    /// Handles what has happened, and tells the host of the parameters that the user has changed.
    /// @return false when the window has been closed
    bool idle();

    /// In device pixels; not below the window's minimum.
    /// @return false when the window has been closed
    bool setSize(int width, int height);

private:
    class RunningLoop
    {
    public:
        RunningLoop();
        RunningLoop(const RunningLoop&) = delete;
        RunningLoop& operator=(const RunningLoop&) = delete;
        ~RunningLoop();
    };

    void attach(const Lv2UiFeatures& features);
    void announceSize(const LV2UI_Resize& resize) const;

    const Lv2UiWriter mWriter;
    Parameters& mParameters;
    const RunningLoop mLoop; ///< the view lives and dies inside it
    CLooperView mView;
};
