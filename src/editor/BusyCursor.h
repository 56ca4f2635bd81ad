#pragma once
// The hourglass pointer for the lifetime of the object, so every exit path
// restores the normal pointer.
#include <QCursor>
#include <QGuiApplication>

namespace kvr {

class BusyCursor {
public:
    BusyCursor()
    {
        if (qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
            QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
            m_set = true;
        }
    }
    ~BusyCursor()
    {
        if (m_set)
            QGuiApplication::restoreOverrideCursor();
    }
    BusyCursor(const BusyCursor &) = delete;
    BusyCursor &operator=(const BusyCursor &) = delete;

private:
    bool m_set = false;
};

} // namespace kvr
