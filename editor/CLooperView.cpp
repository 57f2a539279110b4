// The editor's life, and what the effect tells it.
#include "editor/CLooperView.h"

#include "editor/EventView.h"
#include "editor/PatternsView.h"
#include "library/PatternTree.h"
#include "platform/toolkit/EventLoop.h"
#include "platform/toolkit/InterfaceDescription.h"
#include "shared/System/kvModule.h"

#include <cstdio>
#include <utility>

using Korvanel::Rect;
using toolkit::Event;
using toolkit::Status;
using toolkit::operator""_4cc;

namespace {

constexpr int kPatternNameControl = 100;
constexpr int kEventViewControl = 108;
constexpr int kFixedSize = 100;

/// A host's automation writes parameters from the processing thread, which can tell nobody.
constexpr int kRefreshMs = 50;

/// Loads the description of the window from the resources of the module's own bundle.
Status loadDescription(toolkit::InterfaceDescription& description)
{
    const std::string resources =
        (Korvanel::Module::getBundleMacho().folder + "Contents/Resources").c_str();
    std::string error;
    const Status status = description.load(resources, "Looper", error);
    if (status != toolkit::noErr)
        std::fprintf(stderr, "%s\n", error.c_str());
    return status;
}

Status makeWindow(const EditorHostWindow* host, std::shared_ptr<toolkit::Window>& window)
{
    toolkit::InterfaceDescription description;
    if (const Status status = loadDescription(description); status != toolkit::noErr)
        return status;
    const toolkit::WindowDescription* looperView = description.window("LooperView");
    if (looperView == nullptr)
        return toolkit::descriptionWindowNotFoundErr;
    return toolkit::Window::create(
        *looperView, host != nullptr ? host->parent : toolkit::WindowParent(), window);
}

} // namespace

CLooperView::CLooperView(CLooper* looper)
    : mLooper(looper)
    , mSelf(std::make_shared<CLooperView*>(this))
{
    if (mLooper == nullptr)
        return;
    mEventView = std::make_unique<EventView>(mLooper);
    mPatternsView = std::make_unique<PatternsView>(mLooper, this);
    mLooper->AddLooperListener(this);
}

CLooperView::~CLooperView()
{
    CLooperView::remove(); // this class's own
    if (mLooper != nullptr)
        mLooper->RemoveLooperListener(this);
}

void CLooperView::getEditorSize(int* width, int* height)
{
    if (width != nullptr)
        *width = kFixedSize;
    if (height != nullptr)
        *height = kFixedSize;
}

// The window --------------------------------------------------------------------------------------

std::int32_t CLooperView::attach(void* host, int, int)
{
    if (mLooper == nullptr)
        return toolkit::paramErr;
    remove();
    const auto* info = static_cast<const EditorHostInfo*>(host);
    const EditorHostWindow* hostWindow = info != nullptr ? info->window : nullptr;
    if (const Status status = makeWindow(hostWindow, mWindow); status != toolkit::noErr)
        return status;
    mHostCloseNotifier = info != nullptr ? info->closeNotifier : nullptr;
    if (hostWindow != nullptr && hostWindow->windowClass)
        mWindow->setWindowClass(*hostWindow->windowClass);
    mWindow->installHandler({{"wind"_4cc, 73}, {"cntl"_4cc, 1}, {"cntl"_4cc, 12}},
                            [this](const Event& event) { return handleWindowEvent(event); });
    bindControls();
    mRefresh.start(kRefreshMs, [this] { showParameters(); });
    attachEventView();
    mPatternsView->AttachToWindow(mWindow.get());
    showPatternName();
    return mWindow->show();
}

void CLooperView::attachEventView()
{
    toolkit::Control* control = mWindow->findControl({0, kEventViewControl});
    if (control == nullptr)
        return;
    const toolkit::Rect place = control->bounds();
    mEventView->AttachTo(*control, *mWindow, {place.x, place.y, place.width, place.height});
    mEventView->Invalidate();
}

void CLooperView::remove()
{
    if (mWindow == nullptr)
        return;
    mHostCloseNotifier = nullptr; // it knows
    const std::shared_ptr<toolkit::Window> window = mWindow;
    mPatternsView->DetachFromWindow();
    window->dispose();
}

