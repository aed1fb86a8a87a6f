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
    const std::vector<std::pair<std::vector<std::string>, std::string*>> globals = {
        {{"-d", "--depot"}, &m_depot},       {{"-u", "--user"}, &m_user},
        {{"-w", "--workspace"}, &m_workspace}, {{"-P", "--password"}, &m_password},
        {{"-t", "--ticket"}, &m_ticket}};
    const std::vector<std::pair<std::vector<std::string>, bool*>> flags = {
        {{"-h", "--help"}, &m_help},       {{"--version"}, &m_version},
        {{"-q", "--quiet"}, &m_quiet},     {{"--json"}, &m_json},
        {{"--password-stdin"}, &m_passwordFromStandardInput}};
    int index = 1;
    for (; index < argc; ++index) {
        const std::string word = argv[index];
        const auto flag = named(flags, word);
        if (flag != flags.end()) {
            *flag->second = true;
            continue;
        }
        if (word == "-z") {
            if (++index == argc || std::string(argv[index]) != "json")
                throw std::invalid_argument("-z takes json");
            m_json = true;
            continue;
        }
        if (word.empty() || word[0] != '-')
            break;
        const auto global = named(globals, word);
        if (global == globals.end())
            throw std::invalid_argument("unknown option " + word);
        if (++index == argc)
            throw std::invalid_argument("option " + word + " needs a value");
        *global->second = argv[index];
        m_passwordOnCommandLine = m_passwordOnCommandLine || global->second == &m_password;
    }
    m_words.assign(argv + index, argv + argc);
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
