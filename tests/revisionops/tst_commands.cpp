// The revision commands run by the reference host's command manager ("UndoManager") against its
// embedded depot: alice's workspace with the assets Rock, Tree and Sky submitted and read-only;
// and the helper's mark-for-add and make-writable, which run them.
#include "hbcheckoutcommand.h"
#include "hbmakewritablecommand.h"
#include "hbmarkforaddcommand.h"
#include "helperhostfixture.h"
#include "itemaccessorlisting.h"

#include <borax/datamodel/iitemlibrarynotification.h>
#include <hbrchost/logcapture.h>
#include <nrk/fwk/icommand.h>
#include <nrk/isystem.h>

#include <QMessageBox>

using borax::datamodel::ItemID;
using borax::datamodel::ItemLibraryAccessor;
using borax::datamodel::UnspecifiedAccessor;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using hbrc::test::pressMessageBoxButton;

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

class CommandsOnDepot : public HelperOnHost
{
public:
    void SetUp() override
    {
        HelperOnHost::SetUp();
        workspace->Library().Context().RegisterNotification(&receiver, 40, 0);
    }
    void TearDown() override
    {
        workspace->Library().Context().UnregisterNotification(&receiver, 40, 0);
        HelperOnHost::TearDown();
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
    kelResult markForAdd(const ObjectList& objects, const std::string& changelist = "")
    {
        return helper.MarkForAddObjectsInChangelist(DataControl(), objects, true, changelist, errorString, message,
                                                    details);
    }

    AccessStateReceiver receiver;
    std::string errorString = "untouched";
    std::string message = "untouched";
    std::string details = "untouched";
};

// The commands do not depend on the transport: Subversion through a file:// URL.
using CommandsOnServers = OnServers<CommandsOnDepot>;
INSTANTIATE_TEST_SUITE_P(Servers, CommandsOnServers,
                         ::testing::Values(ServerKind::EmbeddedDepot, ServerKind::SvnFile), ServerKindName);

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

// A refused check-out (bob holds Tree) opens nothing and notifies nobody.
TEST_P(CommandsOnServers, ARefusedCheckOutOpensNothingNotifiesNobodyAndSaysWhy)
{
    BobExpects(Bob().edit(BobTicket(), BobFilesOf("Tree"), ""));
    const KELPtr<ScsCheckOutCommand> held(new ScsCheckOutCommand(library(), "", accessorsOf({"Rock", "Tree"}), true));
    EXPECT_EQ(execute(*held), kel4::kResultFailed);
    EXPECT_NE(errorOf(*held).find("bob"), std::string::npos) << errorOf(*held);
    EXPECT_FALSE(StatusOf("Rock") & kel4::eStatusCheckedOut) << "all or nothing";
    EXPECT_TRUE(receiver.items.empty());
    EXPECT_THAT(Writable(FilesOf("Rock")), Each(false));
}

// The command alone leaves the external files; the helper writes them too, without checking out.
TEST_F(CommandsOnDepot, AMakeWritableWithoutExternalFilesWritesEachAssetAndNotifies)
{
    const KELPtr<ScsMakeWritableCommand> command(
        new ScsMakeWritableCommand(library(), accessorsOf({"Rock", "Sky"}), false));
    EXPECT_EQ(execute(*command), 0);
    EXPECT_THAT(Writable({AlicePath("Rock.kel"), AlicePath("Sky.kel"), AlicePath("rock.bin")}),
                ElementsAre(true, true, false));
    EXPECT_THAT(receiver.items, ElementsAre(itemOf("Rock"), itemOf("Sky")));

    EXPECT_TRUE(helper.MakeObjectWritable(Asset("Rock"), true));
    EXPECT_TRUE(AllWritable("Rock"));
    EXPECT_THAT(OpenedIn("Rock"), Each("-"));
}

// A file whose mode cannot change: the command leaves the assets after it and still notifies
// each; the helper shows the failure once to a user and logs it once in a batch run.
TEST_F(CommandsOnDepot, AMakeWritableWhoseSecondAssetFailsLeavesTheThirdAndIsShownOrLoggedOnce)
{
    const auto rock = FilesOf("Rock");
    const auto sky = FilesOf("Sky");
    if (!MakeUnchangeable("tree.bin"))
        GTEST_SKIP() << "no file whose mode cannot be changed";
    const KELPtr<ScsMakeWritableCommand> command(
        new ScsMakeWritableCommand(library(), accessorsOf({"Rock", "Tree", "Sky"}), true));
    EXPECT_EQ(execute(*command), kel4::kResultFailed);
    EXPECT_NE(errorOf(*command).find("tree.bin"), std::string::npos) << errorOf(*command);
    EXPECT_THAT(Writable(rock), Each(true));
    EXPECT_THAT(Writable(sky), Each(false));
    EXPECT_EQ(receiver.items.size(), 3u);

    const std::string name = DataControl()->GetAssetDisplayName(Asset("Tree"));
    driver.expect("failure", [&](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->windowTitle(), "I/O Error");
        EXPECT_THAT(box->text().toStdString(),
                    HasSubstr("Error found while trying to make the asset " + name + " writable:\n"));
        EXPECT_EQ(box->standardButtons(), QMessageBox::Ok);
        EXPECT_EQ(box->detailedText().toStdString(), AlicePath("Tree.kel") + "\n" + AlicePath("tree.bin") + "\n");
        pressMessageBoxButton(box, QMessageBox::Ok);
    });
    EXPECT_FALSE(helper.MakeObjectWritable(Asset("Tree"), true));

