#include <hostworkspacefixture.h>

#include <nrk/fwk/cbasecommand.h>

#include <gtest/gtest.h>

using namespace hbrc::host;
using nrk::fwk::ICommand;
using nrk::fwk::ICommandManager;

namespace {

// Adds one to a counter; undo takes it away. Refuses when told to; "drag" steps collapse.
class StepCommand final : public nrk::fwk::CBaseCommand
{
public:
    StepCommand(int& counter, std::string name, bool refuse = false)
        : CBaseCommand(std::move(name)), m_counter(counter), m_refuse(refuse) {}
    const char* GetCommandIdentifier() const override { return "stepCounter"; }
    bool DoAction() override
    {
        if (!m_refuse)
            ++m_counter;
        return !m_refuse;
    }
    bool UndoAction() override { --m_counter; return true; }
    bool CanCollapse(const ICommand& next) const override { return GetName() == "drag" && next.GetName() == "drag"; }

private:
    int& m_counter;
    bool m_refuse;
};

class CommandManagerTest : public HostWorkspaceFixture
{
protected:
    void SetUp() override
    {
        HostWorkspaceFixture::SetUp();
        Open();
        manager = nrk::GetSingletonAs<ICommandManager>(ICommandManager::GetSingletonName());
        ASSERT_NE(manager, nullptr);
    }

    bool Execute(ICommand* command, bool undoable = true)
    {
        const KELPtr<ICommand> held(command);
        return manager->ExecuteCommand(command, undoable);
    }

    ICommandManager* manager = nullptr;
    int counter = 0;
};

// Only undoable commands that ran are kept; undo and redo walk that history, a new step drops what
// could be redone, successive drags form one step, and closing the workspace ends the history.
TEST_F(CommandManagerTest, UndoableCommandsThatRanFormTheHistoryUntilTheWorkspaceCloses)
{
    EXPECT_FALSE(manager->CanUndo());
    EXPECT_FALSE(manager->Undo());
    auto* transient = new StepCommand(counter, "transient");
    transient->SetTransient(true);
    EXPECT_TRUE(Execute(new StepCommand(counter, "first")));
    EXPECT_TRUE(Execute(new StepCommand(counter, "not undoable"), false));
    EXPECT_TRUE(Execute(transient));
    EXPECT_FALSE(Execute(new StepCommand(counter, "refused", true)));
    EXPECT_TRUE(Execute(new StepCommand(counter, "second")));
    EXPECT_EQ(counter, 4);
    ASSERT_EQ(manager->GetUndoCount(), 2u);
    EXPECT_EQ(manager->GetUndoCommand()->GetName(), "second");
    EXPECT_TRUE(manager->Undo());
    EXPECT_EQ(counter, 3);
    EXPECT_EQ(manager->GetUndoCommand()->GetName(), "first");
    EXPECT_TRUE(manager->CanRedo());
    EXPECT_TRUE(manager->Redo());
    EXPECT_EQ(counter, 4);
    EXPECT_FALSE(manager->CanRedo());
    EXPECT_TRUE(manager->Undo());

    for (int i = 0; i < 3; ++i)
        Execute(new StepCommand(counter, "drag"));
    EXPECT_FALSE(manager->CanRedo());
    EXPECT_FALSE(manager->Redo());
    Execute(new StepCommand(counter, "drop"));
    EXPECT_EQ(manager->GetUndoCount(), 3u);
    manager->Undo();
    manager->Undo();
    EXPECT_EQ(counter, 3);

    host->CloseWorkspace();
    EXPECT_FALSE(manager->CanUndo());
    EXPECT_EQ(manager->GetUndoCommand(), nullptr);
}

}  // namespace
