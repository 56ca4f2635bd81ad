#pragma once
// The help pages shipped under data/help: where they are, what a topic
// names, the text shown for a page (board pages get their word lists from
// the words templates' own lists), and a check that every link resolves.
#include <QString>
#include <QStringList>

namespace kvr {

class Paths;

// The installed (or source-tree) help folder, with a trailing separator.
QString HelpFolder(const Paths &paths);
// The folder of the readable word lists the templates are made from.
QString WordListsFolder(const Paths &paths);

// "intercharacter" -> "<folder>intercharacter.html"; empty when missing.
QString TopicFile(const QString &helpFolder, const QString &topic);
inline const QString ContentsTopic = QStringLiteral("index");

// The page's <title>, or empty.
QString PageTitle(const QString &html);

// `html` with every `<!--words NAME ...-->` marker replaced by a table of
// the words in NAME.words of `wordsFolder`; when a list is missing the
// marker says where the list comes from instead.
QString FillWordLists(const QString &html, const QString &wordsFolder);

// One word of a words list: name, stack picture, what it does.
struct WordEntry {
    QString name;
    QString stack;
    QString description;
};
// Lines beginning with a backslash are comments; a line without a stack
// picture keeps its rest as the description.
QList<WordEntry> ParseWordList(const QString &text);

// Every link or image of every page of `helpFolder` that does not resolve
// to a file (or to an anchor of that file), as "page: target". Addresses
// with a scheme (https:, mailto:) are left to the desktop's browser.
QStringList DeadLinks(const QString &helpFolder);

} // namespace kvr
