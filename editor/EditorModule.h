/// Gives the effects of this module their window.
#pragma once

/// From now on createEditor makes a CLooperView, and changes of the library are told on the user-
/// interface thread while a message loop runs. Thread: any, once, before there is an effect.
void installEditor();
