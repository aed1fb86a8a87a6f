#pragma once

// SvnServer's operations share this: an internal header of the Subversion backend.

#include "svnhistory.h"
#include "svnrepositorypaths.h"
#include "svnserver.h"

#include <svn_ra.h>

#include <optional>

namespace hbrc::host {

// One operation of the server: forced failures and latency first, then the session of its ticket,
// whose account and cancel check the client context uses until the operation ends.
class SvnServer::Call
{
public:
    Call(SvnServer& server, const revision::CancelCheck& cancel)
        : m_server(server), m_cancel(cancel), m_pool(server.m_client.pool())
    {
    }
    ~Call()
    {
        m_server.m_client.use(nullptr, nullptr);
        svn_client_ctx_t* context = m_server.m_client.context();
        context->notify_func2 = nullptr;
        context->log_msg_func3 = nullptr;
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    revision::Result begin(revision::Operation operation, const std::string* ticket)
    {
        if (std::optional<revision::Result> forced = m_server.m_faults.takeForcedFailure(operation)) {
            // A forced failure stands for a round trip that failed.
            ++m_server.m_roundTrips;
            return *forced;
        }
        switch (m_server.m_faults.waitLatency(m_cancel)) {
        case depot::InterruptibleWait::End::Elapsed:
            break;
        case depot::InterruptibleWait::End::Cancelled:
            return {revision::code::Cancelled, "The operation was cancelled; the repository is unchanged"};
        case depot::InterruptibleWait::End::Interrupted:
            return {revision::code::SessionUnusable, m_server.unreachableText("the connection was broken off")};
        }
        if (!ticket)
            return {};
        m_session = m_server.find(*ticket);
        if (!m_session)
            return {revision::code::SessionUnusable, "Your session has expired; please log in again."};
        use(*m_session);
        return {};
    }
    // Begins a question about the session's working copy: also where it lies in the repository.
    revision::Result begin(revision::Operation operation, const std::string& ticket, SvnRepositoryPaths& where)
    {
        if (revision::Result begun = begin(operation, &ticket); !begun.ok())
            return begun;
        return finish(SvnRepositoryPaths::Open(m_session->workingCopy, context(), pool(), where));
    }
    void use(const Session& session) { m_server.m_client.use(&session.credentials, &m_cancel); }

    Session& session() const { return *m_session; }
    apr_pool_t* pool() const { return m_pool.get(); }
    svn_client_ctx_t* context() const { return m_server.m_client.context(); }
    apr_array_header_t* paths(const Files& files) const { return SvnClient::pathArray(files, pool()); }
    // Asks the repository for its latest revision on a new connection, which authenticates anew.
    svn_error_t* reachRepository() const
    {
        svn_ra_session_t* ra = nullptr;
        svn_revnum_t latest = SVN_INVALID_REVNUM;
        svn_error_t* err = svn_client_open_ra_session2(&ra, m_server.m_url.c_str(), nullptr, context(), pool(), pool());
        return err ? err : svn_ra_get_latest_revnum(ra, &latest, pool());
    }
    // Counts one question to the repository and runs it.
    revision::Result ask(svn_error_t* err)
    {
        ++m_server.m_roundTrips;
        return finish(err);
    }
    revision::Result finish(svn_error_t* err) const { return SvnResult(err, m_server.m_url); }
    // Counts one question to the repository whose answer may be that the path asked about does not
    // exist (then absent, when given, says so), which is no failure.
    revision::Result askUnlessAbsent(svn_error_t* err, bool* absent = nullptr)
    {
        const bool notFound = err && SvnIsNotFound(err);
        if (absent)
            *absent = notFound;
        if (notFound) {
            svn_error_clear(err);
            err = SVN_NO_ERROR;
        }
        return ask(err);
    }
    // Brings the targets to a revision (0: the head), with the folders they need.
    svn_error_t* update(const Files& targets, long revision) const
    {
        svn_opt_revision_t at{};
        at.kind = revision > 0 ? svn_opt_revision_number : svn_opt_revision_head;
        at.value.number = revision;
        apr_array_header_t* revisions = nullptr;
        return svn_client_update4(&revisions, paths(targets), &at, svn_depth_unknown, FALSE, TRUE, TRUE, TRUE, TRUE,
                                  context(), pool());
    }
    // The working copy's nodes, the repository not asked.
    revision::Result walkLocally(SvnStatusMap& nodes) const
    {
        return finish(SvnWalkStatus(m_server.m_client, m_session->workingCopy, false, nodes, pool()));
    }

private:
    SvnServer& m_server;
    revision::CancelCheck m_cancel;
    SvnPool m_pool;
    Session* m_session = nullptr;
};

}  // namespace hbrc::host
