/// The module's entry.
#pragma once

namespace Korvanel {
class MidiEffect;
}

extern "C" {

/// A new effect, the caller's to destroy after Terminate. Exceptions of its construction pass
/// through. Thread: [ui thread]
__attribute__((visibility("default"))) Korvanel::MidiEffect* CreatePlugin();

/// The same under a second name, for this module's own use; not exported.
Korvanel::MidiEffect* CreateMidiEffect();
}
