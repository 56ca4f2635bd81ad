#include "compiler/Unravel.h"
#include "app/AppContext.h"
#include "app/FilePaths.h"
#include "app/Text.h"
#include "compiler/IncludeReader.h"
#include "compiler/SearchPaths.h"
#include "compiler/SourceText.h"
#include "editor/BusyCursor.h"
#include <QDir>

namespace kvr {

bool StripLine(QString &line)
{
    const QString rest = LTrim(line);
    if (rest.isEmpty() || rest.front() == QLatin1Char('\\'))
        return false;
    CompactLine(line);
    line = RTrim(line);
    return true;
}

UnravelResult UnravelFile(const QString &source, const QString &outputPath, bool strip,
                          const QString &searchList, Prompts &prompts)
{
    UnravelResult result;
    PieceWiseSave output;
    result.error = output.Open(outputPath);
    if (!result.error.Ok()) {
        result.end = UnravelResult::End::OpenFailed;
        return result;
    }

    BusyCursor busy;
    QDir::setCurrent(ResolvePath(SplitPath(source).folder));
    IncludeReader reader(prompts, searchList, IncludeExtension::WhenNoDot);
    reader.onFileOpened = [&result](const QString &) { ++result.filesRead; };
    reader.Start(source);
    QString line;
    for (;;) {
        const IncludeReader::Event event = reader.Next(line);
        if (event == IncludeReader::Event::Finished)
            break;
        if (event == IncludeReader::Event::NotFound) {
            result.end = UnravelResult::End::NotFound;
            result.missingFile = reader.CurrentFile();
            break;
        }
        if (event != IncludeReader::Event::Line)
            continue;
        if (IncludeReader::IsInclude(line)) {
            reader.Include(line);
            continue;
        }
        if (strip && !StripLine(line))
            continue;
        result.error = output.Write(Latin1ToBytes(line + QStringLiteral("\r\n")));
        if (!result.error.Ok()) {
            result.end = UnravelResult::End::WriteFailed;
            return result;
        }
        result.map.append({reader.CurrentFile(), reader.CurrentLine()});
    }
    reader.CloseAll();
    // A run halted by a missing file keeps what it wrote.
    const SaveResult committed = output.Commit();
    if (!committed.Ok()) {
        result.error = committed;
        result.end = UnravelResult::End::WriteFailed;
    }
    return result;
}

QByteArray LineMapText(const QList<SourcePlace> &map)
{
    QByteArray text;
    for (qsizetype i = 0; i < map.size(); ++i) {
        const QString entry = QString::number(i + 1) + QLatin1Char('\t') + ResolvePath(map[i].file)
                              + QLatin1Char('\t') + QString::number(map[i].line) + QStringLiteral("\r\n");
        text += entry.toUtf8();
    }
    return text;
}

Unraveller::Unraveller(AppContext &context) : m_context(context) {}

QString Unraveller::Question(const QString &name)
{
    const QChar lf(10);
    return QStringLiteral("File ") + name + QStringLiteral(" will have any INCLUDE files expanded in-line ")
           + QStringLiteral("and the result will be written to a file.") + lf + lf
           + QStringLiteral("Do you want to eliminate comment and excess white space ")
           + QStringLiteral(" in the process? ") + lf + lf
           + QStringLiteral("YES to strip out comments and multiple spaces.") + lf
           + QStringLiteral("NO  to unravel the INCLUDEs as they stand.") + lf
           + QStringLiteral("CANCEL to stop this operation.");
}

Unraveller::Output Unraveller::ChooseOutput(const QString &sourceName)
{
    Prompts &prompts = m_context.prompts;
    for (;;) {
        const QString chosen = askSaveName ? askSaveName(QStringLiteral("unravelled file")) : QString();
        if (chosen.isEmpty())
            return {};
        const QString name = chosen.toUpper();
        const QString path = ResolvePath(chosen);
        // Written over its own source, a halted run would leave only a part.
        if (LogicalName(path) == LogicalName(ResolvePath(sourceName))) {
            prompts.Message(QStringLiteral("File ") + name
                                + QStringLiteral(" is the file being unravelled, choose another name."),
                            PromptIcon::Exclamation);
            continue;
        }
        if (!MayOverwrite(prompts, name, path))
            continue;
        if (setWorkingFileName)
            setWorkingFileName(name);
        return {path, name};
    }
}

void Unraveller::Unravel(const QString &sourceName)
{
    Prompts &prompts = m_context.prompts;
    if (!sourceName.endsWith(QLatin1String(".KVR"))) {
        prompts.Message(QStringLiteral("Extension not .KVR, can not unravel"), PromptIcon::Exclamation);
        return;
    }
    const PromptAnswer answer =
        prompts.Message(Question(sourceName), PromptIcon::Exclamation, PromptButtons::YesNoCancel);
    if (answer != PromptAnswer::Yes && answer != PromptAnswer::No)
        return;
    const Output output = ChooseOutput(sourceName);
    if (output.path.isEmpty())
        return;

    const QString searchList = SearchList(SplitPath(sourceName).folder, m_context.settings.extraSearchPaths,
                                          DefaultSearchPaths(m_context.paths));
    const UnravelResult result = UnravelFile(sourceName, output.path, answer == PromptAnswer::Yes, searchList, prompts);
    switch (result.end) {
    case UnravelResult::End::Finished:
        break;
    case UnravelResult::End::OpenFailed:
        if (result.error.error == FileError::NameOrWriteProtected)
            prompts.Message(QStringLiteral("Can't write file ") + output.name
                                + QStringLiteral(", it may be write-protected or not a legal file name."),
                            PromptIcon::Information);
        else
            prompts.Message(result.error.description, PromptIcon::Exclamation);
        break;
    case UnravelResult::End::WriteFailed:
        prompts.Message(result.error.description, PromptIcon::Exclamation);
        break;
    case UnravelResult::End::NotFound:
        prompts.Message(QStringLiteral("Halted unravel process, file ") + result.missingFile
                            + QStringLiteral(" not found"),
                        PromptIcon::Exclamation);
        break;
    }
}

} // namespace kvr
