#pragma once
// The computer-type dialog: board type and connection.
#include "app/ui/BoardChoiceWidget.h"
#include <QDialog>

class QCheckBox;

namespace kvr {

class frmComputer : public QDialog {
    Q_OBJECT
public:
    frmComputer(const Settings &settings, QWidget *parent = nullptr);
    BoardChoice Choice() const { return m_panel->Choice(); }

private:
    BoardChoiceWidget *m_panel;
};

// The opening dialogue: pick a board and connection, or open a file, in one screen.
class frmOpening : public QDialog {
    Q_OBJECT
public:
    enum Outcome { Start = QDialog::Accepted, Skip = QDialog::Rejected, OpenFile = 2 };
    frmOpening(const Settings &settings, QWidget *parent = nullptr);
    BoardChoice Choice() const { return m_panel->Choice(); }
    bool ShowAgain() const;

private:
    BoardChoiceWidget *m_panel;
    QCheckBox *m_showAgain;
};

} // namespace kvr
