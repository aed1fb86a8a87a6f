#pragma once

// One round trip in progress: the connection inside its transaction, the session's workspace
// when the operation needs one, and the caller's cancel check.

#include <optional>
#include <string>

#include <depot/types.h>

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

    void setSession(std::string user, WorkspaceView workspace);
    const std::string& user() const { return m_user; }
    const WorkspaceView& workspace() const { return *m_workspace; }

private:
    Database& m_db;
    const CancelCheck& m_cancel;
    std::string m_user;
    std::optional<WorkspaceView> m_workspace;
};

}  // namespace hbrc::depot
