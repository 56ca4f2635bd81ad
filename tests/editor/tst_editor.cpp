// The editing rules and the editor pool (files, backups, find), driven
// through in-memory windows.
#include "DataTable.h"
#include "FakeEditorView.h"
#include "app/IniFile.h"
#include "editor/Backups.h"
#include "editor/EditCommands.h"
#include "editor/FileFilters.h"
#include "editor/RecentFiles.h"
#include "editor/SourceFile.h"
#include <QtTest>
#include <cerrno>
#include <cstring>
#include <functional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace kvr;
using namespace kvr::test;

namespace {
const QString LongLineBox = QStringLiteral("The following line has over 80 characters, you should correct it:\n");
const QString TooLong = QStringLiteral("The source text in this window is too long for this operation");
QString A(int n) { return QString(n, QLatin1Char('A')); }
QByteArray Lines(int count, int length) { return (QByteArray(length, 'A') + "\r\n").repeated(count); }
using Ints = QList<int>;

// Runs `work` in a child that, when the test runs as root, is "nobody" by
// real and effective ids (access() goes by the real one), so permissions
// apply. The child's exit code is the answer; -1 when it did not end.
int InChildAsNobody(const std::function<int()> &work)
{
    const pid_t pid = ::fork();
    if (pid == 0)
        ::_exit(::getuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0) ? 100 : work());
    int status = 0;
    return pid > 0 && ::waitpid(pid, &status, 0) == pid && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
} // namespace

class TestEditor : public QObject {
    Q_OBJECT

    std::unique_ptr<PoolFixture> f;
    EditorPool &P() { return *f->pool; }
    QStringList Boxes() const { return f->prompts.MessageTexts(); }
    const RecordedPrompt &Shown(int i) const { return f->prompts.shown.at(i); }
    QStringList Recent() const { return ReadRecentFiles(f->context->paths.SettingsFile()); }

    int Load(const QString &name, const QByteArray &bytes)
    {
        WriteAll(f->File(name), bytes);
        P().LoadFile(f->File(name));
        return P().ActiveIndex();
    }
    int LoadPump(const Ints &backups)
    {
        for (int n : backups)
            WriteAll(f->File(QStringLiteral("PUMP.%1.KVR").arg(n, 3, 10, QLatin1Char('0'))), "BACKUP\r\n");
        const int index = Load(QStringLiteral("PUMP.KVR"), "PUMP TEXT\r\n");
        f->prompts.Clear();
        return index;
    }
    int WithText(const QString &text, int caret = 0)
    {
        const int index = P().FileNew();
        f->View(index)->SetText(text);
        f->View(index)->Select(caret, 0);
        return index;
    }

private slots:
    void init() { f = std::make_unique<PoolFixture>(); }
    void cleanup() { f.reset(); }

    // Small text rules, each row one input and its expected output.
    void textRules_data()
    {
        Columns<QString, QString, QString>({"rule", "input", "expected"});
        const auto row = RuleRow;
        // "line": '|' marks the position; start and length of its line.
        row("line of empty text", "line", "|", "0,0");
        row("line: first", "line", "AB|C\r\nDE", "0,3");
        row("line: caret on the CR", "line", "ABC|\r\nDE", "0,3");
        row("line: caret between CR and LF", "line", "ABC\r|\nDE", "0,3");
        row("line: second line start", "line", "ABC\r\n|DE", "5,2");
        row("line: empty last line", "line", "ABC\r\n|", "5,0");
        row("invert letters", "invert", "Dup DROP swap", "dUP drop SWAP");
        row("invert keeps digits, signs, accents", "invert", QString::fromLatin1("2@ (\xe9\xc9z"), QString::fromLatin1("2@ (\xe9\xc9Z"));
        row("invert keeps brackets beside the letters", "invert", "@[`{", "@[`{");
        row("keys swallowed: control, Tab, 255 and above", "discard", "8 13 9 1 32 254 255 8364", "9 1 255 8364");
        row("tab setting: 5 and garbage are 0", "tabs", "0 2 4 5 xx", "0 2 4 0 0");
        row("save: last line gets its line end", "save", "A\r\nB", "A\r\nB\r\n");
        row("save: no empty line added", "save", "A\r\nB\r\n", "A\r\nB\r\n");
        row("save: trailing blanks removed", "save", "A   \r\n  B  ", "A\r\n  B\r\n");
        row("save: a line padded by Down is emptied", "save", "X\r\n          \r\nY", "X\r\n\r\nY\r\n");
        row("save: empty text", "save", "", "\r\n");
        // "backup": the first backup's name | the folder | the name.
        row("backup name: other extension dropped", "backup", "C:\\W\\N.TXT", "C:\\W\\N.001.KVR|C:\\W|N.TXT");
        row("backup name without extension", "backup", "C:\\WORK\\PUMP", "C:\\WORK\\PUMP.001.KVR|C:\\WORK|PUMP");
        row("backup name: dotted folder, name without dot", "backup", "C:\\V1.2\\PUMP", "C:\\V1.001.KVR|C:\\V1.2|PUMP");
        row("backup name with forward separators", "backup", "/H/U/A.B.KVR", "/H/U/A.B.001.KVR|/H/U|A.B.KVR");
        row("backup name without folder", "backup", "PUMP.KVR", "PUMP.001.KVR|.|PUMP.KVR");
        row("file types for the dialogs", "filter", SourceFileFilter,
            "Source Files (*.kvr);;Text files (*.txt);;Suggestion files (*.sug);;Capture files (*.cap);;"
            "Hex prom files (*.int);;S-record prom files (*.mot);;All files (*)");
    }
    void textRules()
    {
        QFETCH(QString, rule);
        QFETCH(QString, input);
        QString got;
        if (rule == "line") {
            const LineInfo info = GetLineInfo(QString(input).remove('|'), int(input.indexOf('|')));
            got = QStringLiteral("%1,%2").arg(info.start).arg(info.length);
        } else if (rule == "backup") {
            QString directory, name;
            SplitPath(input, directory, name);
            got = BackupName(input, 1) + '|' + directory + '|' + name;
        } else if (rule == "tabs" || rule == "discard") {
            QStringList out;
            for (const QString &word : input.split(' '))
                if (rule == "tabs" || IsDiscardedChar(word.toUInt()))
                    out << (rule == "tabs" ? QString::number(TabSpacesValue(word)) : word);
            got = out.join(' ');
        } else {
            got = rule == "invert" ? InvertCase(input)
                : rule == "filter" ? QtFilter(input)
                                   : QString::fromLatin1(SourceBytesForSave(input));
        }
        QTEST(got, "expected");
    }

