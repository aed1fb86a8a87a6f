#include "outsidehistory.h"

#include <kel4/kelptr.h>
#include <nrk/fwk/cbasecommand.h>
#include <nrk/fwk/icommandmanager.h>

namespace hbrc::studio {

namespace {

class WorkCommand final : public nrk::fwk::CBaseCommand
{
public:
    explicit WorkCommand(std::function<bool()> work) : m_work(std::move(work)) {}
    const char* GetCommandIdentifier() const override { return "studioWork"; }
    bool DoAction() override { return m_work(); }
    bool UndoAction() override { return false; }

private:
    std::function<bool()> m_work;
};

}  // namespace

bool RunOutsideHistory(nrk::fwk::ICommandManager& commands, std::function<bool()> work)
{
    const KELPtr<nrk::fwk::ICommand> command(new WorkCommand(std::move(work)));
    return commands.ExecuteCommand(command.Get(), false);
}

}  // namespace hbrc::studio
