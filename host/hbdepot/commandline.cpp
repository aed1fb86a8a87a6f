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
    int index = 1;
    for (; index < argc; ++index) {
        const std::string word = argv[index];
        if (word == "-h" || word == "--help") {
            m_help = true;
            continue;
        }
        if (word == "--password-stdin") {
            m_passwordFromStandardInput = true;
            continue;
        }
        if (word.empty() || word[0] != '-')
            break;
        const auto global = std::find_if(globals.begin(), globals.end(), [&](const auto& option) {
            return std::find(option.first.begin(), option.first.end(), word) != option.first.end();
        });
        if (global == globals.end())
            throw std::invalid_argument("unknown option " + word);
        if (++index == argc)
            throw std::invalid_argument("option " + word + " needs a value");
        *global->second = argv[index];
        m_passwordOnCommandLine = m_passwordOnCommandLine || global->second == &m_password;
    }
    m_words.assign(argv + index, argv + argc);
}

}  // namespace hbrc::hbdepot
