#pragma once

// The hbdepot command line: global options (each with an environment fallback) and the command's
// words, which the command checks against its own syntax.

#include <filesystem>
#include <string>
#include <vector>

#include "configfile.h"

namespace hbrc::hbdepot {

class CommandLine
{
public:
    // Throws std::invalid_argument for an option without its value or an unknown global option.
    CommandLine(int argc, char** argv);

    bool helpWanted() const { return m_help; }
    bool versionWanted() const { return m_version; }
    // -q: no report of what was done; listings and errors still print.
    bool quiet() const { return m_quiet; }
    // --json or -z json: listings print JSON.
    bool json() const { return m_json; }
    const std::string& depot() const { return m_depot; }
    const std::string& user() const { return m_user; }
    const std::string& workspace() const { return m_workspace; }
    const std::string& password() const { return m_password; }
    const std::string& ticket() const { return m_ticket; }
    // --password-stdin: the password is the first line of standard input.
    bool passwordFromStandardInput() const { return m_passwordFromStandardInput; }
    // -P: the password stands in the process list, where every local user can read it.
    bool passwordOnCommandLine() const { return m_passwordOnCommandLine; }

    // Fills what neither an option nor the environment gave from the configuration file.
    void useConfigFile(const ConfigFile& config);
    // The file useConfigFile took, or empty.
    const std::filesystem::path& configFile() const { return m_configFile; }
    // The account of the workspace the current folder lies in, where none was given.
    void inferAccount(const std::string& user, const std::string& workspace);

    // Takes the global options out of the words after the command's name (so that "sync -q" is
    // "-q sync"), leaving the command's own options, with their values, and everything after "--".
    std::vector<std::string> takeOptionsAmong(const std::vector<std::string>& words,
                                              const std::vector<std::string>& verbOptions,
                                              const std::vector<std::string>& verbFlags);

    // The command's name and arguments ("user add bob", "sync --force"); empty when none was given.
    const std::vector<std::string>& words() const { return m_words; }

private:
    // The global option at words[index], if it is one: sets it and moves past it (and its value).
    bool takeOption(const std::vector<std::string>& words, std::size_t& index);

    bool m_help = false;
    bool m_version = false;
    bool m_quiet = false;
    bool m_json = false;
    std::filesystem::path m_configFile;
    bool m_passwordFromStandardInput = false;
    bool m_passwordOnCommandLine = false;
    std::string m_depot;
    std::string m_user;
    std::string m_workspace;
    std::string m_password;
    std::string m_ticket;
    std::vector<std::string> m_words;
};

}  // namespace hbrc::hbdepot
