// Numbered backups and the find engine, through the editor pool.
#include "FakeEditorView.h"
#include "editor/Backups.h"
#include "editor/FileFilters.h"
#include "editor/FindEngine.h"
#include "editor/RecentFiles.h"
#include <QtTest>
#include <cerrno>
#include <cstring>

using namespace kvr;
using namespace kvr::test;

class TestBackupFind : public QObject {
    Q_OBJECT

    std::unique_ptr<PoolFixture> f;

    int LoadPump(const QList<int> &backups)
    {
        WriteAll(f->File(QStringLiteral("PUMP.KVR")), "PUMP TEXT\r\n");
        for (int n : backups)
            WriteAll(f->File(QStringLiteral("PUMP.%1.KVR").arg(n, 3, 10, QLatin1Char('0'))),
                     QStringLiteral("BACKUP %1\r\n").arg(n).toLatin1());
        f->pool->LoadFile(f->File(QStringLiteral("PUMP.KVR")));
        f->prompts.Clear();
        return f->pool->ActiveIndex();
    }

    int WithText(const QString &text)
    {
        const int index = f->pool->FileNew();
        f->View(index)->SetText(text);
        return index;
    }

private slots:
    void init() { f = std::make_unique<PoolFixture>(); }
    void cleanup() { f.reset(); }

