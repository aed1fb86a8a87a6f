#pragma once

// The one place where the toolkit starts external programs (the file browser). Tests and hosts
// replace the launcher to see, or redirect, what would be started.

#include <qtextention/qtextentionglobal.h>

#include <QString>
#include <QStringList>

#include <functional>

struct QTEXTENTION_EXPORT ProgramStart {
    QString program;
    QStringList arguments;
};

using ProgramLauncher = std::function<void(const ProgramStart&)>;

/// Starts the program detached through the current launcher; whether it started is not reported.
QTEXTENTION_EXPORT void LaunchProgram(const ProgramStart& start);
/// Installs launcher and returns the one it replaces. A null launcher restores the default, which
/// starts the program detached with QProcess.
QTEXTENTION_EXPORT ProgramLauncher SetProgramLauncher(ProgramLauncher launcher);
