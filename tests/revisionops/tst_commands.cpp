// The revision commands run by the reference host's command manager ("UndoManager") against its
// embedded depot: alice's workspace with the assets Rock, Tree and Sky submitted and read-only.
#include "hbcheckoutcommand.h"
#include "hbmakewritablecommand.h"
#include "hbmarkforaddcommand.h"
#include "itemaccessorlisting.h"

#include <serverhostfixture.h>

#include <borax/datamodel/iitemlibrarynotification.h>
#include <kel4/revisionstatus.h>
#include <nrk/isystem.h>

#include <QFileInfo>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>

using borax::datamodel::ItemID;
using borax::datamodel::ItemLibraryAccessor;
using borax::datamodel::UnspecifiedAccessor;
using ::testing::Each;
using ::testing::ElementsAre;

namespace {

using AccessorList = BaseScsCommand::AccessorList;
using CommandFactory = std::function<BaseScsCommand*(const ItemLibraryAccessor&, const AccessorList&)>;

// Records the items whose access state the item library says changed.
struct AccessStateReceiver final : borax::datamodel::IItemLibraryNotification {
    void OnBeginChanges(ItemLibraryAccessor&) override {}
    void OnEndChanges(ItemLibraryAccessor&) override {}
    void LibraryInvalidated(ItemLibraryAccessor&) override {}
    void ItemNameChanged(ItemLibraryAccessor&, const ItemID&) override {}
    void ItemTagsChanged(ItemLibraryAccessor&, const ItemID&, const char*) override {}
    void ItemAccessStateChanged(ItemLibraryAccessor&, const ItemID& item, long) override { items.push_back(item); }
    void OnPreCommit(ItemLibraryAccessor&, bool*) override {}
    void OnPostCommit(ItemLibraryAccessor&) override {}

    std::vector<ItemID> items;
};

const CommandFactory newCheckOut = [](const ItemLibraryAccessor& l, const AccessorList& a) -> BaseScsCommand* {
    return new ScsCheckOutCommand(l, "cl 7", a, true);
};
const CommandFactory newMarkForAdd = [](const ItemLibraryAccessor& l, const AccessorList& a) -> BaseScsCommand* {
    return new ScsMarkForAddCommand(l, "cl 7", a, true);
};
const CommandFactory newMakeWritable = [](const ItemLibraryAccessor& l, const AccessorList& a) -> BaseScsCommand* {
    return new ScsMakeWritableCommand(l, a, true);
};

struct IdentityCase {
    const char* name;
    CommandFactory make;
    const char* identifier;
    const char* displayName;
    const char* changelist;
};

class CommandIdentity : public ::testing::TestWithParam<IdentityCase>
{
};

TEST_P(CommandIdentity, CarriesItsIdentifierNameAndParametersInOrder)
{
    const AccessorList assets{UnspecifiedAccessor(ItemLibraryAccessor(), ItemID(4)),
                              UnspecifiedAccessor(ItemLibraryAccessor(), ItemID(2))};
    const KELPtr<BaseScsCommand> command(GetParam().make(ItemLibraryAccessor(), assets));
    EXPECT_STREQ(command->GetCommandIdentifier(), GetParam().identifier);
    EXPECT_EQ(command->GetName(), GetParam().displayName);
    std::vector<std::string> names;
    for (const auto* param : command->GetAllParams())
        names.push_back(param->GetName());
    EXPECT_THAT(names, ElementsAre("changelist", "asset", "includeexternalfile"));
    EXPECT_EQ(nrk::fwk::GetParamAs<nrk::fwk::StringParam>(*command, "changelist")->GetValue(), GetParam().changelist);
    EXPECT_EQ(nrk::fwk::GetParamAs<borax::datamodel::UnspecifiedAccessorListParam>(*command, "asset")->GetValue(),
              assets);
    EXPECT_TRUE(nrk::fwk::GetParamAs<nrk::fwk::BoolParam>(*command, "includeexternalfile")->GetValue());
}

INSTANTIATE_TEST_SUITE_P(
    Commands, CommandIdentity,
    ::testing::Values(IdentityCase{"CheckOut", newCheckOut, "checkoutKELDbObjects", "CheckOut Command", "cl 7"},
                      IdentityCase{"MarkForAdd", newMarkForAdd, "markForAddKELDbObjects", "MarkForAdd Command", "cl 7"},
                      IdentityCase{"MakeWritable", newMakeWritable, "makewritableKELDbObjects",
                                   "MakeWritable Command", ""}),
    [](const auto& info) { return std::string(info.param.name); });

class CommandsOnDepot : public ServerHostFixture
{
protected:
    void SetUp() override
    {
        ServerHostFixture::SetUp();
        workspace->Library().Context().RegisterNotification(&receiver, 40, 0);
    }
    void TearDown() override
    {
        workspace->Library().Context().UnregisterNotification(&receiver, 40, 0);
        ServerHostFixture::TearDown();
    }