    void names_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("stripped");
        QTest::addColumn<QString>("backup");
        QTest::addColumn<QString>("directory");
        QTest::addColumn<QString>("name");
        QTest::newRow("with extension") << "C:\\WORK\\PUMP.KVR" << "C:\\WORK\\PUMP"
                                        << "C:\\WORK\\PUMP.001.KVR" << "C:\\WORK" << "PUMP.KVR";
        QTest::newRow("other extension dropped") << "C:\\WORK\\NOTES.TXT" << "C:\\WORK\\NOTES"
                                                 << "C:\\WORK\\NOTES.001.KVR" << "C:\\WORK" << "NOTES.TXT";
        QTest::newRow("no extension") << "C:\\WORK\\PUMP" << "C:\\WORK\\PUMP"
                                      << "C:\\WORK\\PUMP.001.KVR" << "C:\\WORK" << "PUMP";
        QTest::newRow("dotted folder, name without dot") << "C:\\V1.2\\PUMP" << "C:\\V1"
                                                         << "C:\\V1.001.KVR" << "C:\\V1.2" << "PUMP";
        QTest::newRow("forward separators") << "/HOME/U/A.B.KVR" << "/HOME/U/A.B"
                                            << "/HOME/U/A.B.001.KVR" << "/HOME/U" << "A.B.KVR";
        QTest::newRow("no folder") << "PUMP.KVR" << "PUMP" << "PUMP.001.KVR" << "." << "PUMP.KVR";
    }
    void names()
    {
        QFETCH(QString, path);
        QTEST(StripExtension(path), "stripped");
        QTEST(BackupName(path, 1), "backup");
        QString directory;
        QString name;
        SplitPath(path, directory, name);
        QTEST(directory, "directory");
        QTEST(name, "name");
    }

    void backupProposesTheNumberAfterTheHighest_data()
    {
        QTest::addColumn<QList<int>>("existing");
        QTest::addColumn<QString>("proposed");
        QTest::newRow("none: 001") << QList<int>{} << "PUMP.001.KVR";
        QTest::newRow("001 002 005: 006, gaps not filled") << QList<int>{1, 2, 5} << "PUMP.006.KVR";
        QTest::newRow("998: 999") << QList<int>{998} << "PUMP.999.KVR";
    }
    void backupProposesTheNumberAfterTheHighest()
    {
        QFETCH(QList<int>, existing);
        QFETCH(QString, proposed);
        const int index = LoadPump(existing);
        f->View(index)->Type(QStringLiteral("EDITED "));
        const QStringList recentBefore = ReadRecentFiles(f->context->paths.SettingsFile());
        f->prompts.inputs.enqueue(proposed);
        f->pool->Backup(index);
        QCOMPARE(f->prompts.shown.size(), 1);
        QCOMPARE(f->prompts.shown[0].kind, QStringLiteral("input"));
        QCOMPARE(f->prompts.shown[0].caption, AppTitle);
        QCOMPARE(f->prompts.shown[0].text,
                 QStringLiteral("Enter backup file name, the one suggested is the next in sequence."));
        QCOMPARE(f->prompts.shown[0].items, QStringList{proposed});
        QCOMPARE(ReadAll(f->File(proposed)), QByteArray("EDITED PUMP TEXT\r\n"));
        // A backup is a copy: the window stays as it was.
        QVERIFY(f->pool->FState(index).Dirty);
        QVERIFY(f->pool->Caption(index).endsWith(QStringLiteral("/PUMP.KVR")));
        QCOMPARE(ReadRecentFiles(f->context->paths.SettingsFile()), recentBefore);
    }

    // With no one to ask (the session ends), changed text goes to the next
    // backup without a word; unchanged windows write nothing.
    void changedTextKeptWhenNoQuestionCanBeAsked_data()
    {
        QTest::addColumn<QList<int>>("existing");
        QTest::addColumn<bool>("edited");
        QTest::addColumn<QString>("kept");
        QTest::newRow("next after the highest") << QList<int>{1, 4} << true << "PUMP.005.KVR";
        QTest::newRow("unchanged: nothing") << QList<int>{} << false << QString();
        QTest::newRow("999 taken: said, not written") << QList<int>{999} << true << QString();
    }
    void changedTextKeptWhenNoQuestionCanBeAsked()
    {
        QFETCH(QList<int>, existing);
        QFETCH(bool, edited);
        QFETCH(QString, kept);
        const int index = LoadPump(existing);
        if (edited)
            f->View(index)->Type(QStringLiteral("EDITED "));
        const int untitled = WithText(QStringLiteral("NEW"));
        f->pool->TextChanged(untitled);
        const QStringList said = f->pool->KeepChangedTextAsBackups();
        QVERIFY(f->prompts.shown.isEmpty());
        QCOMPARE(said.size(), edited ? 2 : 1);
        QCOMPARE(ReadAll(f->context->paths.ProgramFolder() + QStringLiteral("UNTITLED.001.KVR")),
                 QByteArray("NEW\r\n"));
        if (!kept.isEmpty())
            QCOMPARE(ReadAll(f->File(kept)), QByteArray("EDITED PUMP TEXT\r\n"));
        if (edited)
            QVERIFY2(said.first().contains(kept.isEmpty() ? QStringLiteral("not kept") : kept), qPrintable(said.first()));
        QCOMPARE(f->pool->FState(index).Dirty, edited && kept.isEmpty());
        QCOMPARE(QDir(f->dir.path()).entryList({QStringLiteral("PUMP.*.KVR")}).size(),
                 existing.size() + (kept.isEmpty() ? 0 : 1));
    }

    void backupUnderAnotherName()
    {
        const int index = LoadPump({1});
        f->prompts.inputs.enqueue(QStringLiteral("OTHER.KVR"));
        f->pool->Backup(index);
        QCOMPARE(ReadAll(f->File(QStringLiteral("OTHER.KVR"))), QByteArray("PUMP TEXT\r\n"));
        f->pool->Restore(index);
        QCOMPARE(f->View(index)->backups, QStringList{QStringLiteral("PUMP.001.KVR")});
    }

    void backupCancelledWritesNothing()
    {
        const int index = LoadPump({});
        f->pool->Backup(index); // no queued input: cancelled
        QVERIFY(!QFile::exists(f->File(QStringLiteral("PUMP.001.KVR"))));
    }

    void backupRefusals_data()
    {
        QTest::addColumn<int>("kind"); // 0 unnamed, 1 empty text, 2 999 exists
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("icon");
        QTest::newRow("unnamed window") << 0 << "Name the source file with 'Save As' before using 'Backup'"
                                        << int(PromptIcon::Information);
        QTest::newRow("empty window") << 1 << "This source window has no text" << int(PromptIcon::Exclamation);
        QTest::newRow("999 exists") << 2 << "" << int(PromptIcon::Information);
    }
    void backupRefusals()
    {
        QFETCH(int, kind);
        QFETCH(QString, message);
        QFETCH(int, icon);
        int index = 0;
        if (kind == 0) {
            index = f->pool->FileNew();
            f->View(index)->Type(QStringLiteral("X"));
        } else if (kind == 1) {
            index = LoadPump({});
            f->View(index)->SetText(QString());
        } else {
            index = LoadPump({3, 999});
            // The message names the working file, which closing a window sets.
            const int other = f->pool->FileNew();
            f->View(other)->Type(QStringLiteral("X"));
            f->prompts.answers.enqueue(PromptAnswer::No);
            QVERIFY(f->View(other)->Close());
            f->prompts.Clear();
            message = QStringLiteral("Can't make back-up file, Source code %1.999.KVR already exists").arg(other);
        }
        f->pool->Backup(index);
        QCOMPARE(f->prompts.shown.size(), 1);
        QCOMPARE(f->prompts.shown[0].text, message);
        QCOMPARE(int(f->prompts.shown[0].icon), icon);
    }

    void unreadableCandidateEndsTheScan()
    {
        // A folder under a backup's name cannot be read: the scan stops there.
        const int index = LoadPump({1, 5});
        QVERIFY(QDir().mkpath(f->File(QStringLiteral("PUMP.003.KVR"))));
        f->pool->Restore(index);
        QCOMPARE(f->View(index)->backups, QStringList{QStringLiteral("PUMP.001.KVR")});
        // Without 005 the downward scan of Backup meets 003 first.
        QVERIFY(QFile::remove(f->File(QStringLiteral("PUMP.005.KVR"))));
        f->pool->Backup(index);
        QCOMPARE(f->prompts.shown.size(), 1);
        QVERIFY(f->prompts.shown[0].text.startsWith(QStringLiteral("Can't make back-up file, ")));
        QVERIFY(!f->prompts.shown[0].text.contains(QStringLiteral(".999.KVR")));
        QCOMPARE(f->prompts.shown[0].kind, QStringLiteral("message"));
    }

    void restoreListsEveryBackupWithTheHighestSelected()
    {
        const int index = LoadPump({1, 2, 5});
        f->pool->Restore(index);
        FakeEditorView *view = f->View(index);
        QVERIFY(view->backupsShown);
        QCOMPARE(view->backups, (QStringList{QStringLiteral("PUMP.001.KVR"), QStringLiteral("PUMP.002.KVR"),
                                             QStringLiteral("PUMP.005.KVR")}));
        QCOMPARE(view->backupSelected, 2);
    }

    void restoreOverwrites_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<QByteArray>("backup");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("dirty");
        QTest::addColumn<QString>("refusal");
        // No trimming and no line checks on a restore.
        const QByteArray backup("BACKUP 2  \nX\r\n");
        QTest::newRow("Yes: taken as it stands")
            << int(PromptAnswer::Yes) << backup << "BACKUP 2  \r\nX\r\n" << true << QString();
        QTest::newRow("No: untouched")
            << int(PromptAnswer::No) << backup << "PUMP TEXT\r\n" << false << QString();
        QTest::newRow("Yes: 65,535 characters and the CR LF saving added")
            << int(PromptAnswer::Yes) << QByteArray(65535, 'A') + "\r\n" << QString(65535, QLatin1Char('A'))
            << true << QString();
        QTest::newRow("Yes: one character more than the window holds is refused")
            << int(PromptAnswer::Yes) << QByteArray(65536, 'A') << "PUMP TEXT\r\n" << false
            << "The source text in this window is too long for this operation";
        QTest::newRow("Yes: a file far too large for any source is refused")
            << int(PromptAnswer::Yes) << QByteArray(17 * 1024 * 1024, 'A') << "PUMP TEXT\r\n" << false
            << "Error: " + QString::fromLocal8Bit(std::strerror(EFBIG));
    }
    void restoreOverwrites()
    {
        QFETCH(int, answer);
        QFETCH(QByteArray, backup);
        QFETCH(QString, refusal);
        const int index = LoadPump({1});
        WriteAll(f->File(QStringLiteral("PUMP.002.KVR")), backup);
        f->pool->Restore(index);
        f->prompts.answers.enqueue(static_cast<PromptAnswer>(answer));
        f->pool->RestoreChosen(index, QStringLiteral("PUMP.002.KVR"));
        QCOMPARE(f->prompts.shown[0].text,
                 QStringLiteral("Do you really want to overwrite displayed source code?"));
        QCOMPARE(f->prompts.shown[0].buttons, PromptButtons::YesNo);
        QCOMPARE(f->prompts.MessageTexts().size(), refusal.isEmpty() ? 1 : 2);
        if (!refusal.isEmpty())
            QCOMPARE(f->prompts.MessageTexts().last(), refusal);
        QVERIFY(!f->View(index)->backupsShown);
        QTEST(f->pool->Text(index), "text");
        QTEST(f->pool->FState(index).Dirty, "dirty");
        QVERIFY(f->pool->Caption(index).endsWith(QStringLiteral("/PUMP.KVR")));
        QCOMPARE(f->pool->SelStart(index), 0);
    }

    void restoreRefusals_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("message"); // "%1" stands for the caption
        QTest::addColumn<int>("icon");
        QTest::newRow("unnamed window")
            << 0 << "Name the source file with 'Save As' before using 'Restore'" << int(PromptIcon::Information);
        QTest::newRow("no backups") << 1 << "No backups have been made of %1" << int(PromptIcon::Exclamation);
        QTest::newRow("scan stopped by an unreadable 001")
            << 2 << "Error: " << int(PromptIcon::Exclamation);
    }
    void restoreRefusals()
    {
        QFETCH(int, kind);
        QFETCH(QString, message);
        QFETCH(int, icon);
        int index = 0;
        if (kind == 0) {
            index = f->pool->FileNew();
        } else {
            index = LoadPump(kind == 2 ? QList<int>{5} : QList<int>{});
            if (kind == 2)
                QVERIFY(QDir().mkpath(f->File(QStringLiteral("PUMP.001.KVR"))));
        }
        f->pool->Restore(index);
        QCOMPARE(f->prompts.shown.size(), 1);
        const RecordedPrompt &box = f->prompts.shown[0];
        if (kind == 2) {
            QVERIFY(box.text.startsWith(message));
            QVERIFY(box.text.size() > message.size());
        } else {
            QCOMPARE(box.text, message.contains(QLatin1String("%1")) ? message.arg(f->pool->Caption(index))
                                                                       : message);
        }
        QCOMPARE(int(box.icon), icon);
        QCOMPARE(box.caption, AppTitle);
        QVERIFY(!f->View(index)->backupsShown);
    }

    void findSingleOccurrenceWithFindNext()
    {
        const int index = WithText(QStringLiteral("AAA FOO BBB"));
        f->pool->ShowFind(index);
        QVERIFY(f->pool->FindFromDialog(QStringLiteral("FOO")));
        QCOMPARE(f->pool->SelStart(index), 4);
        QCOMPARE(f->pool->SelLength(index), 3);
        QVERIFY(f->prompts.shown.isEmpty());
        f->prompts.answers.enqueue(PromptAnswer::Yes);
        f->pool->FindNext(index);
        QCOMPARE(f->prompts.MessageTexts(),
                 QStringList{QStringLiteral("Cannot find 'FOO', continue search at other end of text? ")});
        QCOMPARE(f->prompts.shown[0].buttons, PromptButtons::YesNo);
        QCOMPARE(f->pool->SelStart(index), 4);
        QCOMPARE(f->pool->SelLength(index), 3);
    }

    void findSequences_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("wanted");
        QTest::addColumn<int>("matchCase");
        QTest::addColumn<int>("direction");
        QTest::addColumn<int>("caret");
        QTest::addColumn<QList<int>>("answers"); // queued Yes(1)/No(0)
        QTest::addColumn<QList<int>>("hits");    // selection start after each search, -1 unchanged
        QTest::addColumn<int>("questions");
        QTest::newRow("case ignored finds either case")
            << "dup DUP" << "DUP" << 0 << 1 << 0 << QList<int>{} << QList<int>{0, 4} << 0;
        QTest::newRow("case matched skips the other case")
            << "dup DUP" << "DUP" << 1 << 1 << 0 << QList<int>{} << QList<int>{4} << 0;
        QTest::newRow("down: each Find next moves on, then wraps")
            << "X AB AB" << "AB" << 0 << 1 << 0 << QList<int>{1} << QList<int>{2, 5, 2} << 1;
        QTest::newRow("up from the end: later match first")
            << "FOO x FOO y" << "FOO" << 0 << 0 << 11 << QList<int>{0} << QList<int>{6, 0, 0} << 1;
        QTest::newRow("up: a match just before the caret is passed over")
            << "X X" << "X" << 0 << 0 << 3 << QList<int>{} << QList<int>{0} << 0;
        QTest::newRow("up: wrap goes on from the end")
            << "AB x" << "AB" << 0 << 0 << 0 << QList<int>{1} << QList<int>{0} << 1;
        QTest::newRow("down: the only match at position 0 is found after the wrap")
            << "AB x" << "AB" << 0 << 1 << 0 << QList<int>{1} << QList<int>{0, 0} << 1;
        QTest::newRow("up: the only match at the very end is found after the wrap")
            << "x AB" << "AB" << 0 << 0 << 4 << QList<int>{1} << QList<int>{2, 2} << 1;
        QTest::newRow("declined wrap keeps the selection")
            << "AB" << "AB" << 0 << 1 << 0 << QList<int>{0} << QList<int>{0, 0} << 1;
        QTest::newRow("empty text asks at once, again after Yes")
            << "" << "Q" << 0 << 1 << 0 << QList<int>{1, 0} << QList<int>{0} << 2;
    }
    void findSequences()
    {
        QFETCH(QString, text);
        QFETCH(QString, wanted);
        QFETCH(int, matchCase);
        QFETCH(int, direction);
        QFETCH(int, caret);
        QFETCH(QList<int>, answers);
        QFETCH(QList<int>, hits);
        const int index = WithText(text);
        f->View(index)->Select(caret, 0);
        for (int a : answers)
            f->prompts.answers.enqueue(a ? PromptAnswer::Yes : PromptAnswer::No);
        f->pool->ShowFind(index);
        f->pool->Find().gFindCase = matchCase;
        f->pool->Find().gFindDirection = direction;
        f->pool->FindFromDialog(wanted);
        QList<int> seen{f->pool->SelStart(index)};
        for (int i = 1; i < hits.size(); ++i) {
            f->pool->FindNext(index);
            seen << f->pool->SelStart(index);
        }
        QCOMPARE(seen, hits);
        QTEST(int(f->prompts.MessageTexts().size()), "questions");
        QCOMPARE(f->pool->Find().gCurPos, f->pool->SelStart(index));
        QVERIFY(!f->pool->Find().gFirstTime);
    }

    void findNextWithoutSearchOpensTheDialog()
    {
        const int index = WithText(QStringLiteral("ABC"));
        QSignalSpy requested(f->pool.get(), &EditorPool::FindDialogRequested);
        f->pool->FindNext(index);
        QCOMPARE(requested.count(), 1);
        QVERIFY(f->prompts.shown.isEmpty());
    }

    void findPrefill()
    {
        const int index = WithText(QStringLiteral("alpha beta"));
        QSignalSpy requested(f->pool.get(), &EditorPool::FindDialogRequested);
        f->View(index)->Select(6, 4);
        f->pool->ShowFind(index);
        QCOMPARE(requested.last().first().toString(), QStringLiteral("beta"));
        f->pool->FindFromDialog(QStringLiteral("alpha"));
        f->View(index)->Select(0, 0);
        f->pool->ShowFind(index);
        // Case ignored: the last string comes back upper-cased.
        QCOMPARE(requested.last().first().toString(), QStringLiteral("ALPHA"));
        QVERIFY(f->pool->Find().gFirstTime);
    }

    void qtFilterKeepsTheRows()
    {
        QCOMPARE(QtFilter(SourceFileFilter),
                 QStringLiteral("Source Files (*.kvr);;Text files (*.txt);;Suggestion files (*.sug);;"
                                "Capture files (*.cap);;Hex prom files (*.int);;"
                                "S-record prom files (*.mot);;All files (*)"));
        QCOMPARE(QtFilter(InsertFileFilter).count(QStringLiteral(";;")), 4);
    }
};

QTEST_GUILESS_MAIN(TestBackupFind)
#include "tst_backupfind.moc"
