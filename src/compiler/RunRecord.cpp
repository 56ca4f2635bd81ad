#include "compiler/RunRecord.h"
#include "app/SafeSave.h"
#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace kvr {

namespace {

const QList<QPair<RunEnd, QString>> &EndNames()
{
    static const QList<QPair<RunEnd, QString>> names = {
        {RunEnd::Finished, QStringLiteral("finished")},
        {RunEnd::FileNotFound, QStringLiteral("file-not-found")},
        {RunEnd::OverLong, QStringLiteral("over-long")},
        {RunEnd::ConditionalError, QStringLiteral("conditional-error")},
        {RunEnd::BoardError, QStringLiteral("board-error")},
        {RunEnd::NotResponding, QStringLiteral("not-responding")},
        {RunEnd::Halted, QStringLiteral("halted")},
    };
    return names;
}

bool IsBlank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

// Index just past the first `close` at or after `from`; the end when none.
qsizetype PastClosing(QStringView text, qsizetype from, QChar close)
{
    const qsizetype at = text.indexOf(close, from);
    return at < 0 ? text.size() : at + 1;
}

} // namespace

bool DefinitionOpenAfter(QStringView text, bool openBefore)
{
    bool open = openBefore;
    qsizetype i = 0;
    while (i < text.size()) {
        while (i < text.size() && IsBlank(text[i]))
            ++i;
        qsizetype end = i;
        while (end < text.size() && !IsBlank(text[end]))
            ++end;
        const QString word = text.mid(i, end - i).toString().toUpper();
        i = end;
        if (word.isEmpty())
            break;
        if (word == QLatin1String("\\"))
            break;
        if (word == QLatin1String("(") || word == QLatin1String(".("))
            i = PastClosing(text, i, QLatin1Char(')'));
        else if (word.size() >= 2 && word.endsWith(QLatin1Char('"')))
            i = PastClosing(text, i + 1, QLatin1Char('"')); // ." S" C" ABORT" and kin
        else if (word == QLatin1String(":") || word == QLatin1String(":NONAME") || word == QLatin1String("CODE"))
            open = true;
        else if (word == QLatin1String(";") || word == QLatin1String("END-CODE"))
            open = false;
    }
    return open;
}

void RunRecord::Begin(const QString &topLevel)
{
    topLevelFile = topLevel;
    end = RunEnd::None;
    lines.clear();
    m_open = false;
}

void RunRecord::Add(const QString &file, int line, const QString &text)
{
    lines.append({file, line, text, m_open});
    m_open = DefinitionOpenAfter(text, m_open);
}

qsizetype RunRecord::RestartIndex() const
{
    qsizetype index = lines.size() - 1;
    while (index > 0 && lines[index].inDefinition)
        --index;
    return std::max<qsizetype>(index, 0);
}

bool RunRecord::Save(const QString &path) const
{
    // Each file is named once; lines refer to it by its place in the list.
    QJsonArray files;
    QHash<QString, int> fileIndex;
    QJsonArray sent;
    for (const SentLine &line : lines) {
        auto it = fileIndex.constFind(line.file);
        if (it == fileIndex.cend()) {
            it = fileIndex.insert(line.file, static_cast<int>(files.size()));
            files.append(line.file);
        }
        sent.append(QJsonArray{*it, line.line, line.text, line.inDefinition});
    }
    QString endName;
    for (const auto &[value, name] : EndNames())
        if (value == end)
            endName = name;
    const QJsonObject root{{QStringLiteral("top"), topLevelFile},
                           {QStringLiteral("end"), endName},
                           {QStringLiteral("files"), files},
                           {QStringLiteral("lines"), sent}};
    return SaveWholeFile(path, QJsonDocument(root).toJson(QJsonDocument::Compact)).Ok();
}

std::optional<RunRecord> RunRecord::Load(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QJsonObject root = QJsonDocument::fromJson(file.readAll()).object();
    const QJsonArray files = root.value(QStringLiteral("files")).toArray();
    RunRecord record;
    record.topLevelFile = root.value(QStringLiteral("top")).toString();
    const QString endName = root.value(QStringLiteral("end")).toString();
    for (const auto &[value, name] : EndNames())
        if (name == endName)
            record.end = value;
    for (const QJsonValue &value : root.value(QStringLiteral("lines")).toArray()) {
        const QJsonArray line = value.toArray();
        const int fileNumber = line.at(0).toInt(-1);
        if (line.size() != 4 || fileNumber < 0 || fileNumber >= files.size())
            return std::nullopt;
        record.lines.append({files.at(fileNumber).toString(), line.at(1).toInt(), line.at(2).toString(),
                             line.at(3).toBool()});
    }
    if (record.topLevelFile.isEmpty())
        return std::nullopt;
    return record;
}

} // namespace kvr
