#include "editor/EditorModule.h"

#include "editor/CLooperView.h"
#include "effect/EditorFactory.h"
#include "library/ChangeObserver.h"
#include "platform/toolkit/EventLoop.h"

namespace {

Korvanel::MidiEffectEditor* makeEditor(CLooper& effect)
{
    return new CLooperView(&effect);
}

} // namespace

void installEditor()
{
    setEditorFactory(&makeEditor);
    ChangeObserver::setDelivery(&toolkit::EventLoop::post);
}
