/// The editor as the module hands it to its host: the view itself lives on the editors' thread.
#pragma once
#include "effect/MidiEffect.h"
#include "host/bundle/EditorThread.h"

#include <memory>

class CLooper;
class CLooperView;

/// Each operation returns when it is done. The host's notifier is called on the editors' thread.
/// Thread: any, one at a time.
class BundleEditor final : public Korvanel::MidiEffectEditor
{
public:
    /// @param effect  outlives the editor
    explicit BundleEditor(CLooper& effect);
    BundleEditor(const BundleEditor&) = delete;
    BundleEditor& operator=(const BundleEditor&) = delete;
    ~BundleEditor() override;

    void getEditorSize(int* width, int* height) override;
    std::int32_t attach(void* host, int x, int y) override; ///< as CLooperView::attach
    void remove() override;

private:
    /// One editor's share of the thread.
    class Use
    {
    public:
        Use() { EditorThread::get().enter(); }

        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;

        ~Use() { EditorThread::get().leave(); }
    };

    Use mUse;
    std::unique_ptr<CLooperView> mView;
};
