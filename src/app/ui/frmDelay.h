#pragma once
// The intercharacter delay dialog.
#include "app/AppContext.h"
#include <QDialog>

class QComboBox;

namespace kvr {

class frmDelay : public QDialog {
    Q_OBJECT
public:
    explicit frmDelay(AppContext &context, QWidget *parent = nullptr);

private:
    void Accept();
    AppContext &m_context;
    QComboBox *m_combo;
};

} // namespace kvr
