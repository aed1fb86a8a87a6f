#pragma once

#include <QTextStream>

namespace hbrc::studio {

// Runs the batch demo: stands the reference host up, loads the revision-control plug-in, starts
// its components and walks through the revision-control work, printing what happens to out.
// Returns the process exit code.
int RunDemo(QTextStream& out);

}  // namespace hbrc::studio
