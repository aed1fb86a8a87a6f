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
// A new password for user `name`: the first line of standard input with --password-stdin, else
// asked twice without echo on a terminal (throws std::runtime_error when the answers differ), else
// std::invalid_argument (no way to ask). -P and HBDEPOT_PASSWORD are the password of a log-in,
// never a new one.
std::string newPasswordFor(const CommandLine& line, const std::string& name, std::ostream& prompts);
// Warns that a password given on the command line (`how`) is visible to every local user.
void warnAboutVisiblePassword(std::ostream& err, const char* how);
// Whether passwordFor has a password to give rather than falling back to none.
bool passwordOffered(const CommandLine& line);

}  // namespace hbrc::hbdepot