    // One key on a text: '|' is the caret before and after, "-" no edit.
    void editKeys_data()
    {
        Columns<QString, QString, int, QString>({"key", "before", "selected", "after"});
        const auto row = [](const char *name, const char *key, const QString &before, const QString &after, int sel = 0) {
            QTest::newRow(name) << QString::fromLatin1(key) << before << sel << after;
        };
        row("Enter at the end repeats the indent", "Enter", "    DUP|", "    DUP\r\n    |");
        row("Enter mid-line splits without indent", "Enter", "    DUP |DROP", "    DUP \r\n|DROP");
        row("Enter on a blank-only line keeps its blanks", "Enter", "   |", "   \r\n   |");
        row("Enter in empty text", "Enter", "|", "\r\n|");
        row("Tab width 4 in column 6", "Tab4", "ABCDEF|", "ABCDEF  |");
        row("Tab width 3 in column 5", "Tab3", "ABCDE|", "ABCDE |");
        row("Tab counts columns from the line start", "Tab4", "XXXXXXX\r\nAB|", "XXXXXXX\r\nAB  |");
        row("Tab: length 78 with four due is refused", "Tab4", A(76) + "|BB", "-");
        row("Tab: length 78 with two due fits to 80", "Tab4", A(78) + "|", A(78) + "  |");
        row("Tab: length 77 with four due is refused", "Tab4", "AAAA|" + A(73), "-");
        row("Tab without spaces is no edit", "Tab0", "A|BC", "-");
        row("Down from column 10 onto an empty line pads it", "Down", "0123456789|ABC\r\n\r\nZ", "0123456789ABC\r\n          |\r\nZ");
        row("Down onto a longer line keeps the column", "Down", "AB|C\r\nDEFGH", "ABC\r\nDE|FGH");
        row("Up onto a shorter line pads it", "Up", "AB\r\nCDEFG|", "AB   |\r\nCDEFG");
        row("Up on the first line: nothing", "Up", "AB|C\r\nD", "-");
        row("Down on the last line: nothing", "Down", "ABC\r\nD|", "-");
        row("Down onto the empty line after the last line end", "Down", "ABC|\r\n", "ABC\r\n   |");
        row("Up goes from the selection's end", "Up", "A|BC\r\nDEF", "AB|C\r\nDEF", 6);
        row("Delete before a line end takes CR LF", "Delete", "AB|\r\nCD", "AB|CD");
        row("Delete a selection", "Delete", "A|BCDE", "A|E", 3);
        row("Delete at the end: nothing", "Delete", "ABC|", "-");
        row("Delete a lone CR at the end", "Delete", "AB|\r", "AB|");
    }
    void editKeys()
    {
        QFETCH(QString, key);
        QFETCH(QString, before);
        const int caret = int(before.indexOf('|')), selected = Cell<int>("selected");
        const QString text = before.remove('|');
        std::optional<EditAction> action;
        if (key == "Enter")
            action = EnterAction(text, caret, selected);
        else if (key.startsWith("Tab"))
            action = TabAction(text, caret, selected, key.mid(3).toInt());
        else if (key == "Delete")
            action = DeleteAction(text, caret, selected);
        else
            action = UpDownAction(text, caret, selected, key == "Up");
        QString after = QStringLiteral("-");
        if (action) {
            after = QString(text).replace(action->start, action->changesText ? action->removed : 0,
                                          action->changesText ? action->inserted : QString());
            after.insert(action->selStart, '|');
            QCOMPARE(action->selLength, 0);
        }
        QTEST(after, "after");
    }

