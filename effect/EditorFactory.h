/// How the effect gets its window without knowing it: the module installs a maker when it is
/// loaded.
#pragma once

class CLooper;

namespace Korvanel {
class MidiEffectEditor;
}

using EditorFactory = Korvanel::MidiEffectEditor* (*)(CLooper& effect);

/// Null, as at first, means that there is no editor. Thread: [ui thread], before any effect is
/// asked for one.
void setEditorFactory(EditorFactory factory);
EditorFactory editorFactory();
