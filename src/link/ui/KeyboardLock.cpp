#include "link/ui/KeyboardLock.h"
#include <QGuiApplication>
#include <X11/XKBlib.h>

namespace kvr {

bool SetKeyboardCapsLock(bool on)
{
    auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    Display *display = x11 ? x11->display() : nullptr;
    if (!display)
        return false;
    if (!XkbLockModifiers(display, XkbUseCoreKbd, LockMask, on ? LockMask : 0))
        return false;
    XFlush(display);
    return true;
}

} // namespace kvr
