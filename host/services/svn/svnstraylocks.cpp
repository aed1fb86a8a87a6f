// SvnServer's release of the locks a check-out left when the server died during it.

#include "svnadvisorylock.h"
#include "svnservercall.h"

#include <log/log.h>

#include <svn_hash.h>

#include <map>
#include <set>

namespace hbrc::host {

namespace {

// The paths the repository unlocked, relative to its root.
svn_error_t* KeepUnlocked(void* baton, const char* path, svn_boolean_t /*doLock*/, const svn_lock_t* /*lock*/,
                          svn_error_t* refused, apr_pool_t* /*pool*/)
{
    if (!refused)
        static_cast<std::set<std::string>*>(baton)->insert(path);
    return SVN_NO_ERROR;
}

// The files whose repository lock is in user's name, was taken from this working copy (its
// comment says so) and has no token here: path in the repository (from its root) to file.
std::map<std::string, std::string> StrayLocks(const SvnStatusMap& nodes, const std::string& user,
                                              const SvnWorkingCopyId& origin)
{
    std::map<std::string, std::string> strays;
    for (const auto& [path, node] : nodes)
        if (!node.directory && node.localLockToken.empty() && node.repositoryLockOwner == user &&
            node.repositoryPath.rfind("^/", 0) == 0 && origin.tookLock(node.repositoryLockComment))
            strays.emplace(node.repositoryPath.substr(2), path);
    return strays;
}

}  // namespace

void SvnServer::releaseStrayLocks(Call& call, SvnStatusMap& walked)
{
    const Session& session = call.session();
    std::map<std::string, std::string> strays = StrayLocks(walked, session.credentials.user, session.origin);
    if (strays.empty())
        return;
    // A check-out running on this working copy (another connection, or another process) has locks
    // whose tokens have not reached the working copy yet: nothing is released then, nor what it
    // has locked by the time this one looks again. The next question tries again.
    const SvnAdvisoryLock noCheckOutRunning(session.lockingFile, SvnAdvisoryLock::Mode::ExclusiveIfFree);
    SvnStatusMap now;
    if (!noCheckOutRunning.held() || !call.walkLocally(now).ok())
        return;
    apr_hash_t* tokens = apr_hash_make(call.pool());
    for (const auto& [repositoryPath, file] : strays) {
        const auto found = now.find(file);
        if (found != now.end() && found->second.localLockToken.empty())
            svn_hash_sets(tokens, apr_pstrdup(call.pool(), repositoryPath.c_str()),
                          apr_pstrdup(call.pool(), walked.at(file).repositoryLockToken.c_str()));
    }
    if (apr_hash_count(tokens) == 0)
        return;

    // Each lock is given up with the token the walk saw: one taken anew meanwhile stays.
    std::set<std::string> released;
    svn_ra_session_t* ra = nullptr;
    const char* root = nullptr;
    svn_error_t* err = svn_client_open_ra_session2(&ra, m_url.c_str(), session.workingCopy.c_str(), call.context(),
                                                   call.pool(), call.pool());
    if (!err)
        err = svn_ra_get_repos_root2(ra, &root, call.pool());
    if (!err)
        err = svn_ra_reparent(ra, root, call.pool());
    if (!err)
        err = svn_ra_unlock(ra, tokens, FALSE, KeepUnlocked, &released, call.pool());
    if (!call.ask(err).ok() || released.empty())
        return;

    std::string report = "Released " + std::to_string(released.size()) +
                         (released.size() == 1 ? " lock" : " locks") + " in " + session.credentials.user +
                         "'s name that an interrupted check-out left in this working copy:\n";
    for (const std::string& repositoryPath : released) {
        const auto stray = strays.find(repositoryPath);
        if (stray == strays.end())
            continue;
        SvnNodeStatus& node = walked.at(stray->second);
        node.repositoryLockToken.clear();
        node.repositoryLockOwner.clear();
        node.repositoryLockComment.clear();
        report += "  " + stray->second + "\n";
    }
    Log::Singleton::Instance().Write(Log::eWarning, report);
}

}  // namespace hbrc::host
