/// Dark or light: how every window of this process looks. Thread: user interface.
#pragma once

namespace toolkit {

enum class Appearance { followDesktop, light, dark };

/// What the owner chose; followDesktop at first.
Appearance appearance();

/// Applies to open windows at once, and to later ones.
void setAppearance(Appearance appearance);

/// Whether windows are dark now. False where the desktop does not say.
bool isDark();

} // namespace toolkit
