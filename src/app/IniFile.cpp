#include "app/IniFile.h"
#include <QFile>
#include <QRegularExpression>
#include "app/SafeSave.h"

namespace kvr {

namespace {
QString Unquote(QString value)
{
    value = value.trimmed();
    if (value.size() >= 2) {
        const QChar first = value.front();
        if ((first == QLatin1Char('"') || first == QLatin1Char('\'')) && value.back() == first)
            return value.mid(1, value.size() - 2);
    }
    return value;
}
} // namespace

bool IniFile::Load(const QString &path)
{
    m_sections.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QString text = QString::fromLatin1(file.readAll());
    Section *current = nullptr;
    const auto lines = QStringView(text).split(QRegularExpression(QStringLiteral("\r\n|\n|\r")));
    for (QStringView raw : lines) {
        const QStringView line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char(';')))
            continue;
        if (line.startsWith(QLatin1Char('['))) {
            const qsizetype close = line.indexOf(QLatin1Char(']'));
            const QString name = line.mid(1, close < 0 ? -1 : close - 1).trimmed().toString();
            current = Find(name);
            if (!current) {
                m_sections.append({name, {}});
                current = &m_sections.last();
            }
            continue;
        }
        if (!current)
            continue;
        const qsizetype eq = line.indexOf(QLatin1Char('='));
        if (eq <= 0)
            continue;
        const QString key = line.left(eq).trimmed().toString();
        const QString value = Unquote(line.mid(eq + 1).toString());
        bool found = false;
        for (auto &entry : current->entries) {
            if (entry.first.compare(key, Qt::CaseInsensitive) == 0) {
                found = true; // the first occurrence wins, as with the system reader
                break;
            }
        }
        if (!found)
            current->entries.append({key, value});
    }
    return true;
}

bool IniFile::Save(const QString &path) const
{
    QByteArray bytes;
    bool first = true;
    for (const Section &s : m_sections) {
        if (!first)
            bytes += "\r\n";
        first = false;
        bytes += '[' + s.name.toLatin1() + "]\r\n";
        for (const auto &entry : s.entries)
            bytes += entry.first.toLatin1() + '=' + entry.second.toLatin1() + "\r\n";
    }
    return SaveWholeFile(path, bytes).Ok();
}

IniFile::Section *IniFile::Find(const QString &section)
{
    for (Section &s : m_sections)
        if (s.name.compare(section, Qt::CaseInsensitive) == 0)
            return &s;
    return nullptr;
}

const IniFile::Section *IniFile::Find(const QString &section) const
{
    return const_cast<IniFile *>(this)->Find(section);
}

bool IniFile::Has(const QString &section, const QString &key) const
{
    if (const Section *s = Find(section))
        for (const auto &entry : s->entries)
            if (entry.first.compare(key, Qt::CaseInsensitive) == 0)
                return true;
    return false;
}

QString IniFile::Value(const QString &section, const QString &key, const QString &fallback) const
{
    if (const Section *s = Find(section))
        for (const auto &entry : s->entries)
            if (entry.first.compare(key, Qt::CaseInsensitive) == 0)
                return entry.second;
    return fallback;
}

void IniFile::SetValue(const QString &section, const QString &key, const QString &value)
{
    Section *s = Find(section);
    if (!s) {
        m_sections.append({section, {}});
        s = &m_sections.last();
    }
    for (auto &entry : s->entries) {
        if (entry.first.compare(key, Qt::CaseInsensitive) == 0) {
            entry.second = value;
            return;
        }
    }
    s->entries.append({key, value});
}

void IniFile::RemoveSection(const QString &section)
{
    m_sections.removeIf([&](const Section &s) {
        return s.name.compare(section, Qt::CaseInsensitive) == 0;
    });
}

QStringList IniFile::Keys(const QString &section) const
{
    QStringList keys;
    if (const Section *s = Find(section))
        for (const auto &entry : s->entries)
            keys << entry.first;
    return keys;
}

QStringList IniFile::Sections() const
{
    QStringList names;
    for (const Section &s : m_sections)
        names << s.name;
    return names;
}

void IniFile::MoveSectionTo(const QString &section, qsizetype position)
{
    for (qsizetype i = 0; i < m_sections.size(); ++i) {
        if (m_sections[i].name.compare(section, Qt::CaseInsensitive) == 0) {
            m_sections.move(i, std::min(position, m_sections.size() - 1));
            return;
        }
    }
}

void IniFile::OrderKeys(const QString &section, const QStringList &order)
{
    Section *s = Find(section);
    if (!s)
        return;
    QList<QPair<QString, QString>> ordered;
    for (const QString &key : order) {
        for (qsizetype i = 0; i < s->entries.size(); ++i) {
            if (s->entries[i].first.compare(key, Qt::CaseInsensitive) == 0) {
                ordered.append(s->entries.takeAt(i));
                break;
            }
        }
    }
    ordered.append(s->entries);
    s->entries = ordered;
}

} // namespace kvr
