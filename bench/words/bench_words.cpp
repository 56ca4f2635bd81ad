// Words database speed: Make database, with suggestions, of a 10,000-line
// program in four files, as the window runs it (yielding after each line).
#include "app/AppContext.h"
#include "app/ScriptedPrompts.h"
#include "words/DatabaseBuilder.h"
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>

using namespace kvr;

namespace {

constexpr int Lines = 10000;

// Definitions of every kind, comments, strings, a CASE, nested IFs and
// phrases the rules rewrite.
QByteArray Part(int part, int lines)
{
    QByteArray text;
    for (int i = 1; i <= lines; ++i) {
        const int n = part * lines + i;
        QString line;
        switch (i % 8) {
        case 0: line = QStringLiteral(": W%1  ( n -- n' )  DUP 1 +  SWAP DROP  W%2 ;  \\ word %1").arg(n).arg(n - 8); break;
        case 1: line = QStringLiteral("VARIABLE V%1  VARIABLE U%1").arg(n); break;
        case 2: line = QStringLiteral(": X%1  V%2 @ 2 * V%2 ! .\" DUP SWAP\" ;").arg(n).arg(n - 1); break;
        case 3: line = QStringLiteral("%1 CONSTANT C%1     ( a constant )").arg(n); break;
        case 4: line = QStringLiteral("CREATE T%1  1 , 2 , 3 ,").arg(n); break;
        case 5: line = QStringLiteral("  4 , 5 ,"); break;
        case 6: line = QStringLiteral(": Y%1  CASE 1 OF OVER OVER ENDOF 2 OF 3 PICK ENDOF ENDCASE ;").arg(n); break;
        default: line = QStringLiteral(": Z%1  0 = IF C%2 ELSE 0 < IF 1 THEN THEN ;").arg(n).arg(n - 4); break;
        }
        text += line.toLatin1() + "\r\n";
    }
    return text;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const int parts = 4;
    QByteArray main;
    for (int part = 1; part < parts; ++part) {
        QFile file(dir.filePath(QStringLiteral("PART%1.KVR").arg(part)));
        file.open(QIODevice::WriteOnly);
        file.write(Part(part, Lines / parts));
        main += QStringLiteral("INCLUDE PART%1\r\n").arg(part).toLatin1();
    }
    main += Part(0, Lines / parts - (parts - 1));
    QFile file(dir.filePath(QStringLiteral("MAIN.KVR")));
    file.open(QIODevice::WriteOnly);
    file.write(main);
    file.close();

    const Paths paths(dir.filePath(QStringLiteral("settings")));
    paths.Prepare();
    QList<double> seconds;
    int records = 0;
    for (int run = 0; run < 5; ++run) {
        ScriptedPrompts prompts;
        SystemClock clock;
        AppContext context(paths, prompts, clock);
        DatabaseBuilder builder(context);
        builder.SetSettingsWriter({});
        prompts.answers << PromptAnswer::Ok << PromptAnswer::Yes << PromptAnswer::Ok;
        QElapsedTimer timer;
        timer.start();
        builder.MakeDatabase(QDir(dir.path()).absoluteFilePath(QStringLiteral("MAIN.KVR")).toUpper());
        seconds << timer.nsecsElapsed() / 1e9;
        if (builder.LastEnd() != DatabaseBuilder::End::Finished) {
            std::printf("words database: the build did not finish: %s\n",
                        qPrintable(prompts.MessageTexts().join(QStringLiteral(" / "))));
            return 1;
        }
        const WordStatistics &s = builder.Statistics();
        records = s.userUsed + s.userUnused;
    }
    std::sort(seconds.begin(), seconds.end());
    std::printf("words database of a %d-line program (%d definitions), with suggestions: %.3f s median, "
                "%.3f s best of %lld (goal under 0.5 s)\n",
                Lines, records, seconds[seconds.size() / 2], seconds.first(), static_cast<long long>(seconds.size()));
    return 0;
}
