#include "help/ui/frmBrowser.h"
#include "help/HelpLibrary.h"
#include "help/HelpTopics.h"
#include <QFile>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QTextDocument>
#include <QToolButton>
#include <QVBoxLayout>

namespace kvr {

HelpView::HelpView(const QString &wordsFolder, QWidget *parent) : QTextBrowser(parent), m_wordsFolder(wordsFolder)
{
}

QVariant HelpView::loadResource(int type, const QUrl &name)
{
    if (type == QTextDocument::HtmlResource && name.isLocalFile()) {
        QFile file(name.toLocalFile());
        if (file.open(QIODevice::ReadOnly))
            return FillWordLists(QString::fromUtf8(file.readAll()), m_wordsFolder);
    }
    return QTextBrowser::loadResource(type, name);
}

frmBrowser::frmBrowser(const QString &helpFolder, const QString &wordsFolder, QWidget *parent)
    : QWidget(parent, Qt::Window), m_helpFolder(helpFolder)
{
    setObjectName(QStringLiteral("frmBrowser"));
    auto *layout = new QVBoxLayout(this);
    auto *bar = new QHBoxLayout;
    auto button = [&](const char *name, const QString &text, const QString &tip) {
        auto *b = new QToolButton(this);
        b->setObjectName(QString::fromLatin1(name));
        b->setText(text);
        b->setToolTip(tip);
        bar->addWidget(b);
        return b;
    };
    QToolButton *back = button("cmdBack", QStringLiteral("< Back"), QStringLiteral("Previous page (Alt+Left)"));
    QToolButton *forward = button("cmdForward", QStringLiteral("Forward >"), QStringLiteral("Next page (Alt+Right)"));
    QToolButton *home = button("cmdHome", QStringLiteral("Contents"), QStringLiteral("The contents page"));
    bar->addSpacing(20);
    bar->addWidget(new QLabel(QStringLiteral("Find:"), this));
    m_find = new QLineEdit(this);
    m_find->setObjectName(QStringLiteral("txtFind"));
    m_find->setClearButtonEnabled(true);
    bar->addWidget(m_find, 1);
    QToolButton *next = button("cmdFind", QStringLiteral("Find next"), QStringLiteral("Next place (F3)"));
    m_findResult = new QLabel(this);
    m_findResult->setObjectName(QStringLiteral("lblFind"));
    bar->addWidget(m_findResult);
    layout->addLayout(bar);

    m_page = new HelpView(wordsFolder, this);
    m_page->setObjectName(QStringLiteral("txtPage"));
    m_page->setSearchPaths({helpFolder});
    // Web addresses go to the desktop's browser; our pages stay here.
    m_page->setOpenExternalLinks(true);
    layout->addWidget(m_page, 1);

    back->setEnabled(false);
    forward->setEnabled(false);
    connect(m_page, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
    connect(m_page, &QTextBrowser::forwardAvailable, forward, &QWidget::setEnabled);
    connect(back, &QToolButton::clicked, m_page, &QTextBrowser::backward);
    connect(forward, &QToolButton::clicked, m_page, &QTextBrowser::forward);
    connect(home, &QToolButton::clicked, this, [this] { ShowTopic(ContentsTopic); });
    connect(m_find, &QLineEdit::returnPressed, this, [this] { FindText(m_find->text()); });
    connect(next, &QToolButton::clicked, this, [this] { FindText(m_find->text()); });
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, [this] {
        m_find->setFocus();
        m_find->selectAll();
    });
    connect(new QShortcut(QKeySequence(Qt::Key_F3), this), &QShortcut::activated, this,
            [this] { FindText(m_find->text()); });
    connect(new QShortcut(QKeySequence::Back, this), &QShortcut::activated, m_page, &QTextBrowser::backward);
    connect(new QShortcut(QKeySequence::Forward, this), &QShortcut::activated, m_page, &QTextBrowser::forward);
    connect(m_page, &QTextBrowser::sourceChanged, this, [this] {
        m_findResult->clear();
        UpdateCaption();
    });
    resize(760, 620);
    UpdateCaption();
}

bool frmBrowser::ShowTopic(const QString &topic)
{
    const QString file = TopicFile(m_helpFolder, topic);
    if (file.isEmpty())
        return false;
    m_page->setSource(QUrl::fromLocalFile(file));
    return true;
}

bool frmBrowser::FindText(const QString &text)
{
    if (text.isEmpty())
        return false;
    bool found = m_page->find(text);
    if (!found) {
        QTextCursor top = m_page->textCursor();
        top.movePosition(QTextCursor::Start);
        m_page->setTextCursor(top);
        found = m_page->find(text);
    }
    m_findResult->setText(found ? QString() : QStringLiteral("Not on this page"));
    return found;
}

void frmBrowser::UpdateCaption()
{
    const QString title = m_page->documentTitle();
    setWindowTitle(title.isEmpty() ? QStringLiteral("KVR-PC Help") : QStringLiteral("KVR-PC Help - ") + title);
}

} // namespace kvr