    ItemLibraryAccessor library() const { return host->Proxy().GetItemLibraryAccessor(); }
    ItemID itemOf(const std::string& asset) const
    {
        return borax::datamodel::Internal::ItemLibraryInternalAccessor(workspace->Accessor())
            .FindItemByDbUid(Asset(asset).GetDbObjectId().GetStr());
    }
    AccessorList accessorsOf(std::initializer_list<const char*> assets, AccessorList accessors = {}) const
    {
        ObjectList objects;
        for (const char* asset : assets)
            objects.push_back(Asset(asset));
        hbrc::internal::GetListOfUnspecifiedAccessors(
            borax::datamodel::Internal::ItemLibraryInternalAccessor(library()), objects, accessors);
        return accessors;
    }
    // Executes the command as the plug-in's flows do: through the "UndoManager" singleton.
    // Gives the command's return value, or nothing when it did not run.
    std::optional<int> execute(BaseScsCommand& command)
    {
        auto* manager = nrk::GetSingletonAs<nrk::fwk::ICommandManager>("UndoManager");
        EXPECT_EQ(manager, &host->Commands());
        command.SetCommandManager(manager);
        int code = 1;
        if (!manager->ExecuteCommand(&command, true) || !command.GetReturnValue(code))
            return std::nullopt;
        return code;
    }
    static std::string errorOf(const BaseScsCommand& command)
    {
        const auto* error = nrk::fwk::GetParamAs<nrk::fwk::StringParam>(command, BaseScsCommand::kErrorStringParam);
        return error ? error->GetValue() : "<no ErrorString>";
    }

