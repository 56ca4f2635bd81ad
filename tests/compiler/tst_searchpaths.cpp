#include "app/AppContext.h"
#include "app/FilePaths.h"
#include "app/ScriptedPrompts.h"
#include "compiler/SearchPaths.h"
#include "compiler/SourceFiles.h"
#include "TestClock.h"
#include <QtTest>

using namespace kvr;

class TestSearchPaths : public QObject {
    Q_OBJECT
private slots:
    void SplitPath_data();
    void SplitPath();
    void DefaultSearchPathsOrder();
    void FindSourceFileOrder_data();
    void FindSourceFileOrder();
    void NotFoundShowsMessage();
    void TextAfterLastSemicolonNeverTried();
    void FolderIsNotAFile();
    void AddSearchPath_data();
    void AddSearchPath();
    void AddDialogAndDisplay();
    void DefaultPathsCommand();

private:
    void Touch(const QString &path, const QByteArray &content)
    {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(content);
    }
};

void TestSearchPaths::SplitPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("name");
    QTest::newRow("unix path") << "/work/app/MAIN.KVR" << "/work/app" << "MAIN.KVR";
    QTest::newRow("backslash path") << "C:\\WORK\\APP.KVR" << "C:\\WORK" << "APP.KVR";
    QTest::newRow("mixed, last wins") << "..\\OLD/X\\LIB.KVR" << "..\\OLD/X" << "LIB.KVR";
    QTest::newRow("no folder") << "LIB.KVR" << "." << "LIB.KVR";
    QTest::newRow("only a leading separator") << "\\LIB.KVR" << "." << "LIB.KVR";
    QTest::newRow("trailing separator") << "/work/" << "/work" << "";
}

void TestSearchPaths::SplitPath()
{
    QFETCH(QString, path);
    QFETCH(QString, folder);
    QFETCH(QString, name);
    const SplitResult r = kvr::SplitPath(path);
    QCOMPARE(r.folder, folder);
    QCOMPARE(r.name, name);
}

void TestSearchPaths::DefaultSearchPathsOrder()
{
    const Paths paths(QStringLiteral("/s"));
    QCOMPARE(DefaultSearchPaths(paths),
             QStringLiteral("/s/program/;/s/program/KVR4410/;/s/program/KVR6630/;") + QDir::homePath()
                 + QStringLiteral("/KVR/;"));
    QCOMPARE(SearchList(QStringLiteral("/w"), QStringLiteral("/x/;"), QStringLiteral("/d/;")),
             QStringLiteral("/w/;/x/;/d/;"));
}

void TestSearchPaths::FindSourceFileOrder_data()
{
    QTest::addColumn<QStringList>("present"); // files below the temp folder
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("found");       // relative to the temp folder
    const QStringList all = {"top/LIB.KVR", "extra/LIB.KVR", "prog/LIB.KVR", "prog/KVR4410/LIB.KVR",
                             "prog/KVR6630/LIB.KVR", "home/LIB.KVR"};
    QTest::newRow("top-level folder first") << all << "LIB.KVR" << "top/LIB.KVR";
    QTest::newRow("then extra paths") << all.mid(1) << "LIB.KVR" << "extra/LIB.KVR";
    QTest::newRow("then program folder") << all.mid(2) << "LIB.KVR" << "prog/LIB.KVR";
    QTest::newRow("then KVR4410") << all.mid(3) << "LIB.KVR" << "prog/KVR4410/LIB.KVR";
    QTest::newRow("then KVR6630") << all.mid(4) << "LIB.KVR" << "prog/KVR6630/LIB.KVR";
    QTest::newRow("then KVR home") << all.mid(5) << "LIB.KVR" << "home/LIB.KVR";
    QTest::newRow("on-disk name in lower case") << QStringList{"extra/lib.kvr"} << "LIB.KVR" << "extra/LIB.KVR";
    QTest::newRow("missing folder falls back to bare name")
        << QStringList{"prog/LIB.KVR"} << "/nowhere/at/all/LIB.KVR" << "prog/LIB.KVR";
    QTest::newRow("existing folder opened exactly, before the list")
        << QStringList{"other/LIB.KVR", "top/LIB.KVR"} << "@/other/LIB.KVR" << "other/LIB.KVR";
}

void TestSearchPaths::FindSourceFileOrder()
{
    QFETCH(QStringList, present);
    QFETCH(QString, name);
    QFETCH(QString, found);
    QTemporaryDir dir;
    const QString root = dir.path();
    for (const QString &p : present)
        Touch(root + QLatin1Char('/') + p, "X\r\n");
    name.replace(QLatin1Char('@'), root);
    const QString defaults = root + "/prog/;" + root + "/prog/KVR4410/;" + root + "/prog/KVR6630/;" + root + "/home/;";
    const QString list = SearchList(root + "/top", root + "/extra\\;", defaults);

    ScriptedPrompts prompts;
    SourceFiles files;
    int number = 0;
    QVERIFY(FindSourceFile(name, number, files, list, prompts));
    QCOMPARE(number, 1);
    QVERIFY(files.IsOpen(number));
    QCOMPARE(QFileInfo(NormalizeSeparators(name)).absoluteFilePath().toUpper(),
             QFileInfo(root + QLatin1Char('/') + found).absoluteFilePath().toUpper());
    QVERIFY(prompts.shown.isEmpty());
}

