#pragma once
// The Find dialog: search string, case option and direction. It lives for
// one search; the search state it leaves feeds Find next.
#include <QDialog>

class QCheckBox;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace kvr {

class EditorPool;

class frmFind : public QDialog {
    Q_OBJECT
public:
    frmFind(EditorPool &pool, const QString &prefill, QWidget *frame);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void FindClicked();
    void CancelClicked();

    EditorPool &m_pool;
    QLineEdit *m_text = nullptr;
    QCheckBox *m_case = nullptr;
    QRadioButton *m_up = nullptr;
    QRadioButton *m_down = nullptr;
    QPushButton *m_find = nullptr;
};

} // namespace kvr
