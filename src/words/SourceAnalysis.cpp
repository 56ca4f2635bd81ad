#include "words/SourceAnalysis.h"
#include "app/Prompts.h"
#include "app/Text.h"
#include "compiler/IncludeReader.h"
#include "compiler/SourceText.h"
#include "words/Suggestions.h"

namespace kvr {

namespace {

// Whether the cleaned line holds one of the defining words `kinds` admits.
bool HoldsDefiningWord(const QString &cleaned, bool createToo)
{
    for (QStringView token : QStringView(cleaned).split(QLatin1Char(' '))) {
        const DefiningKind kind = KindOf(token);
        if (kind != DefiningKind::None && (createToo || kind != DefiningKind::Data))
            return true;
    }
    return false;
}

} // namespace

SourceAnalysis::SourceAnalysis(IncludeReader &reader, WordTable &table, Prompts &prompts,
                               const QString &computerType)
    : m_reader(reader), m_table(table), m_prompts(prompts), m_computerType(computerType)
{
}

void SourceAnalysis::SetSuggestions(SuggestionAnalysis *analysis, std::function<void(const QStringList &)> write)
{
    m_suggestions = analysis;
    m_write = std::move(write);
}

SourceAnalysis::Take SourceAnalysis::TakeLine(Taken &taken)
{
    if (stopRequested && stopRequested())
        return Take::Stopped;
    switch (m_reader.Next(taken.raw)) {
    case IncludeReader::Event::Finished:
        return Take::Finished;
    case IncludeReader::Event::NotFound:
        return Take::NotFound;
    case IncludeReader::Event::FileEnded:
        return Take::FileEnded;
    case IncludeReader::Event::Line:
        break;
    }
    taken.file = m_reader.CurrentFile();
    taken.line = m_reader.CurrentLine();
    if (afterLine)
        afterLine();
    if (IncludeReader::IsInclude(taken.raw))
        return Take::Include;
    Clean(taken);
    return Take::Line;
}

void SourceAnalysis::Clean(Taken &taken)
{
    taken.cleaned = taken.raw;
    CompactLine(taken.cleaned);
    if (m_suggestions) {
        QStringList blocks;
        m_suggestions->AnalyseLine(taken.file, taken.cleaned, blocks);
        if (!blocks.isEmpty() && m_write)
            m_write(blocks);
    }
    BlankStrings(taken.cleaned, m_computerType);
    // Counted now, against the table as it stands: a word defined later in
    // the reading order, or on this very line, is not counted here.
    for (QStringView token : QStringView(taken.cleaned).split(QLatin1Char(' ')))
        if (IsCountedToken(token))
            m_table.Count(token, taken.file, taken.line);
}

SourceAnalysis::End SourceAnalysis::Run(const QString &mainFile)
{
    m_reader.Start(mainFile);
    Outcome outcome;
    for (;;) {
        Taken taken;
        Take take;
        if (outcome.next == Take::Line || outcome.next == Take::Include) {
            take = outcome.next;
            taken = std::move(outcome.pending);
        } else {
            take = TakeLine(taken);
        }
        outcome = Outcome{};
        switch (take) {
        case Take::Stopped:
            m_reader.CloseAll();
            return End::Stopped;
        case Take::NotFound:
            m_reader.CloseAll();
            return End::FileNotFound;
        case Take::Finished:
            return End::Finished;
        case Take::FileEnded:
            break;
        case Take::Include:
            m_reader.Include(taken.raw);
            break;
        case Take::Line:
            outcome = Scan(taken);
            if (outcome.next == Take::Stopped || outcome.next == Take::NotFound || outcome.next == Take::Finished) {
                m_reader.CloseAll();
                return outcome.next == Take::Stopped    ? End::Stopped
                       : outcome.next == Take::NotFound ? End::FileNotFound
                                                        : End::Finished;
            }
            break;
        }
    }
}

SourceAnalysis::Outcome SourceAnalysis::Scan(const Taken &taken)
{
    const QList<QStringView> tokens = QStringView(taken.cleaned).split(QLatin1Char(' '));
    for (qsizetype i = 0; i < tokens.size(); ++i) {
        const DefiningKind kind = KindOf(tokens[i]);
        if (kind == DefiningKind::None)
            continue;
        if (i + 1 >= tokens.size() || tokens[i + 1].isEmpty()) {
            NoNameMessage(taken);
            return {};
        }
        const QString name = tokens[i + 1].toString();
        // A definition in the source replaces a word of the same name.
        m_table.Remove(name);
        if (kind != DefiningKind::OneLine)
            return Collect(kind, name, taken);
        AddRecord(name, taken.raw, taken);
        ++i; // the scan goes on after the name
    }
    return {};
}

SourceAnalysis::Outcome SourceAnalysis::Collect(DefiningKind kind, const QString &name, const Taken &first)
{
    QString text = first.raw;
    QString current = first.cleaned;
    for (;;) {
        if (kind == DefiningKind::Code ? current.contains(QLatin1String("END-CODE"))
                                       : current.contains(QLatin1Char(';'))) {
            AddRecord(name, text, first);
            return {};
        }
        Taken next;
        const Take take = TakeLine(next);
        switch (take) {
        case Take::Stopped:
            // Not added: the build ends with what was added before.
            return {Take::Stopped, {}};
        case Take::FileEnded:
        case Take::Finished:
        case Take::NotFound:
            AddRecord(name, text, first);
            return {take, {}};
        case Take::Include:
            AddRecord(name, text, first);
            return {Take::Include, std::move(next)};
        case Take::Line:
            break;
        }
        // A new definition ends this one and is scanned in its own right;
        // CREATE may stand inside a colon definition.
        if (HoldsDefiningWord(next.cleaned, kind != DefiningKind::Colon)) {
            AddRecord(name, text, first);
            return {Take::Line, std::move(next)};
        }
        text += QStringLiteral("\r\n") + next.raw;
        current = next.cleaned;
        // A table goes on over empty lines and lines that compile data.
        if (kind == DefiningKind::Data && !current.isEmpty() && !current.contains(QLatin1Char(','))) {
            AddRecord(name, text, first);
            return {};
        }
    }
}

void SourceAnalysis::AddRecord(const QString &name, QString text, const Taken &first)
{
    while (text.endsWith(QLatin1Char(' ')) || text.endsWith(QLatin1Char('\n')) || text.endsWith(QLatin1Char('\r')))
        text.chop(1);
    WordRecord record;
    record.word = name;
    record.definition = text;
    record.file = ShortenPath(first.file);
    record.line = first.line;
    record.path = first.file;
    m_table.Add(std::move(record));
}

void SourceAnalysis::NoNameMessage(const Taken &taken)
{
    const QChar lf(10);
    m_prompts.Message(QStringLiteral("There may be definition without any word name on this line:") + lf + taken.raw
                          + lf + QStringLiteral("It is in file ") + taken.file
                          + QStringLiteral(".  Database construction will continue."),
                      PromptIcon::Information);
}

} // namespace kvr
