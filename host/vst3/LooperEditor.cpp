#include "host/vst3/LooperEditor.h"

#include "host/vst3/LooperProcessor.h"
#include "platform/toolkit/EventLoop.h"

namespace {

constexpr int kReportsPerSecond = 20; ///< as fast as somebody can see
constexpr int kLargest = 8192;

} // namespace

LoopUser::LoopUser()
    : mStarted(toolkit::EventLoop::start() == toolkit::noErr)
{
}

LoopUser::~LoopUser()
{
    if (mStarted)
        toolkit::EventLoop::stop();
}

LooperEditor::LooperEditor(LooperProcessor& looper)
    : AudioProcessorEditor(looper)
    , mLooper(looper)
{
    mView = std::make_unique<CLooperView>(&looper.bridge().effect());
    open();
    startTimerHz(kReportsPerSecond);
}

LooperEditor::~LooperEditor()
{
    stopTimer();
    mView.reset();
}

void LooperEditor::open()
{
    const EditorHostWindow window{toolkit::ParentComponent{static_cast<juce::Component*>(this)},
                                  std::nullopt};
    EditorHostInfo host{nullptr, &window};
    int width = 0;
    int height = 0;
    mView->getEditorSize(&width, &height);
    if (mView->attach(&host, 0, 0) == toolkit::noErr && isOpen()) {
        width = mView->window()->width();
        height = mView->window()->height();
    }
    setResizable(isOpen(), false);
    setResizeLimits(width, height, kLargest, kLargest);
    setSize(width, height);
}

void LooperEditor::resized()
{
    if (isOpen())
        mView->window()->setSize(getWidth(), getHeight());
}

void LooperEditor::timerCallback()
{
    mLooper.reportChanges();
}
