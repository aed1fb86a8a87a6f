#include "openrules.h"

#include "filestate.h"

namespace hbrc::depot {

namespace {

OpenDecision refuse(std::string reason)
{
    return {OpenDecision::Kind::Refuse, std::move(reason)};
}

}  // namespace

OpenDecision decideOpen(FileAction action, const FileState& state)
{
    if (!state.key)
        return refuse("is not under the workspace root");
    if (state.mine) {
        if (state.mine->action == action)
            return {OpenDecision::Kind::AlreadyOpen, {}};
        return refuse(std::string("is already opened for ") + actionName(state.mine->action));
    }
    if (!state.others.empty()) {
        const OpenRecord& other = state.others.front();
        const std::string how = other.locked ? "is locked" : std::string("is opened for ") + actionName(other.action);
        return refuse(how + " by " + other.user + "@" + other.workspace);
    }
    if (action == FileAction::Add)
        return state.live() ? refuse("is already in the depot") : OpenDecision{};
    if (!state.live())
        return refuse("is not in the depot");
    if (!state.haveIsHead())
        return refuse("is not at the head revision (sync it first)");
    return {};
}

}  // namespace hbrc::depot
