#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace hbrc::depot {

// Maps one workspace's local files onto depot paths: every workspace sees the whole depot below
// its root folder, so "<root>/art/ship.kel" is "//depot/art/ship.kel" for everybody.
class WorkspaceView
{
public:
    WorkspaceView(std::string name, std::string owner, const std::string& root);

    const std::string& name() const { return m_name; }
    const std::string& owner() const { return m_owner; }

    // The depot key ("art/ship.kel") of a local path, absolute or relative to the root; nothing
    // when the path lies outside the root.
    std::optional<std::string> keyOf(const std::string& localPath) const;
    // As keyOf, and "" for the root folder itself: the key of a folder, for "at or below" questions.
    std::optional<std::string> scopeOf(const std::string& localPath) const;
    std::filesystem::path localPathOf(const std::string& key) const;
    // The same as text, without taking the path apart.
    std::string localFileOf(const std::string& key) const { return m_rootPrefix + key; }

private:
    std::filesystem::path relativeToRoot(const std::string& localPath) const;

    std::string m_name;
    std::string m_owner;
    std::filesystem::path m_root;
    std::string m_rootPrefix;  // the root with one trailing separator
};

// "//depot/" + key, as people read depot paths.
std::string depotPathOf(const std::string& key);

}  // namespace hbrc::depot
