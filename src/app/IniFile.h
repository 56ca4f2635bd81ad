#pragma once
// A private-profile file as the settings use it: sections and keys matched
// without regard to case, order kept, values trimmed and unquoted as the
// system's profile reader does. Saved whole through QSaveFile.
#include <QList>
#include <QPair>
#include <QString>

namespace kvr {

class IniFile {
public:
    // Reads `path`; a missing or unreadable file gives an empty profile.
    bool Load(const QString &path);
    // Writes the whole profile; false (old file intact) when the write fails.
    bool Save(const QString &path) const;

    bool Has(const QString &section, const QString &key) const;
    QString Value(const QString &section, const QString &key, const QString &fallback) const;
    void SetValue(const QString &section, const QString &key, const QString &value);
    void RemoveSection(const QString &section);
    QStringList Keys(const QString &section) const;
    QStringList Sections() const;

    // Puts `section` first, then the others in their current order.
    void MoveSectionTo(const QString &section, qsizetype position);
    // Reorders a section's keys: those of `order` first in that order.
    void OrderKeys(const QString &section, const QStringList &order);

private:
    struct Section {
        QString name;
        QList<QPair<QString, QString>> entries;
    };
    Section *Find(const QString &section);
    const Section *Find(const QString &section) const;
    QList<Section> m_sections;
};

} // namespace kvr
