#include "call.h"

#include "depoterror.h"

namespace hbrc::depot {

void Call::checkpoint() const
{
    if (cancelled())
        throw DepotError(code::Cancelled, "The operation was cancelled; the depot is unchanged");
}

void Call::setSession(std::string user, WorkspaceView workspace)
{
    m_user = std::move(user);
    m_workspace.emplace(std::move(workspace));
}

void Call::schedule(FileStep::Kind kind, const std::string& key, std::int64_t revision)
{
    m_steps.push_back({kind, m_workspace->name(), key, m_workspace->localPathOf(key), revision, 0});
}

}  // namespace hbrc::depot
