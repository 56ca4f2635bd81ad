#pragma once
// The help window: our own pages, offline, with back, forward, home, find
// in page and the page's title in the caption.
#include <QTextBrowser>
#include <QWidget>

class QLabel;
class QLineEdit;
class QToolButton;

namespace kvr {

// Board pages get their word lists filled in as they load.
class HelpView : public QTextBrowser {
    Q_OBJECT
public:
    HelpView(const QString &wordsFolder, QWidget *parent = nullptr);
    QVariant loadResource(int type, const QUrl &name) override;

private:
    QString m_wordsFolder;
};

class frmBrowser : public QWidget {
    Q_OBJECT
public:
    frmBrowser(const QString &helpFolder, const QString &wordsFolder, QWidget *parent = nullptr);

    // False when the topic has no page.
    bool ShowTopic(const QString &topic);
    // The next place of `text` after the cursor, from the top again at the
    // end; false (and said under the page) when the page lacks it.
    bool FindText(const QString &text);
    HelpView *Page() const { return m_page; }

private:
    void UpdateCaption();

    QString m_helpFolder;
    HelpView *m_page;
    QLineEdit *m_find;
    QLabel *m_findResult;
};

} // namespace kvr
