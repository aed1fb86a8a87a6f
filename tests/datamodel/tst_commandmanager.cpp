#include <hostworkspacefixture.h>

#include <borax/datamodel/modify/cbaseexecutioncommand.h>
#include <nrk/fwk/cbasecommand.h>

#include <gtest/gtest.h>

using namespace hbrc::host;
using nrk::fwk::ICommand;
using nrk::fwk::ICommandManager;

namespace {

// Adds one to a counter; undo takes it away. Refuses when told to.
class StepCommand final : public nrk::fwk::CBaseCommand
{
public:
    StepCommand(int& counter, std::string name, bool refuse = false)
        : CBaseCommand(std::move(name)), m_counter(counter), m_refuse(refuse) {}
    const char* GetCommandIdentifier() const override { return "stepCounter"; }
    bool DoAction() override
    {
        if (m_refuse)
            return false;
        ++m_counter;
        return true;
    }
    bool UndoAction() override
    {
        --m_counter;
        return true;
    }
    bool CanCollapse(const ICommand& next) const override { return GetName() == "drag" && next.GetName() == "drag"; }

private:
    int& m_counter;
    bool m_refuse;
};

// Sets a field of every asset named by its "asset" parameter, one nested StepCommand per asset,
// and leaves the number of assets as its return value.
class TagAssetsCommand final : public borax::datamodel::modify::CBaseExecutionCommand
{
public:
    TagAssetsCommand(const borax::datamodel::ItemLibraryAccessor& library, Workspace& workspace, int& counter,
                     std::vector<borax::datamodel::UnspecifiedAccessor> assets)
        : CBaseExecutionCommand(library, "Tag Command"), m_workspace(workspace), m_counter(counter)
    {
        AddParam(borax::datamodel::UnspecifiedAccessorListParam("asset", std::move(assets)));
    }
    const char* GetCommandIdentifier() const override { return "tagAssets"; }

