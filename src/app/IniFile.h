#pragma once
// A private-profile file as the settings use it: sections and keys matched
// without regard to case, values trimmed and unquoted as the system's
// profile reader does. Every line the program does not change (comments,
// blank lines, keys of other programs) is written back as it was read.
// Files are UTF-8; an older file in Latin-1 is still read. Saved whole
// through QSaveFile.
#include <QHash>
#include <QList>
#include <QString>

namespace kvr {

class IniFile {
public:
    // Reads `path`; a missing or unreadable file gives an empty profile.
    bool Load(const QString &path);
    // Writes the whole profile; false (old file intact) when the write fails.
    bool Save(const QString &path) const;
    // The profile's text as Save writes it.
    QByteArray Bytes() const;
    void Parse(const QByteArray &bytes);

    bool Has(const QString &section, const QString &key) const;
    QString Value(const QString &section, const QString &key, const QString &fallback) const;
    void SetValue(const QString &section, const QString &key, const QString &value);
    void RemoveSection(const QString &section);
    QStringList Keys(const QString &section) const;
    QStringList Sections() const;

    // Puts `section` at `position`, the others keeping their order.
    void MoveSectionTo(const QString &section, qsizetype position);
    // Reorders a section's keys: those of `order` first in that order. Lines
    // that are not keys stay where they stand.
    void OrderKeys(const QString &section, const QStringList &order);

private:
    struct Line {
        QString raw;     // as read; what is written while unchanged
        QString key;     // empty for a line that is not a key
        QString value;
        bool changed = false;
    };
    struct Section {
        QString name;
        QString header;  // the raw "[name]" line; empty before the first section
        QList<Line> lines;
        QHash<QString, qsizetype> keys; // lower-case key -> index in lines
        bool added = false;              // not read from the file
        void Reindex();
    };
    Section *Find(const QString &section);
    const Section *Find(const QString &section) const;
    const Line *FindLine(const QString &section, const QString &key) const;
    void ReindexSections();

    QList<Section> m_sections;
    QHash<QString, qsizetype> m_sectionIndex; // lower-case name -> index
};

} // namespace kvr
