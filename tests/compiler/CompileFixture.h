#pragma once
// A compile set-up without windows: scripted prompts, a test clock, an
// in-memory board, and fakes for the terminal window and the editor pool.
#include "app/AppContext.h"
#include "app/FilePaths.h"
#include "app/ScriptedPrompts.h"
#include "app/Text.h"
#include "compiler/CompileDriver.h"
#include "compiler/CompileReport.h"
#include "editor/EditorHost.h"
#include "link/Link.h"
#include "link/MemoryTransport.h"
#include "link/TerminalHost.h"
#include "TempDir.h"
#include "TestClock.h"
#include <QMap>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <memory>

namespace kvr::test {

class FakeTerminal : public TerminalHost {
public:
    void SetInputTimerEnabled(bool enabled) override { timerStates.append(enabled); }
    void ShowBytes(const QByteArray &bytes) override { shown += bytes; }
    void ClearScreen() override {}
    void BringForward() override {}
    void SetProgressVisible(bool visible) override { progressStates.append(visible); }
    int ProgressCapacity() const override { return capacity; }
    QString ProgressText() const override { return progressText; }
    void SetProgressText(const QString &text) override { progressText = text; }
    void SendInterrupt() override { ++interrupts; }

    QList<bool> timerStates, progressStates;
    QByteArray shown;
    QString progressText;
    int capacity = 3, interrupts = 0;
};

// The in-memory board, with a hook where a real TCP link yields to the
// event loop (keys such as F2 are handled there).
struct YieldingTransport : MemoryTransport {
    std::function<void()> beforeCount;
    void BeforeCount() override { beforeCount ? beforeCount() : void(); }
};

struct FakeWindow { QString caption, text; int selStart = 0, selLength = 0; };

using ShownLines = QList<QPair<QString, int>>;

class FakeEditor : public EditorHost {
public:
    int ActiveIndex() const override { return active; }
    QString Caption(int index) const override { return windows.value(index).caption; }
    QString Text(int index) const override { return windows.value(index).text; }
    int SelStart(int index) const override { return windows.value(index).selStart; }
    int SelLength(int index) const override { return windows.value(index).selLength; }
    void Select(int index, int start, int length) override { windows[index].selStart = start, windows[index].selLength = length; }
    void OpenFile(const QString &name) override { opened.append(name); }
    void LoadFile(const QString &name) override { loaded.append(name), windows.insert(windows.size() + 1, {LogicalName(name)}); }
    void SaveBeforeCompile(int index) override { savedFrom.append(index); }
    bool ShowLine(const QString &caption, int lineNumber) override
    {
        const auto it = std::find_if(windows.cbegin(), windows.cend(),
                                     [&](const FakeWindow &w) { return LogicalName(w.caption) == LogicalName(caption); });
        if (it != windows.cend())
            active = it.key(), shownLines.append({it->caption, lineNumber});
        return it != windows.cend();
    }
    QList<int> OpenIndexes() const override { return windows.keys(); }

    QMap<int, FakeWindow> windows;
    int active = 0;
    QStringList opened, loaded;
    QList<int> savedFrom;
    ShownLines shownLines;
};

// The simulated board's answers: the echo, then " ok"; scripted replies by
// line (an empty one is no answer at all); the end-of-program question
// answers with `here`.
struct ScriptedBoard {
    QMap<QByteArray, QByteArray> replies;
    QByteArray here = "1A2B";
    std::function<void(const QByteArray &)> onLine;

    // A line that is only `word`, which the board does not know.
    void Lacks(const QByteArray &word) { replies.insert(word, word + ' ' + word + " ?  - not found\r\n"); }

    QByteArray operator()(const QByteArray &line)
    {
        onLine ? onLine(line) : void();
        if (replies.contains(line))
            return replies.value(line);
        if (line == "BASE @ HEX HERE U. BASE !")
            return here.isNull() ? QByteArray() : line + " " + here + "  ok\r\n";
        return line + "  ok\r\n";
    }
};

struct CompileFixture {
    QTemporaryDir dir;
    ScriptedPrompts prompts;
    TestClock clock;
    std::unique_ptr<Paths> paths;
    std::unique_ptr<AppContext> context;
    YieldingTransport transport;
    std::unique_ptr<Link> link;
    FakeTerminal terminal;
    FakeEditor editor;
    std::unique_ptr<CompileReport> report;
    std::unique_ptr<CompileDriver> driver;
    ScriptedBoard board;

    CompileFixture()
    {
        clock.stepPerReading = 1;
        (paths = std::make_unique<Paths>(dir.filePath(QStringLiteral("settings"))))->Prepare();
        context = std::make_unique<AppContext>(*paths, prompts, clock);
        context->settings.timeout = QStringLiteral("1000");
        context->settings.delay4410 = QStringLiteral("0");
        (link = std::make_unique<Link>(*context))->SetTransport(&transport);
        transport.SetResponder([this](const QByteArray &line) { return board(line); });
        report = std::make_unique<CompileReport>(*context);
        driver = std::make_unique<CompileDriver>(*context, *link, &terminal, &editor, *report);
    }

    // Writes a source file (lines joined with CR LF) below the temporary folder.
    QString Write(const QString &relative, const QStringList &lines)
    {
        const QString path = dir.filePath(relative);
        QDir().mkpath(QFileInfo(path).absolutePath());
        WriteAll(path, (lines.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n")).toLatin1());
        return path;
    }

    // Files as name, text pairs ("\n" between lines).
    void WriteFiles(const QStringList &files)
    {
        for (qsizetype i = 0; i + 1 < files.size(); i += 2)
            Write(files[i], files[i + 1].split(QLatin1Char('\n')));
    }

    // Writes the files and compiles the first.
    QString Compile(const QStringList &files)
    {
        WriteFiles(files);
        const QString main = dir.filePath(files.first());
        driver->CompileFile(main);
        return main;
    }

    // Lines the board received, without the end-of-program question.
    QStringList Sent() const
    {
        QStringList result;
        for (const QByteArray &line : transport.lines)
            line != "BASE @ HEX HERE U. BASE !" ? result.append(QString::fromLatin1(line)) : void();
        return result;
    }

    // "@NAME 3: X" is the report line of line 3 of NAME below the temporary
    // folder; "@NAME - FINISHED" its end.
    QString Expand(const QString &line) const
    {
        static const QRegularExpression at(QStringLiteral("^@(\\S+)( (\\d+))?"));
        const QRegularExpressionMatch m = at.match(line);
        if (!m.hasMatch())
            return line;
        const QString number = m.captured(3).isEmpty() ? QString() : " - line " + m.captured(3);
        return ShortenPath(dir.filePath(m.captured(1))) + number + line.mid(m.capturedEnd());
    }
};

} // namespace kvr::test
