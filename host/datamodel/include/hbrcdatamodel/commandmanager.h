#pragma once

#include <hbrcdatamodel/export.h>

#include <nrk/fwk/icommandmanager.h>
#include <nrk/ibase.h>

#include <kel4/kelptr.h>

#include <vector>

namespace hbrc::host {

// The command manager ("UndoManager"). A command that ran and is neither transient nor executed
// with undoable false becomes one undo step; commands executed while another one runs join that
// one's step (a command that does not become a step takes them with it: they stay out of the
// history too), and a command whose predecessor CanCollapse with it joins the predecessor's step.
// Undo undoes a step's commands newest first; a new step clears the redo history. An execution
// command without a command manager gets this one.
class HBRC_DATAMODEL_EXPORT CommandManager final : public nrk::fwk::ICommandManager, public nrk::IBase
{
public:
    CommandManager() = default;
    ~CommandManager() override;
    CommandManager(const CommandManager&) = delete;
    CommandManager& operator=(const CommandManager&) = delete;

    const char* GetClsName() const override { return "Korvex.NRK.UndoManager"; }

    bool ExecuteCommand(nrk::fwk::ICommand* command, bool undoable) override;
    bool Undo() override;
    bool Redo() override;
    bool CanUndo() const override { return !m_undo.empty(); }
    bool CanRedo() const override { return !m_redo.empty(); }
    std::size_t GetUndoCount() const override { return m_undo.size(); }
    const nrk::fwk::ICommand* GetUndoCommand() const override;
    // The command that Redo would run next, or null.
    const nrk::fwk::ICommand* GetRedoCommand() const;

    // Forgets the undo and redo history (a workspace closed).
    void Clear();

private:
    using Commands = std::vector<KELPtr<nrk::fwk::ICommand>>;
    // One undo step: every command it holds in execution order (nested ones before the command
    // that ran them), and the commands that Redo runs again (which run their nested ones anew);
    // neither is empty.
    struct Step
    {
        Commands commands;
        Commands roots;
    };

    // Runs command; recorded receives the commands it ran nested and, when record, itself.
    bool Run(const KELPtr<nrk::fwk::ICommand>& command, bool record, Commands& recorded);
    void Record(Step step);

    std::vector<Step> m_undo;
    std::vector<Step> m_redo;
    Commands m_nested;  // the recorded commands run by the command that runs now
    int m_depth = 0;
};

}  // namespace hbrc::host
