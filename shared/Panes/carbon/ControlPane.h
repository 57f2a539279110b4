/// A pane tree inside one control of a window: a user pane, as the editor's event view is.
#pragma once
#include "platform/toolkit/PixelSource.h"
#include "shared/Panes/carbon/CarbonRootPane.h"

#include <memory>

namespace toolkit {
class Control;
}

namespace korvanel::macosx::carbon {

/// Draws into a picture of its own, at the window's scale, which the control shows. Thread: user
/// interface, except as in CarbonRootPane.
class ControlPane : public CarbonRootPane, private toolkit::PixelSource
{
public:
    ~ControlPane() override;

    /// Fills a user pane. The control takes the size; its window is held until Destroy, which the
    /// control's end calls too.
    /// @param place  in the window's points
    void AttachTo(toolkit::Control& control, toolkit::Window& window, const Korvanel::Rect& place);

    void Destroy() override;

    /// Draws at once, outside of OnDraw. When the context goes, the window shows what lies in its
    /// clip: who draws little narrows that first.
    std::unique_ptr<Korvanel::GraphicsContext>
    create_graphics_with_offset(Korvanel::Point offset) override;

    toolkit::Control* control() const { return mControl; } ///< null while not attached

    /// What the control shows; null before it was shown first.
    const toolkit::Surface* picture() const { return mPicture.get(); }

protected:
    toolkit::Status handle_event(const toolkit::Event& event) override;
    Korvanel::Rect frame_in_window() const override;
    toolkit::EventTarget* eventTarget() const override;

private:
    class DirectContext;

    int width() const override;
    int height() const override;
    int stride() const override;
    const std::uint32_t* pixels() const override;

    void bringUpToDate();
    void preparePicture();
    void boundsChanged(const toolkit::Event& event);
    void showInvalid();
    void announce(const Korvanel::Region& area);
    void detachControl();

    toolkit::Control* mControl = nullptr;
    toolkit::HandlerId mControlHandler = 0;
    Korvanel::Region mAnnounced; ///< what the control knows that it has to show again
    std::unique_ptr<toolkit::Surface> mPicture;
};

} // namespace korvanel::macosx::carbon
