#pragma once
// An application context on a scratch settings folder with scripted prompts
// and a test clock, a link on an in-memory board, and a terminal.
#include "TestClock.h"
#include "app/AppContext.h"
#include "app/ScriptedPrompts.h"
#include "link/Link.h"
#include "link/MemoryTransport.h"
#include "link/Terminal.h"
#include <QTemporaryDir>

namespace kvr::test {

struct LinkFixture {
    QTemporaryDir dir;
    ScriptedPrompts prompts;
    TestClock clock;
    AppContext context{Paths(dir.path()), prompts, clock};
    Link link{context};
    MemoryTransport board;
    Terminal terminal{context, link};

    LinkFixture()
    {
        context.settings.delay4410 = QStringLiteral("0");
        context.settings.delay6630 = QStringLiteral("0");
        context.settings.timeout = QStringLiteral("1000");
        clock.stepPerReading = 1;
        link.SetTransport(&board);
    }
    // A board that echoes each line and answers " ok" and CR LF.
    void AnswerOk()
    {
        board.SetResponder([](const QByteArray &line) { return line + " ok\r\n"; });
    }
    // Starts capturing to `name` in the scratch folder; its path.
    QString StartCapture(const QString &name)
    {
        const QString path = dir.filePath(name);
        prompts.fileNames.enqueue(path);
        terminal.ToggleCapture();
        return path;
    }
};

} // namespace kvr::test