    // Backup proposes the number after the highest (gaps stay) and writes a
    // copy: the window stays changed, the recent list as it was.
    void backupProposesTheNext_data()
    {
        Columns<Ints, QString, QString>({"existing", "proposed", "typed"});
        QTest::newRow("none: 001") << Ints{} << "PUMP.001.KVR" << "PUMP.001.KVR";
        QTest::newRow("001 002 005: 006") << Ints{1, 2, 5} << "PUMP.006.KVR" << "PUMP.006.KVR";
        QTest::newRow("998: 999") << Ints{998} << "PUMP.999.KVR" << "PUMP.999.KVR";
        QTest::newRow("under another name") << Ints{1} << "PUMP.002.KVR" << "OTHER.KVR";
        QTest::newRow("cancelled") << Ints{} << "PUMP.001.KVR" << "";
    }
    void backupProposesTheNext()
    {
        QFETCH(Ints, existing);
        QFETCH(QString, typed);
        const int index = LoadPump(existing);
        f->View(index)->Type(QStringLiteral("EDITED "));
        const QStringList recent = Recent();
        if (!typed.isEmpty())
            f->prompts.inputs.enqueue(typed);
        P().Backup(index);
        QCOMPARE(f->prompts.shown.size(), 1);
        QCOMPARE(Shown(0).text, QStringLiteral("Enter backup file name, the one suggested is the next in sequence."));
        QTEST(Shown(0).items.value(0), "proposed");
        QCOMPARE(QDir(f->dir.path()).entryList({"*.KVR"}).size(), existing.size() + (typed.isEmpty() ? 1 : 2));
        QVERIFY(typed.isEmpty() || ReadAll(f->File(typed)) == "EDITED PUMP TEXT\r\n");
        QVERIFY(P().FState(index).Dirty);
        QVERIFY(P().Caption(index).endsWith(QStringLiteral("/PUMP.KVR")));
        QCOMPARE(Recent(), recent);
    }

    // With no one to ask (the session ends) changed text goes to the next
    // backup without a word; unchanged windows write nothing.
    void changedTextKeptWhenNoQuestionCanBeAsked_data()
    {
        Columns<Ints, bool, QString>({"existing", "edited", "kept"});
        QTest::newRow("next after the highest") << Ints{1, 4} << true << "PUMP.005.KVR";
        QTest::newRow("unchanged: nothing") << Ints{} << false << QString();
        QTest::newRow("999 taken: said, not written") << Ints{999} << true << QString();
    }
    void changedTextKeptWhenNoQuestionCanBeAsked()
    {
        QFETCH(Ints, existing);
        QFETCH(bool, edited);
        QFETCH(QString, kept);
        const int index = LoadPump(existing);
        if (edited)
            f->View(index)->Type(QStringLiteral("EDITED "));
        P().TextChanged(WithText(QStringLiteral("NEW")));
        const QStringList said = P().KeepChangedTextAsBackups();
        QVERIFY(f->prompts.shown.isEmpty());
        QCOMPARE(said.size(), edited ? 2 : 1);
        QCOMPARE(ReadAll(f->context->paths.ProgramFolder() + QStringLiteral("UNTITLED.001.KVR")), QByteArray("NEW\r\n"));
        QVERIFY(kept.isEmpty() || ReadAll(f->File(kept)) == "EDITED PUMP TEXT\r\n");
        QVERIFY2(!edited || said.first().contains(kept.isEmpty() ? QStringLiteral("not kept") : kept), qPrintable(said.first()));
        QCOMPARE(P().FState(index).Dirty, edited && kept.isEmpty());
        QCOMPARE(QDir(f->dir.path()).entryList({"PUMP.*.KVR"}).size(), existing.size() + (kept.isEmpty() ? 0 : 1));
    }

