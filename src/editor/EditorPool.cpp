#include "editor/EditorPool.h"
#include "app/FilePaths.h"
#include "app/Text.h"
#include "editor/BusyCursor.h"
#include "editor/FileFilters.h"
#include "editor/RecentFiles.h"
#include "editor/SourceFile.h"
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>

namespace kvr {

QString CantOpenFile(const QString &name, const QString &reason)
{
    return QStringLiteral("Can't open file: ") + name
        + (reason.isEmpty() ? QString() : QStringLiteral("\r\n") + reason);
}

namespace {
// A line of a file that is not source at all (a binary opened by mistake)
// could fill the screen many times over; the box shows its start.
QString ShownLine(const QString &line)
{
    constexpr qsizetype Shown = 1000;
    return line.size() > Shown ? line.left(Shown) + QStringLiteral("...") : line;
}
} // namespace

EditorPool::EditorPool(AppContext &context, EditorViewFactory &factory, QObject *parent)
    : EditorHost(parent), m_context(context), m_factory(factory), m_font(context.settings.TextFont())
{
    m_recent = ReadRecentFiles(m_context.paths.SettingsFile());
}

EditorPool::~EditorPool()
{
    // Windows still open call back into the pool: they go with it.
    for (const QPointer<QObject> &window : m_alive)
        delete window.data();
}

bool EditorPool::IsOpen(int index) const
{
    return index >= 1 && index < m_document.size() && !m_fstate[index].Deleted
        && m_document[index] && m_alive[index];
}

bool EditorPool::IsUnnamed(const QString &caption)
{
    return caption.left(11) == QLatin1String("Source code");
}

EditorView *EditorPool::Document(int index) const
{
    return IsOpen(index) ? m_document[index] : nullptr;
}

FStateRecord EditorPool::FState(int index) const
{
    return index >= 1 && index < m_fstate.size() ? m_fstate[index] : FStateRecord{};
}

QString EditorPool::Caption(int index) const
{
    return IsOpen(index) ? m_document[index]->Caption() : QString();
}

QString EditorPool::Text(int index) const
{
    return IsOpen(index) ? m_document[index]->Text() : QString();
}

int EditorPool::SelStart(int index) const
{
    return IsOpen(index) ? m_document[index]->SelStart() : 0;
}

int EditorPool::SelLength(int index) const
{
    return IsOpen(index) ? m_document[index]->SelLength() : 0;
}

void EditorPool::Select(int index, int start, int length)
{
    if (IsOpen(index))
        m_document[index]->Select(start, length);
}

QList<int> EditorPool::OpenIndexes() const
{
    QList<int> indexes;
    for (int i = 1; i < m_document.size(); ++i)
        if (IsOpen(i))
            indexes << i;
    return indexes;
}

int EditorPool::IndexOfCaption(const QString &caption) const
{
    // Compared as logical names: a caption and a path the compiler found
    // (relative, through a folder, typed in another case) name one file.
    const QString logical = IsUnnamed(caption) ? caption : LogicalName(caption);
    for (int i = 1; i < m_document.size(); ++i)
        if (IsOpen(i) && m_document[i]->Caption() == logical)
            return i;
    return 0;
}

QString EditorPool::DiskName(int index) const
{
    if (!IsOpen(index))
        return QString();
    const QString &disk = m_diskPath[index];
    return disk.isEmpty() ? m_document[index]->Caption() : disk;
}

int EditorPool::FindFreeIndex()
{
    for (int i = 1; i < m_fstate.size(); ++i) {
        if (m_fstate[i].Deleted) {
            m_fstate[i].Deleted = false;
            return i;
        }
    }
    m_document.append(nullptr);
    m_alive.append(nullptr);
    m_fstate.append(FStateRecord{});
    m_backupDirectory.append(QString());
    m_diskPath.append(QString());
    return UpperBound();
}

EditorView *EditorPool::CreateWindow(int index)
{
    EditorView *view = m_factory.CreateView(*this, index);
    m_document[index] = view;
    m_alive[index] = view->Object();
    m_fstate[index] = FStateRecord{};
    m_fstate[index].Color = EditorColor(false).rgb();
    m_backupDirectory[index].clear();
    m_diskPath[index].clear();
    view->Place(index);
    view->RefreshOptions();
    view->ShowRecentFiles(m_recent);
    emit EditorCreated(index, view->Object());
    return view;
}

int EditorPool::FileNew()
{
    const int index = FindFreeIndex();
    EditorView *view = CreateWindow(index);
    view->SetCaption(QStringLiteral("Source code %1").arg(index));
    GetRecentFiles();
    m_active = index;
    view->Activate();
    return index;
}

void EditorPool::FileOpenDialog()
{
    const QString name = m_context.prompts.OpenFileName(
        QStringLiteral("Source file"), QtFilter(SourceFileFilter), QString());
    if (!name.isEmpty())
        OpenFile(name);
}

void EditorPool::OpenFile(const QString &name)
{
    const QString logical = LogicalName(name);
    if (logical.isEmpty())
        return;
    m_context.settings.currentFile = logical;
    if (const int index = IndexOfCaption(logical)) {
        m_active = index;
        m_document[index]->Activate();
        return;
    }
    LoadFile(name);
}

void EditorPool::LoadFile(const QString &name)
{
    const QString logical = LogicalName(name);
    const QString disk =
        ResolvePath(QDir::cleanPath(QFileInfo(NormalizeSeparators(name.trimmed())).absoluteFilePath()));
    SourceLineReader reader;
    const ReadResult opened = reader.Open(disk);
    if (!opened.ok) {
        m_context.prompts.Message(CantOpenFile(disk, opened.description), PromptIcon::Information);
        return;
    }
    const int index = FindFreeIndex();
    EditorView *view = CreateWindow(index);
    m_diskPath[index] = disk;
    QPointer<QObject> alive(view->Object());
    BusyCursor busy;
    view->SetCaption(logical);

    const bool checkLength = IsKvrName(logical);
    QString text;
    bool cut = false;
    SourceLine line;
    while (reader.Next(line)) {
        if (checkLength && line.length > MaxLineLength) {
            m_context.prompts.Message(
                QStringLiteral("The following line has over 80 characters, you should correct it:\n")
                    + ShownLine(line.text),
                PromptIcon::Exclamation);
        }
        text += line.Trimmed();
        text += QLatin1String("\r\n");
        if (text.size() > MaxTextLength) {
            cut = true;
            break;
        }
        QCoreApplication::processEvents();
        if (!alive)
            return; // closed while loading
    }
    if (cut) {
        text.truncate(MaxTextLength);
        // Never half a line end: a lone CR would become a line of its own.
        if (text.endsWith(QLatin1Char('\r')))
            text.chop(1);
        m_context.prompts.Message(
            QStringLiteral("The file ") + logical
                + QStringLiteral(" is too long to fit in the source code window, the end part is "
                                 "not displayed. If you alter the text then save it you will lose "
                                 "some of the original file. You can close the window now if you "
                                 "want to leave the original unaltered. "),
            PromptIcon::Critical);
        if (!alive)
            return;
    }
    view->SetText(text);
    m_fstate[index].Dirty = false;
    AddRecentFile(logical);
    m_active = index;
    view->Activate();
}

bool EditorPool::SaveFile(const QString &name, int index, bool keepCaption)
{
    if (!IsOpen(index))
        return false;
    EditorView *view = m_document[index];
    // The window's own file keeps its disk name, whatever its caption maps to.
    const QString &own = m_diskPath[index];
    const QString target = !own.isEmpty() && LogicalName(name) == LogicalName(own) ? own : ResolvePath(name);
    SaveResult result;
    {
        BusyCursor busy;
        result = SaveWholeFile(target, SourceBytesForSave(view->Text()));
    }
    if (!result.Ok()) {
        if (result.error == FileError::NameOrWriteProtected)
            m_context.prompts.Message(QStringLiteral("Can't write file ") + name
                                          + QStringLiteral(", it may be write-protected or not "
                                                           "a legal file name."),
                                      PromptIcon::Information);
        else
            m_context.prompts.Message(result.description, PromptIcon::Exclamation);
        return false;
    }
    if (!keepCaption) {
        const QString logical = LogicalName(name);
        view->SetCaption(logical);
        m_diskPath[index] = QFileInfo(target).absoluteFilePath();
        m_fstate[index].Dirty = false;
        m_context.settings.currentFile = logical;
        AddRecentFile(logical);
        m_context.WriteSettings();
    }
    return true;
}

QString EditorPool::AskSaveName(const QString &currentCaption)
{
    const QString suggested = IsUnnamed(currentCaption) ? QString() : ResolvePath(currentCaption);
    return m_context.prompts.SaveFileName(QStringLiteral("Save ") + currentCaption
                                              + QStringLiteral(" as"),
                                          QtFilter(SourceFileFilter), suggested);
}

QString EditorPool::SaveFileAs(const QString &currentCaption)
{
    return AskSaveName(currentCaption).toUpper();
}

bool EditorPool::Save(int index)
{
    if (!IsOpen(index))
        return false;
    const QString caption = m_document[index]->Caption();
    if (IsUnnamed(caption))
        return SaveAs(index);
    m_context.settings.currentFile = caption;
    return SaveFile(caption, index, false);
}

bool EditorPool::SaveAs(int index)
{
    if (!IsOpen(index))
        return false;
    const QString caption = m_document[index]->Caption();
    if (!IsUnnamed(caption))
        m_context.settings.currentFile = caption;
    // Created under the name as the dialog gave it; captioned in upper case.
    QString chosen = AskSaveName(caption);
    if (chosen.isEmpty())
        return false;
    // A name typed without an extension is a source file (the compiler
    // takes nothing else).
    if (!QFileInfo(chosen).fileName().contains(QLatin1Char('.')))
        chosen += QLatin1String(".KVR");
    const QString existing = ResolvePath(chosen);
    if (QFileInfo(existing).isFile() && LogicalName(existing) != LogicalName(DiskName(index))
        && m_context.prompts.Message(existing + QStringLiteral(" already exists.\r\nDo you want to replace it?"),
                                     PromptIcon::Exclamation, PromptButtons::YesNo)
            != PromptAnswer::Yes)
        return false;
    return SaveFile(chosen, index, false);
}

bool EditorPool::QueryClose(int index)
{
    if (!IsOpen(index) || !m_fstate[index].Dirty)
        return true;
    const QString caption = m_document[index]->Caption();
    m_workingFileName = caption;
    const PromptAnswer answer = m_context.prompts.Message(
        QStringLiteral("The text in ") + caption
            + QStringLiteral(" has changed.\r\nDo you want to save the changes?"),
        PromptIcon::Exclamation, PromptButtons::YesNoCancel);
    switch (answer) {
    case PromptAnswer::Yes:
        // A save that failed or was cancelled keeps the window and its text.
        return Save(index);
    case PromptAnswer::No:
        return true;
    default:
        return false;
    }
}

void EditorPool::Unload(int index)
{
    if (index < 1 || index >= m_document.size() || m_fstate[index].Deleted)
        return;
    m_fstate[index].Deleted = true;
    m_fstate[index].Dirty = false;
    m_document[index] = nullptr;
    m_alive[index] = nullptr;
    if (m_active == index) {
        m_active = 0;
        const QList<int> open = OpenIndexes();
        if (!open.isEmpty()) {
            m_active = open.last();
            m_document[m_active]->Activate();
        }
    }
}

bool EditorPool::CloseAll()
{
    for (int index : OpenIndexes()) {
        if (IsOpen(index) && !m_document[index]->Close())
            return false;
    }
    return true;
}

void EditorPool::FileDelete()
{
    const QString name = m_context.prompts.OpenFileName(
        QStringLiteral("File to delete"), QtFilter(SourceFileFilter), QString());
    if (name.isEmpty())
        return;
    if (m_context.prompts.Message(QStringLiteral("Confirm deletion of file ") + name,
                                  PromptIcon::Question, PromptButtons::YesNo)
        != PromptAnswer::Yes)
        return;
    if (!QFile::remove(ResolvePath(name)))
        m_context.prompts.Message(
            QStringLiteral("File not deleted, it may be write-protected or not a legal file name."),
            PromptIcon::Information);
}

void EditorPool::AddRecentFile(const QString &name)
{
    if (!m_recent.contains(name))
        WriteRecentFiles(m_context.paths.SettingsFile(), name);
    GetRecentFiles();
}

void EditorPool::GetRecentFiles()
{
    m_recent = ReadRecentFiles(m_context.paths.SettingsFile());
    for (int index : OpenIndexes())
        m_document[index]->ShowRecentFiles(m_recent);
    emit RecentFilesChanged(m_recent);
}

void EditorPool::SaveBeforeCompile(int index)
{
    for (int i : OpenIndexes()) {
        if (!IsOpen(i) || (!m_fstate[i].Dirty && i != index))
            continue;
        const QString caption = m_document[i]->Caption();
        if (IsUnnamed(caption))
            SaveAs(i);
        else
            SaveFile(caption, i, false);
    }
    if (!IsOpen(index))
        return;
    const QString caption = m_document[index]->Caption();
    if (IsUnnamed(caption))
        return;
    m_context.settings.currentFile = caption;
    m_workingFileName = caption;
    AddRecentFile(caption);
    m_context.WriteSettings();
    EditorView *view = m_document[index];
    view->Select(view->SelStart(), 0);
}

bool EditorPool::ShowLine(const QString &caption, int lineNumber)
{
    const int index = IndexOfCaption(caption);
    if (!index)
        return false;
    EditorView *view = m_document[index];
    m_active = index;
    view->Activate();
    const LineRange range = LineSelection(view->Text(), lineNumber);
    view->Select(range.start, range.end - range.start);
    return true;
}

} // namespace kvr
