#pragma once

#include <QString>
#include <QTextStream>

#include <string>

namespace hbrc::studio {

// Runs the scripted tour through the real main window on a new demo depot: alice opens her
// workspace and logs in through the Log In dialog; bob holds Rock; alice's edit of Rock is refused
// with bob named; her edit of Sky checks it out; she saves; she creates an asset and marks it for
// add; bob submits a new colour for Rock and alice reads its History tab and Submitted Changes; she
// works offline and, back online, reconciles what she edited. Prints the transcript to out; with a
// shots folder, writes a picture of the window after
// each step there. The plug-in's dialogs are answered by the tour as a user would. Returns the
// process exit code.
int RunTour(QTextStream& out, const QString& shotsFolder, const std::string& server = {});

}  // namespace hbrc::studio
