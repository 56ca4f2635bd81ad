#pragma once
// Switches the keyboard's own Caps Lock where the desktop lets a program do
// it (X11); elsewhere the terminal makes the Caps Lock letters itself.

namespace kvr {

// True when the keyboard's Caps Lock is now `on`.
bool SetKeyboardCapsLock(bool on);
// The keyboard's Caps Lock state; false where it cannot be read.
bool KeyboardCapsLockOn();

} // namespace kvr