    // Backup and Restore refused. Setup: backup numbers, "dirN" a folder
    // under backup N's name (unreadable: the scan ends there). In the text
    // "%1" is the caption, "%w" the working file's number, a final blank
    // "the reason follows".
    void backupRestoreRefusals_data()
    {
        Columns<bool, QString, QString, int>({"restore", "setup", "message", "icon"});
        const int info = int(PromptIcon::Information), warn = int(PromptIcon::Exclamation);
        QTest::newRow("backup of an unnamed window") << false << "unnamed" << "Name the source file with 'Save As' before using 'Backup'" << info;
        QTest::newRow("backup of an empty window") << false << "empty" << "This source window has no text" << warn;
        QTest::newRow("backup with 999 there") << false << "3 999" << "Can't make back-up file, Source code %w.999.KVR already exists" << info;
        QTest::newRow("backup scan stopped by an unreadable 003") << false << "1 dir3" << "Can't make back-up file, " << info;
        QTest::newRow("restore of an unnamed window") << true << "unnamed" << "Name the source file with 'Save As' before using 'Restore'" << info;
        QTest::newRow("restore without backups") << true << "" << "No backups have been made of %1" << warn;
        QTest::newRow("restore scan stopped by an unreadable 001") << true << "5 dir1" << "Error: " << warn;
    }
    void backupRestoreRefusals()
    {
        QFETCH(QString, setup);
        QFETCH(QString, message);
        int index = P().FileNew();
        f->View(index)->Type(QStringLiteral("X"));
        if (setup != "unnamed") {
            Ints numbers;
            for (const QString &n : setup.split(' ', Qt::SkipEmptyParts))
                if (n.startsWith("dir"))
                    QVERIFY(QDir().mkpath(f->File(QStringLiteral("PUMP.00%1.KVR").arg(n.back()))));
                else if (n != "empty")
                    numbers << n.toInt();
            // Closing a window sets the working file the message names.
            f->prompts.answers.enqueue(PromptAnswer::No);
            QVERIFY(f->View(index)->Close());
            message.replace("%w", QString::number(index));
            index = LoadPump(numbers);
            if (setup == "empty")
                f->View(index)->SetText(QString());
        }
        f->prompts.Clear();
        Cell<bool>("restore") ? P().Restore(index) : P().Backup(index);
        QCOMPARE(f->prompts.shown.size(), 1);
        message.replace("%1", P().Caption(index));
        if (message.endsWith(' '))
            QVERIFY2(Shown(0).text.startsWith(message) && Shown(0).text.size() > message.size() && !Shown(0).text.contains("999"), qPrintable(Shown(0).text));
        else
            QCOMPARE(Shown(0).text, message);
        QTEST(int(Shown(0).icon), "icon");
        QCOMPARE(Shown(0).caption, AppTitle);
        QVERIFY(!f->View(index)->backupsShown);
    }

    void restoreListsEveryBackupWithTheHighestSelected()
    {
        const int index = LoadPump({1, 2, 5});
        P().Restore(index);
        QCOMPARE(f->View(index)->backups, (QStringList{"PUMP.001.KVR", "PUMP.002.KVR", "PUMP.005.KVR"}));
        QCOMPARE(f->View(index)->backupSelected, 2);
    }

    // Restore takes a backup as it stands (no trimming, no line checks) if
    // the window can hold it.
    void restoreOverwrites_data()
    {
        Columns<int, QByteArray, QString, QString>({"answer", "backup", "text", "refusal"});
        const int yes = int(PromptAnswer::Yes);
        const QString old = QStringLiteral("PUMP TEXT\r\n");
        QTest::newRow("Yes: taken as it stands") << yes << QByteArray("B  \nX\r\n") << "B  \r\nX\r\n" << QString();
        QTest::newRow("No: untouched") << int(PromptAnswer::No) << QByteArray("B\r\n") << old << QString();
        QTest::newRow("65,535 characters and the CR LF saving added") << yes << QByteArray(65535, 'A') + "\r\n" << A(65535) << QString();
        QTest::newRow("one character more than the window holds") << yes << QByteArray(65536, 'A') << old << TooLong;
        QTest::newRow("a file far too large for any source") << yes << QByteArray(17 * 1024 * 1024, 'A') << old
                                                             << "Error: " + QString::fromLocal8Bit(std::strerror(EFBIG));
    }
    void restoreOverwrites()
    {
        QFETCH(QString, text);
        QFETCH(QString, refusal);
        const int index = LoadPump({1});
        WriteAll(f->File(QStringLiteral("PUMP.002.KVR")), Cell<QByteArray>("backup"));
        P().Restore(index);
        f->prompts.answers.enqueue(PromptAnswer(Cell<int>("answer")));
        P().RestoreChosen(index, QStringLiteral("PUMP.002.KVR"));
        QCOMPARE(Shown(0).text, QStringLiteral("Do you really want to overwrite displayed source code?"));
        QCOMPARE(Shown(0).buttons, PromptButtons::YesNo);
        QCOMPARE(Boxes().mid(1), refusal.isEmpty() ? QStringList() : QStringList{refusal});
        QVERIFY(!f->View(index)->backupsShown);
        QCOMPARE(P().Text(index), text);
        QCOMPARE(P().FState(index).Dirty, text != QLatin1String("PUMP TEXT\r\n"));
        QVERIFY(P().Caption(index).endsWith(QStringLiteral("/PUMP.KVR")));
        QCOMPARE(P().SelStart(index), 0);
    }