    window.reset();
    hbrc::host::LogCapture log;
    EXPECT_FALSE(helper.MakeObjectWritable(Asset("Tree"), true));
    ASSERT_EQ(log.TextsOfType(Log::eError).size(), 1u);
    EXPECT_THAT(log.TextsOfType(Log::eError).front(), HasSubstr("writable:\n"));
    EXPECT_THAT(log.TextsOfType(Log::eError).front(), HasSubstr("\nDetails:\n" + AlicePath("Tree.kel") + "\n"));
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

// --- the helper's mark-for-add ------------------------------------------------------------------------

// One undoable command; nothing the item library knows needs none.
TEST_F(CommandsOnDepot, TheHelpersMarkForAddOpensTheNewFilesInTheChangelistAsOneUndoStep)
{
    const KELHandle<IDbObject> gone = CreateSavedAsset("Gone");
    ASSERT_TRUE(workspace->DeleteAsset(gone));
    const std::size_t undoSteps = host->Commands().GetUndoCount();
    for (const ObjectList& objects : {ObjectList{}, ObjectList{gone}}) {
        EXPECT_EQ(markForAdd(objects).GetCode(), kel4::kResultSuccess);
        EXPECT_EQ(host->Commands().GetUndoCount(), undoSteps);
        EXPECT_EQ(message, "untouched");
    }

    const KELHandle<IDbObject> fern = CreateSavedAsset("Fern", "fern.bin");
    const std::string changelist = NewChangelist("ferns");
    EXPECT_EQ(markForAdd({fern}, changelist).GetCode(), kel4::kResultSuccess);
    EXPECT_THAT(StatesOf(FilesOf("Fern")), Each(FileState{kel4::eStatusMarkedForAdd, changelist}));
    EXPECT_EQ(host->Commands().GetUndoCount(), undoSteps + 1);
    EXPECT_THAT(receiver.items, ElementsAre(itemOf("Fern")));
}

// Without a command manager, or without a data control in the database, the helper's command
// cannot run: it says so and leaves the texts it does not own.
TEST_F(CommandsOnDepot, AHelperCommandThatCannotRunIsReportedAsSuch)
{
    const KELHandle<IDbObject> fern = CreateSavedAsset("Fern");
    host->System().UnregisterSingleton("UndoManager");
    EXPECT_TRUE(helper.CheckOutObjectsInChangelist(DataControl(), Assets({"Rock"}), true, "", errorString, message,
                                                   details)
                    .IsFailure());
    EXPECT_EQ(message, "Could not execute command: Unknown error");
    ASSERT_TRUE(host->System().RegisterSingleton("UndoManager", &host->Commands()));

    message.clear();
    const KELPtr<kel4::IDataControl> dataControl = DataControl();
    workspace->Model().Instance().RegisterService(kel4::UID_DataControl(), nullptr);
    const kelResult result =
        helper.MarkForAddObjectsInChangelist(dataControl, {fern}, true, "", errorString, message, details);
    EXPECT_EQ(result.GetCode(), kel4::kResultCommandRefused);
    EXPECT_EQ(message, "Could not execute command: Unknown error");
    EXPECT_EQ(errorString, "untouched");
    EXPECT_EQ(details, "untouched");
}

// bob has opened a file of the same name for add: alice's add is refused and the message names
// him. The file is also new to the depot (0x80), which a mark-for-add does not explain.
TEST_F(CommandsOnDepot, ARefusedMarkForAddNamesTheUserWhoAddedTheSameFileFirst)
{
    const KELHandle<IDbObject> fern = CreateSavedAsset("Fern");
    const std::string bobFern = BobPath(FilesOf("Fern").front().substr(AlicePath("").size()));
    ASSERT_TRUE(WriteText(bobFern, "bob's fern\n"));
    BobExpects(Bob().add(BobTicket(), {bobFern}, ""));

    EXPECT_LT(markForAdd({fern}).GetCode(), 0);
    EXPECT_NE(errorString.find("bob"), std::string::npos) << errorString;
    EXPECT_EQ(message, "Cannot mark-for-add the assets\n"
                       "because the following users have marked for add some of the files\n"
                       "\nbob\n");
    EXPECT_EQ(details, "Files:\n" + FilesOf("Fern").front() + "\n");
}

}  // namespace
