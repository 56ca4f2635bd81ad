#include "pc/MainAssembly.h"
#include "app/BoardChoice.h"
#include "app/ui/frmComputer.h"
#include "app/ui/frmMDI.h"
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPlainTextEdit>

namespace kvr {

MainAssembly::MainAssembly(AppContext &context, frmMDI &frame, const PcCommandLine &commandLine)
    : QObject(&frame), m_context(context), m_frame(frame), m_commandLine(commandLine)
{
    InstallTerminal();
    InstallEditors();
    InstallCompiler();
    connect(&m_frame, &frmMDI::PortRequested, this, &MainAssembly::SwitchPort);
}

void MainAssembly::InstallEditors()
{
}

void MainAssembly::InstallTerminal()
{
}

void MainAssembly::InstallCompiler()
{
}

void MainAssembly::OpenFirstEditorWindow()
{
    auto *editor = new QPlainTextEdit;
    editor->setObjectName(QStringLiteral("frmNotePad"));
    QMdiSubWindow *window = m_frame.MdiArea()->addSubWindow(editor);
    window->setWindowTitle(QStringLiteral("Source code 1"));
    window->show();
}

void MainAssembly::SwitchPort(int port)
{
    m_context.settings.commPort = QStringLiteral("COM%1").arg(port);
    m_context.WriteSettings();
}

void MainAssembly::ConnectToBoard()
{
}

void MainAssembly::ShowOpeningDialogue()
{
    frmOpening dialog(m_context.settings, &m_frame);
    const int outcome = dialog.exec();
    const QString showAgain = dialog.ShowAgain() ? QStringLiteral("ON") : QStringLiteral("OFF");
    const bool showChanged = showAgain != m_context.settings.openingDialogue;
    m_context.settings.openingDialogue = showAgain;
    if (outcome == frmOpening::Skip) {
        if (showChanged)
            m_context.WriteSettings();
        return;
    }
    const BoardChoice choice = dialog.Choice();
    const bool switchLink = ApplyBoardChoice(m_context.settings, choice);
    m_context.WriteSettings();
    if (switchLink)
        SwitchPort(choice.port);
    else
        ConnectToBoard();
    if (outcome == frmOpening::OpenFile)
        if (QAction *open = m_frame.Item(QStringLiteral("mnuFOpen")))
            open->trigger();
}

void MainAssembly::Start()
{
    OpenFirstEditorWindow();
    if (!m_commandLine.simulatorHost.isEmpty())
        ConnectToBoard();
    else if (m_context.settings.openingDialogue != QLatin1String("OFF"))
        ShowOpeningDialogue();
    else
        ConnectToBoard();
    if (m_context.settings.wordsDatabase == NotUsed) {
        const QString current = m_context.settings.currentFile;
        m_context.settings.wordsDatabase =
            current.left(8) == QLatin1String("Not Used")
                ? m_context.paths.ProgramFolder() + QStringLiteral("KVR-PC.MDB")
                : current.left(current.size() - 4) + QStringLiteral(".MDB");
    }
    m_frame.UpdateCaption();
    m_frame.UpdateMenuState();
}

} // namespace kvr