    AccessStateReceiver receiver;
};

// The commands that reach the server run on the embedded depot and on a Subversion server.
class CommandsOnServers : public CommandsOnDepot, public ::testing::WithParamInterface<ServerKind>
{
public:
    ServerKind Server() const override { return GetParam(); }
};
INSTANTIATE_TEST_SUITE_P(Servers, CommandsOnServers,
                         ::testing::Values(ServerKind::EmbeddedDepot, ServerKind::SvnServe), ServerKindName);

TEST_P(CommandsOnServers, ACheckOutOpensTheFilesInTheNamedChangelistNotifiesAndIsUndoneByTheHost)
{
    const std::string changelist = NewChangelist("level fixes");
    const KELPtr<ScsCheckOutCommand> command(
        new ScsCheckOutCommand(library(), changelist.c_str(), accessorsOf({"Rock", "Tree"}), true));
    ASSERT_EQ(execute(*command), 0);

    kel4::List<std::string> files = FilesOf("Rock");
    for (const std::string& file : FilesOf("Tree"))
        files.push_back(file);
    ASSERT_EQ(files.size(), 4u);  // each .kel file and its external file
    EXPECT_THAT(StatesOf(files), Each(FileState{kel4::eStatusCheckedOut, changelist}));
    EXPECT_THAT(Writable(files), Each(true));
    EXPECT_FALSE(StatusOf("Sky") & kel4::eStatusCheckedOut);
    EXPECT_THAT(receiver.items, ElementsAre(itemOf("Rock"), itemOf("Tree")));

    EXPECT_EQ(host->Commands().GetUndoCommand(), command.Get());
    EXPECT_TRUE(host->Commands().Undo());
    EXPECT_TRUE(host->Commands().CanRedo());
}

TEST_F(CommandsOnDepot, MissingChangelistAndIncludeFlagMeanTheDefaultChangelistWithoutExternalFiles)
{
    const KELPtr<ScsCheckOutCommand> command(new ScsCheckOutCommand(library()));
    command->AddParam(borax::datamodel::UnspecifiedAccessorListParam("asset", accessorsOf({"Rock"})));
    ASSERT_EQ(execute(*command), 0);
    EXPECT_THAT(StatesOf({AlicePath("Rock.kel"), AlicePath("rock.bin")}),
                ElementsAre(FileState{kel4::eStatusCheckedOut, ""}, FileState{}));
}

TEST_P(CommandsOnServers, AMarkForAddOpensANewAssetForAddInTheNamedChangelistAndNotifies)
{
    CreateSavedAsset("Moss", "moss.bin");
    const std::string changelist = NewChangelist("new plants");
    const KELPtr<ScsMarkForAddCommand> command(
        new ScsMarkForAddCommand(library(), changelist.c_str(), accessorsOf({"Moss"}), true));
    ASSERT_EQ(execute(*command), 0);
    EXPECT_THAT(StatesOf(FilesOf("Moss")), Each(FileState{kel4::eStatusMarkedForAdd, changelist}));
    EXPECT_THAT(receiver.items, ElementsAre(itemOf("Moss")));
}

// A refused check-out (bob holds Tree; then an expired session) opens nothing and notifies nobody.
TEST_P(CommandsOnServers, ARefusedCheckOutOpensNothingNotifiesNobodyAndSaysWhy)
{
    BobExpects(Bob().edit(BobTicket(), BobFilesOf("Tree"), ""));
    const KELPtr<ScsCheckOutCommand> held(new ScsCheckOutCommand(library(), "", accessorsOf({"Rock", "Tree"}), true));
    EXPECT_EQ(execute(*held), kel4::kResultFailed);
    EXPECT_NE(errorOf(*held).find("bob"), std::string::npos) << errorOf(*held);
    EXPECT_FALSE(StatusOf("Rock") & kel4::eStatusCheckedOut) << "all or nothing";

    ASSERT_EQ(services.ExpireSessionNow().GetCode(), 0);
    const KELPtr<ScsCheckOutCommand> expired(new ScsCheckOutCommand(library(), "", accessorsOf({"Rock"}), false));
    EXPECT_EQ(execute(*expired), kel4::kResultSessionUnusable);
    EXPECT_NE(errorOf(*expired), "");
    EXPECT_TRUE(receiver.items.empty());
    EXPECT_THAT(Writable(FilesOf("Rock")), Each(false));
}

TEST_F(CommandsOnDepot, AMakeWritableWithoutExternalFilesWritesEachAssetAndNotifies)
{
    const KELPtr<ScsMakeWritableCommand> command(
        new ScsMakeWritableCommand(library(), accessorsOf({"Rock", "Sky"}), false));
    EXPECT_EQ(execute(*command), 0);
    EXPECT_THAT(Writable({AlicePath("Rock.kel"), AlicePath("Sky.kel"), AlicePath("rock.bin")}),
                ElementsAre(true, true, false));
    EXPECT_THAT(receiver.items, ElementsAre(itemOf("Rock"), itemOf("Sky")));
}

TEST_F(CommandsOnDepot, AMakeWritableWhoseSecondAssetFailsLeavesTheThirdAndStillNotifies)
{
    const auto rock = FilesOf("Rock");
    const auto sky = FilesOf("Sky");
    // tree.bin becomes a read-only entry whose mode nobody may change, not even root.
    const QString tree = QString::fromStdString(AlicePath("tree.bin"));
    const QString unchangeable = QStringLiteral("/proc/sys/kernel/osrelease");
    if (!QFileInfo::exists(unchangeable))
        GTEST_SKIP() << "no file whose mode cannot be changed";
    ASSERT_TRUE(QFile::remove(tree));
    ASSERT_TRUE(QFile::link(unchangeable, tree));
    const KELPtr<ScsMakeWritableCommand> command(
        new ScsMakeWritableCommand(library(), accessorsOf({"Rock", "Tree", "Sky"}), true));
    EXPECT_EQ(execute(*command), kel4::kResultFailed);
    EXPECT_NE(errorOf(*command).find("tree.bin"), std::string::npos) << errorOf(*command);
    EXPECT_THAT(Writable(rock), Each(true));
    EXPECT_THAT(Writable(sky), Each(false));
    EXPECT_EQ(receiver.items.size(), 3u);
}

// An asset that does not resolve stops every command before any service call: nothing is
// recorded on the command, nothing changes in the depot or the folder.
TEST_F(CommandsOnDepot, AnItemWhoseObjectIsGoneOrAMissingDatabaseStopsEveryCommand)
{
    AccessorList gone = accessorsOf({"Rock", "Sky"});
    gone.insert(gone.begin() + 1, UnspecifiedAccessor(workspace->Accessor(), workspace->Library().Bind("gone")));
    const AccessorList fine = accessorsOf({"Rock", "Sky"});
    for (const bool databaseMissing : {false, true}) {
        if (databaseMissing)
            nrkGetSystem()->UnregisterSingleton(nrk::fwk::IKELDBProxy::GetSingletonName());
        for (const CommandFactory& make : {newCheckOut, newMarkForAdd, newMakeWritable}) {
            const KELPtr<BaseScsCommand> command(make(library(), databaseMissing ? fine : gone));
            EXPECT_EQ(execute(*command), std::nullopt);
            EXPECT_EQ(errorOf(*command), "<no ErrorString>");
        }
    }
    const KELPtr<ScsCheckOutCommand> withoutAssets(new ScsCheckOutCommand(library()));
    EXPECT_EQ(execute(*withoutAssets), std::nullopt);
    EXPECT_EQ(host->Commands().GetUndoCount(), 0u);
    EXPECT_TRUE(receiver.items.empty());
    EXPECT_THAT(Writable(FilesOf("Rock")), Each(false));
    EXPECT_EQ(StatusOf("Rock") & (kel4::eStatusCheckedOut | kel4::eStatusMarkedForAdd), 0u);
}

TEST_F(CommandsOnDepot, AccessorListingAppendsEachKnownItemOnceInItemOrder)
{
    const AccessorList earlier{UnspecifiedAccessor(library(), ItemID(1000))};
    workspace->Library().Unbind(Asset("Sky").GetDbObjectId().GetStr());
    EXPECT_THAT(accessorsOf({"Tree", "Sky", "Rock", "Tree"}, earlier),
                ElementsAre(earlier.front(), UnspecifiedAccessor(library(), itemOf("Rock")),
                            UnspecifiedAccessor(library(), itemOf("Tree"))));
}

}  // namespace
