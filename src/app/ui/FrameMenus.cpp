// The frame's menus: captions, access keys and control names.
#include "app/ui/frmMDI.h"
#include <QMenuBar>

namespace kvr {

const int TimeoutValues[5] = {20000, 10000, 5000, 2000, 1000};
const int BaudValues[8] = {38400, 19200, 9600, 4800, 2400, 1200, 600, 300};

namespace {

QMenu *AddMenu(QMenuBar *bar, const char *name, const QString &caption)
{
    QMenu *menu = bar->addMenu(caption);
    menu->setObjectName(QString::fromLatin1(name));
    menu->menuAction()->setObjectName(QString::fromLatin1(name));
    return menu;
}

QMenu *AddSubMenu(QMenu *parent, const char *name, const QString &caption)
{
    QMenu *menu = parent->addMenu(caption);
    menu->setObjectName(QString::fromLatin1(name));
    menu->menuAction()->setObjectName(QString::fromLatin1(name));
    return menu;
}

QAction *AddItem(QMenu *menu, const QString &name, const QString &caption)
{
    QAction *action = menu->addAction(caption);
    action->setObjectName(name);
    return action;
}

QAction *AddItem(QMenu *menu, const char *name, const QString &caption)
{
    return AddItem(menu, QString::fromLatin1(name), caption);
}

} // namespace

QString frmMDI::ArrayName(const QString &name, int index)
{
    return QStringLiteral("%1(%2)").arg(name).arg(index);
}

void frmMDI::BuildMenus()
{
    QMenuBar *bar = menuBar();

    QMenu *file = AddMenu(bar, "mnuFile", QStringLiteral("&File"));
    AddItem(file, "mnuFNew", QStringLiteral("&New"));
    AddItem(file, "mnuFOpen", QStringLiteral("&Open"));
    AddItem(file, "mnuFDelete", QStringLiteral("&Kill"));
    file->addSeparator();
    AddItem(file, "mnuFCapture", QStringLiteral("&Capture to file"));
    file->addSeparator();
    AddItem(file, "mnuFExtEditor", QStringLiteral("&External editor"));
    AddItem(file, "mnuFShell", QStringLiteral("&DOS window"));
    file->addSeparator();
    AddItem(file, "mnuFExit", QStringLiteral("E&xit"));
    for (int i = 1; i <= 8; ++i)
        AddItem(file, ArrayName(QStringLiteral("mnuRecentFile"), i), QString())->setVisible(false);

    QMenu *prom = AddMenu(bar, "mnuPROM", QStringLiteral("&PROMs"));
    AddItem(prom, "mnuPUp", QStringLiteral("&Upload from KVR"));
    AddItem(prom, "mnuPDown", QStringLiteral("&Download to programmer"));
    AddItem(prom, "mnuPFlash", QStringLiteral("&Re-Flash KVR4410F"));

    QMenu *dictionary = AddMenu(bar, "mnuDictionary", QStringLiteral("Dictionar&y "));
    AddItem(dictionary, "mnuZap", QStringLiteral("&Zap dictionary"));

    QMenu *options = AddMenu(bar, "mnuOptions", QStringLiteral("&Options"));
    AddItem(options, "mnuOQuestions", QStringLiteral("&KVR computer"));
    AddItem(options, "mnuODelay", QStringLiteral("&Intercharacter delay"));
    QMenu *timeout = AddSubMenu(options, "mnuOTimeout", QStringLiteral("&Timeout"));
    const QStringList timeoutCaptions = {QStringLiteral("20 secs."), QStringLiteral("10 secs."),
                                         QStringLiteral("5 secs."), QStringLiteral("2 secs."),
                                         QStringLiteral("1 sec.")};
    for (int i = 0; i < timeoutCaptions.size(); ++i)
        AddItem(timeout, ArrayName(QStringLiteral("mnuOTimeoutArray"), i), timeoutCaptions[i])
            ->setCheckable(true);
    QMenu *baud = AddSubMenu(options, "mnuOBaud", QStringLiteral("Baud &Rate"));
    const QStringList baudCaptions = {QStringLiteral("3840&0"), QStringLiteral("&19200"),
                                      QStringLiteral("&9600"),  QStringLiteral("4&800"),
                                      QStringLiteral("2&400"),  QStringLiteral("1&200"),
                                      QStringLiteral("&600"),   QStringLiteral("&300")};
    for (int i = 0; i < baudCaptions.size(); ++i)
        AddItem(baud, ArrayName(QStringLiteral("mnuOBaudArray"), i), baudCaptions[i])->setCheckable(true);
    QMenu *port = AddSubMenu(options, "mnuOComPort", QStringLiteral("Com &Port"));
    AddItem(port, ArrayName(QStringLiteral("mnuOP"), 0), QStringLiteral("Remote"))->setCheckable(true);
    for (int n = 1; n <= 20; ++n) {
        const QString caption = n <= 9 ? QStringLiteral("COM&%1").arg(n) : QStringLiteral("COM%1").arg(n);
        AddItem(port, ArrayName(QStringLiteral("mnuOP"), n), caption)->setCheckable(true);
    }
    AddItem(options, "mnuIP", QStringLiteral("&Remote KVR computer"));
    AddItem(options, "mnuOCapsLock", QStringLiteral("Caps &Lock"))->setCheckable(true);
    options->addSeparator();
    QMenu *colors = AddSubMenu(options, "mnuOColors", QStringLiteral("Interactive &Colors"));
    AddItem(colors, "mnuOCBackground", QStringLiteral("&Background"));
    AddItem(colors, "mnuOCText", QStringLiteral("&Text"));
    options->addSeparator();
    AddItem(options, "mnuOFont", QStringLiteral("&Font"));

    QMenu *window = AddMenu(bar, "mnuWindow", QStringLiteral("&Window"));
    AddItem(window, "mnuWCascade", QStringLiteral("&Cascade source"));
    AddItem(window, "mnuWHorizontal", QStringLiteral("Tile &Horizontal"));
    AddItem(window, "mnuWVertical", QStringLiteral("Tile &Vertical"));
    AddItem(window, "mnuWArrange", QStringLiteral("&Arrange icons"));
    window->addSeparator();
    AddItem(window, "mnuWTerminal", QStringLiteral("&Interactive window"));

    QMenu *definitions = AddMenu(bar, "mnuD", QStringLiteral("&Definitions"));
    AddItem(definitions, "mnuDView", QStringLiteral("&View database"));

    QMenu *manual = AddMenu(bar, "mnuManual", QStringLiteral("&Manual"));
    AddItem(manual, "mnuMkvr4410", QStringLiteral("KVR&4410F Manual"));
    AddItem(manual, "mnuMkvr6630", QStringLiteral("KVR&6630 Manual"));
    AddItem(manual, "mnuMReadme", QStringLiteral("&Latest information"));
    AddItem(manual, "mnuMUpdates", QStringLiteral("ROM &Updates"));
    AddItem(manual, "mnuMWords", QStringLiteral("&Forth words"));

    QMenu *help = AddMenu(bar, "mnuHelp", QStringLiteral("&Help"));
    AddItem(help, "mnuOnScreen", QStringLiteral("Development system &Help"));
    AddItem(help, "mnuWebsiteL", QStringLiteral("KVR &Website"));
    AddItem(help, "mnuWebsiteR", QStringLiteral("KVR &Resources"));
    AddItem(help, "mnuPrices", QStringLiteral("&Prices"));
    AddItem(help, "mnuAbout", QStringLiteral("&About"));
}

} // namespace kvr
