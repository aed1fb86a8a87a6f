#include "svnrepositorypaths.h"

#include "svnclient.h"

#include <svn_dirent_uri.h>
#include <svn_path.h>

namespace hbrc::host {

svn_error_t* SvnRepositoryPaths::Open(const std::string& folder, svn_client_ctx_t* context, apr_pool_t* pool,
                                      SvnRepositoryPaths& paths)
{
    const char* root = nullptr;
    const char* rootUrl = nullptr;
    const char* repositoryRoot = nullptr;
    const char* absolute = nullptr;
    SVN_ERR(svn_dirent_get_absolute(&absolute, folder.c_str(), pool));
    SVN_ERR(svn_client_get_wc_root(&root, absolute, context, pool, pool));
    SVN_ERR(svn_client_url_from_path2(&rootUrl, root, context, pool, pool));
    SVN_ERR(svn_client_get_repos_root(&repositoryRoot, nullptr, root, context, pool, pool));
    const char* rootPath = svn_uri_skip_ancestor(repositoryRoot, rootUrl, pool);
    paths.m_workingCopyRoot = root;
    paths.m_rootPath = rootPath ? rootPath : "";
    paths.m_repositoryRoot = repositoryRoot;
    return SVN_NO_ERROR;
}

std::optional<std::string> SvnRepositoryPaths::repositoryPath(const std::string& local) const
{
    SvnPool pool;
    const char* relative = svn_dirent_skip_ancestor(m_workingCopyRoot.c_str(),
                                                    svn_dirent_canonicalize(local.c_str(), pool.get()));
    if (!relative)
        return std::nullopt;
    return svn_relpath_join(m_rootPath.c_str(), relative, pool.get());
}

std::string SvnRepositoryPaths::url(const std::string& repositoryPath, apr_pool_t* pool) const
{
    return svn_path_url_add_component2(m_repositoryRoot.c_str(), repositoryPath.c_str(), pool);
}

bool SvnIsAtOrBelow(const std::string& repositoryPath, const std::string& folder)
{
    return folder.empty() || repositoryPath == folder ||
           (repositoryPath.size() > folder.size() && repositoryPath.compare(0, folder.size(), folder) == 0 &&
            repositoryPath[folder.size()] == '/');
}

std::string SvnCommonFolder(const std::vector<std::string>& repositoryPaths)
{
    if (repositoryPaths.empty())
        return {};
    const auto parent = [](const std::string& path) {
        const std::size_t slash = path.rfind('/');
        return slash == std::string::npos ? std::string() : path.substr(0, slash);
    };
    std::string common = parent(repositoryPaths.front());
    for (const std::string& path : repositoryPaths)
        while (!common.empty() && (path == common || !SvnIsAtOrBelow(path, common)))
            common = parent(common);
    return common;
}

}  // namespace hbrc::host
