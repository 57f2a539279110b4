#include "platform/toolkit/PixelSource.h"
#include "platform/toolkit/native/ViewBase.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace toolkit::native {

namespace {

/// Lets the window's renderer read the owner's pixels where they are. Three-byte colours with a
/// step of four leave the unused byte alone, whatever it holds.
class BorrowedPixels final : public juce::ImagePixelData
{
public:
    explicit BorrowedPixels(const PixelSource& source)
        : ImagePixelData(juce::Image::RGB, source.width(), source.height())
        , mSource(source)
    {
    }

    std::unique_ptr<juce::LowLevelGraphicsContext> createLowLevelContext() override
    {
        return nullptr; // read only
    }

    void initialiseBitmapData(juce::Image::BitmapData& bitmap, int x, int y,
                              juce::Image::BitmapData::ReadWriteMode) override
    {
        const auto offset = static_cast<std::ptrdiff_t>(y) * mSource.stride() + x;
        // The library has no read-only bitmap; nobody here asks for a writing one.
        bitmap.data =
            reinterpret_cast<juce::uint8*>(const_cast<std::uint32_t*>(mSource.pixels() + offset));
        bitmap.pixelFormat = juce::Image::RGB;
        bitmap.lineStride = mSource.stride() * 4;
        bitmap.pixelStride = 4;
        bitmap.size = static_cast<std::size_t>(bitmap.lineStride) *
                      static_cast<std::size_t>(mSource.height() - y);
    }

    ImagePixelData::Ptr clone() override { return this; }

    std::unique_ptr<juce::ImageType> createType() const override
    {
        return std::make_unique<juce::SoftwareImageType>();
    }

private:
    const PixelSource& mSource;
};

Control::Impl* sPressed = nullptr; ///< in which a mouse button is held

class Pane final : public juce::Component
{
public:
    explicit Pane(Control::Impl& control)
        : mControl(control)
    {
        setWantsKeyboardFocus(true);
        setOpaque(true);
    }

    ~Pane() override
    {
        if (sPressed == &mControl)
            sPressed = nullptr;
    }

    void paint(juce::Graphics& g) override
    {
        mControl.send(Event({"cntl"_4cc, 4}).set("graf"_4cc, static_cast<void*>(mControl.pixels)));
        const auto& look = lookOf(*this);
        const auto* pixels = mControl.pixels;
        if (pixels == nullptr || pixels->pixels() == nullptr || pixels->width() < 1 ||
            pixels->height() < 1) {
            g.fillAll(look.palette().field);
            return;
        }
        blit(g, *pixels, look.palette().window);
        if (hasKeyboardFocus(false))
            look.drawFocusRing(g, getLocalBounds().toFloat());
    }

    void mouseDown(const juce::MouseEvent& event) override
    {
        if (event.mods.isPopupMenu()) {
            if (mControl.contextualClick(event.getPosition()) != eventNotHandledErr)
                return;
            // A menu that was left without a choice has had the rest of the click.
            if (!juce::ModifierKeys::currentModifiers.isAnyMouseButtonDown())
                return;
        }
        mPressed = buttonBits(event.mods);
        sPressed = &mControl;
        sendMouse(1, event);
    }

    void mouseUp(const juce::MouseEvent& event) override
    {
        sPressed = nullptr;
        sendMouse(2, event);
    }

    void mouseMove(const juce::MouseEvent& event) override { sendMouse(5, event); }

    void mouseDrag(const juce::MouseEvent& event) override { sendMouse(6, event); }

    void mouseEnter(const juce::MouseEvent& event) override { sendMouse(8, event); }

    void mouseExit(const juce::MouseEvent& event) override { sendMouse(9, event); }

    void mouseWheelMove(const juce::MouseEvent& event,
                        const juce::MouseWheelDetails& wheel) override
    {
        mControl.send(mouseEvent(10, event)
                          .set("mwdx"_4cc, notches(mWheelX, wheel.deltaX))
                          .set("mwdy"_4cc, notches(mWheelY, wheel.deltaY)));
    }

    bool keyPressed(const juce::KeyPress& key) override
    {
        if (key == juce::KeyPress(juce::KeyPress::F10Key, juce::ModifierKeys::shiftModifier, 0))
            return mControl.contextualClick(getLocalBounds().getCentre()) != eventNotHandledErr;
        if (std::find(mKeysDown.begin(), mKeysDown.end(), key.getKeyCode()) == mKeysDown.end())
            mKeysDown.push_back(key.getKeyCode());
        return sendKey(1, key) != eventNotHandledErr;
    }

