#pragma once

// The configuration file hbdepot finds upward from the current folder (".hbdepot"): the depot,
// user and workspace that apply below that folder, one "key = value" a line, "#" for comments.
// A relative depot path is relative to the file's folder.

#include <filesystem>
#include <optional>
#include <string>

namespace hbrc::hbdepot {

struct ConfigFile
{
    static constexpr const char* kName = ".hbdepot";

    std::filesystem::path path;
    std::string depot;
    std::string user;
    std::string workspace;
};

// The nearest ".hbdepot" in `folder` or above it; nothing when there is none. Throws
// std::invalid_argument, naming the file and line, for a line that is not "key = value" of a
// known key.
std::optional<ConfigFile> findConfigFile(const std::filesystem::path& folder);

}  // namespace hbrc::hbdepot