void CLooperView::performWindowClose()
{
    mRefresh.cancel();
    mEventView->Destroy();
    mPatternsView->DetachFromWindow();
    mWindow = nullptr;
    const Korvanel::Ref<EditorCloseNotifier> notifier = std::move(mHostCloseNotifier);
    if (notifier)
        notifier->editorClosed(); // last: the host may delete the editor
}

Status CLooperView::handleWindowEvent(const Event& event)
{
    if (event.is("wind"_4cc, 73)) {
        performWindowClose();
        return toolkit::eventNotHandledErr;
    }
    if (event.is("cntl"_4cc, 12))
        return performContextualMenu(event);
    const auto control = event.get<toolkit::Control*>("----"_4cc);
    if (control && *control != nullptr && (*control)->id() == toolkit::ControlID{0, kTempoControl})
        performTempoChange(static_cast<short>((*control)->value()));
    return toolkit::eventNotHandledErr;
}

void CLooperView::performEndEdit()
{
    if (mWindow != nullptr)
        mWindow->clearKeyboardFocus();
}

Status CLooperView::performContextualMenu(const Event& event)
{
    const auto control = event.get<toolkit::Control*>("----"_4cc);
    if (!control || *control == nullptr || (*control)->id().id != kEventViewControl)
        return toolkit::eventNotHandledErr;
    Korvanel::MenuItemListImpl items;
    items.add("Export To Desktop");
    const std::weak_ptr<CLooperView*> self = mSelf; // the window may close under the menu
    const int chosen = mEventView->ShowContextualMenu(items);
    if (chosen != 0 || self.expired())
        return toolkit::eventNotHandledErr;
    mLooper->ExportEvents();
    return toolkit::noErr;
}

void CLooperView::performEventDrawing(Korvanel::GraphicsContext& g, const Rect& r)
{
    if (mLooper != nullptr)
        mLooper->DrawEvents(g, r);
}

// What the effect tells ---------------------------------------------------------------------------

void CLooperView::onUserInterface(void (CLooperView::*tell)())
{
    // Without a window there is nothing to show, and without a loop nobody else to show it.
    if (!toolkit::EventLoop::isRunning())
        return;
    if (toolkit::EventLoop::isThisThread()) {
        (this->*tell)();
        return;
    }
    const std::weak_ptr<CLooperView*> self = mSelf;
    toolkit::EventLoop::post([self, tell] {
        if (const std::shared_ptr<CLooperView*> alive = self.lock())
            (**alive.*tell)();
    });
}

void CLooperView::loaded()
{
    onUserInterface(&CLooperView::showLoaded);
}

void CLooperView::update()
{
    onUserInterface(&CLooperView::showUpdate);
}

void CLooperView::patternsChanged()
{
    onUserInterface(&CLooperView::showPatternsChanged);
}

void CLooperView::showUpdate()
{
    if (mEventView != nullptr)
        mEventView->Invalidate();
}

void CLooperView::showLoaded()
{
    showUpdate();
    if (mPatternsView == nullptr)
        return;
    mPatternsView->Update();
    showPatternName();
}

void CLooperView::showPatternsChanged()
{
    const std::shared_ptr<PatternTree> library = CLooper::patternTree();
    if (mPatternsView == nullptr || library == nullptr)
        return;
    Korvanel::DirectoryTrees::Tree* style = nullptr;
    {
        const Korvanel::ScopedLock hold(library->lock());
        style = library->root()->FindTree(mLooper->GetStyleName(), 0);
    }
    mPatternsView->UpdateListItems(style); // with the lock open: it takes others before this one
    mPatternsView->UpdatePatternList();
}

void CLooperView::showPatternName()
{
    // Without a style and a name only the slash between them would be left.
    const bool hasName = !mLooper->GetStyleName().IsEmpty() || !mLooper->GetPatternName().IsEmpty();
    SetPatternName(hasName ? mPatternsView->GetPatternName().c_str() : "");
}

void CLooperView::SetPatternName(const char* name)
{
    if (mWindow == nullptr)
        return;
    if (toolkit::Control* control = mWindow->findControl({0, kPatternNameControl}))
        control->setData(toolkit::entireControl, "text"_4cc, name);
}
