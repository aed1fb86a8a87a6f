#pragma once

// One round trip in progress: the connection inside its transaction, the session's workspace
// when the operation needs one, the caller's cancel check, and what the operation will do to
// workspace files once its transaction has committed.

#include <optional>
#include <string>
#include <vector>

#include <depot/types.h>

#include "filesteps.h"
#include "sqlite.h"
#include "workspaceview.h"

namespace hbrc::depot {

class Call
{
public:
    Call(Database& db, const CancelCheck& cancel) : m_db(db), m_cancel(cancel) {}

    Database& db() { return m_db; }
    // Throws DepotError(Cancelled) when the caller asks to stop; the transaction then rolls back.
    void checkpoint() const;
    // True when the caller asks to stop.
    bool cancelled() const { return m_cancel && m_cancel(); }

    void setSession(std::string user, WorkspaceView workspace);
    const std::string& user() const { return m_user; }
    const WorkspaceView& workspace() const { return *m_workspace; }
    bool hasSession() const { return m_workspace.has_value(); }

    // A change of a workspace file, made after the commit (see filesteps.h).
    void schedule(FileStep::Kind kind, const std::string& key, std::int64_t revision = 0);
    std::vector<FileStep>& steps() { return m_steps; }

    // The answer of an operation that commits what it could and refuses the rest (a sync that
    // keeps a user's writable file): the code and text returned after the commit.
    void refuseSome(int code, std::string message) { m_outcome = {code, std::move(message)}; }
    const Result& outcome() const { return m_outcome; }

private:
    Database& m_db;
    const CancelCheck& m_cancel;
    std::string m_user;
    std::optional<WorkspaceView> m_workspace;
    std::vector<FileStep> m_steps;
    Result m_outcome;
};

}  // namespace hbrc::depot
