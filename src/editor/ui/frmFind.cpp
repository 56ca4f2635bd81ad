#include "editor/ui/frmFind.h"
#include "editor/EditorPool.h"
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace kvr {

frmFind::frmFind(EditorPool &pool, const QString &prefill, QWidget *frame)
    : QDialog(frame), m_pool(pool)
{
    setObjectName(QStringLiteral("frmFind"));
    setWindowTitle(tr("Find"));
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(false);

    m_text = new QLineEdit(this);
    m_text->setObjectName(QStringLiteral("Text1"));
    m_case = new QCheckBox(tr("Match &case"), this);
    m_case->setObjectName(QStringLiteral("chkCase"));
    auto *direction = new QGroupBox(tr("Direction"), this);
    m_up = new QRadioButton(tr("&Up"), direction);
    m_up->setObjectName(QStringLiteral("optDirection(0)"));
    m_down = new QRadioButton(tr("&Down"), direction);
    m_down->setObjectName(QStringLiteral("optDirection(1)"));
    auto *directionLayout = new QVBoxLayout(direction);
    directionLayout->addWidget(m_up);
    directionLayout->addWidget(m_down);
    m_find = new QPushButton(tr("&Find"), this);
    m_find->setObjectName(QStringLiteral("cmdFind"));
    m_find->setDefault(true);
    auto *cancel = new QPushButton(tr("Cancel"), this);
    cancel->setObjectName(QStringLiteral("cmdCancel"));

    auto *layout = new QGridLayout(this);
    layout->addWidget(new QLabel(tr("Find what:"), this), 0, 0);
    layout->addWidget(m_text, 0, 1);
    layout->addWidget(m_find, 0, 2);
    layout->addWidget(m_case, 1, 0, 1, 2);
    layout->addWidget(cancel, 1, 2);
    layout->addWidget(direction, 2, 0, 1, 2);

    FindState &state = m_pool.Find();
    state.gFindDirection = 1;
    m_down->setChecked(true);
    m_case->setChecked(state.gFindCase != 0);
    m_find->setEnabled(false);
    connect(m_text, &QLineEdit::textChanged, this,
            [this](const QString &text) { m_find->setEnabled(!text.isEmpty()); });
    m_text->setText(prefill);
    m_text->setSelection(0, static_cast<int>(state.gLastFound.size()));
    connect(m_case, &QCheckBox::clicked, this,
            [this](bool checked) { m_pool.Find().gFindCase = checked ? 1 : 0; });
    connect(m_up, &QRadioButton::clicked, this, [this] { m_pool.Find().gFindDirection = 0; });
    connect(m_down, &QRadioButton::clicked, this, [this] { m_pool.Find().gFindDirection = 1; });
    connect(m_find, &QPushButton::clicked, this, &frmFind::FindClicked);
    connect(cancel, &QPushButton::clicked, this, &frmFind::CancelClicked);
    for (QWidget *w : {static_cast<QWidget *>(m_text), static_cast<QWidget *>(m_case),
                       static_cast<QWidget *>(m_up), static_cast<QWidget *>(m_down)})
        w->installEventFilter(this);

    adjustSize();
    if (frame) {
        // Towards the frame's lower right, clear of the text being searched.
        const QRect area = frame->geometry();
        move(area.x() + static_cast<int>((area.width() - width()) * 0.9),
             area.y() + static_cast<int>((area.height() - height()) * 0.9));
    }
}

bool frmFind::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_F3) {
        if (m_find->isEnabled())
            m_find->click();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void frmFind::keyPressEvent(QKeyEvent *event)
{
    // Escape is the Cancel button: what was typed is kept for Find next.
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        CancelClicked();
        return;
    }
    QDialog::keyPressEvent(event);
}

void frmFind::FindClicked()
{
    m_pool.FindFromDialog(m_text->text());
    close();
}

void frmFind::CancelClicked()
{
    m_pool.Find().gFindString = m_text->text();
    m_pool.Find().gFindCase = m_case->isChecked() ? 1 : 0;
    close();
}

} // namespace kvr
