#pragma once

// Where hbdepot takes a password from, so that it need not appear in the process list.

#include <iosfwd>
#include <string>

namespace hbrc::hbdepot {

class CommandLine;

// The password the command line gives (-P, HBDEPOT_PASSWORD, or the first line of standard input
// with --password-stdin); otherwise a prompt without echo on `prompts` when standard input is a
// terminal; otherwise none (the empty password of a user who needs none).
std::string passwordFor(const CommandLine& line, const std::string& prompt, std::ostream& prompts);
// Whether passwordFor has a password to give rather than falling back to none.
bool passwordOffered(const CommandLine& line);

}  // namespace hbrc::hbdepot
