// The words database in the windows: the editor's Definitions and Unravel
// items, frmWords showing the build's progress, Stop, and its list after.
#include "WordsFixture.h"
#include "compiler/ui/UnravelMenu.h"
#include "editor/ui/EditorWindows.h"
#include "words/ui/WordsWindows.h"
#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPushButton>

using namespace kvr;
using namespace kvr::test;

class TestWordsWindows : public QObject {
    Q_OBJECT
private slots:
    void MakingViewAndStop()
    {
        WordsFixture f;
        QMainWindow frame;
        auto *area = new QMdiArea(&frame);
        frame.setCentralWidget(area);
        EditorWindows editors(*f.context, area);
        WordsWindows words(*f.context, &editors.Pool(), area);
        UnravelMenu unravel(*f.context, editors.Pool());
        words.Builder().SetClock([] { return QDateTime(QDate(2024, 3, 7), QTime(9, 5)); });
        frame.show();
        QApplication::setActiveWindow(&frame);
        const QString main = f.Write("MAIN.KVR", {": A ;", "INCLUDE LIB", ": B ;", ": C ;"});
        f.Write("LIB.KVR", {": L ;"});
        editors.Pool().OpenFile(main);
        QWidget *editor = editors.Pool().Document(1) ? dynamic_cast<QWidget *>(editors.Pool().Document(1)->Object()) : nullptr;
        QVERIFY(editor);
        QAction *make = editor->findChild<QMenu *>("mnuD")->findChild<QAction *>("mnuDMake");
        QCOMPARE(make->text(), QStringLiteral("&Make database"));
        QCOMPARE(editor->findChild<QMenu *>("mnuD")->title(), QStringLiteral("&Definitions"));
        QCOMPARE(editor->findChild<QAction *>("mnuFUnravel")->text(), QStringLiteral("&Unravel INCLUDEs"));

        frmWords *window = words.Window();
        QStringList making;
        int line = 0;
        connect(&words.Builder(), &DatabaseBuilder::LineRead, this, [&] {
            making << window->findChild<QLabel *>("lblMaking")->text();
            QVERIFY(window->findChild<QPushButton *>("cmdESC")->isVisible());
            QVERIFY(!window->findChild<QListWidget *>("lstWords")->isVisible());
            QVERIFY(!make->isEnabled());
            if (++line == 3) {
                // Escape presses Stop while the build runs.
                QPushButton *stop = window->findChild<QPushButton *>("cmdESC");
                stop->setFocus();
                QTest::keyClick(stop, Qt::Key_Escape);
            }
        });
        f.prompts.answers << PromptAnswer::Ok << PromptAnswer::No;
        make->trigger();
        QCOMPARE(words.Builder().LastEnd(), DatabaseBuilder::End::Stopped);
        QCOMPARE(making, (QStringList{"Processing file\n" + ShortenPath(main), "Processing file\n" + ShortenPath(main),
                                      "Processing file\n" + ShortenPath(f.folder.toUpper() + "/LIB.KVR")}));
        QVERIFY(make->isEnabled());
        QVERIFY(!window->findChild<QPushButton *>("cmdESC")->isVisible());
        QVERIFY(window->findChild<QListWidget *>("lstWords")->isVisible());
        // A user word never referenced is marked with character 31.
        QListWidget *list = window->findChild<QListWidget *>("lstWords");
        QCOMPARE(list->findItems(QString(" A          ") + QChar(31), Qt::MatchExactly).size(), 1);
        QCOMPARE(list->findItems(" DUP        ", Qt::MatchExactly).size(), 1);
        QCOMPARE(window->windowTitle(), "Database of definitions in " + ShortenPath(main));

        // After the build Escape presses OK, which closes the window.
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Escape);
        QVERIFY(window->parentWidget()->isHidden());
        // The editor the build came from is active again, so keys reach it.
        QVERIFY(area->activeSubWindow());
        QCOMPARE(area->activeSubWindow()->widget(), editor);

        // The next build shows the window again, with its contents.
        f.prompts.answers << PromptAnswer::Ok << PromptAnswer::No;
        make->trigger();
        QCOMPARE(words.Builder().LastEnd(), DatabaseBuilder::End::Finished);
        QVERIFY(window->isVisible());
        QVERIFY(list->isVisible());
    }
};

QTEST_MAIN(TestWordsWindows)
#include "tst_wordswindows.moc"
