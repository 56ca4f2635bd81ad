#include "link/ui/KeyboardLock.h"
#include <QGuiApplication>
#include <X11/XKBlib.h>

namespace kvr {

namespace {
Display *X11Display()
{
    auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->display() : nullptr;
}
} // namespace

bool KeyboardCapsLockOn()
{
    Display *display = X11Display();
    XkbStateRec state{};
    return display && XkbGetState(display, XkbUseCoreKbd, &state) == Success && (state.locked_mods & LockMask);
}

bool SetKeyboardCapsLock(bool on)
{
    Display *display = X11Display();
    if (!display)
        return false;
    if (!XkbLockModifiers(display, XkbUseCoreKbd, LockMask, on ? LockMask : 0))
        return false;
    XFlush(display);
    return true;
}

} // namespace kvr
