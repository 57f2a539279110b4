// A data browser on the screen: the headings of the columns, and the scrolling rows under them.
#include "platform/toolkit/native/BrowserBody.h"
#include "platform/toolkit/native/ViewBase.h"

#include <algorithm>

namespace toolkit::native {

namespace {

class Frame final : public juce::Component
{
public:
    explicit Frame(DataBrowser::Impl& browser)
        : mBrowser(browser)
        , body(browser, viewport)
    {
        addAndMakeVisible(viewport);
        viewport.setViewedComponent(&body, false);
        viewport.setScrollBarsShown(true, false);
        viewport.setWantsKeyboardFocus(false);
        setFocusContainerType(FocusContainerType::none);
    }

    void resized() override
    {
        viewport.setBounds(getLocalBounds().reduced(1).withTrimmedTop(measure::headerHeight));
        viewport.setSingleStepSizes(measure::rowHeight, measure::rowHeight);
        body.refresh();
    }

    void paint(juce::Graphics& g) override
    {
        const auto& p = lookOf(*this).palette();
        g.setColour(p.panel);
        g.fillRect(getLocalBounds().removeFromTop(measure::headerHeight + 1));
        g.setColour(p.textDim);
        g.setFont(Look::font(measure::smallText, true));
        const auto columns = body.columns(body.getWidth());
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const auto& described = mBrowser.control.impl().description.columns[i];
            g.drawText(
                toJuce(described.title),
                juce::Rectangle<int>(columns[i].x + 1, 1, columns[i].width, measure::headerHeight)
                    .reduced(measure::padding, 0),
                described.alignRight ? juce::Justification::centredRight
                                     : juce::Justification::centredLeft);
        }
        g.setColour(p.divider);
        g.fillRect(1, measure::headerHeight, getWidth() - 2, 1);
    }

    void paintOverChildren(juce::Graphics& g) override
    {
        const auto& look = lookOf(*this);
        g.setColour(look.palette().edge);
        g.drawRect(getLocalBounds(), 1);
        if (body.hasKeyboardFocus(true)) {
            g.setColour(look.palette().accent);
            g.drawRect(getLocalBounds(), static_cast<int>(measure::focusRing));
        }
    }

    DataBrowser::Impl& mBrowser;
    juce::Viewport viewport;
    BrowserBody body;
};

class DataBrowserView final : public ViewBase<Frame>, public BrowserList
{
public:
    explicit DataBrowserView(Control::Impl& control)
        : ViewBase(control, control.browser->impl())
        , mBrowser(control.browser->impl())
    {
        mBrowser.list = this;
    }

    ~DataBrowserView() override
    {
        if (mBrowser.list == this)
            mBrowser.list = nullptr;
    }

    void refresh() override { mComponent.body.refresh(); }

    void scrollToRow(int row) override
    {
        const int top = row * measure::rowHeight;
        const int shown = mComponent.viewport.getViewPositionY();
        const int height = mComponent.viewport.getViewHeight();
        if (top < shown)
            scrollTo(top);
        else if (top + measure::rowHeight > shown + height)
            scrollTo(top + measure::rowHeight - height);
    }

    void setTopRow(int row) override { scrollTo(row * measure::rowHeight); }

    int topRow() const override
    {
        return mComponent.viewport.getViewPositionY() / measure::rowHeight;
    }

    bool startEditing(int row, BrowserProperty column, const std::string& text) override
    {
        return mComponent.isShowing() && mComponent.body.startEditing(row, column, text);
    }

    std::string endEditing() override { return mComponent.body.endEditing(); }

    Rect cellBounds(int row, BrowserProperty column) const override
    {
        return inWindow(mComponent.body.cell(row, column));
    }

    Rect disclosureBounds(int row) const override
    {
        return inWindow(mComponent.body.triangle(row));
    }

private:
    void scrollTo(int y) { mComponent.viewport.setViewPosition(0, std::max(y, 0)); }

    Rect inWindow(const juce::Rectangle<int>& inBody) const
    {
        const auto& viewport = mComponent.viewport;
        const auto seen = viewport.getLocalArea(&mComponent.body, inBody)
                              .getIntersection(viewport.getLocalBounds());
        if (seen.isEmpty())
            return {};
        const auto inView = mComponent.getLocalArea(&viewport, seen);
        return fromJuce(inView + juce::Point<int>(state().bounds.x, state().bounds.y));
    }

    DataBrowser::Impl& mBrowser;
};

} // namespace

std::unique_ptr<ControlView> makeDataBrowser(Control::Impl& control)
{
    return std::make_unique<DataBrowserView>(control);
}

} // namespace toolkit::native