    bool BuildExecutionCommands(ICommandManager* manager) override
    {
        const auto* assets = nrk::fwk::GetParamAs<borax::datamodel::UnspecifiedAccessorListParam>(*this, "asset");
        if (!manager || !assets || !GetItemLibrary().GetLibrary())
            return false;
        for (const auto& asset : assets->GetValue()) {
            const DbObjectId id = GetItemLibrary().GetLibrary()->GetItemDbUid(asset.GetItemID());
            const auto object = m_workspace.Model().ResolveObject(id);
            if (object.IsNull() || !m_workspace.SetField(object, "tagged", "yes"))
                return false;
            const KELPtr<ICommand> step(new StepCommand(m_counter, "tag " + object.GetName()));
            manager->ExecuteCommand(step.Get(), true);
        }
        SetReturnValue(int(assets->GetValue().size()));
        return true;
    }

private:
    Workspace& m_workspace;
    int& m_counter;
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

struct ExecutionCase
{
    const char* name;
    bool refuse;
    bool undoable;
    bool transient;
    bool ran;
    std::size_t undoSteps;
};

class CommandExecution : public CommandManagerTest, public ::testing::WithParamInterface<ExecutionCase>
{
};

TEST_P(CommandExecution, ReportsWhetherItRanAndWhatJoinsTheHistory)
{
    const ExecutionCase& c = GetParam();
    auto* command = new StepCommand(counter, "step", c.refuse);
    command->SetTransient(c.transient);
    EXPECT_EQ(Execute(command, c.undoable), c.ran);
    EXPECT_EQ(counter, c.ran ? 1 : 0);
    EXPECT_EQ(manager->GetUndoCount(), c.undoSteps);
    EXPECT_EQ(manager->CanUndo(), c.undoSteps > 0);
}

INSTANTIATE_TEST_SUITE_P(Commands, CommandExecution,
                         ::testing::Values(ExecutionCase{"Undoable", false, true, false, true, 1},
                                           ExecutionCase{"NotUndoable", false, false, false, true, 0},
                                           ExecutionCase{"Transient", false, true, true, true, 0},
                                           ExecutionCase{"Refused", true, true, false, false, 0}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(CommandManagerTest, UndoAndRedoWalkTheHistory)
{
    EXPECT_FALSE(manager->Undo());
    Execute(new StepCommand(counter, "first"));
    Execute(new StepCommand(counter, "second"));
    ASSERT_EQ(manager->GetUndoCount(), 2u);
    EXPECT_EQ(manager->GetUndoCommand()->GetName(), "second");
    EXPECT_TRUE(manager->Undo());
    EXPECT_EQ(counter, 1);
    EXPECT_EQ(manager->GetUndoCommand()->GetName(), "first");
    EXPECT_TRUE(manager->CanRedo());
    EXPECT_TRUE(manager->Redo());
    EXPECT_EQ(counter, 2);
    EXPECT_FALSE(manager->CanRedo());
    EXPECT_TRUE(manager->Undo());
    Execute(new StepCommand(counter, "third"));  // a new step drops what could be redone
    EXPECT_FALSE(manager->CanRedo());
    EXPECT_FALSE(manager->Redo());
}

TEST_F(CommandManagerTest, CollapsingCommandsFormOneStep)
{
    for (int i = 0; i < 3; ++i)
        Execute(new StepCommand(counter, "drag"));
    Execute(new StepCommand(counter, "drop"));
    EXPECT_EQ(manager->GetUndoCount(), 2u);
    manager->Undo();
    manager->Undo();
    EXPECT_EQ(counter, 0);
}

TEST_F(CommandManagerTest, ExecutionCommandRunsBuildExecutionCommandsWithItsNestedCommandsAsOneStep)
{
    const auto rock = Create(AssetKind::Metadata, "rock");
    const auto sand = Create(AssetKind::Value, "sand");
    ASSERT_TRUE(workspace->Save().Succeeded());
    const auto library = host->Proxy().GetItemLibraryAccessor();
    const borax::datamodel::Internal::ItemLibraryInternalAccessor internal(library);
    std::vector<borax::datamodel::UnspecifiedAccessor> assets;
    for (const auto& asset : {rock, sand})
        assets.emplace_back(library, internal.FindItemByDbUid(asset.GetDbObjectId().GetStr()));

    const KELPtr<TagAssetsCommand> command(new TagAssetsCommand(library, *workspace, counter, assets));
    command->SetCommandManager(manager);
    ASSERT_TRUE(manager->ExecuteCommand(command.Get(), true));
    int returned = 0;
    ASSERT_TRUE(command->GetReturnValue(returned));
    EXPECT_EQ(returned, 2);
    EXPECT_EQ(counter, 2);
    EXPECT_TRUE(workspace->Model().IsDirty(rock));
    EXPECT_TRUE(workspace->Model().IsDirty(sand));
    EXPECT_EQ(manager->GetUndoCount(), 1u);
    EXPECT_EQ(manager->GetUndoCommand(), command.Get());
    EXPECT_TRUE(manager->Undo());
    EXPECT_EQ(counter, 0);

    // An accessor whose item is unknown stops the command: it did not run and left no result.
    const KELPtr<TagAssetsCommand> stray(new TagAssetsCommand(
        library, *workspace, counter, {borax::datamodel::UnspecifiedAccessor(library, borax::datamodel::ItemID(999))}));
    EXPECT_FALSE(manager->ExecuteCommand(stray.Get(), true));
    EXPECT_EQ(stray->GetCommandManager(), manager);  // given the manager that ran it
    EXPECT_FALSE(stray->GetReturnValue(returned));
}

TEST_F(CommandManagerTest, ClosingTheWorkspaceForgetsTheHistory)
{
    Execute(new StepCommand(counter, "step"));
    host->CloseWorkspace();
    EXPECT_FALSE(manager->CanUndo());
    EXPECT_EQ(manager->GetUndoCommand(), nullptr);
}

}  // namespace
