#include "compiler/IncludeReader.h"
#include "app/Text.h"
#include "compiler/SearchPaths.h"
#include "compiler/SourceText.h"

namespace kvr {

IncludeReader::IncludeReader(Prompts &prompts, const QString &searchList, IncludeExtension extension)
    : m_prompts(prompts), m_searchList(searchList), m_extension(extension)
{
}

IncludeReader::~IncludeReader()
{
    CloseAll();
}

void IncludeReader::Start(const QString &mainFile)
{
    CloseAll();
    m_stack.fill(IncludeEntry{});
    m_stack[0].name = mainFile;
    m_suspended = 0;
    m_included.clear();
}

void IncludeReader::CloseAll()
{
    m_files.CloseAll();
}

bool IncludeReader::IsInclude(const QString &line)
{
    return line.startsWith(QLatin1String("INCLUDE "));
}

QString IncludeReader::IncludeFileName(const QString &line) const
{
    QString name = TrimBlanks(line.mid(8)).toUpper();
    const qsizetype cut = name.indexOf(QLatin1String(" \\"));
    if (cut >= 0)
        name.truncate(cut);
    if (m_extension == IncludeExtension::Default) {
        AddDefaultExtension(name);
    } else {
        name = TrimBlanks(name);
        if (!name.contains(QLatin1Char('.')))
            name += QStringLiteral(".KVR");
    }
    return name;
}

bool IncludeReader::Include(const QString &line)
{
    const QString name = IncludeFileName(line);
    if (m_included.contains(name) || m_included.size() >= MaxIncludeFiles)
        return false;
    m_included.append(name);
    for (int k = MaxIncludeFiles; k >= 1; --k)
        m_stack[k] = m_stack[k - 1];
    ++m_suspended;
    m_stack[0] = IncludeEntry{0, 0, name, 0};
    return true;
}

IncludeReader::Event IncludeReader::Next(QString &line)
{
    IncludeEntry &active = m_stack[0];
    if (active.fileNumber == 0) {
        if (!FindSourceFile(active.name, active.fileNumber, m_files, m_searchList, m_prompts)) {
            active.fileNumber = 0;
            return Event::NotFound;
        }
        active.lineNumber = 0;
        if (onFileOpened)
            onFileOpened(active.name);
    }
    if (m_files.AtEnd(active.fileNumber)) {
        m_files.Close(active.fileNumber);
        active.fileNumber = 0;
        if (m_suspended == 0)
            return Event::Finished;
        // The parent's file stayed open: it goes on after its INCLUDE line.
        for (int k = 1; k <= MaxIncludeFiles; ++k)
            m_stack[k - 1] = m_stack[k];
        m_stack[MaxIncludeFiles] = IncludeEntry{};
        --m_suspended;
        return Event::FileEnded;
    }
    line = RTrim(m_files.ReadLine(active.fileNumber));
    ++active.lineNumber;
    return Event::Line;
}

} // namespace kvr
