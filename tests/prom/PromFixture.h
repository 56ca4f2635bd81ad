#pragma once
// The compile set-up of the compiler's tests with the upload and re-flash
// logic on top, and a board whose answers can come in pieces, one piece
// per look at the link.
#include "CompileFixture.h"
#include "prom/PromUpload.h"
#include "prom/Reflash.h"

namespace kvr::test {

struct PromFixture : CompileFixture {
    QList<QByteArray> pieces; // the next reads of the link, in order
    PromUpload upload{*context, *link, *driver, &terminal};
    Reflasher reflasher{*context, *link, *driver, &terminal};

    PromFixture()
    {
        transport.beforeCount = [this] {
            if (!pieces.isEmpty())
                transport.Inject(pieces.takeFirst());
        };
    }

    // The lines the board got after `line`, the first `line` excluded.
    QList<QByteArray> LinesAfter(const QByteArray &line) const
    {
        const qsizetype at = transport.lines.indexOf(line);
        return at < 0 ? QList<QByteArray>{} : transport.lines.mid(at + 1);
    }

    // Takes a board-side program off the search paths.
    void RemoveShipped(const QString &name)
    {
        for (const QString &board : {QStringLiteral("KVR4410/"), QStringLiteral("KVR6630/")})
            QFile::remove(paths->ProgramFolder() + board + name);
    }
};

} // namespace kvr::test
