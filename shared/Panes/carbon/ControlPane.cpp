#include "shared/Panes/carbon/ControlPane.h"

#include "platform/toolkit/Window.h"

#include <algorithm>
#include <utility>

namespace korvanel::macosx::carbon {

using Korvanel::GraphicsContext;
using Korvanel::Point;
using Korvanel::Rect;
using Korvanel::Region;
using toolkit::Event;
using toolkit::operator""_4cc;
using toolkit::Status;

namespace {

constexpr auto kControlClass = "cntl"_4cc;
constexpr std::uint32_t kDraw = 4;
constexpr std::uint32_t kBoundsChanged = 154;
constexpr std::uint32_t kDispose = 1001;

toolkit::Rect toToolkit(const Rect& rect)
{
    return {rect.x, rect.y, rect.width, rect.height};
}

Rect toRect(const toolkit::SurfaceRect& rect)
{
    return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
}

std::vector<toolkit::EventType> controlEvents()
{
    std::vector<toolkit::EventType> types{
        {kControlClass, kDraw}, {kControlClass, kBoundsChanged}, {kControlClass, kDispose}};
    for (const std::uint32_t kind : {1U, 2U, 5U, 6U, 8U, 9U, 10U})
        types.push_back({"mous"_4cc, kind});
    for (const std::uint32_t kind : {1U, 3U})
        types.push_back({"keyb"_4cc, kind});
    return types;
}

} // namespace

/// Draws into the picture, and asks for what it may have touched to be shown.
class ControlPane::DirectContext final : public GraphicsContext
{
public:
    DirectContext(toolkit::Surface& picture, toolkit::Control& control)
        : GraphicsContext(&picture)
        , mPicture(picture)
        , mControl(control)
    {
        mPicture.setClip(toolkit::SurfaceRegion(mPicture.bounds()));
    }

    ~DirectContext() override
    {
        mPicture.clip().visitWithin(mPicture.bounds(), [&](const toolkit::SurfaceRect& part) {
            mControl.invalidate(toToolkit(toRect(part)));
        });
        mPicture.setClip(toolkit::SurfaceRegion(mPicture.bounds()));
    }

private:
    toolkit::Surface& mPicture;
    toolkit::Control& mControl;
};

ControlPane::~ControlPane()
{
    detachControl();
}

void ControlPane::AttachTo(toolkit::Control& control, toolkit::Window& window, const Rect& place)
{
    detachControl();
    mControl = &control;
    control.setBounds(toToolkit(place));
    auto types = controlEvents();
    types.push_back({kOwnClass, kRedraw});
    mControlHandler = control.installHandler(
        std::move(types), [this](const Event& event) { return handle_event(event); });
    control.setPixelSource(this);
    CarbonRootPane::AttachTo(window, {0, 0, place.width, place.height});
    Invalidate();
}

void ControlPane::Destroy()
{
    CarbonRootPane::Destroy();
    detachControl();
}

void ControlPane::detachControl()
{
    if (mControl == nullptr)
        return;
    mControl->setPixelSource(nullptr);
    mControl->removeHandler(mControlHandler);
    mControl = nullptr;
    mPicture = nullptr;
    mAnnounced = Region();
}

// Drawing -----------------------------------------------------------------------------------------

void ControlPane::preparePicture()
{
    const int width = GetBounds().width;
    const int height = GetBounds().height;
    const toolkit::Rect pixels = mControl->pixelBounds();
    // A window that is smaller than life gets the picture in full size and shrinks it.
    const toolkit::SurfaceScale across{std::max(pixels.width, width), width};
    const toolkit::SurfaceScale down{std::max(pixels.height, height), height};
    const toolkit::SurfaceRect wanted{0, 0, width, height};
    if (mPicture != nullptr && mPicture->bounds() == wanted && mPicture->scaleAcross() == across &&
        mPicture->scaleDown() == down)
        return;
    mPicture = toolkit::Surface::create(wanted, across, down);
    myInvalidateRectangle({0, 0, width, height});
}

void ControlPane::bringUpToDate()
{
    preparePicture();
    const Region invalid = copyInvalidRegion();
    if (mPicture == nullptr || invalid.IsEmpty())
        return;
    // The window may have asked for another part than what was invalidated, and shows only that.
    announce(Region::Difference(invalid, std::exchange(mAnnounced, Region())));
    GraphicsContext g(mPicture.get());
    Region clip = invalid;
    g.SetClipping(clip);
    OnDraw(g);
    mPicture->setClip(toolkit::SurfaceRegion(mPicture->bounds()));
}

std::unique_ptr<GraphicsContext> ControlPane::create_graphics_with_offset(Point offset)
{
    if (mControl == nullptr || mPicture == nullptr)
        return nullptr;
    auto g = std::make_unique<DirectContext>(*mPicture, *mControl);
    g->SetOrigin(offset.x, offset.y);
    return g;
}

void ControlPane::showInvalid()
{
    const Region invalid = copyInvalidRegion();
    announce(Region::Difference(invalid, mAnnounced));
    mAnnounced = invalid;
}

void ControlPane::announce(const Region& area)
{
    area.platform().visitWithin(
        {0, 0, GetBounds().width, GetBounds().height},
        [&](const toolkit::SurfaceRect& part) { mControl->invalidate(toToolkit(toRect(part))); });
}

int ControlPane::width() const
{
    return mPicture == nullptr ? 0 : mPicture->deviceWidth();
}

int ControlPane::height() const
{
    return mPicture == nullptr ? 0 : mPicture->deviceHeight();
}

int ControlPane::stride() const
{
    return width();
}

const std::uint32_t* ControlPane::pixels() const
{
    return mPicture == nullptr ? nullptr : mPicture->pixels().data();
}

// Events ------------------------------------------------------------------------------------------

toolkit::EventTarget* ControlPane::eventTarget() const
{
    return mControl;
}

Rect ControlPane::frame_in_window() const
{
    if (mControl == nullptr)
        return GetBounds();
    const toolkit::Rect frame = mControl->bounds();
    return {frame.x, frame.y, frame.width, frame.height};
}

Status ControlPane::handle_event(const Event& event)
{
    if (mControl == nullptr)
        return toolkit::eventNotHandledErr;
    if (event.is(kControlClass, kDraw)) {
        bringUpToDate();
        return toolkit::noErr;
    }
    if (event.is(kOwnClass, kRedraw)) {
        showInvalid();
        return toolkit::noErr;
    }
    if (event.is(kControlClass, kBoundsChanged))
        boundsChanged(event);
    else if (event.is(kControlClass, kDispose))
        Destroy();
    else
        return CarbonRootPane::handle_event(event);
    return toolkit::eventNotHandledErr;
}

void ControlPane::boundsChanged(const Event& event)
{
    const auto now = event.get<toolkit::Rect>("crct"_4cc);
    if (!now)
        return;
    SetBounds({0, 0, now->width, now->height});
    if (const auto before = event.get<toolkit::Rect>("orct"_4cc))
        offsetInvalidRegionBy(now->x - before->x, now->y - before->y);
    Invalidate(); // what was drawn directly into the old picture may be in the wrong place
}

} // namespace korvanel::macosx::carbon
