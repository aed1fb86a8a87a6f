#include "call.h"

#include "depoterror.h"

namespace hbrc::depot {

void Call::checkpoint() const
{
    if (m_cancel && m_cancel())
        throw DepotError(code::Cancelled, "The operation was cancelled; the depot is unchanged");
}

void Call::setSession(std::string user, WorkspaceView workspace)
{
    m_user = std::move(user);
    m_workspace.emplace(std::move(workspace));
}

}  // namespace hbrc::depot
