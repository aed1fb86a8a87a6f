#include <qtextention/fileexplorer.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

QString windowsPath(const QString& path)
{
    return QDir::cleanPath(path).replace(QLatin1Char('/'), QLatin1Char('\\'), Qt::CaseSensitive);
}

}  // namespace

FileBrowserPlatform CurrentFileBrowserPlatform()
{
#ifdef Q_OS_WIN
    return FileBrowserPlatform::Windows;
#else
    return FileBrowserPlatform::FreeDesktop;
#endif
}

ProgramStart RevealFileCommand(const QString& path, FileBrowserPlatform platform)
{
    if (platform == FileBrowserPlatform::Windows)
        return {QStringLiteral("explorer.exe"), {QStringLiteral("/select,") + windowsPath(path)}};
    return {QStringLiteral("xdg-open"), {QFileInfo(QDir::cleanPath(path)).absolutePath()}};
}

void ShowFilesInExplorer(const QStringList& files)
{
    if (!files.isEmpty())
        ShowFileInExplorer(files.at(0));
}

void ShowFileInExplorer(const QString& path)
{
    LaunchProgram(RevealFileCommand(path, CurrentFileBrowserPlatform()));
}

std::string MakeWindowsPath(const QString& path)
{
    return QFile::encodeName(windowsPath(path)).toStdString();
}
