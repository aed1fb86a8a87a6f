#pragma once

// Stateless path helpers over QDir and QFileInfo. Narrow (const char*) paths are in the file-name
// encoding (UTF-8 on Linux), so names with non-ASCII characters keep them.

#include <qtextention/qtextentionglobal.h>

#include <QString>

/// Qt's file-info equality: the same file, or for paths that do not exist the same absolute path.
QTEXTENTION_EXPORT bool ArePathEqual(const char* a, const char* b);
/// path relative to base when path is absolute; a relative path is returned unchanged.
QTEXTENTION_EXPORT QString MakePathRelative(const char* base, const char* path);
/// A cleaned absolute path: path itself when absolute, else path resolved against base.
QTEXTENTION_EXPORT QString MakePathAbsolute(const char* base, const char* path);
/// QDir::cleanPath: one "/" between parts, "." and ".." resolved, no trailing "/".
QTEXTENTION_EXPORT QString CleanPath(const char* path);
QTEXTENTION_EXPORT bool PathExists(const char* path);
/// a/b[/c][/d], cleaned; c and d are left out when null.
QTEXTENTION_EXPORT QString MakePath(const char* a, const char* b, const char* c = nullptr, const char* d = nullptr);
/// True when a file below dir has a path containing name. depth 1 searches dir alone, each further
/// level one folder deeper; 0 searches nothing and a negative depth has no limit.
QTEXTENTION_EXPORT bool FindFileRecursive(const char* dir, const char* name, int depth);
/// True when path is directory itself or lies below it, comparing cleaned components without
/// regard to case ("C:/Data" contains "c:/data/maps").
QTEXTENTION_EXPORT bool IsSubDirectory(const QString& directory, const QString& path);
/// A backslash-separated directory path with an optional drive ("C:\temp\"), or any existing directory.
QTEXTENTION_EXPORT bool IsDirectoryPathValid(const QString& path);
/// A file path without Windows-forbidden characters that ends in a file name and is no existing directory.
QTEXTENTION_EXPORT bool IsFilePathValid(const QString& path);
