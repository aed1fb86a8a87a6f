#pragma once

#include <svn_client.h>

#include <optional>
#include <string>
#include <vector>

namespace hbrc::host {

// Where the files of a working copy lie in its repository, from the working copy's own records
// (the repository is not asked). Repository paths are relative to the repository's root, without
// a leading slash ("assets/rock.kel"; "" is the root).
class SvnRepositoryPaths
{
public:
    // The paths of the working copy that holds folder.
    static svn_error_t* Open(const std::string& folder, svn_client_ctx_t* context, apr_pool_t* pool,
                             SvnRepositoryPaths& paths);

    // The repository path of a local file or folder at or below the working copy's root (it need
    // not exist); nothing for one outside the working copy.
    std::optional<std::string> repositoryPath(const std::string& local) const;
    // The URL of a repository path, escaped as the client library wants it.
    std::string url(const std::string& repositoryPath, apr_pool_t* pool) const;
    // The working copy root's repository path.
    const std::string& rootPath() const { return m_rootPath; }
    // The server's name of a repository path, as status names files.
    static std::string DepotName(const std::string& repositoryPath) { return "^/" + repositoryPath; }

private:
    std::string m_workingCopyRoot;  // absolute, canonical
    std::string m_rootPath;         // the working copy root's repository path
    std::string m_repositoryRoot;   // the repository root's URL
};

// True when repositoryPath is folder or lies below it.
bool SvnIsAtOrBelow(const std::string& repositoryPath, const std::string& folder);
// The deepest folder that holds every one of the repository paths: a log or listing there sees
// them all, also those deleted since. The paths themselves may be files, so their parents count.
std::string SvnCommonFolder(const std::vector<std::string>& repositoryPaths);

}  // namespace hbrc::host
