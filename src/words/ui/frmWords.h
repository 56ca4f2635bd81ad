#pragma once
// The words window: the progress window of a database build (its making
// view) and the list of the words of the current database.
#include "words/WordTable.h"
#include <QWidget>

class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

namespace kvr {

class frmWords : public QWidget {
    Q_OBJECT
public:
    explicit frmWords(QWidget *parent = nullptr);

    // Making view: lblMaking and cmdESC only.
    void ShowMaking(const QString &text);
    void SetMakingText(const QString &text);
    // List view on the database at `databasePath`; false when it cannot be
    // read.
    bool ShowList(const QString &databasePath);
    bool Making() const { return m_isMaking; }

    // "Database of definitions in " + the source the database was made of.
    static QString CaptionFor(const QString &databasePath);
    // " " + the word cut or padded to 11 + "|" (referenced user word) or
    // character 31 (unreferenced user word).
    static QString ListEntry(const WordRecord &record);

signals:
    void StopRequested();

private:
    void ShowRecord(int row);
    void SetListVisible(bool visible);

    QLabel *m_makingLabel = nullptr;
    QLabel *m_wait = nullptr;
    QPushButton *m_stop = nullptr;
    QListWidget *m_list = nullptr;
    QPlainTextEdit *m_definition = nullptr;
    QLineEdit *m_file = nullptr;
    QLineEdit *m_references = nullptr;
    QList<QPushButton *> m_buttons;
    WordTable m_table;
    QList<const WordRecord *> m_records;
    bool m_isMaking = false;
};

} // namespace kvr