    // Find and Find next: wraps at either end after asking, and stops where
    // it began. Answers: Yes(1)/No(0) queued; hits: selection after each search.
    void findSequences_data()
    {
        Columns<QString, QString, int, int, int, Ints, Ints>({"text", "wanted", "matchCase", "down", "caret", "answers", "hits"});
        QTest::newRow("case ignored finds either case") << "dup DUP" << "DUP" << 0 << 1 << 0 << Ints{} << Ints{0, 4};
        QTest::newRow("case matched skips the other case") << "dup DUP" << "DUP" << 1 << 1 << 0 << Ints{} << Ints{4};
        QTest::newRow("down: each Find next moves on, then wraps") << "X AB AB" << "AB" << 0 << 1 << 0 << Ints{1} << Ints{2, 5, 2};
        QTest::newRow("one match, Find next wraps to it") << "AAA FOO BBB" << "FOO" << 0 << 1 << 0 << Ints{1} << Ints{4, 4};
        QTest::newRow("up from the end: later match first") << "FOO x FOO y" << "FOO" << 0 << 0 << 11 << Ints{0} << Ints{6, 0, 0};
        QTest::newRow("up: a match just before the caret is passed over") << "X X" << "X" << 0 << 0 << 3 << Ints{} << Ints{0};
        QTest::newRow("up: wrap goes on from the end") << "AB x" << "AB" << 0 << 0 << 0 << Ints{1} << Ints{0};
        QTest::newRow("down: the only match at 0 is found after the wrap") << "AB x" << "AB" << 0 << 1 << 0 << Ints{1} << Ints{0, 0};
        QTest::newRow("up: the only match at the very end after the wrap") << "x AB" << "AB" << 0 << 0 << 4 << Ints{1} << Ints{2, 2};
        QTest::newRow("declined wrap keeps the selection") << "AB" << "AB" << 0 << 1 << 0 << Ints{0} << Ints{0, 0};
        QTest::newRow("empty text asks at once, again after Yes") << "" << "Q" << 0 << 1 << 0 << Ints{1, 0} << Ints{0};
    }
    void findSequences()
    {
        QFETCH(QString, wanted);
        QFETCH(Ints, answers);
        QFETCH(Ints, hits);
        const int index = WithText(Cell<QString>("text"), Cell<int>("caret"));
        for (int a : answers)
            f->prompts.answers.enqueue(a ? PromptAnswer::Yes : PromptAnswer::No);
        P().ShowFind(index);
        P().Find().gFindCase = Cell<int>("matchCase");
        P().Find().gFindDirection = Cell<int>("down");
        P().FindFromDialog(wanted);
        Ints seen{P().SelStart(index)};
        while (seen.size() < hits.size()) {
            P().FindNext(index);
            seen << P().SelStart(index);
        }
        QCOMPARE(seen, hits);
        QCOMPARE(P().SelLength(index), P().Text(index).isEmpty() ? 0 : int(wanted.size()));
        QCOMPARE(Boxes(), QStringList(answers.size(), "Cannot find '" + wanted + "', continue search at other end of text? "));
        QCOMPARE(P().Find().gCurPos, P().SelStart(index));
        QVERIFY(!P().Find().gFirstTime);
    }

