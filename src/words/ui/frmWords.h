#pragma once
// The words window: the progress window of a database build (its making
// view), the list of the words of the current database with the selected
// word's definition, file, references and uses (its list view), and the
// suggestions report (its report view).
#include "words/WordsBrowser.h"
#include <QWidget>
#include <functional>

class QGridLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

namespace kvr {

class AppContext;
struct PrintJob;

class frmWords : public QWidget {
    Q_OBJECT
public:
    enum class View { Making, List, Report };

    explicit frmWords(AppContext &context, QWidget *parent = nullptr);

    // Making view: lblMaking and cmdESC only.
    void ShowMaking(const QString &text);
    void SetMakingText(const QString &text);
    // List view on the database at `databasePath`; false when it cannot be
    // read.
    bool ShowList(const QString &databasePath);
    bool Making() const { return m_view == View::Making; }
    View CurrentView() const { return m_view; }
    const WordsBrowser &Browser() const { return m_browser; }

    // Selects the list entry a seek for `word` finds, the filter cleared.
    void SelectWord(const QString &word);
    // Keys go to the list (Enter jumps to the selected word's definition).
    void FocusList();

    // cmdPrint: the report through PRINT.TXT in the database's folder.
    void PrintReport();
    // cmdFileIt: the report to a file the user names.
    void FileReport();
    // cmdSuggest: the report view on the suggestions report.
    void ShowSuggestions();
    // CmdPrintSug.
    void PrintSuggestions();
    // CmdOK: the report view goes back to the list; the list view closes
    // the window and the database.
    void Ok();
    // The window was closed: the database goes with it.
    void CloseDatabase();

    // The report's date and time; the printer (a dialog, or a PDF file when
    // the system has none).
    void SetClock(std::function<QDateTime()> now) { m_now = std::move(now); }
    void SetPrinter(std::function<void(const PrintJob &)> print) { m_print = std::move(print); }

    // "Database of definitions in " + the source the database was made of.
    static QString CaptionFor(const QString &databasePath);

signals:
    void StopRequested();
    // Enter or a double click on a user word or on one of its uses.
    void OpenDefinition(const QString &file, int line);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void SetListVisible(bool visible);
    void FillList();
    void ShowRecord(int listRow);
    void ActivateWord();
    void ActivateUse(int row);
    bool WriteReport(const QString &path);
    void Print(const QStringList &lines);
    void LeaveReportView();

    AppContext &m_context;
    WordsBrowser m_browser;
    View m_view = View::List;
    std::function<QDateTime()> m_now;
    std::function<void(const PrintJob &)> m_print;
    const WordRecord *m_shown = nullptr;

    QGridLayout *m_grid = nullptr;
    QLabel *m_makingLabel = nullptr;
    QLabel *m_wait = nullptr;
    QPushButton *m_stop = nullptr;
    QLineEdit *m_filter = nullptr;
    QListWidget *m_list = nullptr;
    QPlainTextEdit *m_definition = nullptr;
    QLineEdit *m_file = nullptr;
    QLineEdit *m_references = nullptr;
    QLabel *m_usedByLabel = nullptr;
    QListWidget *m_usedBy = nullptr;
    QPushButton *m_printButton = nullptr;
    QPushButton *m_fileIt = nullptr;
    QPushButton *m_suggest = nullptr;
    QPushButton *m_printSuggestions = nullptr;
    QPushButton *m_ok = nullptr;
};

} // namespace kvr
