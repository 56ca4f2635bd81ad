#include "help/HelpLibrary.h"
#include "app/Paths.h"
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

namespace kvr {

namespace {

QString ReadText(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll());
}

QString Escaped(const QString &text)
{
    return text.toHtmlEscaped();
}

QSet<QString> Anchors(const QString &html)
{
    static const QRegularExpression anchor(QStringLiteral(R"re((?:id|name)\s*=\s*"([^"]+)")re"));
    QSet<QString> names;
    for (const auto &match : anchor.globalMatch(html))
        names.insert(match.captured(1));
    return names;
}

} // namespace

QString HelpFolder(const Paths &paths)
{
    return paths.InstallDataFolder() + QStringLiteral("help/");
}

QString WordListsFolder(const Paths &paths)
{
    return paths.InstallDataFolder() + QStringLiteral("words/");
}

QString TopicFile(const QString &helpFolder, const QString &topic)
{
    // A topic is a plain name: nothing may lead out of the help folder.
    static const QRegularExpression plain(QStringLiteral("^[a-z0-9-]+$"));
    if (!plain.match(topic).hasMatch())
        return {};
    const QString path = QDir(helpFolder).filePath(topic + QStringLiteral(".html"));
    return QFileInfo::exists(path) ? path : QString();
}

QString PageTitle(const QString &html)
{
    static const QRegularExpression title(QStringLiteral("<title>(.*?)</title>"),
                                          QRegularExpression::CaseInsensitiveOption
                                              | QRegularExpression::DotMatchesEverythingOption);
    const auto match = title.match(html);
    return match.hasMatch() ? match.captured(1).simplified() : QString();
}

QList<WordEntry> ParseWordList(const QString &text)
{
    QList<WordEntry> words;
    for (const QString &raw : text.split(QLatin1Char('\n'))) {
        const QString line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('\\')))
            continue;
        WordEntry entry;
        const qsizetype gap = line.indexOf(QRegularExpression(QStringLiteral("\\s")));
        entry.name = gap < 0 ? line : line.left(gap);
        QString rest = gap < 0 ? QString() : line.mid(gap).trimmed();
        if (rest.startsWith(QLatin1String("( "))) {
            const qsizetype close = rest.indexOf(QLatin1String(" )"));
            if (close > 0) {
                entry.stack = rest.left(close + 2);
                rest = rest.mid(close + 2).trimmed();
            }
        }
        entry.description = rest;
        words << entry;
    }
    return words;
}

QString FillWordLists(const QString &html, const QString &wordsFolder)
{
    static const QRegularExpression marker(QStringLiteral(R"re(<!--words\s+([^>]*?)\s*-->)re"));
    QString result;
    qsizetype last = 0;
    for (const auto &match : marker.globalMatch(html)) {
        result += html.mid(last, match.capturedStart() - last);
        last = match.capturedEnd();
        QString table;
        for (const QString &name : match.captured(1).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            const QString path = QDir(wordsFolder).filePath(name + QStringLiteral(".words"));
            if (!QFileInfo::exists(path)) {
                table += QStringLiteral("<p><i>The list %1 comes with the words database templates, "
                                        "which this copy does not have.</i></p>\n")
                             .arg(Escaped(name));
                continue;
            }
            table += QStringLiteral("<table border=\"1\" cellpadding=\"3\" cellspacing=\"0\">\n"
                                    "<tr><th>Word</th><th>Stack</th><th>What it does</th></tr>\n");
            for (const WordEntry &word : ParseWordList(ReadText(path)))
                table += QStringLiteral("<tr><td><tt>%1</tt></td><td><tt>%2</tt></td><td>%3</td></tr>\n")
                             .arg(Escaped(word.name), Escaped(word.stack), Escaped(word.description));
            table += QStringLiteral("</table>\n");
        }
        result += table;
    }
    result += html.mid(last);
    return result;
}

QStringList DeadLinks(const QString &helpFolder)
{
    static const QRegularExpression link(QStringLiteral(R"re((?:href|src)\s*=\s*"([^"]*)")re"),
                                         QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression scheme(QStringLiteral("^[a-z][a-z0-9+.-]*:"),
                                           QRegularExpression::CaseInsensitiveOption);
    QStringList dead;
    const QDir folder(helpFolder);
    const QStringList pages = folder.entryList({QStringLiteral("*.html")}, QDir::Files, QDir::Name);
    for (const QString &page : pages) {
        const QString html = ReadText(folder.filePath(page));
        for (const auto &match : link.globalMatch(html)) {
            const QString target = match.captured(1);
            if (scheme.match(target).hasMatch())
                continue;
            const qsizetype hash = target.indexOf(QLatin1Char('#'));
            const QString file = hash < 0 ? target : target.left(hash);
            const QString fragment = hash < 0 ? QString() : target.mid(hash + 1);
            const QString path = file.isEmpty() ? folder.filePath(page) : folder.filePath(file);
            bool ok = !target.isEmpty() && QFileInfo(path).isFile();
            if (ok && !fragment.isEmpty())
                ok = Anchors(ReadText(path)).contains(fragment);
            if (!ok)
                dead << page + QStringLiteral(": ") + target;
        }
    }
    return dead;
}

} // namespace kvr
