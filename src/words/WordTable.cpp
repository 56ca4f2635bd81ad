#include "words/WordTable.h"
#include <algorithm>

namespace kvr {

QString WordKey(QStringView word)
{
    QString key = word.toString();
    for (QChar &c : key)
        if (c >= QLatin1Char('A') && c <= QLatin1Char('Z'))
            c = QChar(c.unicode() + 32);
    return key;
}

WordRecord *WordTable::Find(QStringView word)
{
    const auto it = m_records.find(WordKey(word));
    return it == m_records.end() || it->isEmpty() ? nullptr : &it->first();
}

const WordRecord *WordTable::Find(QStringView word) const
{
    const auto it = m_records.constFind(WordKey(word));
    return it == m_records.cend() || it->isEmpty() ? nullptr : &it->first();
}

bool WordTable::Remove(QStringView word)
{
    const auto it = m_records.find(WordKey(word));
    if (it == m_records.end() || it->isEmpty())
        return false;
    it->removeFirst();
    if (it->isEmpty())
        m_records.erase(it);
    --m_size;
    return true;
}

void WordTable::Add(WordRecord record)
{
    m_records[WordKey(record.word)].append(std::move(record));
    ++m_size;
}

bool WordTable::Count(QStringView token, const QString &file, int line)
{
    WordRecord *record = Find(token);
    if (!record)
        return false;
    record->references = record->references ? *record->references + 1 : 1;
    record->sites.append({file, line});
    return true;
}

void WordTable::Clear()
{
    m_records.clear();
    m_size = 0;
}

QList<const WordRecord *> WordTable::InIndexOrder() const
{
    QList<QPair<QString, const QList<WordRecord> *>> keys;
    keys.reserve(m_records.size());
    for (auto it = m_records.cbegin(); it != m_records.cend(); ++it)
        keys.append({it.key(), &it.value()});
    // Code unit order is the byte order of the database's UTF-8 for every
    // character a source file can hold.
    std::sort(keys.begin(), keys.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
    QList<const WordRecord *> result;
    result.reserve(m_size);
    for (const auto &entry : keys)
        for (const WordRecord &record : *entry.second)
            result.append(&record);
    return result;
}

} // namespace kvr
