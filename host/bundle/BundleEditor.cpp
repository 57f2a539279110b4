#include "host/bundle/BundleEditor.h"

#include "editor/CLooperView.h"
#include "editor/EditorModule.h"
#include "effect/EditorFactory.h"
#include "platform/os/LoadedImage.h"

#include <pixman.h>

namespace {

/// From the first window on the module stays in memory, as its thread runs in it.
Korvanel::MidiEffectEditor* makeBundleEditor(CLooper& effect)
{
    platform::keepImageAt(reinterpret_cast<const void*>(&makeBundleEditor));
    return new BundleEditor(effect);
}

/// When the module is loaded, as nothing comes earlier: the first effect must find it done.
[[maybe_unused]] const bool kInstalled = [] {
    // The graphics library never gives back its tables: each unloading would lose them anew.
    platform::keepImageAt(reinterpret_cast<const void*>(&pixman_region32_init));
    installEditor();
    setEditorFactory(&makeBundleEditor);
    return true;
}();

} // namespace

BundleEditor::BundleEditor(CLooper& effect)
{
    EditorThread::get().call([this, &effect] { mView = std::make_unique<CLooperView>(&effect); });
}

BundleEditor::~BundleEditor()
{
    EditorThread::get().call([this] {
        mView->remove();
        mView.reset();
    });
}

void BundleEditor::getEditorSize(int* width, int* height)
{
    EditorThread::get().call([=, this] { mView->getEditorSize(width, height); });
}

std::int32_t BundleEditor::attach(void* host, int x, int y)
{
    std::int32_t status = 0;
    EditorThread::get().call([&] { status = mView->attach(host, x, y); });
    return status;
}

void BundleEditor::remove()
{
    EditorThread::get().call([this] { mView->remove(); });
}
