#include "workspaceview.h"

#include <algorithm>
#include <string_view>

namespace hbrc::depot {

namespace fs = std::filesystem;

namespace {

// No empty, "." or ".." part: the path needs no clean-up.
bool isCleanRelative(std::string_view path)
{
    if (path.empty())
        return false;
    std::size_t start = 0;
    while (start <= path.size()) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string_view part = path.substr(start, end - start);
        if (part.empty() || part == "." || part == "..")
            return false;
        start = end + 1;
    }
    return true;
}

}  // namespace

WorkspaceView::WorkspaceView(std::string name, std::string owner, const std::string& root)
    : m_name(std::move(name)), m_owner(std::move(owner)), m_root(fs::path(root).lexically_normal()),
      m_rootPrefix(m_root.string())
{
    if (m_rootPrefix.empty() || m_rootPrefix.back() != '/')
        m_rootPrefix += '/';
}

std::optional<std::string> WorkspaceView::keyOf(const std::string& localPath) const
{
    // Callers mostly give clean absolute paths below the root: their key is simply the rest.
    if (localPath.compare(0, m_rootPrefix.size(), m_rootPrefix) == 0) {
        const std::string_view rest = std::string_view(localPath).substr(m_rootPrefix.size());
        if (isCleanRelative(rest))
            return std::string(rest);
    }
    const fs::path relative = relativeToRoot(localPath);
    if (relative.empty() || relative == "." || *relative.begin() == "..")
        return std::nullopt;
    return relative.generic_string();
}

std::optional<std::string> WorkspaceView::scopeOf(const std::string& localPath) const
{
    if (relativeToRoot(localPath) == ".")
        return std::string();
    return keyOf(localPath);
}

fs::path WorkspaceView::relativeToRoot(const std::string& localPath) const
{
    fs::path path(localPath);
    if (path.is_relative())
        path = m_root / path;
    return path.lexically_normal().lexically_relative(m_root);
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
