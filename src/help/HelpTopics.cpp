#include "help/HelpTopics.h"
#include <QHash>

namespace kvr {

QString TopicFor(const QStringList &objectNames)
{
    // The delay combo has its own page: the rest of frmDelay has none, so
    // the combo's name is looked up like a window's.
    static const QHash<QString, QString> topics = {
        {QStringLiteral("CmbDelay"), QStringLiteral("intercharacter")},
        {QStringLiteral("frmDelay"), QStringLiteral("intercharacter")},
        {QStringLiteral("frmEmulator"), QStringLiteral("interactivewindow")},
        {QStringLiteral("frmNotePad"), QStringLiteral("editorwindow")},
        {QStringLiteral("frmFind"), QStringLiteral("editorwindow")},
        {QStringLiteral("frmStatus"), QStringLiteral("compilationreportwindow")},
        {QStringLiteral("frmPROMUp"), QStringLiteral("promfileupload")},
        {QStringLiteral("frmReFlash"), QStringLiteral("reflash")},
        {QStringLiteral("frmPROMDown"), QStringLiteral("promdownload")},
        {QStringLiteral("frmWords"), QStringLiteral("wordswindow")},
        {QStringLiteral("frmComputer"), QStringLiteral("computer")},
        {QStringLiteral("frmOpening"), QStringLiteral("gettingstarted")},
        {QStringLiteral("frmRemote"), QStringLiteral("computer")},
        {QStringLiteral("frmBrowser"), QStringLiteral("helpwindow")},
        {QStringLiteral("frmMDI"), QStringLiteral("index")},
    };
    for (const QString &name : objectNames) {
        const auto it = topics.constFind(name);
        if (it != topics.constEnd())
            return *it;
    }
    return {};
}

} // namespace kvr
