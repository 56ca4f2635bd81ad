#include "link/WaitGuard.h"
#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeyEvent>

namespace kvr {

namespace {
int g_depth = 0;
}

WaitGuard::WaitGuard()
{
    m_outermost = g_depth++ == 0;
    if (m_outermost && QCoreApplication::instance())
        QCoreApplication::instance()->installEventFilter(this);
}

bool WaitGuard::Active()
{
    return g_depth > 0;
}

WaitGuard::~WaitGuard()
{
    --g_depth;
    if (!m_outermost || !QCoreApplication::instance())
        return;
    QCoreApplication::instance()->removeEventFilter(this);
    for (const auto &held : m_held)
        if (held->receiver)
            QCoreApplication::postEvent(held->receiver, held->event.release());
}

bool WaitGuard::eventFilter(QObject *watched, QEvent *event)
{
    // A question asked during the wait (closing with unsaved text) is
    // answered as usual: while it is up, nothing else takes input anyway.
    if (qobject_cast<QGuiApplication *>(QCoreApplication::instance()) && QGuiApplication::modalWindow())
        return false;
    switch (event->type()) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
    case QEvent::KeyRelease: {
        auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_F2)
            return false;
        if (event->type() == QEvent::ShortcutOverride) {
            event->accept(); // no menu shortcut fires during a wait
            return true;
        }
        // Held for the object it reached first (the window), which passes it
        // on to whatever has the focus once the wait is over.
        m_held.append(std::make_shared<Held>(Held{watched, std::unique_ptr<QEvent>(key->clone())}));
        return true;
    }
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
        return true;
    default:
        return false;
    }
}

} // namespace kvr
