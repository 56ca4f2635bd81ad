#include "words/WordsBrowser.h"
#include "app/FilePaths.h"
#include "app/Prompts.h"
#include "app/Text.h"
#include "words/DatabaseBuilder.h"
#include "words/WordsReports.h"
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <cmath>

namespace kvr {

namespace {

// The notation entries of the templates: the builder never counts their uses.
bool IsNotationEntry(const QString &word)
{
    static const QStringList entries{QStringLiteral("^x"),   QStringLiteral("("),    QStringLiteral("\\"),
                                     QStringLiteral("$xxxx"), QStringLiteral("Rx"),   QStringLiteral("@Rx"),
                                     QStringLiteral("@-Rx"), QStringLiteral("@Rx+"), QStringLiteral("x\"")};
    return entries.contains(word);
}

bool IsBlank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\r') || c == QLatin1Char('\n');
}

} // namespace

bool WordsBrowser::Load(const QString &databasePath)
{
    Close();
    m_path = databasePath;
    auto database = std::make_unique<WordsDatabase>(ResolvePath(databasePath));
    if (!database->Open() || !database->LoadWords(m_table)) {
        m_table.Clear();
        return false;
    }
    m_database = std::move(database);
    m_records = m_table.InIndexOrder();
    m_keys.reserve(m_records.size());
    for (const WordRecord *record : std::as_const(m_records))
        m_keys.append(WordKey(record->word));
    return true;
}

void WordsBrowser::Close()
{
    m_records.clear();
    m_keys.clear();
    m_table.Clear();
    m_database.reset();
}

QString WordsBrowser::SourcePath() const
{
    return DatabaseBuilder::DerivedPath(m_path, QStringLiteral(".KVR"));
}

QString WordsBrowser::SuggestionsPath() const
{
    return DatabaseBuilder::DerivedPath(m_path, QStringLiteral(".SUG"));
}

QList<int> WordsBrowser::Filter(const QString &text) const
{
    const QString key = WordKey(text.trimmed());
    QList<int> rows;
    rows.reserve(m_keys.size());
    for (int row = 0; row < m_keys.size(); ++row)
        if (m_keys[row].contains(key))
            rows.append(row);
    return rows;
}

int WordsBrowser::Seek(const QString &entry) const
{
    if (m_keys.isEmpty())
        return -1;
    // The padding blanks are no part of the word.
    const QString key = WordKey(RTrim(entry.mid(1, 11)));
    const auto it = std::lower_bound(m_keys.cbegin(), m_keys.cend(), key);
    return it == m_keys.cend() ? int(m_keys.size()) - 1 : int(it - m_keys.cbegin());
}

QStringList WordsBrowser::Report(const QDateTime &when) const
{
    const QString suggestions = ResolvePath(SuggestionsPath());
    return AlphanumericReport(m_records, SourcePath(), when,
                              QFileInfo(suggestions).isFile() ? ReadTextLines(suggestions) : QStringList());
}

QString WordsBrowser::ListEntry(const WordRecord &record)
{
    QString entry = QLatin1Char(' ') + record.word.left(11).leftJustified(11, QLatin1Char(' '));
    if (record.IsUserWord())
        entry += record.references ? QChar(QLatin1Char('|')) : QChar(31);
    return entry;
}

QString WordsBrowser::FileText(const WordRecord &record)
{
    return record.file ? QStringLiteral("File: ") + *record.file
                       : QStringLiteral("In Forth ROM (or library file if indicated)");
}

QString WordsBrowser::ReferencesText(const WordRecord &record)
{
    if (record.references)
        return QStringLiteral("References: ") + QString::number(*record.references);
    // The notation entries are the template's: a user word of that name is counted.
    return !record.IsUserWord() && IsNotationEntry(record.word) ? QStringLiteral("not counted")
                                                                : QStringLiteral("UNREFERENCED");
}

QStringList WordsBrowser::UsedBy(const WordRecord &record)
{
    QStringList lines;
    for (const ReferenceSite &site : record.sites)
        lines << ShortenPath(site.file) + QStringLiteral("  line ") + QString::number(site.line);
    return lines;
}

QString WordAt(const QString &text, int position)
{
    position = std::clamp(position, 0, int(text.size()));
    int start = position;
    while (start > 0 && !IsBlank(text[start - 1]))
        --start;
    int end = position;
    while (end < text.size() && !IsBlank(text[end]))
        ++end;
    return text.mid(start, end - start);
}

QString Completion(const QStringList &words, const QString &line)
{
    const qsizetype blank = line.lastIndexOf(QLatin1Char(' '));
    const QString typed = line.mid(blank + 1);
    if (typed.isEmpty())
        return {};
    const QString key = WordKey(typed);
    auto it = std::lower_bound(words.cbegin(), words.cend(), key,
                               [](const QString &word, const QString &k) { return WordKey(word) < k; });
    QString shared;
    int candidates = 0;
    for (; it != words.cend() && WordKey(*it).startsWith(key); ++it) {
        if (candidates++ == 0) {
            shared = *it;
            continue;
        }
        qsizetype common = 0;
        while (common < shared.size() && common < it->size()
               && WordKey(shared.mid(common, 1)) == WordKey(it->mid(common, 1)))
            ++common;
        shared.truncate(common);
    }
    if (candidates == 0)
        return {};
    QString rest = shared.mid(typed.size());
    if (candidates == 1)
        rest += QLatin1Char(' ');
    return rest;
}

QString WordCompleter::Complete(const QString &databasePath, const QString &line)
{
    const QString path = ResolvePath(databasePath);
    const QDateTime modified = QFileInfo(path).lastModified();
    if (path != m_path || modified != m_modified) {
        m_path = path;
        m_modified = modified;
        m_words.clear();
        WordsDatabase database(path);
        WordTable table;
        if (database.Open() && database.LoadWords(table))
            for (const WordRecord *record : table.InIndexOrder())
                m_words.append(record->word);
    }
    return Completion(m_words, line);
}

QStringList ReadTextLines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QString text = BytesToLatin1(file.readAll());
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    if (text.isEmpty())
        return {};
    if (text.endsWith(QLatin1Char('\n')))
        text.chop(1);
    return text.split(QLatin1Char('\n'));
}

QString WriteTextLines(const QString &path, const QStringList &lines)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    for (const QString &line : lines)
        file.write(Latin1ToBytes(line) + "\r\n");
    if (!file.commit())
        return file.errorString();
    return {};
}

int ListRowHeight(int fontSize, double dpi)
{
    return int(std::ceil((fontSize * 12 + 3) / 10.0 * dpi / 72.0));
}

QRect ReportTextGeometry(const QSize &inner)
{
    constexpr int margin = 2;
    const int top = int(inner.height() * 0.09);
    return QRect(margin, top, std::max(0, inner.width() - 2 * margin), int(inner.height() * 0.82));
}

} // namespace kvr
