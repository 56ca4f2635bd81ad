// The editor pool's windows and files, driven through in-memory windows.
#include "FakeEditorView.h"
#include "app/IniFile.h"
#include "editor/FileFilters.h"
#include "editor/RecentFiles.h"
#include "editor/SourceFile.h"
#include <QtTest>
#include <functional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace kvr;
using namespace kvr::test;

namespace {
const QString LongLineBox =
    QStringLiteral("The following line has over 80 characters, you should correct it:\n");

QByteArray Lines(int count, int length, char fill = 'A')
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        bytes += QByteArray(length, fill) + "\r\n";
    return bytes;
}

// Runs `work` in a child process that, when the test runs as root, is
// "nobody" through and through (real and effective ids: the system's
// access() check goes by the real one), so file permissions apply. The
// child's answer is its exit code; -1 when it did not end normally.
int InChildAsNobody(const std::function<int()> &work)
{
    const pid_t pid = ::fork();
    if (pid < 0)
        return -1;
    if (pid == 0) {
        if (::getuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
            ::_exit(100);
        ::_exit(work());
    }
    int status = 0;
    if (::waitpid(pid, &status, 0) != pid || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}
} // namespace

class TestEditorFiles : public QObject {
    Q_OBJECT

    std::unique_ptr<PoolFixture> f;

    int Load(const QString &name, const QByteArray &bytes)
    {
        WriteAll(f->File(name), bytes);
        f->pool->LoadFile(f->File(name));
        return f->pool->ActiveIndex();
    }

private slots:
    void init() { f = std::make_unique<PoolFixture>(); }
    void cleanup() { f.reset(); }

    void newWindowsTakeTheLowestFreeSlot()
    {
        QCOMPARE(f->pool->FileNew(), 1);
        QCOMPARE(f->pool->FileNew(), 2);
        QCOMPARE(f->pool->FileNew(), 3);
        QVERIFY(f->View(2)->Close());
        QCOMPARE(f->pool->OpenIndexes(), (QList<int>{1, 3}));
        QCOMPARE(f->pool->FileNew(), 2);
        QCOMPARE(f->pool->Caption(2), QStringLiteral("Source code 2"));
        QCOMPARE(f->View(2)->placedAt, 2);
        QCOMPARE(f->pool->FileNew(), 4);
        QCOMPARE(f->pool->UpperBound(), 4);
    }

    // Shift+Tab: the next open window in slot order, wrapping to the first.
    void nextEditorSkipsClosedSlotsAndWraps()
    {
        for (int i = 0; i < 4; ++i)
            f->pool->FileNew();
        QVERIFY(f->View(2)->Close());
        QVERIFY(f->View(4)->Close());
        f->pool->ActivateNext(1);
        QCOMPARE(f->pool->ActiveIndex(), 3);
        const int activations = f->View(1)->activations;
        f->pool->ActivateNext(3);
        QCOMPARE(f->pool->ActiveIndex(), 1);
        QCOMPARE(f->View(1)->activations, activations + 1);
    }

    void newWindowIsAnnounced()
    {
        QSignalSpy created(f->pool.get(), &EditorHost::EditorCreated);
        const int index = f->pool->FileNew();
        QCOMPARE(created.count(), 1);
        QCOMPARE(created.first().at(0).toInt(), index);
        QCOMPARE(created.first().at(1).value<QObject *>(), f->View(index)->Object());
    }

    void longLineBoxes_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("boxes");
        QTest::newRow("80 characters: no box") << "A.KVR" << Lines(3, 80) << 0;
        QTest::newRow("81 characters: a box") << "A.KVR" << Lines(1, 81) << 1;
        QTest::newRow("lower-case extension is checked too") << "a.kvr" << Lines(1, 81) << 1;
        QTest::newRow(".TXT is never checked") << "A.TXT" << Lines(5, 120) << 0;
        QTest::newRow("twenty long lines, twenty boxes") << "B.KVR" << Lines(20, 90) << 20;
        QTest::newRow("80 characters and trailing blanks count")
            << "C.KVR" << QByteArray(80, 'A') + "   \r\n" << 1;
    }
    void longLineBoxes()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        QFETCH(int, boxes);
        const int index = Load(name, content);
        QVERIFY(index > 0);
        const QStringList texts = f->prompts.MessageTexts();
        QCOMPARE(texts.size(), boxes);
        for (const QString &text : texts)
            QVERIFY(text.startsWith(LongLineBox));
        if (boxes == 1)
            QCOMPARE(texts.first(), LongLineBox + QString::fromLatin1(content).chopped(2)); // the line as read
        QCOMPARE(f->pool->Caption(index), LogicalName(f->File(name)));
        QVERIFY(!f->pool->FState(index).Dirty);
    }

    void textCeiling_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("cut");
        QTest::addColumn<int>("size");
        // 819 lines of 78 + CR LF, then 13 + CR LF: 65,535 characters.
        const QByteArray exact = Lines(819, 78) + QByteArray(13, 'B') + "\r\n";
        QTest::newRow("exactly 65,535 loads whole") << exact << false << 65535;
        QTest::newRow("one more line is cut") << exact + "C\r\n" << true << 65535;
        QTest::newRow("cut between CR and LF: the CR goes too")
            << Lines(819, 78) + QByteArray(14, 'B') << true << 65534;
    }
    void textCeiling()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, cut);
        const int index = Load(QStringLiteral("BIG.KVR"), content);
        const QString text = f->pool->Text(index);
        QTEST(int(text.size()), "size");
        QVERIFY(!text.endsWith(QLatin1Char('\r')));
        if (!cut) {
            QVERIFY(f->prompts.shown.isEmpty());
            return;
        }
        QCOMPARE(f->prompts.shown.size(), 1);
        QCOMPARE(f->prompts.shown[0].icon, PromptIcon::Critical);
        QCOMPARE(f->prompts.shown[0].caption, AppTitle);
        QCOMPARE(f->prompts.shown[0].text,
                 QStringLiteral("The file ") + f->pool->Caption(index)
                     + QStringLiteral(" is too long to fit in the source code window, the end part "
                                      "is not displayed. If you alter the text then save it you "
                                      "will lose some of the original file. You can close the "
                                      "window now if you want to leave the original unaltered. "));
    }

    void loadNormalisesLines_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("text");
        QTest::newRow("CR LF") << QByteArray("A\r\nB\r\n") << "A\r\nB\r\n";
        QTest::newRow("LF") << QByteArray("A\nB\n") << "A\r\nB\r\n";
        QTest::newRow("CR") << QByteArray("A\rB\r") << "A\r\nB\r\n";
        QTest::newRow("no final line end") << QByteArray("A\r\nB") << "A\r\nB\r\n";
        QTest::newRow("trailing blanks go, leading blanks and tabs stay")
            << QByteArray("  A  \r\n\tB\t \r\n   \r\n") << "  A\r\n\tB\t\r\n\r\n";
        QTest::newRow("empty file") << QByteArray() << "";
        QTest::newRow("empty lines kept") << QByteArray("\r\n\r\nX") << "\r\n\r\nX\r\n";
    }
    void loadNormalisesLines()
    {
        QFETCH(QByteArray, content);
        const int index = Load(QStringLiteral("N.KVR"), content);
        QTEST(f->pool->Text(index), "text");
    }

    // Lines come from the file in pieces: a line end split between two
    // pieces is one line end, and a line longer than a window is kept only
    // as far as the window could show it.
    void lineReader_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QStringList>("trimmed");
        QTest::addColumn<QList<qsizetype>>("lengths");
        const QString a65535(65535, QLatin1Char('A'));
        QTest::newRow("CR LF split between pieces")
            << QByteArray(65535, 'A') + "\r\nY" << QStringList{a65535, QStringLiteral("Y")}
            << QList<qsizetype>{65535, 1};
        QTest::newRow("CR as the last byte") << QByteArray("A\r") << QStringList{QStringLiteral("A")}
                                             << QList<qsizetype>{1};
        QTest::newRow("blanks past the kept part go")
            << "X" + QByteArray(70000, ' ') + "\nY" << QStringList{QStringLiteral("X"), QStringLiteral("Y")}
            << QList<qsizetype>{70001, 1};
        QTest::newRow("a character past the kept part keeps the blanks")
            << "X" + QByteArray(70000, ' ') + "Z"
            << QStringList{QStringLiteral("X") + QString(65535, QLatin1Char(' '))}
            << QList<qsizetype>{70002};
        QTest::newRow("one endless line") << QByteArray(3'000'000, '\x90')
                                          << QStringList{QString(65536, QChar(0x90))}
                                          << QList<qsizetype>{3'000'000};
    }
    void lineReader()
    {
        QFETCH(QByteArray, content);
        QFETCH(QStringList, trimmed);
        QFETCH(QList<qsizetype>, lengths);
        const QString path = f->File(QStringLiteral("LINES.KVR"));
        WriteAll(path, content);
        SourceLineReader reader;
        QVERIFY(reader.Open(path).ok);
        QStringList gotTrimmed;
        QList<qsizetype> gotLengths;
        SourceLine line;
        while (reader.Next(line)) {
            QVERIFY(line.text.size() <= 65536);
            gotTrimmed << line.Trimmed();
            gotLengths << line.length;
        }
        QCOMPARE(gotTrimmed, trimmed);
        QCOMPARE(gotLengths, lengths);
    }

    // A file that is no source at all: one box for its one long line (its
    // start shown), the cut and its box, a window of 65,535 characters.
    void binaryFileIsCut()
    {
        const int index = Load(QStringLiteral("IMAGE.KVR"), QByteArray(5'000'000, '\x01'));
        QCOMPARE(f->pool->Text(index), QString(65535, QChar(1)));
        QCOMPARE(f->prompts.shown.size(), 2);
        QCOMPARE(f->prompts.shown[0].text,
                 LongLineBox + QString(1000, QChar(1)) + QStringLiteral("..."));
        QCOMPARE(f->prompts.shown[1].icon, PromptIcon::Critical);
    }

    // Names that are not plain files: nothing is read and no window stays.
    void specialFilesAreNotLoaded_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("a folder") << QString();
        QTest::newRow("a device that never ends") << QStringLiteral("/dev/zero");
        QTest::newRow("a pipe") << QStringLiteral("fifo");
    }
    void specialFilesAreNotLoaded()
    {
        QFETCH(QString, path);
        if (path.isEmpty())
            path = f->dir.path();
        if (path == QLatin1String("fifo")) {
            path = f->File(QStringLiteral("PIPE.KVR"));
            QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        }
        f->pool->OpenFile(path);
        QVERIFY(f->pool->OpenIndexes().isEmpty());
        // The name as on disk and why, so the user can act on it.
        QCOMPARE(f->prompts.MessageTexts().size(), 1);
        const QString shown = f->prompts.MessageTexts().first();
        QVERIFY2(shown.startsWith(QStringLiteral("Can't open file: ") + path + QStringLiteral("\r\n")), qPrintable(shown));
        QVERIFY(shown.size() > path.size() + 19);
    }

    void colourDialogs_data()
    {
        QTest::addColumn<bool>("foreground");
        QTest::addColumn<QString>("title");
        QTest::newRow("background") << false << "Source code background color";
        QTest::newRow("foreground") << true << "Source code foreground color";
    }
    void colourDialogs()
    {
        QFETCH(bool, foreground);
        const int index = f->pool->FileNew();
        const int refreshes = f->View(index)->refreshes;
        const QColor before = f->pool->EditorColor(foreground);
        const QColor other = f->pool->EditorColor(!foreground);
        f->pool->ChooseEditorColor(foreground); // cancelled: nothing changes
        QCOMPARE(f->pool->EditorColor(foreground), before);
        f->prompts.colors.enqueue(QColor(10, 20, 30));
        f->pool->ChooseEditorColor(foreground);
        QCOMPARE(f->prompts.shown.size(), 2);
        QCOMPARE(f->prompts.shown[1].kind, QStringLiteral("color"));
        QTEST(f->prompts.shown[1].caption, "title");
        QCOMPARE(f->prompts.shown[1].text, before.name());
        QCOMPARE(f->pool->EditorColor(foreground), QColor(10, 20, 30));
        QCOMPARE(f->pool->EditorColor(!foreground), other);
        QVERIFY(f->View(index)->refreshes > refreshes);
        Settings written;
        ReadSettings(written, f->context->paths.SettingsFile(), f->context->paths.WindowsFolder());
        QCOMPARE(written.Color(ColorWindow::Editor, foreground), QColor(10, 20, 30));
    }

    void saveBytes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("last line without line end is written") << "A\r\nB" << QByteArray("A\r\nB\r\n");
        QTest::newRow("text ending in CR LF gains no empty line") << "A\r\nB\r\n" << QByteArray("A\r\nB\r\n");
        QTest::newRow("trailing blanks removed") << "A   \r\n  B  " << QByteArray("A\r\n  B\r\n");
        QTest::newRow("blank line padded by Down is emptied") << "X\r\n          \r\nY" << QByteArray("X\r\n\r\nY\r\n");
        QTest::newRow("empty text") << "" << QByteArray("\r\n");
    }
    void saveBytes()
    {
        QFETCH(QString, text);
        QTEST(SourceBytesForSave(text), "bytes");
    }

    void everyByteSurvivesLoadAndSave()
    {
        QByteArray original;
        QByteArray expected;
        QByteArray line;
        for (int b = 32; b <= 255; ++b) {
            line += static_cast<char>(b);
            if (line.size() == 40 || b == 255) {
                expected += line + "\r\n";
                original += line + (b % 3 ? "   " : " ") + "\r\n"; // trailing blanks
                line.clear();
            }
        }
        const int index = Load(QStringLiteral("BYTES.KVR"), original);
        QVERIFY(f->pool->SaveFile(f->pool->Caption(index), index, false));
        QCOMPARE(ReadAll(f->File(QStringLiteral("BYTES.KVR"))), expected);
    }

    void openingAnOpenFileActivatesIt()
    {
        const int index = Load(QStringLiteral("PUMP.KVR"), "X\r\n");
        const int activations = f->View(index)->activations;
        f->pool->OpenFile(f->File(QStringLiteral("pump.kvr")));
        QCOMPARE(f->pool->OpenIndexes(), QList<int>{index});
        QCOMPARE(f->View(index)->activations, activations + 1);
        QCOMPARE(f->pool->CurrentFileName(), LogicalName(f->File(QStringLiteral("PUMP.KVR"))));
    }

    void openFailureLeavesNoWindow()
    {
        f->pool->OpenFile(f->File(QStringLiteral("MISSING.KVR")));
        QVERIFY(f->pool->OpenIndexes().isEmpty());
        QCOMPARE(f->prompts.MessageTexts(),
                 QStringList{QStringLiteral("Can't open file: ") + f->File(QStringLiteral("MISSING.KVR"))
                             + QStringLiteral("\r\nNo such file or directory")});
    }

    void recentListOrder()
    {
        const QString ini = f->context->paths.SettingsFile();
        WriteAll(ini, "[Parameters]\r\nTimeout=777\r\n[Custom]\r\nKeep=me\r\n");
        QStringList names;
        for (int i = 1; i <= 9; ++i) {
            const QString name = QStringLiteral("F%1.KVR").arg(i);
            WriteAll(f->File(name), "X\r\n");
            names << LogicalName(f->File(name));
        }
        for (int i = 0; i < 8; ++i)
            f->pool->OpenFile(names[i]);
        QCOMPARE(ReadRecentFiles(ini).first(), names[7]);
        QCOMPARE(ReadRecentFiles(ini).last(), names[0]);

        // A listed file opened again leaves the order as it is.
        for (int index : f->pool->OpenIndexes())
            QVERIFY(f->View(index)->Close());
        f->pool->OpenFile(names[3]);
        QStringList expected;
        for (int i = 7; i >= 0; --i)
            expected << names[i];
        QCOMPARE(ReadRecentFiles(ini), expected);

        // A new one goes to the top; the eighth falls off.
        QSignalSpy changed(f->pool.get(), &EditorPool::RecentFilesChanged);
        f->pool->OpenFile(names[8]);
        expected.prepend(names[8]);
        expected.removeLast();
        QCOMPARE(ReadRecentFiles(ini), expected);
        QVERIFY(!changed.isEmpty());
        QCOMPARE(changed.last().first().toStringList(), expected);
        QCOMPARE(f->View(f->pool->ActiveIndex())->recent, expected);

        IniFile kept;
        kept.Load(ini);
        QCOMPARE(kept.Value(QStringLiteral("Parameters"), QStringLiteral("Timeout"), {}), QStringLiteral("777"));
        QCOMPARE(kept.Value(QStringLiteral("Custom"), QStringLiteral("Keep"), {}), QStringLiteral("me"));
    }

    void saveAsNamesTheWindow()
    {
        const int index = f->pool->FileNew();
        f->View(index)->Type(QStringLiteral("1 2 +  "));
        QVERIFY(f->pool->FState(index).Dirty);
        f->prompts.fileNames.enqueue(f->File(QStringLiteral("new.kvr")));
        QVERIFY(f->pool->Save(index));
        QCOMPARE(f->prompts.shown.last().kind, QStringLiteral("save"));
        QCOMPARE(f->prompts.shown.last().caption, QStringLiteral("Save Source code 1 as"));
        QCOMPARE(f->prompts.shown.last().items, QStringList{QString()});
        QCOMPARE(ReadAll(f->File(QStringLiteral("new.kvr"))), QByteArray("1 2 +\r\n"));
        QCOMPARE(f->pool->Caption(index), LogicalName(f->File(QStringLiteral("new.kvr"))));
        QVERIFY(!f->pool->FState(index).Dirty);
        QCOMPARE(f->context->settings.currentFile, f->pool->Caption(index));
        QCOMPARE(ReadRecentFiles(f->context->paths.SettingsFile()).first(), f->pool->Caption(index));
    }

    // Save As, then Save: the file keeps the name it was given on disk,
    // whatever its upper case looks like; a bare name becomes a source
    // file; an existing file is only replaced when the user says so.
    void saveAsThenSave_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("onDisk");
        QTest::addColumn<QByteArray>("existing");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QByteArray>("after");
        const QString sharpS = QString::fromUtf8("Ma\xc3\x9f.kvr");
        QTest::newRow("sharp s") << sharpS << sharpS << QByteArray() << 0 << QByteArray("1X\r\n");
        QTest::newRow("dotless i")
            << QString::fromUtf8("\xc4\xb1o.kvr") << QString::fromUtf8("\xc4\xb1o.kvr") << QByteArray() << 0
            << QByteArray("1X\r\n");
        QTest::newRow("fi ligature")
            << QString::fromUtf8("\xef\xac\x81le.kvr") << QString::fromUtf8("\xef\xac\x81le.kvr")
            << QByteArray() << 0 << QByteArray("1X\r\n");
        QTest::newRow("no extension gets .KVR") << "prog" << "prog.KVR" << QByteArray() << 0 << QByteArray("1X\r\n");
        QTest::newRow("existing file, No: kept") << "old.kvr" << "old.kvr" << QByteArray("KEEP\r\n")
                                                << int(PromptAnswer::No) << QByteArray("KEEP\r\n");
        QTest::newRow("existing file, Yes: replaced") << "old.kvr" << "old.kvr" << QByteArray("KEEP\r\n")
                                                     << int(PromptAnswer::Yes) << QByteArray("1X\r\n");
    }
    void saveAsThenSave()
    {
        QFETCH(QString, typed);
        QFETCH(QString, onDisk);
        QFETCH(QByteArray, existing);
        QFETCH(int, answer);
        QFETCH(QByteArray, after);
        if (!existing.isEmpty())
            WriteAll(f->File(onDisk), existing);
        const int index = f->pool->FileNew();
        f->View(index)->Type(QStringLiteral("1"));
        f->prompts.fileNames.enqueue(f->File(typed));
        f->prompts.answers.enqueue(static_cast<PromptAnswer>(answer));
        const bool saved = f->pool->SaveAs(index);
        QCOMPARE(saved, after != existing);
        QCOMPARE(f->prompts.MessageTexts().size(), existing.isEmpty() ? 0 : 1);
        if (saved) {
            f->View(index)->Type(QStringLiteral("X"));
            QVERIFY(f->pool->Save(index));
            QCOMPARE(f->pool->Caption(index), LogicalName(f->File(onDisk)));
        }
        QCOMPARE(QDir(f->dir.path()).entryList(QDir::Files), QStringList{onDisk});
        QCOMPARE(ReadAll(f->File(onDisk)), after);
    }

    // Each file dialog's title and file types; a cancelled one does nothing.
    void fileDialogs_data()
    {
        QTest::addColumn<int>("command");
        QTest::addColumn<QString>("title"); // "%1" stands for the window's caption
        QTest::addColumn<QString>("filter");
        QTest::newRow("Open") << 0 << "Source file" << SourceFileFilter;
        QTest::newRow("Delete") << 1 << "File to delete" << SourceFileFilter;
        QTest::newRow("Insert file") << 2 << "Insert file" << InsertFileFilter;
        QTest::newRow("Save As of a named window") << 3 << "Save %1 as" << SourceFileFilter;
    }
    void fileDialogs()
    {
        QFETCH(int, command);
        QFETCH(QString, title);
        QFETCH(QString, filter);
        const QString path = f->File(QStringLiteral("Named.kvr"));
        const int index = Load(QStringLiteral("Named.kvr"), "X\r\n");
        f->prompts.Clear();
        switch (command) {
        case 0: f->pool->FileOpenDialog(); break;
        case 1: f->pool->FileDelete(); break;
        case 2: f->pool->InsertFile(index); break;
        default: QVERIFY(!f->pool->SaveAs(index)); break;
        }
        QCOMPARE(f->prompts.shown.size(), 1);
        QCOMPARE(f->prompts.shown[0].caption, title.replace(QLatin1String("%1"), f->pool->Caption(index)));
        QCOMPARE(f->prompts.shown[0].text, QtFilter(filter));
        if (command == 3) // pre-set to the file itself
            QCOMPARE(f->prompts.shown[0].items, QStringList{path});
        QCOMPARE(f->pool->OpenIndexes(), QList<int>{index});
        QCOMPARE(f->pool->Text(index), QStringLiteral("X\r\n"));
        QVERIFY(QFile::exists(path));
    }

    void externalEditor()
    {
        const QString before = f->context->settings.externalEditor;
        f->pool->ChooseExternalEditor(); // cancelled
        QCOMPARE(f->context->settings.externalEditor, before);
        QCOMPARE(f->prompts.shown[0].caption, QStringLiteral("External editor"));
        QCOMPARE(f->prompts.shown[0].text,
                 QtFilter(QStringLiteral("EXE files (*.exe)|*.exe|COM files (*.com)|*.com|All files (*.*)|*.*")));

        const QString missing = f->File(QStringLiteral("NOSUCH.EXE"));
        f->prompts.fileNames.enqueue(missing);
        f->pool->ChooseExternalEditor();
        QCOMPARE(f->context->settings.externalEditor, missing);
        Settings written;
        ReadSettings(written, f->context->paths.SettingsFile(), f->context->paths.WindowsFolder());
        QCOMPARE(written.externalEditor, missing);
        f->prompts.Clear();
        f->pool->StartExternalEditor();
        QCOMPARE(f->prompts.MessageTexts(),
                 QStringList{QStringLiteral("Editor program ") + missing
                             + QStringLiteral(" not found.\r\nSelect using editor window options menu.")});
        QCOMPARE(f->prompts.shown[0].icon, PromptIcon::Exclamation);

        const QString present = QStandardPaths::findExecutable(QStringLiteral("true"));
        QVERIFY(!present.isEmpty());
        f->context->settings.externalEditor = present;
        f->prompts.Clear();
        f->pool->StartExternalEditor();
        QVERIFY(f->prompts.shown.isEmpty());
    }

    void saveAsCancelledChangesNothing()
    {
        const int index = f->pool->FileNew();
        f->View(index)->Type(QStringLiteral("X"));
        QVERIFY(!f->pool->SaveAs(index));
        QCOMPARE(f->pool->Caption(index), QStringLiteral("Source code 1"));
        QVERIFY(f->pool->FState(index).Dirty);
    }

    void saveWithFolderAndFilePermissions_data()
    {
        QTest::addColumn<int>("folderMode");
        QTest::addColumn<int>("fileMode");
        QTest::addColumn<QByteArray>("after"); // the file's bytes; OLD when refused
        QTest::newRow("read-only folder, read-only file: refused") << 0555 << 0644 << QByteArray("OLD\r\n");
        QTest::newRow("read-only file in a writable folder: refused") << 0777 << 0444 << QByteArray("OLD\r\n");
        QTest::newRow("writable file in a read-only folder: written in place")
            << 0555 << 0666 << QByteArray("NEW OLD\r\n");
    }
    void saveWithFolderAndFilePermissions()
    {
        QFETCH(int, folderMode);
        QFETCH(int, fileMode);
        QFETCH(QByteArray, after);
        const bool refused = after == "OLD\r\n";
        const QString folder = f->File(QStringLiteral("ro"));
        QDir().mkpath(folder);
        const QString path = folder + QStringLiteral("/KEEP.KVR");
        WriteAll(path, "OLD\r\n");
        f->pool->LoadFile(path);
        const int index = f->pool->ActiveIndex();
        f->View(index)->Type(QStringLiteral("NEW "));
        const QString caption = f->pool->Caption(index);
        ::chmod(QFile::encodeName(f->dir.path()).constData(), 0755);
        ::chmod(QFile::encodeName(folder).constData(), folderMode);
        ::chmod(QFile::encodeName(path).constData(), fileMode);
        // The save also records the file in the recent list.
        const QString settings = f->context->paths.SettingsFile();
        ::chmod(QFile::encodeName(QFileInfo(settings).path()).constData(), 0777);
        ::chmod(QFile::encodeName(settings).constData(), 0666);
        f->prompts.Clear();
        const QString expected = QStringLiteral("Can't write file ") + caption
            + QStringLiteral(", it may be write-protected or not a legal file name.");
        // 0: as expected (refused with the information box and the window
        // as it was, or saved without a word).
        const int outcome = InChildAsNobody([&] {
            if (f->pool->SaveFile(caption, index, false) == refused)
                return 1;
            if (!refused)
                return f->prompts.shown.isEmpty() && !f->pool->FState(index).Dirty ? 0 : 5;
            if (!f->pool->FState(index).Dirty || f->pool->Caption(index) != caption)
                return 2;
            if (f->prompts.shown.size() != 1 || f->prompts.shown[0].icon != PromptIcon::Information)
                return 3;
            return f->prompts.shown[0].text == expected ? 0 : 4;
        });
        ::chmod(QFile::encodeName(folder).constData(), 0755);
        ::chmod(QFile::encodeName(path).constData(), 0644);
        QCOMPARE(outcome, 0);
        QCOMPARE(ReadAll(path), after);
        QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("KEEP.KVR")});
    }

    void failedSaveOnFullDiskKeepsOldFile()
    {
        const QString path = f->File(QStringLiteral("FULL.KVR"));
        WriteAll(path, "OLD\r\n");
        f->pool->LoadFile(path);
        const int index = f->pool->ActiveIndex();
        f->View(index)->Type(QString(4000, QLatin1Char('Z')));
        f->prompts.Clear();
        bool saved = true;
        {
            FileSizeLimit full(1000);
            saved = f->pool->Save(index);
        }
        QVERIFY(!saved);
        QCOMPARE(ReadAll(path), QByteArray("OLD\r\n"));
        QVERIFY(f->pool->FState(index).Dirty);
        QCOMPARE(f->prompts.shown.size(), 1);
        QCOMPARE(f->prompts.shown[0].icon, PromptIcon::Exclamation);
        QVERIFY(!f->prompts.shown[0].text.startsWith(QStringLiteral("Can't write file")));
        QDir folder(f->dir.path());
        QCOMPARE(folder.entryList({QStringLiteral("FULL*")}, QDir::Files), QStringList{QStringLiteral("FULL.KVR")});
    }

    void closeQuestion_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("closed");
        QTest::addColumn<QByteArray>("onDisk");
        QTest::newRow("Yes saves and closes") << int(PromptAnswer::Yes) << true << QByteArray("OLD NEW\r\n");
        QTest::newRow("No closes without saving") << int(PromptAnswer::No) << true << QByteArray("OLD\r\n");
        QTest::newRow("Cancel keeps the window") << int(PromptAnswer::Cancel) << false << QByteArray("OLD\r\n");
    }
    void closeQuestion()
    {
        QFETCH(int, answer);
        QFETCH(bool, closed);
        const int index = Load(QStringLiteral("Q.KVR"), "OLD\r\n");
        FakeEditorView *view = f->View(index);
        view->Select(3, 0);
        view->Type(QStringLiteral(" NEW"));
        f->prompts.answers.enqueue(static_cast<PromptAnswer>(answer));
        f->prompts.Clear();
        QCOMPARE(f->pool->CloseAll(), closed);
        QCOMPARE(view->closed, closed);
        QCOMPARE(f->prompts.shown[0].text,
                 QStringLiteral("The text in ") + view->caption
                     + QStringLiteral(" has changed.\r\nDo you want to save the changes?"));
        QCOMPARE(f->prompts.shown[0].buttons, PromptButtons::YesNoCancel);
        QCOMPARE(f->prompts.shown[0].icon, PromptIcon::Exclamation);
        QTEST(ReadAll(f->File(QStringLiteral("Q.KVR"))), "onDisk");
    }

    void cleanWindowClosesWithoutQuestion()
    {
        const int index = Load(QStringLiteral("C.KVR"), "X\r\n");
        QVERIFY(f->View(index)->Close());
        QVERIFY(f->prompts.shown.isEmpty());
        QCOMPARE(f->pool->ActiveIndex(), 0);
    }

    void saveBeforeCompile()
    {
        const int a = Load(QStringLiteral("A.KVR"), "A\r\n");
        const int b = Load(QStringLiteral("B.KVR"), "B\r\n");
        f->View(a)->Type(QStringLiteral("DIRTY "));
        f->View(b)->Select(0, 1);
        WriteAll(f->File(QStringLiteral("B.KVR")), "CHANGED ON DISK\r\n");
        f->pool->SaveBeforeCompile(b);
        QCOMPARE(ReadAll(f->File(QStringLiteral("A.KVR"))), QByteArray("DIRTY A\r\n"));
        QCOMPARE(ReadAll(f->File(QStringLiteral("B.KVR"))), QByteArray("B\r\n")); // saved though clean
        QCOMPARE(f->context->settings.currentFile, f->pool->Caption(b));
        QCOMPARE(f->pool->SelLength(b), 0);
        QVERIFY(!f->pool->FState(a).Dirty);
    }

    // The compiler names a file as it found it (through a folder in an
    // INCLUDE, a search path, in another case): the window holding that
    // file shows the line, and no other window opens.
    void showLineSelectsIt_data()
    {
        QTest::addColumn<QString>("named");
        QTest::newRow("the caption") << QString();
        QTest::newRow("relative, with a backslash") << QStringLiteral("SUB\\L.KVR");
        QTest::newRow("lower case through a dot folder") << QStringLiteral("./sub/./l.kvr");
        QTest::newRow("search path with a trailing backslash") << QStringLiteral("%1\\L.KVR");
    }
    void showLineSelectsIt()
    {
        QFETCH(QString, named);
        QDir(f->dir.path()).mkdir(QStringLiteral("sub"));
        const int index = Load(QStringLiteral("sub/L.KVR"), "ONE\r\nTWO\r\nTHREE\r\n");
        QDir::setCurrent(f->dir.path());
        if (named.isEmpty())
            named = f->pool->Caption(index);
        named = named.arg(f->File(QStringLiteral("sub")));
        Load(QStringLiteral("OTHER.KVR"), "X\r\n");
        QVERIFY(f->pool->ShowLine(named, 2));
        QCOMPARE(f->pool->ActiveIndex(), index);
        QCOMPARE(f->pool->SelStart(index), 5);
        QCOMPARE(f->pool->SelLength(index), 4); // up to the line feed
        QCOMPARE(f->pool->OpenIndexes().size(), 2);
        QVERIFY(!f->pool->ShowLine(QStringLiteral("/NOT/OPEN.KVR"), 1));
    }

    void insertFile_data()
    {
        QTest::addColumn<bool>("exists");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("tooLong");
        QTest::newRow("inserted at the caret, line ends as CR LF")
            << true << QByteArray("1\n2\r\n") << "AB1\r\n2\r\nCD" << false;
        QTest::newRow("missing file") << false << QByteArray() << "ABCD" << false;
        QTest::newRow("more bytes than a window holds")
            << true << QByteArray(70000, '\0') << "ABCD" << true;
        QTest::newRow("fits as bytes, not with CR LF line ends")
            << true << QByteArray("1\n").repeated(30000) << "ABCD" << true;
    }
    void insertFile()
    {
        QFETCH(bool, exists);
        QFETCH(QByteArray, content);
        QFETCH(bool, tooLong);
        const QString path = f->File(QStringLiteral("INS.TXT"));
        if (exists)
            WriteAll(path, content);
        const int index = f->pool->FileNew();
        f->View(index)->SetText(QStringLiteral("ABCD"));
        f->View(index)->Select(2, 0);
        f->prompts.fileNames.enqueue(path);
        f->pool->InsertFile(index);
        QCOMPARE(f->prompts.shown[0].caption, QStringLiteral("Insert file"));
        QTEST(f->pool->Text(index), "text");
        QCOMPARE(f->pool->FState(index).Dirty, exists && !tooLong);
        if (tooLong)
            QCOMPARE(f->prompts.MessageTexts(),
                     QStringList{QStringLiteral("The source text in this window is too long for "
                                                "this operation")});
        if (!exists)
            QCOMPARE(f->prompts.MessageTexts(),
                     QStringList{QStringLiteral("Can't open file: ") + path + QStringLiteral("\r\nNo such file or directory")});
    }

    void fileDelete_data()
    {
        QTest::addColumn<bool>("exists");
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("goneAfter");
        QTest::addColumn<QString>("failure");
        QTest::newRow("confirmed") << true << int(PromptAnswer::Yes) << true << QString();
        QTest::newRow("declined") << true << int(PromptAnswer::No) << false << QString();
        QTest::newRow("missing file")
            << false << int(PromptAnswer::Yes) << true
            << "File not deleted, it may be write-protected or not a legal file name.";
    }
    void fileDelete()
    {
        QFETCH(bool, exists);
        QFETCH(int, answer);
        QFETCH(bool, goneAfter);
        QFETCH(QString, failure);
        const QString path = f->File(QStringLiteral("DEL.KVR"));
        if (exists)
            WriteAll(path, "X");
        f->prompts.fileNames.enqueue(path);
        f->prompts.answers.enqueue(static_cast<PromptAnswer>(answer));
        f->pool->FileDelete();
        QCOMPARE(f->prompts.shown[0].caption, QStringLiteral("File to delete"));
        QCOMPARE(f->prompts.shown[1].text, QStringLiteral("Confirm deletion of file ") + path);
        QCOMPARE(!QFile::exists(path), goneAfter);
        if (!failure.isEmpty())
            QCOMPARE(f->prompts.shown.last().text, failure);
        else
            QCOMPARE(f->prompts.shown.size(), 2);
    }
};

QTEST_GUILESS_MAIN(TestEditorFiles)
#include "tst_editorfiles.moc"
