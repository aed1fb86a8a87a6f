#pragma once

// The hbdepot command line: global options (each with an environment fallback), the command name
// and its own arguments, from which a command takes its options.

#include <optional>
#include <string>
#include <vector>

namespace hbrc::hbdepot {

class CommandLine
{
public:
    // Throws std::invalid_argument for an option without its value or an unknown global option.
    CommandLine(int argc, char** argv);

    bool helpWanted() const { return m_help; }
    const std::string& depot() const { return m_depot; }
    const std::string& user() const { return m_user; }
    const std::string& workspace() const { return m_workspace; }
    const std::string& password() const { return m_password; }
    const std::string& ticket() const { return m_ticket; }

    // The command's words ("user add", "sync"); empty when none was given.
    const std::vector<std::string>& words() const { return m_words; }
    // Removes "-x VALUE" from the command's words and returns VALUE.
    std::optional<std::string> takeOption(const std::string& flag);
    bool takeFlag(const std::string& flag);
    // The words after the first `count` (the command's name), as given.
    std::vector<std::string> arguments(std::size_t count) const;

private:
    bool m_help = false;
    std::string m_depot;
    std::string m_user;
    std::string m_workspace;
    std::string m_password;
    std::string m_ticket;
    std::vector<std::string> m_words;
};

}  // namespace hbrc::hbdepot