void TestSearchPaths::NotFoundShowsMessage()
{
    QTemporaryDir dir;
    Touch(dir.path() + "/OPEN.KVR", "X");
    ScriptedPrompts prompts;
    SourceFiles files;
    QVERIFY(files.Open(1, dir.path() + "/OPEN.KVR"));
    int number = 0;
    QString name = QStringLiteral("NOPE.KVR");
    QVERIFY(!FindSourceFile(name, number, files, QStringLiteral("/nonexistent/;"), prompts));
    QCOMPARE(number, 2); // handed out even on failure, the next free one
    QCOMPARE(prompts.MessageTexts(), QStringList{"Can't open file NOPE.KVR"});
    QCOMPARE(prompts.shown.first().icon, PromptIcon::Information);
    QCOMPARE(prompts.shown.first().caption, AppTitle);
}

void TestSearchPaths::TextAfterLastSemicolonNeverTried()
{
    QTemporaryDir dir;
    Touch(dir.path() + "/a/LIB.KVR", "X");
    ScriptedPrompts prompts;
    SourceFiles files;
    int number = 0;
    QString name = QStringLiteral("LIB.KVR");
    QVERIFY(!FindSourceFile(name, number, files, "/nonexistent/;" + dir.path() + "/a/", prompts));
    QString again = QStringLiteral("LIB.KVR");
    QVERIFY(FindSourceFile(again, number, files, "/nonexistent/;" + dir.path() + "/a/;", prompts));
}

void TestSearchPaths::FolderIsNotAFile()
{
    QTemporaryDir dir;
    QDir().mkpath(dir.path() + "/a/LIB.KVR");
    Touch(dir.path() + "/b/LIB.KVR", "X");
    ScriptedPrompts prompts;
    SourceFiles files;
    int number = 0;
    QString name = QStringLiteral("LIB.KVR");
    QVERIFY(FindSourceFile(name, number, files, dir.path() + "/a/;" + dir.path() + "/b/;", prompts));
    QCOMPARE(name, dir.path() + "/b/LIB.KVR");
}

void TestSearchPaths::AddSearchPath_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("after");
    QTest::newRow("platform separator and semicolon added")
        << "" << "/srv/forth" << QStringLiteral("/srv/forth") + QDir::separator() + ";";
    QTest::newRow("semicolon kept as typed") << "" << "d:\\x;" << "d:\\x;";
    QTest::newRow("trailing backslash kept") << "a\\;" << "b\\" << "a\\;b\\;";
    QTest::newRow("unix folder with slash") << "" << "/srv/forth/" << "/srv/forth/;";
    QTest::newRow("empty answer changes nothing") << "a\\;" << "" << "a\\;";
}

void TestSearchPaths::AddSearchPath()
{
    QFETCH(QString, before);
    QFETCH(QString, answer);
    QFETCH(QString, after);
    QCOMPARE(kvr::AddSearchPath(before, answer), after);
}

void TestSearchPaths::AddDialogAndDisplay()
{
    QTemporaryDir dir;
    Paths paths(dir.path());
    ScriptedPrompts prompts;
    TestClock clock;
    AppContext context(paths, prompts, clock);
    QSignalSpy written(&context, &AppContext::SettingsWritten);
    prompts.inputs.enqueue(QStringLiteral("d:\\projects\\old\\"));
    AddOrDisplayPaths(context);

    QCOMPARE(context.settings.extraSearchPaths, QStringLiteral("d:\\projects\\old\\;"));
    QCOMPARE(written.count(), 1);
    QCOMPARE(prompts.shown.size(), 2);
    QCOMPARE(prompts.shown[0].kind, QStringLiteral("input"));
    QCOMPARE(prompts.shown[0].caption, QStringLiteral("Add or display paths"));
    QCOMPARE(prompts.shown[0].text,
             QStringLiteral("Enter the full drive and path to be searched for source files. The path entered will be "
                            "added to other paths already searched.\nExample: d:\\projects\\old\\\n\nTo display "
                            "paths press return"));
    const QString p = paths.ProgramFolder().chopped(1);
    QCOMPARE(prompts.shown[1].text,
             "Source files are currently sought in these paths (in this order):\n\nPATH OF TOP LEVEL SOURCE FILE\n"
             "d:\\projects\\old\\\n" + p + "/\n" + p + "/KVR4410/\n" + p + "/KVR6630/\n" + paths.KvrHomeFolder()
                 + "\nPATHS SET WITH OPERATING SYSTEM APPEND COMMAND");
    QCOMPARE(prompts.shown[1].icon, PromptIcon::Information);

    prompts.Clear();
    prompts.inputs.enqueue(QString());
    AddOrDisplayPaths(context);
    QCOMPARE(context.settings.extraSearchPaths, QStringLiteral("d:\\projects\\old\\;"));
    QCOMPARE(prompts.shown.size(), 2);
    QCOMPARE(written.count(), 2);
}

void TestSearchPaths::DefaultPathsCommand()
{
    QTemporaryDir dir;
    Paths paths(dir.path());
    ScriptedPrompts prompts;
    TestClock clock;
    AppContext context(paths, prompts, clock);
    context.settings.extraSearchPaths = QStringLiteral("/a/;/b/;");
    QSignalSpy written(&context, &AppContext::SettingsWritten);
    SetDefaultPaths(context);
    QVERIFY(context.settings.extraSearchPaths.isEmpty());
    QCOMPARE(written.count(), 1);
    QVERIFY(prompts.shown.last().text.contains("PATH OF TOP LEVEL SOURCE FILE\n" + paths.ProgramFolder()));
}

QTEST_GUILESS_MAIN(TestSearchPaths)
#include "tst_searchpaths.moc"
