#include "workspaceview.h"

namespace hbrc::depot {

namespace fs = std::filesystem;

WorkspaceView::WorkspaceView(std::string name, std::string owner, const std::string& root)
    : m_name(std::move(name)), m_owner(std::move(owner)), m_root(fs::path(root).lexically_normal())
{
}

std::optional<std::string> WorkspaceView::keyOf(const std::string& localPath) const
{
    fs::path path(localPath);
    if (path.is_relative())
        path = m_root / path;
    const fs::path relative = path.lexically_normal().lexically_relative(m_root);
    if (relative.empty() || relative == "." || *relative.begin() == "..")
        return std::nullopt;
    return relative.generic_string();
}

fs::path WorkspaceView::localPathOf(const std::string& key) const
{
    return m_root / fs::path(key);
}

std::string depotPathOf(const std::string& key)
{
    return "//depot/" + key;
}

}  // namespace hbrc::depot
