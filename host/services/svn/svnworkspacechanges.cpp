#include "svnworkspacechanges.h"

#include <svn_dirent_uri.h>
#include <svn_wc.h>

#include <filesystem>
#include <map>
#include <system_error>

namespace hbrc::host {

namespace {

namespace fs = std::filesystem;
namespace code = revision::code;

bool IsAtOrBelow(const std::string& path, const std::string& folder)
{
    return svn_dirent_is_ancestor(folder.c_str(), path.c_str());
}

// The files below an unversioned folder: new to the repository, like the folder.
std::vector<std::string> FilesBelow(const std::string& folder, const apr_array_header_t* ignores, apr_pool_t* pool)
{
    std::vector<std::string> files;
    const std::string administrative = svn_wc_get_adm_dir(pool);
    std::error_code error;
    for (fs::recursive_directory_iterator entry(folder, error), end; entry != end; entry.increment(error)) {
        if (error)
            break;
        const std::string name = entry->path().filename().string();
        std::error_code typeError;
        if (name == administrative || svn_wc_match_ignore_list(name.c_str(), ignores, pool)) {
            if (entry->is_directory(typeError))
                entry.disable_recursion_pending();
        } else if (entry->is_regular_file(typeError)) {
            files.push_back(entry->path().string());
        }
    }
    return files;
}

}  // namespace

revision::Result SvnWorkspaceChanges(const SvnStatusMap& nodes, const std::string& workingCopy,
                                     const std::vector<std::string>& paths, const apr_array_header_t* globalIgnores,
                                     const revision::CancelCheck& cancel,
                                     std::vector<revision::WorkspaceChange>& changes, apr_pool_t* pool)
{
    std::vector<std::string> scopes;
    std::string outside;
    for (const std::string& path : paths) {
        scopes.push_back(svn_dirent_canonicalize(path.c_str(), pool));
        if (!IsAtOrBelow(scopes.back(), workingCopy))
            outside += "\n" + path + " is not in the working copy " + workingCopy;
    }
    if (!outside.empty())
        return {code::Failed, "Cannot look for changed files:" + outside};
    if (scopes.empty())
        scopes.push_back(workingCopy);
    const auto inScope = [&](const std::string& path) {
        for (const std::string& scope : scopes) {
            if (IsAtOrBelow(path, scope))
                return true;
        }
        return false;
    };
    // A scope inside an unversioned folder is found by walking that folder.
    const auto overlapsScope = [&](const std::string& folder) {
        for (const std::string& scope : scopes) {
            if (IsAtOrBelow(folder, scope) || IsAtOrBelow(scope, folder))
                return true;
        }
        return false;
    };

    std::map<std::string, revision::WorkspaceChange> found;  // in path order
    for (const auto& [path, node] : nodes) {
        if (cancel && cancel())
            return {code::Cancelled, "The operation was cancelled; the working copy is unchanged"};
        if (SvnIsOpenHere(node))
            continue;
        if (node.local == svn_wc_status_unversioned) {
            std::error_code error;
            if (!fs::is_directory(path, error)) {
                if (inScope(path))
                    found[path] = {path, {}, revision::FileAction::Add, 0};
            } else if (overlapsScope(path)) {
                for (const std::string& file : FilesBelow(path, globalIgnores, pool)) {
                    if (inScope(file))
                        found[file] = {file, {}, revision::FileAction::Add, 0};
                }
            }
        } else if (node.directory || !inScope(path)) {
            continue;
        } else if (node.local == svn_wc_status_missing) {
            found[path] = {path, node.repositoryPath, revision::FileAction::Delete, node.changedRevision};
        } else if (node.textModified) {
            found[path] = {path, node.repositoryPath, revision::FileAction::Edit, node.changedRevision};
        }
    }
    changes.clear();
    for (auto& [path, change] : found)
        changes.push_back(std::move(change));
    return {};
}

}  // namespace hbrc::host
