// The editor window itself, offscreen: keys through the real text box,
// menus, the Find dialog and the frame's recent-file items.
#include "FakeEditorView.h"
#include "editor/ui/EditorWindows.h"
#include "editor/ui/SourceEdit.h"
#include "editor/ui/frmNotePad.h"
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDialog>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QtTest>

using namespace kvr;
using namespace kvr::test;

class TestEditorWindow : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    TestClock m_clock;
    std::unique_ptr<AppContext> m_context;
    std::unique_ptr<QMainWindow> m_frame;
    QMdiArea *m_area = nullptr;
    std::unique_ptr<EditorWindows> m_windows;

    EditorPool &Pool() { return m_windows->Pool(); }
    frmNotePad *Window(int index) { return dynamic_cast<frmNotePad *>(Pool().Document(index)); }
    SourceEdit *Edit(int index) { return Window(index)->Text1(); }

    int NewWithText(const QString &text)
    {
        const int index = Pool().FileNew();
        Window(index)->SetText(text);
        return index;
    }

private slots:
    void init()
    {
        m_prompts = std::make_unique<ScriptedPrompts>();
        const Paths paths(m_dir.filePath(QStringLiteral("settings")));
        paths.Prepare();
        m_context = std::make_unique<AppContext>(paths, *m_prompts, m_clock);
        m_frame = std::make_unique<QMainWindow>();
        m_area = new QMdiArea(m_frame.get());
        m_frame->setCentralWidget(m_area);
        QMenu *file = m_frame->menuBar()->addMenu(QStringLiteral("&File"));
        for (int i = 0; i <= 8; ++i) {
            QAction *a = file->addAction(QString());
            a->setObjectName(QStringLiteral("mnuRecentFile(%1)").arg(i));
            a->setVisible(false);
        }
        file->addAction(QStringLiteral("New"))->setObjectName(QStringLiteral("mnuFNew"));
        m_windows = std::make_unique<EditorWindows>(*m_context, m_area);
        m_windows->ConnectFrame(m_frame.get());
        m_frame->resize(900, 700);
        m_frame->show();
    }
    void cleanup()
    {
        // Close without questions.
        for (int index : Pool().OpenIndexes())
            Window(index)->Discard();
        m_windows.reset();
        m_frame.reset();
        m_context.reset();
    }

    void windowHasItsNamesAndAnEmptyCompileMenu()
    {
        QSignalSpy created(&Pool(), &EditorHost::EditorCreated);
        m_frame->menuBar()->findChild<QAction *>(QStringLiteral("mnuFNew"))->trigger();
        QCOMPARE(created.count(), 1);
        auto *window = qobject_cast<QWidget *>(created.first().at(1).value<QObject *>());
        QVERIFY(window);
        QCOMPARE(window->objectName(), QStringLiteral("frmNotePad"));
        QCOMPARE(window->windowTitle(), QStringLiteral("Source code 1"));
        auto *compile = window->findChild<QMenu *>(QStringLiteral("mnuCompile"));
        QVERIFY(compile);
        QCOMPARE(compile->title(), QStringLiteral("&Compile"));
        QVERIFY(compile->actions().isEmpty());
        QVERIFY(window->findChild<SourceEdit *>(QStringLiteral("Text1")));
        for (const char *name :
             {"mnuFNew", "mnuFOpen", "mnuFSave", "mnuFSaveAs", "mnuFClose", "mnuFDelete", "mnuFExit",
              "mnuFInsert", "mnuFBackup", "mnuFRestore", "mnuFExtEditor", "mnuECopy", "mnuECut",
              "mnuEPaste", "mnuEInvert", "mnuEDelete", "mnuESelectAll", "mnuETime", "mnuEFind",
              "mnuEFindnext", "mnuOCBackground", "mnuOCForeground", "mnuOFont", "mnuOExtEditor",
              "mnuRecentFile(0)", "mnuRecentFile(8)"})
            QVERIFY2(window->findChild<QAction *>(QString::fromLatin1(name)), name);
        for (const char *name : {"fraBackups", "lstBackups", "cmdOK", "cmdCancel"})
            QVERIFY2(window->findChild<QWidget *>(QString::fromLatin1(name)), name);
        auto *tab = window->findChild<QMenu *>(QStringLiteral("mnuOTab"));
        QVERIFY(tab);
        QCOMPARE(tab->title(), QStringLiteral("&Use of TAB"));
        const QList<QPair<QString, QString>> tabItems{{QStringLiteral("mnuOTInt"), QStringLiteral("&Tab to Interactive")},
                                                      {QStringLiteral("mnuO2"), QStringLiteral("&2 spaces")},
                                                      {QStringLiteral("mnuO3"), QStringLiteral("&3 spaces")},
                                                      {QStringLiteral("mnuO4"), QStringLiteral("&4 spaces")}};
        for (const auto &[name, caption] : tabItems) {
            auto *item = tab->findChild<QAction *>(name);
            if (!item) // actions belong to the window, not to the menu
                item = window->findChild<QAction *>(name);
            QVERIFY2(item, qPrintable(name));
            QCOMPARE(item->text(), caption);
            QVERIFY(tab->actions().contains(item));
        }
    }

    void f2HaltsTheCompile()
    {
        const int index = NewWithText(QString());
        QSignalSpy halt(&Pool(), &EditorPool::HaltRequested);
        QTest::keyClick(Edit(index), Qt::Key_F2);
        QCOMPARE(halt.count(), 1);
        QCOMPARE(m_context->compileOutcome, CompileOutcome::HaltRequested);
    }

    void typingPastColumn80ShowsTheBox()
    {
        const int index = NewWithText(QString());
        QTest::keyClicks(Edit(index), QString(80, QLatin1Char('A')));
        QCoreApplication::processEvents();
        QVERIFY(m_prompts->MessageTexts().isEmpty());
        QVERIFY(Pool().FState(index).Dirty);
        QTest::keyClicks(Edit(index), QStringLiteral("B"));
        QTRY_COMPARE(m_prompts->MessageTexts(),
                     QStringList{QStringLiteral("Line too long. Shorten to 80 characters maximum.")});
        QCOMPARE(m_prompts->beeps, 1);
        QCOMPARE(Pool().Text(index), QString(80, QLatin1Char('A')) + QStringLiteral("B"));
        QTest::keyClick(Edit(index), Qt::Key_Backspace);
        QTest::keyClicks(Edit(index), QStringLiteral("C"));
        QTRY_COMPARE(m_prompts->MessageTexts().size(), 2);
    }

    // Delete before a line end joins two lines: the joined line is measured
    // again, so a character typed into it past column 80 is still caught.
    void deleteJoiningLinesIsMeasuredAgain()
    {
        const int index = NewWithText(QString(50, QLatin1Char('A')) + QStringLiteral("\r\n")
                                      + QString(50, QLatin1Char('B')));
        Window(index)->Select(50, 0);
        QTest::keyClicks(Edit(index), QStringLiteral("X"));
        QTest::keyClick(Edit(index), Qt::Key_Delete);
        QCOMPARE(Pool().Text(index).size(), 101);
        QTRY_COMPARE(m_prompts->MessageTexts().size(), 1);
        QTest::keyClicks(Edit(index), QStringLiteral("Y"));
        QTRY_COMPARE(m_prompts->MessageTexts().size(), 2);
        QCOMPARE(m_prompts->MessageTexts().last(),
                 QStringLiteral("Line too long. Shorten to 80 characters maximum."));
    }

    // The 80th character typed, then Up onto a line one short of the caret's
    // column: the blank that pads it is no character past column 80.
    void upPaddingAfterTypingIsNoLongLine()
    {
        const int index = NewWithText(QString(79, QLatin1Char('A')) + QStringLiteral("\r\n")
                                      + QString(79, QLatin1Char('X')));
        Edit(index)->moveCursor(QTextCursor::End);
        QTest::keyClicks(Edit(index), QStringLiteral("Y"));
        QTest::keyClick(Edit(index), Qt::Key_Up);
        QCOMPARE(Pool().SelStart(index), 80);
        QCoreApplication::processEvents();
        QCOMPARE(m_prompts->MessageTexts(), QStringList{});
        QTest::keyClicks(Edit(index), QStringLiteral("Z"));
        QTRY_COMPARE(m_prompts->MessageTexts().size(), 1);
    }

    void quietSettingSilencesTheBeep()
    {
        m_context->settings.quiet = QStringLiteral("ON");
        const int index = NewWithText(QString(80, QLatin1Char('X')));
        Edit(index)->moveCursor(QTextCursor::End);
        QTest::keyClicks(Edit(index), QStringLiteral("Y"));
        QTRY_COMPARE(m_prompts->MessageTexts().size(), 1);
        QCOMPARE(m_prompts->beeps, 0);
    }

    void keys_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("caret");
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("caretAfter");
        QTest::addColumn<int>("modifiers");
        QTest::newRow("Tab in column 6") << "ABCDEF" << 6 << int(Qt::Key_Tab) << "ABCDEF  " << 8 << 0;
        QTest::newRow("Tab in column 8") << "ABCDEFGH" << 8 << int(Qt::Key_Tab) << "ABCDEFGH    " << 12 << 0;
        QTest::newRow("Enter at the end repeats the indent")
            << "    DUP" << 7 << int(Qt::Key_Return) << "    DUP\r\n    " << 13 << 0;
        QTest::newRow("Enter in the middle splits") << "AB CD" << 2 << int(Qt::Key_Return) << "AB\r\n CD" << 4 << 0;
        QTest::newRow("Down onto an empty line pads it")
            << "0123456789AB\r\n\r\nZ" << 10 << int(Qt::Key_Down) << "0123456789AB\r\n          \r\nZ" << 24 << 0;
        QTest::newRow("Delete before a line end takes CR LF") << "AB\r\nCD" << 2 << int(Qt::Key_Delete)
                                                              << "ABCD" << 2 << 0;
        QTest::newRow("Tab character never enters: Alt+Tab swallowed")
            << "AB" << 1 << int(Qt::Key_Tab) << "AB" << 1 << int(Qt::AltModifier);
    }
    void keys()
    {
        QFETCH(QString, text);
        QFETCH(int, caret);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        m_context->settings.tabSpaces = QStringLiteral("4");
        const int index = NewWithText(text);
        Window(index)->Select(caret, 0);
        QTest::keyClick(Edit(index), static_cast<Qt::Key>(key),
                        Qt::KeyboardModifiers(modifiers));
        QTEST(Pool().Text(index), "expected");
        QTEST(Pool().SelStart(index), "caretAfter");
    }

    // Text composed by an input method keeps to the characters a key may type.
    void composedTextIsFiltered()
    {
        const int index = NewWithText(QStringLiteral("AB"));
        Window(index)->Select(1, 0);
        QInputMethodEvent event;
        event.setCommitString(QString::fromUtf8("\xc3\xa9\xe2\x82\xac\t\xc3\xbf-"));
        QApplication::sendEvent(Edit(index), &event);
        QCOMPARE(Pool().Text(index), QString::fromLatin1("A\xe9-B"));
    }

    void shortcutsReachTheWindowMenus()
    {
        const QString path = m_dir.filePath(QStringLiteral("KEYS.KVR"));
        WriteAll(path, "1 2 +\r\n");
        Pool().OpenFile(path);
        const int index = Pool().ActiveIndex();
        Edit(index)->setFocus();
        QTest::keyClicks(Edit(index), QStringLiteral("DROP "));
        QTest::keyClick(Edit(index), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(ReadAll(path), QByteArray("DROP 1 2 +\r\n"));
        QVERIFY(!Pool().FState(index).Dirty);
    }

    void altLetterOpensTheEditorsOwnMenu()
    {
        const int index = NewWithText(QStringLiteral("X"));
        Edit(index)->setFocus();
        auto *editorFile = Window(index)->findChild<QMenu *>(QStringLiteral("mnuFile"));
        QTest::keyClick(Edit(index), Qt::Key_F, Qt::AltModifier);
        QTRY_VERIFY(editorFile->isVisible());
        QVERIFY(!m_frame->menuBar()->actions().first()->menu()->isVisible());
        editorFile->close();
        QCOMPARE(Pool().Text(index), QStringLiteral("X"));
    }

    void undoTakesAnEditBack()
    {
        const int index = NewWithText(QStringLiteral("    DUP"));
        Window(index)->Select(7, 0);
        QTest::keyClick(Edit(index), Qt::Key_Return);
        QCOMPARE(Pool().Text(index), QStringLiteral("    DUP\r\n    "));
        Window(index)->findChild<QAction *>(QStringLiteral("mnuEUndo"))->trigger();
        QCOMPARE(Pool().Text(index), QStringLiteral("    DUP"));
    }

    void tabToTerminalAndShiftTabToNextEditor()
    {
        m_context->settings.tabSpaces = QStringLiteral("0");
        const int a = NewWithText(QStringLiteral("A"));
        const int b = NewWithText(QStringLiteral("B"));
        QSignalSpy terminal(&Pool(), &EditorPool::TerminalFocusRequested);
        QTest::keyClick(Edit(a), Qt::Key_Tab);
        QCOMPARE(terminal.count(), 1);
        QCOMPARE(Pool().Text(a), QStringLiteral("A"));
        QTest::keyClick(Edit(b), Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(Pool().ActiveIndex(), a); // wraps from the last slot to the first
        QTest::keyClick(Edit(a), Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(Pool().ActiveIndex(), b);
    }

    void tabMenuChecksEveryWindow()
    {
        const int a = NewWithText(QString());
        const int b = NewWithText(QString());
        Window(a)->findChild<QAction *>(QStringLiteral("mnuO3"))->trigger();
        QCOMPARE(m_context->settings.tabSpaces, QStringLiteral("3"));
        QVERIFY(ReadAll(m_context->paths.SettingsFile()).contains("Source window TAB spaces=3"));
        QVERIFY(Window(b)->findChild<QAction *>(QStringLiteral("mnuO3"))->isChecked());
        QVERIFY(!Window(b)->findChild<QAction *>(QStringLiteral("mnuOTInt"))->isChecked());
    }

    void invertCaseKeepsTheSelection()
    {
        const int index = NewWithText(QStringLiteral("abc Dup\r\nx"));
        Window(index)->Select(4, 6);
        Window(index)->findChild<QAction *>(QStringLiteral("mnuEInvert"))->trigger();
        QCOMPARE(Pool().Text(index), QStringLiteral("abc dUP\r\nX"));
        QCOMPARE(Pool().SelStart(index), 4);
        QCOMPARE(Pool().SelLength(index), 6);
    }

    // Invert acts on the text box that has the focus, but never changes
    // one that is read-only (a report, the terminal).
    void invertCaseLeavesReadOnlyBoxesAlone()
    {
        const int index = NewWithText(QStringLiteral("abc"));
        auto *report = new QPlainTextEdit(QStringLiteral("report"));
        report->setReadOnly(true);
        m_area->addSubWindow(report)->show();
        m_area->setActiveSubWindow(m_area->subWindowList().last());
        report->selectAll();
        report->setFocus();
        QTRY_COMPARE(QApplication::focusWidget(), report);
        Window(index)->findChild<QAction *>(QStringLiteral("mnuEInvert"))->trigger();
        QCOMPARE(report->toPlainText(), QStringLiteral("report"));
        QCOMPARE(Pool().Text(index), QStringLiteral("abc"));
    }

    // A full window refuses whatever would grow it, and says so each time.
    void growthPastTheCeilingIsRefusedWithABox_data()
    {
        QTest::addColumn<int>("how");
        QTest::newRow("paste") << 0;
        QTest::newRow("typed character") << 1;
        QTest::newRow("Enter") << 2;
        QTest::newRow("date stamp") << 3;
        QTest::newRow("Tab") << 4;
    }
    void growthPastTheCeilingIsRefusedWithABox()
    {
        QFETCH(int, how);
        m_context->settings.tabSpaces = QStringLiteral("4");
        const QString full = QString(64, QLatin1Char('A')) + QStringLiteral("\r\n")
            + QString(65535 - 66, QLatin1Char('B'));
        const int index = NewWithText(full);
        Window(index)->Select(10, 0);
        QApplication::clipboard()->setText(QStringLiteral("X"));
        switch (how) {
        case 0: Edit(index)->paste(); break;
        case 1: QTest::keyClicks(Edit(index), QStringLiteral("Q")); break;
        case 2: QTest::keyClick(Edit(index), Qt::Key_Return); break;
        case 3: Window(index)->findChild<QAction *>(QStringLiteral("mnuETime"))->trigger(); break;
        default: QTest::keyClick(Edit(index), Qt::Key_Tab); break;
        }
        QCOMPARE(m_prompts->MessageTexts(),
                 QStringList{QStringLiteral("The source text in this window is too long for this operation")});
        QCOMPARE(Pool().Text(index), full);
        QApplication::clipboard()->setText(QStringLiteral("X\nY"));
        Window(index)->Select(10, 4);
        Edit(index)->paste(); // as many for as many still fits, line ends as CR LF
        QCOMPARE(Pool().Text(index).mid(10, 4), QStringLiteral("X\r\nY"));
    }

    void clipboardKeepsEveryCharacter()
    {
        const QString text = QString::fromLatin1("A\xa0" "B\r\n\xe9\xff");
        const int index = NewWithText(text);
        Window(index)->Select(0, static_cast<int>(text.size()));
        Window(index)->findChild<QAction *>(QStringLiteral("mnuECopy"))->trigger();
        QCOMPARE(QApplication::clipboard()->text(), QString::fromLatin1("A\xa0" "B\n\xe9\xff"));
        Window(index)->findChild<QAction *>(QStringLiteral("mnuECut"))->trigger();
        QCOMPARE(Pool().Text(index), QString());
        Window(index)->findChild<QAction *>(QStringLiteral("mnuEPaste"))->trigger();
        QCOMPARE(Pool().Text(index), text);
    }

    void everyByteSurvivesTheRealWindow()
    {
        QByteArray original;
        for (int b = 32; b <= 255; ++b) {
            original += static_cast<char>(b);
            if (b % 50 == 0)
                original += "  \r\n";
        }
        original += "\r\n";
        QByteArray expected = original;
        expected.replace("  \r\n", "\r\n");
        const QString path = m_dir.filePath(QStringLiteral("ALL.TXT"));
        WriteAll(path, original);
        Pool().OpenFile(path);
        const int index = Pool().ActiveIndex();
        QVERIFY(Pool().Save(index));
        QCOMPARE(ReadAll(path), expected);
        QVERIFY(!Pool().FState(index).Dirty);
    }

    // A file that is no source: control bytes (NUL included) load into the
    // real text box and are written back as they were.
    void controlBytesSurviveTheRealWindow()
    {
        QByteArray original;
        for (int b = 0; b < 32; ++b)
            if (b != '\r' && b != '\n')
                original += static_cast<char>(b);
        original += "\r\n";
        original += original;
        const QString path = m_dir.filePath(QStringLiteral("CTRL.KVR"));
        WriteAll(path, original);
        Pool().OpenFile(path);
        const int index = Pool().ActiveIndex();
        QCOMPARE(Pool().Text(index).size(), original.size());
        QVERIFY(Pool().Save(index));
        QCOMPARE(ReadAll(path), original);
    }

    void findDialog()
    {
        const int index = NewWithText(QStringLiteral("one two one"));
        Pool().GotFocus(index);
        Window(index)->findChild<QAction *>(QStringLiteral("mnuEFind"))->trigger();
        auto *find = m_frame->findChild<QDialog *>(QStringLiteral("frmFind"));
        QVERIFY(find);
        auto *text = find->findChild<QLineEdit *>(QStringLiteral("Text1"));
        auto *button = find->findChild<QPushButton *>(QStringLiteral("cmdFind"));
        QVERIFY(!button->isEnabled());
        text->setText(QStringLiteral("TWO"));
        QVERIFY(button->isEnabled());
        button->click();
        QCOMPARE(Pool().SelStart(index), 4);
        QCOMPARE(Pool().SelLength(index), 3);

        // Cancel keeps what was typed for Find next.
        Window(index)->Select(0, 0);
        Window(index)->findChild<QAction *>(QStringLiteral("mnuEFind"))->trigger();
        QTRY_VERIFY(m_frame->findChildren<QDialog *>(QStringLiteral("frmFind")).size() == 1);
        find = m_frame->findChildren<QDialog *>(QStringLiteral("frmFind")).last();
        QCOMPARE(find->findChild<QLineEdit *>(QStringLiteral("Text1"))->text(), QStringLiteral("TWO"));
        find->findChild<QLineEdit *>(QStringLiteral("Text1"))->setText(QStringLiteral("one"));
        find->findChild<QPushButton *>(QStringLiteral("cmdCancel"))->click();
        QCOMPARE(Pool().Find().gFindString, QStringLiteral("one"));
        Window(index)->Select(5, 0);
        Window(index)->findChild<QAction *>(QStringLiteral("mnuEFindnext"))->trigger();
        QCOMPARE(Pool().SelStart(index), 8);

        // Escape is Cancel too: the typed string and case are kept.
        Window(index)->findChild<QAction *>(QStringLiteral("mnuEFind"))->trigger();
        QTRY_COMPARE(m_frame->findChildren<QDialog *>(QStringLiteral("frmFind")).size(), 1);
        find = m_frame->findChildren<QDialog *>(QStringLiteral("frmFind")).last();
        text = find->findChild<QLineEdit *>(QStringLiteral("Text1"));
        text->setText(QStringLiteral("Two"));
        find->findChild<QCheckBox *>(QStringLiteral("chkCase"))->setChecked(true);
        QTest::keyClick(text, Qt::Key_Escape);
        QCOMPARE(Pool().Find().gFindString, QStringLiteral("Two"));
        QCOMPARE(Pool().Find().gFindCase, 1);
        QTRY_VERIFY(m_frame->findChildren<QDialog *>(QStringLiteral("frmFind")).isEmpty());
    }

    void recentFilesReachFrameAndWindows()
    {
        const QString path = m_dir.filePath(QStringLiteral("R.KVR"));
        WriteAll(path, "X\r\n");
        Pool().OpenFile(path);
        const QString logical = LogicalName(path);
        auto *frameItem = m_frame->menuBar()->findChild<QAction *>(QStringLiteral("mnuRecentFile(1)"));
        QCOMPARE(frameItem->data().toString(), logical);
        QVERIFY(frameItem->isVisible());
        QVERIFY(m_frame->menuBar()->findChild<QAction *>(QStringLiteral("mnuRecentFile(0)"))->isVisible());
        auto *windowItem = Window(Pool().ActiveIndex())->findChild<QAction *>(QStringLiteral("mnuRecentFile(1)"));
        QCOMPARE(windowItem->data().toString(), logical);

        // Closing and reopening from the frame's list.
        QVERIFY(Window(Pool().ActiveIndex())->Close());
        QTRY_VERIFY(Pool().OpenIndexes().isEmpty());
        frameItem->trigger();
        QCOMPARE(Pool().OpenIndexes().size(), 1);
        QCOMPARE(Pool().Caption(Pool().ActiveIndex()), logical);
    }

    void closeCancelledKeepsTheWindow()
    {
        const int index = NewWithText(QString());
        QTest::keyClicks(Edit(index), QStringLiteral("X"));
        m_prompts->answers.enqueue(PromptAnswer::Cancel);
        QVERIFY(!Pool().CloseAll());
        QCOMPARE(Pool().OpenIndexes(), QList<int>{index});
        QVERIFY(Window(index)->isVisible());
    }

    void proportionalFontWarning()
    {
        const int index = NewWithText(QStringLiteral("X"));
        const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        QFont proportional(QStringLiteral("DejaVu Sans"));
        const QFontMetrics metrics(proportional);
        if (metrics.horizontalAdvance(QLatin1Char('i')) == metrics.horizontalAdvance(QLatin1Char('M')))
            QSKIP("no proportional font installed");
        m_prompts->fonts.enqueue(fixed);
        Window(index)->findChild<QAction *>(QStringLiteral("mnuOFont"))->trigger();
        QVERIFY(m_prompts->MessageTexts().isEmpty());
        QCOMPARE(Edit(index)->font().family(), fixed.family());
        // Kept in the settings file: the next start's editors use it.
        Settings written;
        ReadSettings(written, m_context->paths.SettingsFile(), m_context->paths.WindowsFolder());
        QCOMPARE(written.TextFont().family(), fixed.family());
        QCOMPARE(written.TextFont().pointSize(), fixed.pointSize());
        m_context->settings = written;
        EditorWindows next(*m_context, m_area);
        const int other = next.Pool().FileNew();
        QCOMPARE(dynamic_cast<frmNotePad *>(next.Pool().Document(other))->Text1()->font().family(),
                 fixed.family());
        dynamic_cast<frmNotePad *>(next.Pool().Document(other))->Discard();
        m_prompts->fonts.enqueue(proportional);
        Window(index)->findChild<QAction *>(QStringLiteral("mnuOFont"))->trigger();
        QCOMPARE(m_prompts->MessageTexts(),
                 QStringList{QStringLiteral("The font '") + proportional.family()
                             + QStringLiteral("' is proportional so maximum line lengths will be "
                                              "different depending on content. Monospaced fonts "
                                              "are usually preferable for source code.")});
    }

    void guideAndStatus()
    {
        const int index = NewWithText(QStringLiteral("AB\r\nCDE"));
        Window(index)->Select(6, 0);
        auto *status = Window(index)->findChild<QLabel *>(QStringLiteral("lblStatus"));
        QVERIFY(status);
        QCOMPARE(status->text(), QStringLiteral("Line 2, Col 3"));
    }
};

QTEST_MAIN(TestEditorWindow)
#include "tst_editorwindow.moc"
