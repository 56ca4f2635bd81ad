#include "app/IniFile.h"
#include "app/SafeSave.h"
#include <QFile>
#include <QStringDecoder>

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

// UTF-8 when the bytes are valid UTF-8; otherwise the Latin-1 of older files.
QString Decode(const QByteArray &bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(bytes);
    return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}
} // namespace

void IniFile::Section::Reindex()
{
    keys.clear();
    for (qsizetype i = 0; i < lines.size(); ++i)
        if (!lines[i].key.isEmpty())
            keys.insert(lines[i].key.toLower(), i);
}

void IniFile::ReindexSections()
{
    m_sectionIndex.clear();
    for (qsizetype i = 0; i < m_sections.size(); ++i)
        if (!m_sections[i].header.isEmpty())
            m_sectionIndex.insert(m_sections[i].name.toLower(), i);
}

bool IniFile::Load(const QString &path)
{
    m_sections.clear();
    m_sectionIndex.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    Parse(file.readAll());
    return true;
}

void IniFile::Parse(const QByteArray &bytes)
{
    m_sections.clear();
    m_sectionIndex.clear();
    const QString text = Decode(bytes);
    Section *current = nullptr;
    qsizetype start = 0;
    while (start < text.size()) {
        qsizetype end = start;
        while (end < text.size() && text[end] != QLatin1Char('\r') && text[end] != QLatin1Char('\n'))
            ++end;
        const QString raw = text.mid(start, end - start);
        start = end + (end + 1 < text.size() && text[end] == QLatin1Char('\r') && text[end + 1] == QLatin1Char('\n') ? 2 : 1);

        const QStringView line = QStringView(raw).trimmed();
        if (line.startsWith(QLatin1Char('['))) {
            const qsizetype close = line.indexOf(QLatin1Char(']'));
            const QString name = line.mid(1, close < 0 ? -1 : close - 1).trimmed().toString();
            // A section named twice continues the first one, as the system reader does.
            if (const auto found = m_sectionIndex.constFind(name.toLower()); found != m_sectionIndex.constEnd()) {
                current = &m_sections[*found];
                current->lines.append({raw, {}, {}, false});
            } else {
                m_sections.append({name, raw, {}, {}});
                m_sectionIndex.insert(name.toLower(), m_sections.size() - 1);
                current = &m_sections.last();
            }
            continue;
        }
        if (!current) {
            m_sections.append({QString(), QString(), {}, {}}); // lines before any section
            current = &m_sections.last();
        }
        Line entry{raw, {}, {}, false};
        const qsizetype eq = line.indexOf(QLatin1Char('='));
        if (!current->header.isEmpty() && eq > 0 && !line.startsWith(QLatin1Char(';'))) {
            const QString key = line.left(eq).trimmed().toString();
            // The first occurrence wins; a repeated key is kept as a plain line.
            if (!current->keys.contains(key.toLower())) {
                entry.key = key;
                entry.value = Unquote(line.mid(eq + 1).toString());
                current->keys.insert(key.toLower(), current->lines.size());
            }
        }
        current->lines.append(entry);
    }
}

QByteArray IniFile::Bytes() const
{
    QStringList out;
    for (const Section &s : m_sections) {
        if (!s.header.isEmpty()) {
            // A section the program adds is set apart as the others are.
            if (s.added && !out.isEmpty() && !out.last().trimmed().isEmpty())
                out << QString();
            out << s.header;
        }
        for (const Line &line : s.lines)
            out << (line.changed ? line.key + QLatin1Char('=') + line.value : line.raw);
    }
    QByteArray bytes = out.join(QStringLiteral("\r\n")).toUtf8();
    if (!bytes.isEmpty())
        bytes += "\r\n";
    return bytes;
}

bool IniFile::Save(const QString &path) const
{
    return SaveWholeFile(path, Bytes()).Ok();
}

IniFile::Section *IniFile::Find(const QString &section)
{
    const auto found = m_sectionIndex.constFind(section.toLower());
    return found == m_sectionIndex.constEnd() ? nullptr : &m_sections[*found];
}

const IniFile::Section *IniFile::Find(const QString &section) const
{
    return const_cast<IniFile *>(this)->Find(section);
}

const IniFile::Line *IniFile::FindLine(const QString &section, const QString &key) const
{
    const Section *s = Find(section);
    if (!s)
        return nullptr;
    const auto found = s->keys.constFind(key.toLower());
    return found == s->keys.constEnd() ? nullptr : &s->lines[*found];
}

bool IniFile::Has(const QString &section, const QString &key) const
{
    return FindLine(section, key) != nullptr;
}

QString IniFile::Value(const QString &section, const QString &key, const QString &fallback) const
{
    const Line *line = FindLine(section, key);
    return line ? line->value : fallback;
}

void IniFile::SetValue(const QString &section, const QString &key, const QString &value)
{
    Section *s = Find(section);
    if (!s) {
        m_sections.append({section, QLatin1Char('[') + section + QLatin1Char(']'), {}, {}, true});
        m_sectionIndex.insert(section.toLower(), m_sections.size() - 1);
        s = &m_sections.last();
    }
    if (const auto found = s->keys.constFind(key.toLower()); found != s->keys.constEnd()) {
        Line &line = s->lines[*found];
        if (line.value != value) {
            line.value = value;
            line.changed = true;
        }
        return;
    }
    // A new key goes after the section's last non-blank line, before the
    // blank lines that part it from the next section.
    qsizetype at = s->lines.size();
    while (at > 0 && s->lines[at - 1].raw.trimmed().isEmpty() && s->lines[at - 1].key.isEmpty())
        --at;
    s->lines.insert(at, {QString(), key, value, true});
    s->Reindex();
}

void IniFile::RemoveSection(const QString &section)
{
    m_sections.removeIf([&](const Section &s) {
        return !s.header.isEmpty() && s.name.compare(section, Qt::CaseInsensitive) == 0;
    });
    ReindexSections();
}

QStringList IniFile::Keys(const QString &section) const
{
    QStringList keys;
    if (const Section *s = Find(section))
        for (const Line &line : s->lines)
            if (!line.key.isEmpty())
                keys << line.key;
    return keys;
}

QStringList IniFile::Sections() const
{
    QStringList names;
    for (const Section &s : m_sections)
        if (!s.header.isEmpty())
            names << s.name;
    return names;
}

void IniFile::MoveSectionTo(const QString &section, qsizetype position)
{
    const auto found = m_sectionIndex.constFind(section.toLower());
    if (found == m_sectionIndex.constEnd())
        return;
    // Lines before the first section stay first.
    const qsizetype offset = !m_sections.isEmpty() && m_sections.first().header.isEmpty() ? 1 : 0;
    m_sections.move(*found, std::min(position + offset, m_sections.size() - 1));
    ReindexSections();
}

void IniFile::OrderKeys(const QString &section, const QStringList &order)
{
    Section *s = Find(section);
    if (!s)
        return;
    QList<qsizetype> places;
    QList<Line> entries;
    for (qsizetype i = 0; i < s->lines.size(); ++i)
        if (!s->lines[i].key.isEmpty()) {
            places << i;
            entries << s->lines[i];
        }
    QList<Line> ordered;
    for (const QString &key : order)
        for (qsizetype i = 0; i < entries.size(); ++i)
            if (entries[i].key.compare(key, Qt::CaseInsensitive) == 0) {
                ordered << entries.takeAt(i);
                break;
            }
    ordered << entries;
    for (qsizetype i = 0; i < places.size(); ++i)
        s->lines[places[i]] = ordered[i];
    s->Reindex();
}

} // namespace kvr
