// The revision commands run by the reference host's command manager ("UndoManager") over a real
// workspace and item library; the data control is scripted.
#include "accessstatereceiver.h"
#include "hbcheckoutcommand.h"
#include "hbmakewritablecommand.h"
#include "unspecifiedaccessorlist.h"

#include <hostmocks.h>
#include <hostworkspacefixture.h>

#include <nrk/isystem.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using borax::datamodel::ItemID;
using hbrc::test::MockDataControl;
using ::testing::_;
using ::testing::DoAll;
using ::testing::ElementsAre;
using ::testing::Return;
using ::testing::SetArgReferee;

namespace {

using ObjectList = BaseScsCommand::ObjectList;

class CommandsInHost : public HostWorkspaceFixture
{
protected:
    void SetUp() override
    {
        HostWorkspaceFixture::SetUp();
        host->AddWorkspaceSetup([this](hbrc::host::Workspace& w) {
            w.Model().Instance().RegisterService(kel4::UID_DataControl(), KELPtr<kel4::IService>(dataControl.Get()));
        });
        Open();
        workspace->Library().Context().RegisterNotification(&receiver, 40, 0);
        objects = {Create(hbrc::host::AssetKind::Metadata, "rock"), Create(hbrc::host::AssetKind::Value, "sand")};
        ON_CALL(*dataControl, GetDbObjectIds(_, _))
            .WillByDefault([](const ObjectList& asked, kel4::List<DbObjectId>& ids) {
                for (const auto& object : asked)
                    ids.push_back(object.GetDbObjectId());
                return kelResult(0);
            });
    }
    void TearDown() override
    {
        workspace->Library().Context().UnregisterNotification(&receiver, 40, 0);
        objects.clear();
        ::testing::Mock::VerifyAndClear(dataControl.Get());
        HostWorkspaceFixture::TearDown();
    }

    BaseScsCommand::AccessorList accessorsOf(const ObjectList& assets)
    {
        BaseScsCommand::AccessorList accessors;
        hbrc::internal::GetListOfUnspecifiedAccessors(
            borax::datamodel::Internal::ItemLibraryInternalAccessor(host->Proxy().GetItemLibraryAccessor()), assets,
            accessors);
        return accessors;
    }
    ItemID itemOf(const KELHandle<IDbObject>& object)
    {
        return borax::datamodel::Internal::ItemLibraryInternalAccessor(workspace->Accessor())
            .FindItemByDbUid(object.GetDbObjectId().GetStr());
    }
    // Executes the command as the plug-in's flows do: through the "UndoManager" singleton.
    bool execute(BaseScsCommand& command)
    {
        auto* manager = nrk::GetSingletonAs<nrk::fwk::ICommandManager>("UndoManager");
        EXPECT_EQ(manager, &host->Commands());
        command.SetCommandManager(manager);
        return manager->ExecuteCommand(&command, true);
    }

    KELPtr<::testing::NiceMock<MockDataControl>> dataControl{new ::testing::NiceMock<MockDataControl>};
    AccessStateReceiver receiver;
    ObjectList objects;
};

TEST_F(CommandsInHost, ACheckOutNotifiesTheItemLibraryAndIsUndoneByTheHost)
{
    EXPECT_CALL(*dataControl, CheckOut(objects, false, kel4::closureId::Persistence, "cl 3", _))
        .WillOnce(Return(kelResult(0)));
    const KELPtr<ScsCheckOutCommand> command(
        new ScsCheckOutCommand(host->Proxy().GetItemLibraryAccessor(), "cl 3", accessorsOf(objects), false));
    ASSERT_TRUE(execute(*command));
    int code = -1;
    EXPECT_TRUE(command->GetReturnValue(code));
    EXPECT_EQ(code, 0);
    EXPECT_THAT(receiver.items, ElementsAre(itemOf(objects.front()), itemOf(objects.back())));
    EXPECT_EQ(host->Commands().GetUndoCommand(), command.Get());

    ::testing::Mock::VerifyAndClearExpectations(dataControl.Get());
    EXPECT_CALL(*dataControl, CheckOut(_, _, _, _, _)).Times(0);
    EXPECT_TRUE(host->Commands().Undo());
    EXPECT_FALSE(host->Commands().CanUndo());
    EXPECT_TRUE(host->Commands().CanRedo());
}

TEST_F(CommandsInHost, AFailedCheckOutNotifiesNothing)
{
    EXPECT_CALL(*dataControl, CheckOut(_, _, _, _, _))
        .WillOnce(DoAll(SetArgReferee<4>(std::string("//depot/rock.kel is locked")), Return(kelResult(-2))));
    const KELPtr<ScsCheckOutCommand> command(
        new ScsCheckOutCommand(host->Proxy().GetItemLibraryAccessor(), "", accessorsOf(objects), false));
    ASSERT_TRUE(execute(*command));
    const auto* error = nrk::fwk::GetParamAs<nrk::fwk::StringParam>(*command, "ErrorString");
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->GetValue(), "//depot/rock.kel is locked");
    EXPECT_TRUE(receiver.items.empty());
}

TEST_F(CommandsInHost, AnItemWhoseObjectIsGoneStopsTheCommandBeforeAnyServiceCall)
{
    auto accessors = accessorsOf(objects);
    accessors.insert(accessors.begin() + 1,
                     borax::datamodel::UnspecifiedAccessor(workspace->Accessor(), workspace->Library().Bind("gone")));
    EXPECT_CALL(*dataControl, MakeWritable(_, _, _, _)).Times(0);
    EXPECT_CALL(*dataControl, GetDbObjectIds(_, _)).Times(0);
    const KELPtr<ScsMakeWritableCommand> command(
        new ScsMakeWritableCommand(host->Proxy().GetItemLibraryAccessor(), accessors, false));
    EXPECT_FALSE(execute(*command));
    EXPECT_EQ(host->Commands().GetUndoCount(), 0u);
    EXPECT_TRUE(receiver.items.empty());
}

}  // namespace
