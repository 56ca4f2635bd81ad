// Editor figures: load and save of a 65,535-character file through a real
// editor window, and the cost of one key typed into a 2,000-line text.
#include "TempDir.h"
#include "TestClock.h"
#include "app/AppContext.h"
#include "app/ScriptedPrompts.h"
#include "editor/ui/EditorWindows.h"
#include "editor/ui/SourceEdit.h"
#include "editor/ui/frmNotePad.h"
#include <QApplication>
#include <QElapsedTimer>
#include <QMainWindow>
#include <QMdiArea>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <cstdio>

using namespace kvr;

namespace {

double Median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

QByteArray SourceOfSize(int size)
{
    // Forth-looking lines of 78 characters plus CR LF.
    const QByteArray line = ": WORD  DUP 1+ SWAP ( n -- n+1 n ) 100 0 DO I . LOOP .\" done\" ;           X\r\n";
    QByteArray bytes;
    while (bytes.size() + line.size() <= size)
        bytes += line;
    bytes += QByteArray(size - bytes.size() - 2, 'Z') + "\r\n";
    return bytes;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QTemporaryDir dir;
    ScriptedPrompts prompts;
    TestClock clock;
    const Paths paths(dir.filePath(QStringLiteral("settings")));
    paths.Prepare();
    AppContext context(paths, prompts, clock);
    QMainWindow frame;
    auto *area = new QMdiArea(&frame);
    frame.setCentralWidget(area);
    frame.resize(1000, 800);
    frame.show();
    EditorWindows windows(context, area);
    EditorPool &pool = windows.Pool();

    const QString path = dir.filePath(QStringLiteral("BIG.KVR"));
    test::WriteAll(path, SourceOfSize(65535));
    QList<double> loads;
    QList<double> saves;
    for (int i = 0; i < 15; ++i) {
        QElapsedTimer timer;
        timer.start();
        pool.LoadFile(path);
        loads << timer.nsecsElapsed() / 1e6;
        const int index = pool.ActiveIndex();
        if (pool.Text(index).size() != 65535) {
            std::fprintf(stderr, "load gave %lld characters\n", static_cast<long long>(pool.Text(index).size()));
            return 1;
        }
        timer.restart();
        pool.Save(index);
        saves << timer.nsecsElapsed() / 1e6;
        dynamic_cast<frmNotePad *>(pool.Document(index))->Discard();
        QCoreApplication::processEvents();
    }
    std::printf("editor: load 65,535-character .KVR file: %.2f ms (median of %lld)\n", Median(loads),
                static_cast<long long>(loads.size()));
    std::printf("editor: save 65,535-character file:      %.2f ms (median of %lld)\n", Median(saves),
                static_cast<long long>(saves.size()));

    // 2,000 lines of 30 characters.
    QString text;
    for (int i = 0; i < 2000; ++i)
        text += QStringLiteral(": W%1 DUP 1+ SWAP DROP ;  \\ c\r\n").arg(i % 10);
    const int index = pool.FileNew();
    auto *window = dynamic_cast<frmNotePad *>(pool.Document(index));
    window->SetText(text);
    SourceEdit *edit = window->Text1();
    auto perKey = [&](Qt::Key key, const QString &typed, int count, bool newLineEach) {
        QList<double> costs;
        for (int i = 0; i < count; ++i) {
            if (newLineEach || i % 60 == 0)
                window->Select(pool.Text(index).indexOf(QStringLiteral("\r\n"), 30000 + i * 37), 0);
            QElapsedTimer timer;
            timer.start();
            QTest::keyClick(edit, key, Qt::NoModifier);
            Q_UNUSED(typed);
            costs << timer.nsecsElapsed() / 1e3;
        }
        return Median(costs);
    };
    const double typedChar = perKey(Qt::Key_A, QStringLiteral("A"), 400, false);
    std::printf("editor: one typed character, 2,000 lines: %.1f us (median of 400)\n", typedChar);
    const double enter = perKey(Qt::Key_Return, QString(), 100, true);
    std::printf("editor: Enter with auto-indent, 2,000 lines: %.1f us (median of 100)\n", enter);
    context.settings.tabSpaces = QStringLiteral("4");
    pool.SetTabSpaces(4);
    const double tab = perKey(Qt::Key_Tab, QString(), 100, true);
    std::printf("editor: Tab to the next stop, 2,000 lines: %.1f us (median of 100)\n", tab);
    window->Discard();
    return 0;
}