    bool keyStateChanged(bool isDown) override
    {
        if (!isDown)
            sendKeysUp();
        return false;
    }

    void focusGained(FocusChangeType) override { repaint(); }

    void focusLost(FocusChangeType) override
    {
        sendKeysUp();
        repaint();
    }

private:
    /// One source pixel on one device pixel wherever their numbers are the same.
    void blit(juce::Graphics& g, const PixelSource& pixels, juce::Colour around) const
    {
        const float scale = g.getInternalContext().getPhysicalPixelScaleFactor();
        const Rect place = mControl.description.bounds;
        const Rect covered = pixelsOf(place, scale);
        if (scale != std::floor(scale)) // its rounding leaves the library a pixel more at times
            g.fillAll(around);
        const juce::Image image(new BorrowedPixels(pixels));
        const bool shrinks = image.getWidth() > covered.width || image.getHeight() > covered.height;
        g.setImageResamplingQuality(shrinks ? juce::Graphics::mediumResamplingQuality
                                            : juce::Graphics::lowResamplingQuality);
        const auto across =
            static_cast<float>(covered.width) / static_cast<float>(image.getWidth());
        const auto down =
            static_cast<float>(covered.height) / static_cast<float>(image.getHeight());
        g.drawImageTransformed(
            image,
            juce::AffineTransform::scale(across / scale, down / scale)
                .translated(static_cast<float>(covered.x) / scale - static_cast<float>(place.x),
                            static_cast<float>(covered.y) / scale - static_cast<float>(place.y)));
    }

    Event mouseEvent(std::uint32_t kind, const juce::MouseEvent& event) const
    {
        Event result({"mous"_4cc, kind});
        result.set("mloc"_4cc, mControl.toWindow(event.getPosition()));
        result.set("chor"_4cc, kind == 2 ? 0u : buttonBits(event.mods));
        result.set("kmod"_4cc, keyBits(event.mods));
        return result;
    }

    void sendMouse(std::uint32_t kind, const juce::MouseEvent& event)
    {
        auto result = mouseEvent(kind, event);
        if (kind == 1 || kind == 2) {
            result.set("mbtn"_4cc, kind == 1 ? buttonBits(event.mods) : mPressed);
            result.set("ccnt"_4cc, static_cast<std::uint32_t>(event.getNumberOfClicks()));
        }
        mControl.send(std::move(result));
    }

    /// Smooth wheels send parts of a notch, which add up.
    static std::int32_t notches(float& collected, float delta)
    {
        constexpr float oneNotch = 50.0f / 256.0f; // what the window system's wheel click becomes
        collected += delta / oneNotch;
        const auto whole = std::round(collected);
        collected -= whole;
        return static_cast<std::int32_t>(whole);
    }

    Status sendKey(std::uint32_t kind, const juce::KeyPress& key)
    {
        return mControl.send(Event({"keyb"_4cc, kind})
                                 .set("kchr"_4cc, static_cast<std::uint32_t>(characterOf(key)))
                                 .set("kcod"_4cc, static_cast<std::uint32_t>(key.getKeyCode()))
                                 .set("kmod"_4cc, keyBits(key.getModifiers())));
    }

    void sendKeysUp()
    {
        const auto down = std::exchange(mKeysDown, {});
        for (const int code : down)
            if (hasKeyboardFocus(false) && juce::KeyPress::isKeyCurrentlyDown(code))
                mKeysDown.push_back(code);
            else
                sendKey(3, juce::KeyPress(code));
    }

    Control::Impl& mControl;
    std::uint32_t mPressed = 0;
    std::vector<int> mKeysDown;
    float mWheelX = 0;
    float mWheelY = 0;
};

class UserPaneView final : public ViewBase<Pane>
{
public:
    explicit UserPaneView(Control::Impl& control)
        : ViewBase(control, control)
    {
    }
};

} // namespace

Control* pressedUserPane()
{
    return sPressed == nullptr ? nullptr : &sPressed->control;
}

std::unique_ptr<ControlView> makeUserPane(Control::Impl& control)
{
    return std::make_unique<UserPaneView>(control);
}

} // namespace toolkit::native
