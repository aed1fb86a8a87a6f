// The revision commands against the reference host with its embedded depot: alice's workspace
// with the assets Rock, Tree and Sky submitted and read-only.
#include "accessstatereceiver.h"
#include "hbcheckoutcommand.h"
#include "hbmakewritablecommand.h"
#include "unspecifiedaccessorlist.h"

#include <depothostfixture.h>

#include <kel4/revisionstatus.h>
#include <nrk/isystem.h>

#include <QFileInfo>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using ::testing::Each;
using ::testing::ElementsAre;

namespace {

class CommandsOnDepot : public DepotHostFixture
{
protected:
    void SetUp() override
    {
        DepotHostFixture::SetUp();
        workspace->Library().Context().RegisterNotification(&receiver, 40, 0);
    }
    void TearDown() override
    {
        workspace->Library().Context().UnregisterNotification(&receiver, 40, 0);
        DepotHostFixture::TearDown();
    }

    borax::datamodel::ItemID itemOf(const std::string& asset) const
    {
        return borax::datamodel::Internal::ItemLibraryInternalAccessor(workspace->Accessor())
            .FindItemByDbUid(Asset(asset).GetDbObjectId().GetStr());
    }
    BaseScsCommand::AccessorList accessorsOf(std::initializer_list<const char*> assets) const
    {
        ObjectList objects;
        for (const char* asset : assets)
            objects.push_back(Asset(asset));
        BaseScsCommand::AccessorList accessors;
        hbrc::internal::GetListOfUnspecifiedAccessors(
            borax::datamodel::Internal::ItemLibraryInternalAccessor(host->Proxy().GetItemLibraryAccessor()), objects,
            accessors);
        return accessors;
    }
    int execute(BaseScsCommand& command)
    {
        auto* manager = nrk::GetSingletonAs<nrk::fwk::ICommandManager>("UndoManager");
        command.SetCommandManager(manager);
        EXPECT_TRUE(manager->ExecuteCommand(&command, true));
        int code = 1;
        EXPECT_TRUE(command.GetReturnValue(code));
        return code;
    }
    std::vector<std::string> filesOf(const std::string& asset) const
    {
        kel4::Set<std::string> files;
        DataControl()->GetFiles(Asset(asset), true, kPersistence, "", files);
        return {files.begin(), files.end()};
    }
    std::vector<bool> writable(const std::vector<std::string>& files) const
    {
        std::vector<bool> result;
        for (const std::string& file : files)
            // The owner's write bit: permission checks do not stop root, the bits still tell.
            result.push_back(QFileInfo(QFile::decodeName(QByteArray::fromStdString(file))).permissions() &
                             QFile::WriteOwner);
        return result;
    }

    AccessStateReceiver receiver;
};

TEST_F(CommandsOnDepot, ACheckOutOpensTheFilesInTheNamedChangelistAndNotifiesTheItems)
{
    std::string changelist;
    std::string error;
    ASSERT_EQ(DataControl()->CreateChangeList("level fixes", changelist, error).GetCode(), 0) << error;
    const KELPtr<ScsCheckOutCommand> command(new ScsCheckOutCommand(
        host->Proxy().GetItemLibraryAccessor(), changelist.c_str(), accessorsOf({"Rock", "Tree"}), true));
    ASSERT_EQ(execute(*command), 0);

    kel4::List<std::string> files;
    for (const char* asset : {"Rock", "Tree"})
        for (const std::string& file : filesOf(asset))
            files.push_back(file);
    ASSERT_EQ(files.size(), 4u);  // each .kel file and its external file
    kel4::List<unsigned> statuses;
    kel4::List<std::string> changelists;
    ASSERT_EQ(FileVersionControl()->GetStatus(AliceSession(), files, statuses, changelists, error, 0).GetCode(), 0)
        << error;
    EXPECT_THAT(changelists, Each(changelist));
    for (const unsigned status : statuses)
        EXPECT_TRUE(status & kel4::eStatusCheckedOut) << status;
    EXPECT_THAT(writable({files.begin(), files.end()}), Each(true));
    EXPECT_FALSE(StatusOf("Sky") & kel4::eStatusCheckedOut);
    EXPECT_THAT(receiver.items, ElementsAre(itemOf("Rock"), itemOf("Tree")));
    EXPECT_EQ(host->Commands().GetUndoCommand(), command.Get());
}

TEST_F(CommandsOnDepot, ACheckOutInAnExpiredSessionFailsWithoutNotifying)
{
    ASSERT_EQ(services.ExpireSessionNow().GetCode(), 0);
    const KELPtr<ScsCheckOutCommand> command(
        new ScsCheckOutCommand(host->Proxy().GetItemLibraryAccessor(), "", accessorsOf({"Rock"}), false));
    EXPECT_EQ(execute(*command), kel4::kResultSessionUnusable);
    const auto* error = nrk::fwk::GetParamAs<nrk::fwk::StringParam>(*command, "ErrorString");
    ASSERT_NE(error, nullptr);
    EXPECT_FALSE(error->GetValue().empty());
    EXPECT_TRUE(receiver.items.empty());
    EXPECT_THAT(writable(filesOf("Rock")), Each(false));
}

TEST_F(CommandsOnDepot, AMakeWritableWhoseSecondAssetFailsLeavesTheThirdAndStillNotifies)
{
    const std::vector<std::string> rock = filesOf("Rock");
    const std::vector<std::string> sky = filesOf("Sky");
    // tree.bin becomes a read-only entry whose mode nobody may change, not even root.
    const QString tree = QString::fromStdString(AlicePath("tree.bin"));
    const QString unchangeable = QStringLiteral("/proc/sys/kernel/osrelease");
    if (!QFileInfo::exists(unchangeable))
        GTEST_SKIP() << "no file whose mode cannot be changed";
    ASSERT_TRUE(QFile::remove(tree));
    ASSERT_TRUE(QFile::link(unchangeable, tree));
    const KELPtr<ScsMakeWritableCommand> command(new ScsMakeWritableCommand(
        host->Proxy().GetItemLibraryAccessor(), accessorsOf({"Rock", "Tree", "Sky"}), true));
    EXPECT_EQ(execute(*command), kel4::kResultFailed);
    const auto* error = nrk::fwk::GetParamAs<nrk::fwk::StringParam>(*command, "ErrorString");
    ASSERT_NE(error, nullptr);
    EXPECT_NE(error->GetValue().find("tree.bin"), std::string::npos) << error->GetValue();
    EXPECT_THAT(writable(rock), Each(true));
    EXPECT_THAT(writable(sky), Each(false));
    EXPECT_EQ(receiver.items.size(), 3u);
}

}  // namespace