    // Loading: line ends become CR LF, trailing blanks go, an over-long line
    // of a .KVR file gets a box each, a window holds 65,535 characters.
    void load_data()
    {
        Columns<QString, QByteArray, QString, int, int>({"name", "content", "text", "size", "boxes"}); // boxes -1: cut
        const auto same = [](const QByteArray &b) { return QString::fromLatin1(b); };
        QTest::newRow("LF, CR and a missing last line end") << "N.KVR" << QByteArray("A\nB\rC\r\n\r\nD") << "A\r\nB\r\nC\r\n\r\nD\r\n" << 14 << 0;
        QTest::newRow("trailing blanks go, leading blanks and tabs stay") << "N.KVR" << QByteArray("  A  \r\n\tB\t \r\n   \r\n") << "  A\r\n\tB\t\r\n\r\n" << 12 << 0;
        QTest::newRow("80 characters: no box") << "A.KVR" << Lines(3, 80) << same(Lines(3, 80)) << 246 << 0;
        QTest::newRow("81 characters: a box") << "A.KVR" << Lines(1, 81) << same(Lines(1, 81)) << 83 << 1;
        QTest::newRow("lower-case extension is checked too") << "a.kvr" << Lines(1, 81) << same(Lines(1, 81)) << 83 << 1;
        QTest::newRow(".TXT is never checked") << "A.TXT" << Lines(5, 120) << same(Lines(5, 120)) << 610 << 0;
        QTest::newRow("twenty long lines, twenty boxes") << "B.KVR" << Lines(20, 90) << same(Lines(20, 90)) << 1840 << 20;
        QTest::newRow("80 characters and trailing blanks count") << "C.KVR" << QByteArray(80, 'A') + "   \r\n" << same(Lines(1, 80)) << 82 << 1;
        // 819 lines of 78 + CR LF, then 13 + CR LF: 65,535 characters.
        const QByteArray exact = Lines(819, 78) + QByteArray(13, 'B') + "\r\n";
        QTest::newRow("exactly 65,535 loads whole") << "BIG.KVR" << exact << same(exact) << 65535 << 0;
        QTest::newRow("one more line is cut") << "BIG.KVR" << exact + "C\r\n" << same(exact) << 65535 << -1;
        QTest::newRow("cut between CR and LF: the CR goes too") << "BIG.KVR" << Lines(819, 78) + QByteArray(14, 'B') << QString() << 65534 << -1;
    }
    void load()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        QFETCH(int, boxes);
        const int index = Load(name, content);
        QCOMPARE(P().Caption(index), LogicalName(f->File(name)));
        QVERIFY(!P().FState(index).Dirty);
        QTEST(int(P().Text(index).size()), "size");
        QVERIFY(Cell<QString>("text").isEmpty() || P().Text(index) == Cell<QString>("text"));
        QVERIFY(!P().Text(index).endsWith('\r'));
        if (boxes < 0) {
            QCOMPARE(f->prompts.shown.size(), 1);
            QCOMPARE(Shown(0).icon, PromptIcon::Critical);
            QCOMPARE(Shown(0).text, "The file " + P().Caption(index)
                                + " is too long to fit in the source code window, the end part is not displayed. If you alter "
                                  "the text then save it you will lose some of the original file. You can close the window "
                                  "now if you want to leave the original unaltered. ");
            return;
        }
        QCOMPARE(Boxes().size(), boxes);
        for (const QString &box : Boxes())
            QVERIFY(box.startsWith(LongLineBox));
        if (boxes == 1) // the line as read
            QCOMPARE(Boxes().first(), LongLineBox + QString::fromLatin1(content).chopped(2));
    }

    // A file that is no source at all: one box for its one long line (its
    // start shown), the cut and its box, a window of 65,535 characters.
    void binaryFileIsCut()
    {
        const int index = Load(QStringLiteral("IMAGE.KVR"), QByteArray(5'000'000, '\x01'));
        QCOMPARE(P().Text(index), QString(65535, QChar(1)));
        QCOMPARE(Boxes().size(), 2);
        QCOMPARE(Boxes().first(), LongLineBox + QString(1000, QChar(1)) + QStringLiteral("..."));
    }

    // Names that are no readable file: no window stays, the box gives the
    // name as on disk and why.
    void openRefused_data()
    {
        Columns<QString>({"path"});
        QTest::newRow("missing file") << "MISSING.KVR";
        QTest::newRow("a folder") << "";
        QTest::newRow("a device that never ends") << "/dev/zero";
        QTest::newRow("a pipe") << "PIPE.KVR";
    }
    void openRefused()
    {
        QFETCH(QString, path);
        path = path.startsWith('/') ? path : f->File(path);
        if (path.endsWith("PIPE.KVR"))
            QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        P().OpenFile(path);
        QVERIFY(P().OpenIndexes().isEmpty());
        QCOMPARE(Boxes().size(), 1);
        const QString reason = Boxes().first().mid(path.size() + 19);
        QCOMPARE(Boxes().first(), "Can't open file: " + path + "\r\n" + reason);
        QVERIFY(!reason.isEmpty() && (!path.endsWith("MISSING.KVR") || reason == "No such file or directory"));
    }

    // Save of an unnamed window asks for a name, then Save: the file keeps
    // the name it was given on disk, whatever its upper case looks like; a
    // bare name becomes a source file; an existing file is only replaced
    // when the user says so.
    void saveAs_data()
    {
        Columns<QString, QString, QByteArray, int, QByteArray>({"typed", "onDisk", "existing", "answer", "after"});
        const QByteArray saved("1X\r\n");
        for (const char *name : {"Ma\xc3\x9f.kvr", "\xc4\xb1o.kvr", "\xef\xac\x81le.kvr", "new.kvr"})
            QTest::newRow(name) << QString::fromUtf8(name) << QString::fromUtf8(name) << QByteArray() << 0 << saved;
        QTest::newRow("no extension gets .KVR") << "prog" << "prog.KVR" << QByteArray() << 0 << saved;
        QTest::newRow("existing file, No: kept") << "old.kvr" << "old.kvr" << QByteArray("KEEP\r\n") << int(PromptAnswer::No) << QByteArray("KEEP\r\n");
        QTest::newRow("existing file, Yes: replaced") << "old.kvr" << "old.kvr" << QByteArray("KEEP\r\n") << int(PromptAnswer::Yes) << saved;
        QTest::newRow("cancelled") << "" << "" << QByteArray() << 0 << QByteArray();
    }
    void saveAs()
    {
        QFETCH(QString, typed);
        QFETCH(QString, onDisk);
        QFETCH(QByteArray, existing);
        QFETCH(QByteArray, after);
        if (!existing.isEmpty())
            WriteAll(f->File(onDisk), existing);
        const int index = P().FileNew();
        f->View(index)->Type(QStringLiteral("1  "));
        if (!typed.isEmpty())
            f->prompts.fileNames.enqueue(f->File(typed));
        f->prompts.answers.enqueue(PromptAnswer(Cell<int>("answer")));
        const bool saved = P().Save(index);
        QCOMPARE(saved, after != existing);
        QCOMPARE(Shown(0).kind + Shown(0).caption, QStringLiteral("saveSave Source code 1 as"));
        QCOMPARE(Shown(0).items, QStringList{QString()});
        QCOMPARE(Boxes().size(), existing.isEmpty() ? 0 : 1);
        QCOMPARE(P().FState(index).Dirty, !saved);
        if (typed.isEmpty()) {
            QCOMPARE(P().Caption(index), QStringLiteral("Source code 1"));
            return;
        }
        if (saved) {
            QCOMPARE(f->context->settings.currentFile, P().Caption(index));
            QCOMPARE(Recent().first(), P().Caption(index));
            f->View(index)->Select(1, 0);
            f->View(index)->Type(QStringLiteral("X"));
            QVERIFY(P().Save(index));
            QCOMPARE(P().Caption(index), LogicalName(f->File(onDisk)));
        }
        QCOMPARE(QDir(f->dir.path()).entryList(QDir::Files), QStringList{onDisk});
        QCOMPARE(ReadAll(f->File(onDisk)), after);
    }

    void saveWithFolderAndFilePermissions_data()
    {
        Columns<int, int, QByteArray>({"folderMode", "fileMode", "after"}); // OLD when refused
        QTest::newRow("read-only folder, read-only file: refused") << 0555 << 0644 << QByteArray("OLD\r\n");
        QTest::newRow("read-only file in a writable folder: refused") << 0777 << 0444 << QByteArray("OLD\r\n");
        QTest::newRow("writable file in a read-only folder: written in place") << 0555 << 0666 << QByteArray("NEW OLD\r\n");
    }
    void saveWithFolderAndFilePermissions()
    {
        QFETCH(QByteArray, after);
        const bool refused = after == "OLD\r\n";
        const QString folder = f->File(QStringLiteral("ro")), path = folder + QStringLiteral("/KEEP.KVR");
        WriteAll(path, "OLD\r\n");
        P().LoadFile(path);
        const int index = P().ActiveIndex();
        f->View(index)->Type(QStringLiteral("NEW "));
        const QString caption = P().Caption(index);
        const auto mode = [](const QString &p, int m) { ::chmod(QFile::encodeName(p).constData(), m); };
        mode(f->dir.path(), 0755);
        mode(folder, Cell<int>("folderMode"));
        mode(path, Cell<int>("fileMode"));
        // The save also records the file in the recent list.
        mode(QFileInfo(f->context->paths.SettingsFile()).path(), 0777);
        mode(f->context->paths.SettingsFile(), 0666);
        f->prompts.Clear();
        const QString expected = "Can't write file " + caption + ", it may be write-protected or not a legal file name.";
        // 0: refused with the box and the window as it was, or saved without a word.
        const int outcome = InChildAsNobody([&] {
            if (P().SaveFile(caption, index, false) == refused || P().FState(index).Dirty != refused || P().Caption(index) != caption)
                return 1;
            if (!refused)
                return f->prompts.shown.isEmpty() ? 0 : 2;
            return f->prompts.shown.size() == 1 && Shown(0).icon == PromptIcon::Information && Shown(0).text == expected ? 0 : 3;
        });
        mode(folder, 0755);
        mode(path, 0644);
        QCOMPARE(outcome, 0);
        QCOMPARE(ReadAll(path), after);
        QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("KEEP.KVR")});
    }

    void failedSaveOnFullDiskKeepsOldFile()
    {
        const int index = Load(QStringLiteral("FULL.KVR"), "OLD\r\n");
        f->View(index)->Type(QString(4000, 'Z'));
        bool saved = true;
        {
            FileSizeLimit full(1000);
            saved = P().Save(index);
        }
        QVERIFY(!saved && P().FState(index).Dirty);
        QCOMPARE(QDir(f->dir.path()).entryList({"FULL*"}, QDir::Files), QStringList{QStringLiteral("FULL.KVR")});
        QCOMPARE(ReadAll(f->File(QStringLiteral("FULL.KVR"))), QByteArray("OLD\r\n"));
        QCOMPARE(f->prompts.shown.size(), 1);
        QVERIFY(Shown(0).icon == PromptIcon::Exclamation && !Shown(0).text.startsWith(QStringLiteral("Can't write file")));
    }

    void closeQuestion_data()
    {
        Columns<int, bool, QByteArray>({"answer", "closed", "onDisk"}); // answer -1: text unchanged
        QTest::newRow("Yes saves and closes") << int(PromptAnswer::Yes) << true << QByteArray("OLD NEW\r\n");
        QTest::newRow("No closes without saving") << int(PromptAnswer::No) << true << QByteArray("OLD\r\n");
        QTest::newRow("Cancel keeps the window") << int(PromptAnswer::Cancel) << false << QByteArray("OLD\r\n");
        QTest::newRow("unchanged: no question") << -1 << true << QByteArray("OLD\r\n");
    }
    void closeQuestion()
    {
        QFETCH(int, answer);
        QFETCH(bool, closed);
        const int index = Load(QStringLiteral("Q.KVR"), "OLD\r\n");
        FakeEditorView *view = f->View(index);
        view->Select(3, 0);
        if (answer >= 0)
            view->Type(QStringLiteral(" NEW"));
        f->prompts.answers.enqueue(PromptAnswer(answer));
        QCOMPARE(P().CloseAll(), closed);
        QCOMPARE(view->closed, closed);
        QCOMPARE(P().OpenIndexes().isEmpty(), closed);
        QTEST(ReadAll(f->File(QStringLiteral("Q.KVR"))), "onDisk");
        QCOMPARE(Boxes(), answer < 0 ? QStringList() : QStringList{"The text in " + view->caption + " has changed.\r\nDo you want to save the changes?"});
        QVERIFY(answer < 0 || (Shown(0).buttons == PromptButtons::YesNoCancel && Shown(0).icon == PromptIcon::Exclamation));
    }

    // Before a compile every changed window is saved, and the one compiled
    // even when unchanged.
    void saveBeforeCompile()
    {
        const int a = Load(QStringLiteral("A.KVR"), "A\r\n"), b = Load(QStringLiteral("B.KVR"), "B\r\n");
        f->View(a)->Type(QStringLiteral("DIRTY "));
        WriteAll(f->File(QStringLiteral("B.KVR")), "CHANGED ON DISK\r\n");
        P().SaveBeforeCompile(b);
        QCOMPARE(ReadAll(f->File(QStringLiteral("A.KVR"))) + ReadAll(f->File(QStringLiteral("B.KVR"))), QByteArray("DIRTY A\r\nB\r\n"));
        QCOMPARE(f->context->settings.currentFile, P().Caption(b));
        QVERIFY(!P().FState(a).Dirty);
    }

    // The compiler names a file as it found it (through a folder in an
    // INCLUDE, a search path, in another case): the window holding that
    // file shows the line, and no other window opens.
    void showLineSelectsIt_data()
    {
        Columns<QString>({"named"});
        QTest::newRow("the caption") << QString();
        QTest::newRow("relative, with a backslash") << "SUB\\L.KVR";
        QTest::newRow("lower case through a dot folder") << "./sub/./l.kvr";
        QTest::newRow("search path with a trailing backslash") << "%1\\L.KVR";
    }
    void showLineSelectsIt()
    {
        QFETCH(QString, named);
        QDir(f->dir.path()).mkdir(QStringLiteral("sub"));
        const int index = Load(QStringLiteral("sub/L.KVR"), "ONE\r\nTWO\r\nTHREE\r\n");
        QDir::setCurrent(f->dir.path());
        named = named.isEmpty() ? P().Caption(index) : named.replace("%1", f->File(QStringLiteral("sub")));
        Load(QStringLiteral("OTHER.KVR"), "X\r\n");
        QVERIFY(P().ShowLine(named, 2));
        QCOMPARE(P().ActiveIndex(), index);
        QCOMPARE(P().SelStart(index), 5);
        QCOMPARE(P().SelLength(index), 4); // up to the line feed
        QCOMPARE(P().OpenIndexes().size(), 2);
        QVERIFY(!P().ShowLine(QStringLiteral("/NOT/OPEN.KVR"), 1));
    }

    void insertFile_data()
    {
        Columns<QByteArray, QString, QString>({"content", "text", "box"}); // content "-": no such file
        QTest::newRow("at the caret, line ends as CR LF") << QByteArray("1\n2\r\n") << "AB1\r\n2\r\nCD" << QString();
        QTest::newRow("missing file") << QByteArray("-") << "ABCD" << "Can't open file: %1\r\nNo such file or directory";
        QTest::newRow("more bytes than a window holds") << QByteArray(70000, '\0') << "ABCD" << TooLong;
        QTest::newRow("fits as bytes, not with CR LF line ends") << QByteArray("1\n").repeated(30000) << "ABCD" << TooLong;
    }
    void insertFile()
    {
        QFETCH(QString, box);
        const QString path = f->File(QStringLiteral("INS.TXT"));
        if (Cell<QByteArray>("content") != "-")
            WriteAll(path, Cell<QByteArray>("content"));
        const int index = WithText(QStringLiteral("ABCD"), 2);
        f->prompts.fileNames.enqueue(path);
        P().InsertFile(index);
        QTEST(P().Text(index), "text");
        QCOMPARE(P().FState(index).Dirty, box.isEmpty());
        QCOMPARE(Boxes(), box.isEmpty() ? QStringList() : QStringList{box.replace("%1", path)});
    }

};

QTEST_GUILESS_MAIN(TestEditor)
#include "tst_editor.moc"
