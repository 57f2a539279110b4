/// The effect's window: made when the host attaches it, bound to one effect's parameters, its
/// library and its pattern.
#pragma once
#include "editor/EditorHost.h"
#include "effect/CLooper.h"
#include "effect/MidiEffect.h"
#include "platform/toolkit/Timer.h"
#include "platform/toolkit/Window.h"
#include "shared/Panes/kvGraphics.h"
#include "shared/System/kvObject.h"

#include <memory>

class EventView;
class PatternsView;

/// Thread: user interface.
class CLooperView : public CLooper::Listener, public Korvanel::MidiEffectEditor
{
public:
    /// @param looper  not owned; null makes an editor that shows nothing
    explicit CLooperView(CLooper* looper);
    CLooperView(const CLooperView&) = delete;
    CLooperView& operator=(const CLooperView&) = delete;
    ~CLooperView() override;

    // Korvanel::MidiEffectEditor ------------------------------------------------------------------
    /// 100 by 100, always: the window's size is the interface description's.
    void getEditorSize(int* width, int* height) override;
    /// @param host  an EditorHostInfo
    /// @return the toolkit's status of the first step that failed
    std::int32_t attach(void* host, int x, int y) override;
    void remove() override;

    // CLooper::Listener ---------------------------------------------------------------------------
    void disconnect() override {}

    void RefreshChPort() override {}

    void loaded() override;
    void update() override;

    void startPlaying() override {}

    void patternsChanged() override;

    void programChange(int) override {}

    // The window's actions ------------------------------------------------------------------------
    void SetPatternName(const char* name); ///< as far as its first NUL
    void performNumEdit(int controlId, int value);
    void performCheckbox(int controlId, bool value);
    void performTempoChange(short menuValue); ///< 1 for half tempo
    void performEndEdit();                    ///< no control has the keyboard any more
    void performWindowClose();
    toolkit::Status performContextualMenu(const toolkit::Event& event);
    void performEventDrawing(Korvanel::GraphicsContext& g, const Korvanel::Rect& r);
    void AddPattern();
    void DeletePattern();
    void AddStyle();    ///< a new folder in the listed style
    void DeleteStyle(); ///< the listed style's folder, when it is empty

    toolkit::Window* window() const { return mWindow.get(); } ///< null while there is none

    PatternsView* patternsView() const { return mPatternsView.get(); }

    EventView* eventView() const { return mEventView.get(); }

private:
    static constexpr int kTempoControl = 103;

    toolkit::Status handleWindowEvent(const toolkit::Event& event);
    void bindControls();
    toolkit::Control* initControl(int id);
    void InitPushButtonControl(int id);
    void InitCheckboxControl(int id, bool (CLooper::*get)() const);
    void InitNumberControl(int id, CLooper::NumRange (CLooper::*get)() const);
    void attachEventView();
    void onUserInterface(void (CLooperView::*tell)());
    void showUpdate();
    void showLoaded();
    void showPatternsChanged();
    void showPatternName();
    void showParameters();

    CLooper* mLooper;
    std::shared_ptr<CLooperView*> mSelf; ///< what posted calls hold, weakly
    std::shared_ptr<toolkit::Window> mWindow;
    Korvanel::Ref<EditorCloseNotifier> mHostCloseNotifier;
    std::unique_ptr<EventView> mEventView;
    std::unique_ptr<PatternsView> mPatternsView;
    toolkit::Timer mRefresh; ///< while there is a window
};
