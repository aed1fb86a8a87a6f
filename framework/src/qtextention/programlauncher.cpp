#include <qtextention/programlauncher.h>

#include <QProcess>

#include <utility>

namespace {

void startDetached(const ProgramStart& start)
{
    QProcess::startDetached(start.program, start.arguments);
}

ProgramLauncher& currentLauncher()
{
    static ProgramLauncher launcher = startDetached;
    return launcher;
}

}  // namespace

void LaunchProgram(const ProgramStart& start)
{
    currentLauncher()(start);
}

ProgramLauncher SetProgramLauncher(ProgramLauncher launcher)
{
    if (!launcher)
        launcher = startDetached;
    return std::exchange(currentLauncher(), std::move(launcher));
}
