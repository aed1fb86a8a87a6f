#include "configfile.h"

#include <fstream>
#include <map>
#include <stdexcept>

namespace hbrc::hbdepot {

namespace fs = std::filesystem;

namespace {

std::string trimmed(const std::string& text)
{
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

ConfigFile read(const fs::path& file)
{
    ConfigFile config;
    config.path = file;
    const std::map<std::string, std::string*> keys = {
        {"depot", &config.depot}, {"user", &config.user}, {"workspace", &config.workspace}};
    std::ifstream in(file);
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        line = trimmed(line);
        if (line.empty() || line[0] == '#')
            continue;
        const auto equals = line.find('=');
        const auto key = keys.find(equals == std::string::npos ? line : trimmed(line.substr(0, equals)));
        if (equals == std::string::npos || key == keys.end())
            throw std::invalid_argument(file.string() + ":" + std::to_string(number) +
                                        ": expected depot, user or workspace = VALUE");
        *key->second = trimmed(line.substr(equals + 1));
    }
    if (!config.depot.empty())
        config.depot = (file.parent_path() / config.depot).lexically_normal().string();
    return config;
}

}  // namespace

std::optional<ConfigFile> findConfigFile(const fs::path& folder)
{
    std::error_code error;
    for (fs::path at = fs::absolute(folder, error); !at.empty(); at = at.parent_path()) {
        const fs::path candidate = at / ConfigFile::kName;
        if (fs::is_regular_file(candidate, error))
            return read(candidate);
        if (at == at.root_path())
            break;
    }
    return std::nullopt;
}

}  // namespace hbrc::hbdepot
