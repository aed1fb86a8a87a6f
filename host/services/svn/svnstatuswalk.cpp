#include "svnstatuswalk.h"

namespace hbrc::host {

namespace {

svn_error_t* Record(void* baton, const char* path, const svn_client_status_t* status, apr_pool_t* /*pool*/)
{
    SvnNodeStatus node;
    node.versioned = status->versioned;
    node.directory = status->kind == svn_node_dir;
    if (status->repos_relpath)
        node.repositoryPath = std::string("^/") + status->repos_relpath;
    node.changedRevision = SVN_IS_VALID_REVNUM(status->changed_rev) ? status->changed_rev : 0;
    node.headChangedRevision =
        SVN_IS_VALID_REVNUM(status->ood_changed_rev) ? status->ood_changed_rev : node.changedRevision;
    node.local = status->node_status;
    node.textModified = status->text_status == svn_wc_status_modified;
    node.repository = status->repos_node_status;
    if (status->lock && status->lock->token)
        node.localLockToken = status->lock->token;
    if (status->repos_lock) {
        node.repositoryLockToken = status->repos_lock->token ? status->repos_lock->token : "";
        node.repositoryLockOwner = status->repos_lock->owner ? status->repos_lock->owner : "";
        node.repositoryLockComment = status->repos_lock->comment ? status->repos_lock->comment : "";
    }
    if (status->changelist)
        node.changelist = status->changelist;
    static_cast<SvnStatusMap*>(baton)->insert_or_assign(path, std::move(node));
    return SVN_NO_ERROR;
}

}  // namespace

bool SvnIsOpenHere(const SvnNodeStatus& node)
{
    return !node.localLockToken.empty() || node.local == svn_wc_status_added ||
           node.local == svn_wc_status_deleted || node.local == svn_wc_status_replaced;
}

svn_error_t* SvnWalkStatus(const SvnClient& client, const std::string& workingCopy, bool askRepository,
                           SvnStatusMap& statuses, apr_pool_t* pool)
{
    svn_opt_revision_t head{};
    head.kind = svn_opt_revision_head;
    svn_revnum_t revision = SVN_INVALID_REVNUM;
    return svn_client_status6(&revision, client.context(), workingCopy.c_str(), &head, svn_depth_infinity,
                              TRUE /*get_all*/, askRepository, TRUE /*check_working_copy*/, TRUE /*no_ignore*/,
                              TRUE /*ignore_externals*/, FALSE /*depth_as_sticky*/, nullptr, Record, &statuses,
                              pool);
}

}  // namespace hbrc::host
