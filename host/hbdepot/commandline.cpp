#include "commandline.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace hbrc::hbdepot {

namespace {

std::string environment(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

// The entry of a table of (names, target) pairs one of whose names is `word`.
template <typename Table>
auto named(const Table& table, const std::string& word)
{
    return std::find_if(table.begin(), table.end(), [&](const auto& entry) {
        return std::find(entry.first.begin(), entry.first.end(), word) != entry.first.end();
    });
}

}  // namespace

CommandLine::CommandLine(int argc, char** argv)
    : m_depot(environment("HBDEPOT")),
      m_user(environment("HBDEPOT_USER")),
      m_workspace(environment("HBDEPOT_WORKSPACE")),
      m_password(environment("HBDEPOT_PASSWORD")),
      m_ticket(environment("HBDEPOT_TICKET"))
{
    const std::vector<std::string> given(argv + std::min(argc, 1), argv + argc);
    std::size_t index = 0;
    while (index < given.size() && takeOption(given, index)) {
    }
    m_words.assign(given.begin() + static_cast<std::ptrdiff_t>(index), given.end());
}

bool CommandLine::takeOption(const std::vector<std::string>& words, std::size_t& index)
{
    const std::vector<std::pair<std::vector<std::string>, std::string*>> globals = {
        {{"-d", "--depot"}, &m_depot},       {{"-u", "--user"}, &m_user},
        {{"-w", "--workspace"}, &m_workspace}, {{"-P", "--password"}, &m_password},
        {{"-t", "--ticket"}, &m_ticket}};
    const std::vector<std::pair<std::vector<std::string>, bool*>> flags = {
        {{"-h", "--help"}, &m_help},       {{"--version"}, &m_version},
        {{"-q", "--quiet"}, &m_quiet},     {{"--json"}, &m_json},
        {{"--password-stdin"}, &m_passwordFromStandardInput}};
    const std::string& word = words[index];
    const auto flag = named(flags, word);
    if (flag != flags.end()) {
        *flag->second = true;
        ++index;
        return true;
    }
    if (word == "-z") {
        if (index + 1 == words.size() || words[index + 1] != "json")
            throw std::invalid_argument("-z takes json");
        m_json = true;
        index += 2;
        return true;
    }
    if (word.empty() || word[0] != '-' || word == "--")
        return false;
    const auto global = named(globals, word);
    if (global == globals.end())
        throw std::invalid_argument("unknown option " + word);
    if (index + 1 == words.size())
        throw std::invalid_argument("option " + word + " needs a value");
    *global->second = words[index + 1];
    m_passwordOnCommandLine = m_passwordOnCommandLine || global->second == &m_password;
    index += 2;
    return true;
}

std::vector<std::string> CommandLine::takeOptionsAmong(const std::vector<std::string>& words,
                                                       const std::vector<std::string>& verbOptions,
                                                       const std::vector<std::string>& verbFlags)
{
    std::vector<std::string> rest;
    const auto among = [](const std::vector<std::string>& names, const std::string& word) {
        return std::find(names.begin(), names.end(), word) != names.end();
    };
    std::size_t index = 0;
    while (index < words.size()) {
        const std::string& word = words[index];
        if (word == "--") {
            rest.insert(rest.end(), words.begin() + static_cast<std::ptrdiff_t>(index), words.end());
            break;
        }
        const bool ownOption = among(verbOptions, word);
        if (ownOption || among(verbFlags, word) || word.size() < 2 || word[0] != '-') {
            // The verb's own option keeps its value, whatever that looks like.
            const std::size_t kept = ownOption && index + 1 < words.size() ? 2 : 1;
            rest.insert(rest.end(), words.begin() + static_cast<std::ptrdiff_t>(index),
                        words.begin() + static_cast<std::ptrdiff_t>(index + kept));
            index += kept;
            continue;
        }
        const std::size_t before = index;
        try {
            if (!takeOption(words, index))
                rest.push_back(words[index++]);
        } catch (const std::invalid_argument&) {
            // Not a global option: the verb's syntax check names it.
            index = before + 1;
            rest.push_back(word);
        }
    }
    return rest;
}

void CommandLine::useConfigFile(const ConfigFile& config)
{
    m_configFile = config.path;
    for (auto [mine, given] : {std::pair{&m_depot, &config.depot}, std::pair{&m_user, &config.user},
                               std::pair{&m_workspace, &config.workspace}}) {
        if (mine->empty())
            *mine = *given;
    }
}

void CommandLine::inferAccount(const std::string& user, const std::string& workspace)
{
    if (m_user.empty())
        m_user = user;
    if (m_workspace.empty())
        m_workspace = workspace;
}

}  // namespace hbrc::hbdepot
