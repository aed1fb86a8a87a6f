#include <hbrcdatamodel/commandmanager.h>

#include <borax/datamodel/modify/cbaseexecutioncommand.h>

namespace hbrc::host {

using nrk::fwk::ICommand;

CommandManager::~CommandManager() = default;

bool CommandManager::Run(const KELPtr<ICommand>& command, bool record, Commands& recorded)
{
    if (auto* execution = dynamic_cast<borax::datamodel::modify::CBaseExecutionCommand*>(command.Get());
        execution && !execution->GetCommandManager())
        execution->SetCommandManager(this);
    Commands outer;
    outer.swap(m_nested);
    ++m_depth;
    const bool ran = command->DoAction();
    --m_depth;
    recorded.swap(m_nested);
    m_nested.swap(outer);
    // What a command ran belongs to its step: a command that failed or stays out of the history
    // takes the commands it ran with it.
    if (ran && record)
        recorded.push_back(command);
    else
        recorded.clear();
    return ran;
}

void CommandManager::Record(Step step)
{
    if (step.commands.empty())
        return;
    if (m_depth > 0) {
        m_nested.insert(m_nested.end(), step.commands.begin(), step.commands.end());
        return;
    }
    m_redo.clear();
    if (!m_undo.empty() && step.commands.size() == 1 && m_undo.back().commands.back()->CanCollapse(*step.commands[0])) {
        m_undo.back().commands.push_back(step.commands[0]);
        m_undo.back().roots.push_back(step.commands[0]);
        return;
    }
    m_undo.push_back(std::move(step));
}

bool CommandManager::ExecuteCommand(ICommand* command, bool undoable)
{
    if (!command)
        return false;
    const KELPtr<ICommand> held(command);
    Step step;
    const bool ran = Run(held, undoable && !command->IsTransient(), step.commands);
    if (!step.commands.empty())
        step.roots = {held};
    Record(std::move(step));
    return ran;
}

bool CommandManager::Undo()
{
    if (m_undo.empty() || m_depth > 0)
        return false;
    Step step = std::move(m_undo.back());
    m_undo.pop_back();
    bool undone = true;
    for (auto command = step.commands.rbegin(); command != step.commands.rend(); ++command)
        undone = (*command)->UndoAction() && undone;
    m_redo.push_back(std::move(step));
    return undone;
}

bool CommandManager::Redo()
{
    if (m_redo.empty() || m_depth > 0)
        return false;
    Step done = std::move(m_redo.back());
    m_redo.pop_back();
    Step step;
    bool redone = true;
    for (const KELPtr<ICommand>& root : done.roots) {
        Commands recorded;
        redone = Run(root, true, recorded) && redone;
        step.commands.insert(step.commands.end(), recorded.begin(), recorded.end());
    }
    step.roots = std::move(done.roots);
    if (!step.commands.empty())
        m_undo.push_back(std::move(step));
    return redone;
}

const ICommand* CommandManager::GetUndoCommand() const
{
    return m_undo.empty() ? nullptr : m_undo.back().roots.back().Get();
}

const ICommand* CommandManager::GetRedoCommand() const
{
    return m_redo.empty() ? nullptr : m_redo.back().roots.back().Get();
}

void CommandManager::Clear()
{
    m_undo.clear();
    m_redo.clear();
}

}  // namespace hbrc::host
