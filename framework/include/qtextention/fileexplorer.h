#pragma once

// Revealing files in the desktop's file browser. On Windows the browser is "explorer.exe" with
// the single argument "/select,<path>" (backslashes), which selects the file; elsewhere the
// folder holding the file is opened with "xdg-open". Programs are started through
// LaunchProgram (programlauncher.h).

#include <qtextention/qtextentionglobal.h>

#include <qtextention/programlauncher.h>

#include <QString>
#include <QStringList>

#include <string>

enum class FileBrowserPlatform { Windows, FreeDesktop };

QTEXTENTION_EXPORT FileBrowserPlatform CurrentFileBrowserPlatform();

/// What revealing path starts on platform; path is cleaned first ("." and ".." resolved).
QTEXTENTION_EXPORT ProgramStart RevealFileCommand(const QString& path, FileBrowserPlatform platform);

/// Reveals the first file of the list only (the browser selects one file per start); an empty
/// list does nothing.
QTEXTENTION_EXPORT void ShowFilesInExplorer(const QStringList& files);
QTEXTENTION_EXPORT void ShowFileInExplorer(const QString& path);

/// The cleaned path with backslashes for slashes, in the file-name encoding.
QTEXTENTION_EXPORT std::string MakeWindowsPath(const QString& path);
