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
    void Trigger(int index, const char *item) { Window(index)->findChild<QAction *>(QString::fromLatin1(item))->trigger(); }
    QStringList Boxes() const { return m_prompts->MessageTexts(); }

    int NewWithText(const QString &text, int caret = -1)
    {
        const int index = Pool().FileNew();
        Window(index)->SetText(text);
        Window(index)->Select(caret < 0 ? int(text.size()) : caret, 0);
        return index;
    }
    int Open(const QString &name, const QByteArray &bytes)
    {
        WriteAll(m_dir.filePath(name), bytes);
        Pool().OpenFile(m_dir.filePath(name));
        return Pool().ActiveIndex();
    }
    QDialog *FindDialog()
    {
        const auto dialogs = m_frame->findChildren<QDialog *>(QStringLiteral("frmFind"));
        return dialogs.isEmpty() ? nullptr : dialogs.last();
    }

private slots:
    void init()
    {
        m_prompts = std::make_unique<ScriptedPrompts>();
        const Paths paths(m_dir.filePath(QStringLiteral("settings")));
        paths.Prepare();
        m_context = std::make_unique<AppContext>(paths, *m_prompts, m_clock);
        m_context->settings.tabSpaces = QStringLiteral("4");
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
        for (int index : Pool().OpenIndexes())
            Window(index)->Discard();
        m_windows.reset();
        m_frame.reset();
        m_context.reset();
    }

    // The compiler fills the window's empty Compile menu; F2 halts a compile.
    void newWindowFromTheFrame()
    {
        QSignalSpy created(&Pool(), &EditorHost::EditorCreated);
        m_frame->menuBar()->findChild<QAction *>(QStringLiteral("mnuFNew"))->trigger();
        auto *window = qobject_cast<QWidget *>(created.first().at(1).value<QObject *>());
        QCOMPARE(window->windowTitle(), QStringLiteral("Source code 1"));
        QVERIFY(window->findChild<QMenu *>(QStringLiteral("mnuCompile"))->actions().isEmpty());
        QSignalSpy halt(&Pool(), &EditorPool::HaltRequested);
        QTest::keyClick(window->findChild<SourceEdit *>(QStringLiteral("Text1")), Qt::Key_F2);
        QCOMPARE(halt.count(), 1);
        QCOMPARE(m_context->compileOutcome, CompileOutcome::HaltRequested);
    }

    // Typed text: the box and a beep with each character past column 80.
    // In the script '<' is Backspace, '>' Delete and '^' Up.
    void longLineWhileTyping_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("caret");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("quiet");
        QTest::addColumn<int>("boxes");
        const QString a80(80, QLatin1Char('A'));
        QTest::newRow("80 typed: no box") << "" << 0 << a80 << false << 0;
        QTest::newRow("the 81st: a box") << "" << 0 << a80 + "B" << false << 1;
        QTest::newRow("again after Backspace") << "" << 0 << a80 + "B<C" << false << 2;
        QTest::newRow("quiet: the box without the beep") << a80 << 80 << "Y" << true << 1;
        QTest::newRow("Delete joining lines measures again") << QString(50, 'A') + "\r\n" + QString(50, 'B') << 50 << "X>Y" << false << 2;
        QTest::newRow("Up padding after the 80th is no long line") << QString(79, 'A') + "\r\n" + QString(79, 'X') << 160 << "Y^" << false << 0;
        QTest::newRow("typed onto the padded line") << QString(79, 'A') + "\r\n" + QString(79, 'X') << 160 << "Y^Z" << false << 1;
    }
    void longLineWhileTyping()
    {
        QFETCH(QString, text);
        QFETCH(int, caret);
        QFETCH(QString, typed);
        QFETCH(bool, quiet);
        QFETCH(int, boxes);
        m_context->settings.quiet = quiet ? QStringLiteral("ON") : QStringLiteral("OFF");
        const int index = NewWithText(text, caret);
        for (QChar c : typed) {
            const int key = c == '<' ? Qt::Key_Backspace : c == '>' ? Qt::Key_Delete : c == '^' ? Qt::Key_Up : 0;
            key ? QTest::keyClick(Edit(index), Qt::Key(key)) : QTest::keyClicks(Edit(index), QString(c));
            QCoreApplication::processEvents();
        }
        QTRY_COMPARE(Boxes(), QStringList(boxes, QStringLiteral("Line too long. Shorten to 80 characters maximum.")));
        QCOMPARE(m_prompts->beeps, quiet ? 0 : boxes);
        QVERIFY(Pool().FState(index).Dirty);
    }

    void keys_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("caret");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("caretAfter");
        QTest::newRow("Enter at the end repeats the indent") << "    DUP" << 7 << int(Qt::Key_Return) << 0 << "    DUP\r\n    " << 13;
        QTest::newRow("Down onto an empty line pads it") << "0123456789AB\r\n\r\nZ" << 10 << int(Qt::Key_Down) << 0
                                                         << "0123456789AB\r\n          \r\nZ" << 24;
        QTest::newRow("Delete before a line end takes CR LF") << "AB\r\nCD" << 2 << int(Qt::Key_Delete) << 0 << "ABCD" << 2;
        QTest::newRow("Alt+Tab types no tab") << "AB" << 1 << int(Qt::Key_Tab) << int(Qt::AltModifier) << "AB" << 1;
    }
    void keys()
    {
        QFETCH(QString, text);
        QFETCH(int, caret);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        const int index = NewWithText(text, caret);
        QTest::keyClick(Edit(index), static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
        QTEST(Pool().Text(index), "expected");
        QTEST(Pool().SelStart(index), "caretAfter");
        if (key == Qt::Key_Return) { // Undo takes the edit back
            Trigger(index, "mnuEUndo");
            QCOMPARE(Pool().Text(index), text);
        }
    }

    // Text composed by an input method keeps to the characters a key may type.
    void composedTextIsFiltered()
    {
        const int index = NewWithText(QStringLiteral("AB"), 1);
        QInputMethodEvent event;
        event.setCommitString(QString::fromUtf8("\xc3\xa9\xe2\x82\xac\t\xc3\xbf-"));
        QApplication::sendEvent(Edit(index), &event);
        QCOMPARE(Pool().Text(index), QString::fromLatin1("A\xe9-B"));
    }

    // Ctrl+S reaches the window's menu; Alt+F opens the window's own File menu.
    void shortcutsReachTheWindowMenus()
    {
        const int index = Open(QStringLiteral("KEYS.KVR"), "1 2 +\r\n");
        Edit(index)->setFocus();
        QTest::keyClicks(Edit(index), QStringLiteral("DROP "));
        QTest::keyClick(Edit(index), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(ReadAll(m_dir.filePath(QStringLiteral("KEYS.KVR"))), QByteArray("DROP 1 2 +\r\n"));
        QVERIFY(!Pool().FState(index).Dirty);
        auto *editorFile = Window(index)->findChild<QMenu *>(QStringLiteral("mnuFile"));
        QTest::keyClick(Edit(index), Qt::Key_F, Qt::AltModifier);
        QTRY_VERIFY(editorFile->isVisible());
        QVERIFY(!m_frame->menuBar()->actions().first()->menu()->isVisible());
        editorFile->close();
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
        QCOMPARE(Pool().ActiveIndex(), a);
        QTest::keyClick(Edit(a), Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(Pool().ActiveIndex(), b);
        Trigger(a, "mnuO3");
        QVERIFY(ReadAll(m_context->paths.SettingsFile()).contains("Source window TAB spaces=3"));
        QVERIFY(Window(b)->findChild<QAction *>(QStringLiteral("mnuO3"))->isChecked());
        QVERIFY(!Window(b)->findChild<QAction *>(QStringLiteral("mnuOTInt"))->isChecked());
    }

    // Invert acts on the focused box, never on a read-only one (a report,
    // the terminal).
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
        Trigger(index, "mnuEInvert");
        QCOMPARE(report->toPlainText() + Pool().Text(index), QStringLiteral("reportabc"));
    }

    // A full window refuses whatever would grow it, and says so each time.
    void growthPastTheCeilingIsRefused_data()
    {
        QTest::addColumn<int>("how");
        QTest::newRow("paste") << 0;
        QTest::newRow("typed character") << 1;
        QTest::newRow("Enter") << 2;
        QTest::newRow("date stamp") << 3;
        QTest::newRow("Tab") << 4;
    }
    void growthPastTheCeilingIsRefused()
    {
        QFETCH(int, how);
        const QString full = QString(64, QLatin1Char('A')) + QStringLiteral("\r\n") + QString(65535 - 66, QLatin1Char('B'));
        const int index = NewWithText(full, 10);
        QApplication::clipboard()->setText(QStringLiteral("X"));
        switch (how) {
        case 0: Edit(index)->paste(); break;
        case 1: QTest::keyClicks(Edit(index), QStringLiteral("Q")); break;
        case 2: QTest::keyClick(Edit(index), Qt::Key_Return); break;
        case 3: Trigger(index, "mnuETime"); break;
        default: QTest::keyClick(Edit(index), Qt::Key_Tab); break;
        }
        QCOMPARE(Boxes(), QStringList{QStringLiteral("The source text in this window is too long for this operation")});
        QCOMPARE(Pool().Text(index), full);
        QApplication::clipboard()->setText(QStringLiteral("X\nY"));
        Window(index)->Select(10, 4);
        Edit(index)->paste(); // as much as still fits, line ends as CR LF
        QCOMPARE(Pool().Text(index).mid(10, 4), QStringLiteral("X\r\nY"));
    }

    void clipboardKeepsEveryCharacter()
    {
        const QString text = QString::fromLatin1("A\xa0" "B\r\n\xe9\xff");
        const int index = NewWithText(text);
        Window(index)->Select(0, int(text.size()));
        Trigger(index, "mnuECopy");
        QCOMPARE(QApplication::clipboard()->text(), QString::fromLatin1("A\xa0" "B\n\xe9\xff"));
        Trigger(index, "mnuECut");
        QCOMPARE(Pool().Text(index), QString());
        Trigger(index, "mnuEPaste");
        QCOMPARE(Pool().Text(index), text);
    }

    // Every byte loads into the real text box and is written back (trailing
    // blanks aside): characters 32 to 255, and control bytes in a file that
    // is no source.
    void everyByteSurvivesTheWindow_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("saved");
        QByteArray printable, control;
        for (int b = 32; b <= 255; ++b)
            printable += static_cast<char>(b) + QByteArray(b % 50 ? "" : "  \r\n");
        for (int b = 0; b < 32; ++b)
            control += b == '\r' || b == '\n' ? QByteArray() : QByteArray(1, static_cast<char>(b));
        QTest::newRow("characters 32 to 255") << printable + "\r\n" << QByteArray(printable + "\r\n").replace("  \r\n", "\r\n");
        QTest::newRow("control bytes") << (control + "\r\n").repeated(2) << (control + "\r\n").repeated(2);
    }
    void everyByteSurvivesTheWindow()
    {
        QFETCH(QByteArray, bytes);
        const int index = Open(QStringLiteral("ALL.KVR"), bytes);
        QVERIFY(Pool().Save(index));
        QTEST(ReadAll(m_dir.filePath(QStringLiteral("ALL.KVR"))), "saved");
        QVERIFY(!Pool().FState(index).Dirty);
    }

    // Cancel and Escape keep what was typed (and
    // the case box) for Find next.
    void findDialog()
    {
        const int index = NewWithText(QStringLiteral("one two one"), 0);
        Pool().GotFocus(index);
        Trigger(index, "mnuEFind");
        auto *text = FindDialog()->findChild<QLineEdit *>(QStringLiteral("Text1"));
        text->setText(QStringLiteral("TWO"));
        FindDialog()->findChild<QPushButton *>(QStringLiteral("cmdFind"))->click();
        QCOMPARE(Pool().SelStart(index), 4);
        QCOMPARE(Pool().SelLength(index), 3);
        Window(index)->Select(0, 0);
        Trigger(index, "mnuEFind");
        QTRY_VERIFY(m_frame->findChildren<QDialog *>(QStringLiteral("frmFind")).size() == 1);
        text = FindDialog()->findChild<QLineEdit *>(QStringLiteral("Text1"));
        QCOMPARE(text->text(), QStringLiteral("TWO"));
        text->setText(QStringLiteral("one"));
        FindDialog()->findChild<QPushButton *>(QStringLiteral("cmdCancel"))->click();
        Window(index)->Select(5, 0);
        Trigger(index, "mnuEFindnext");
        QCOMPARE(Pool().SelStart(index), 8);
        Trigger(index, "mnuEFind");
        QTRY_COMPARE(m_frame->findChildren<QDialog *>(QStringLiteral("frmFind")).size(), 1);
        text = FindDialog()->findChild<QLineEdit *>(QStringLiteral("Text1"));
        text->setText(QStringLiteral("Two"));
        FindDialog()->findChild<QCheckBox *>(QStringLiteral("chkCase"))->setChecked(true);
        QTest::keyClick(text, Qt::Key_Escape);
        QCOMPARE(Pool().Find().gFindString, QStringLiteral("Two"));
        QCOMPARE(Pool().Find().gFindCase, 1);
        QTRY_VERIFY(!FindDialog());
    }

    void recentFilesReachFrameAndWindows()
    {
        const int index = Open(QStringLiteral("R.KVR"), "X\r\n");
        const QString logical = LogicalName(m_dir.filePath(QStringLiteral("R.KVR")));
        auto *frameItem = m_frame->menuBar()->findChild<QAction *>(QStringLiteral("mnuRecentFile(1)"));
        QCOMPARE(frameItem->data().toString(), logical);
        QVERIFY(frameItem->isVisible());
        QCOMPARE(Window(index)->findChild<QAction *>(QStringLiteral("mnuRecentFile(1)"))->data().toString(), logical);
        // A changed window stays when the question is cancelled.
        QTest::keyClicks(Edit(index), QStringLiteral("Y"));
        m_prompts->answers.enqueue(PromptAnswer::Cancel);
        QVERIFY(!Pool().CloseAll());
        QVERIFY(Window(index)->isVisible());
        Window(index)->Discard();
        QTRY_VERIFY(Pool().OpenIndexes().isEmpty());
        frameItem->trigger();
        QCOMPARE(Pool().Caption(Pool().ActiveIndex()), logical);
    }

};

QTEST_MAIN(TestEditorWindow)
#include "tst_editorwindow.moc"
