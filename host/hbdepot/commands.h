#pragma once

#include <iosfwd>

#include "commandline.h"

namespace hbrc::hbdepot {

// Runs the command the line names against its depot; returns the process exit code
// (0 done, 1 the depot refused, 2 bad usage) after printing answers to `out` and errors to `err`.
int runCommand(CommandLine line, std::ostream& out, std::ostream& err);
void printUsage(std::ostream& out);

}  // namespace hbrc::hbdepot
