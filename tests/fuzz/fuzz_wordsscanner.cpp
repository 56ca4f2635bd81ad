// Any program file through the words builder's reading loop, with the
// suggestion rules watching: definitions of every kind, broken ones,
// strings and brackets left open, INCLUDE lines naming nothing there.
#include "FuzzInput.h"
#include "app/ScriptedPrompts.h"
#include "compiler/IncludeReader.h"
#include "words/SourceAnalysis.h"
#include "words/Suggestions.h"

#include <QFile>
#include <QTemporaryDir>

using namespace kvr;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static QTemporaryDir dir;
    static const QString types[] = {QStringLiteral("4410ANS"), QStringLiteral("4410Fig"), QStringLiteral("6630Fig")};
    if (size < 1)
        return 0;
    const QString type = types[data[0] % 3];
    const QString path = dir.filePath(QStringLiteral("MAIN.KVR"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return 0;
    file.write(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    file.close();

    ScriptedPrompts prompts;
    IncludeReader reader(prompts, dir.path());
    WordTable table;
    table.Add(WordRecord{QStringLiteral("DUP"), QStringLiteral("( n -- n n )")});
    SourceAnalysis analysis(reader, table, prompts, type);
    SuggestionAnalysis suggestions(type, {});
    analysis.SetSuggestions(&suggestions, [](const QStringList &) {});
    analysis.Run(path);
    for (const WordRecord *record : table.InIndexOrder())
        fuzz::Require(!record->references || *record->references >= 0, "references are not negative");
    return 0;
}
