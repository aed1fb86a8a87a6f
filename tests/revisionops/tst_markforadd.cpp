// Marking new assets for add in a pending changelist through the helper, on the reference host's
// embedded depot: one undoable command, the cases that need no command or cannot run one, the
// explanation of a refusal, and the one re-connection of an expired session.
#include "hbrevisioncontrolpropertiesmgr.h"
#include "revisioncontroluihelper.h"

#include <serverhostfixture.h>
#include <dialogdriver.h>

#include <kel4/revisionstatus.h>
#include <nrk/fwk/icommand.h>

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {

using hbrc::test::DialogDriver;

class MarkForAdd : public ServerHostFixture
{
protected:
    void SetUp() override
    {
        ServerHostFixture::SetUp();
        host->System().RegisterSingleton(CHBRevisionControlPropertiesMgr::GetSingletonName(), &settings);
    }
    void TearDown() override
    {
        host->System().UnregisterSingleton(CHBRevisionControlPropertiesMgr::GetSingletonName());
        ServerHostFixture::TearDown();
    }

    kelResult markForAdd(const ObjectList& objects, const std::string& changelist = "")
    {
        return helper.MarkForAddObjectsInChangelist(DataControl(), objects, true, changelist, errorString, message,
                                                    details);
    }
    std::vector<unsigned> statusesOf(const std::string& asset) const
    {
        std::vector<unsigned> statuses;
        for (const FileState& state : StatesOf(FilesOf(asset)))
            statuses.push_back(state.status);
        return statuses;
    }

    CHBRevisionControlPropertiesMgr settings;
    CRevisionControlUIHelper helper;
    std::string errorString = "untouched";
    std::string message = "untouched";
    std::string details = "untouched";
};

TEST_F(MarkForAdd, OpensTheNewFilesInTheChangelistAsOneUndoStep)
{
    const KELHandle<IDbObject> fern = CreateSavedAsset("Fern", "fern.bin");
    const std::string changelist = NewChangelist("ferns");
    const std::size_t undoSteps = host->Commands().GetUndoCount();

    EXPECT_EQ(markForAdd({fern}, changelist).GetCode(), kel4::kResultSuccess);
    EXPECT_EQ(statusesOf("Fern"), std::vector<unsigned>(2, kel4::eStatusMarkedForAdd));
    EXPECT_EQ(host->Commands().GetUndoCount(), undoSteps + 1);
    ASSERT_NE(host->Commands().GetUndoCommand(), nullptr);
    EXPECT_STREQ(host->Commands().GetUndoCommand()->GetCommandIdentifier(), "markForAddKELDbObjects");
}

TEST_F(MarkForAdd, NothingKnownToTheItemLibraryNeedsNoCommand)
{
    const KELHandle<IDbObject> gone = CreateSavedAsset("Gone");
    ASSERT_TRUE(workspace->DeleteAsset(gone));
    const std::size_t undoSteps = host->Commands().GetUndoCount();
    for (const ObjectList& objects : {ObjectList{}, ObjectList{gone}}) {
        EXPECT_EQ(markForAdd(objects).GetCode(), kel4::kResultSuccess);
        EXPECT_EQ(host->Commands().GetUndoCount(), undoSteps);
        EXPECT_EQ(message, "untouched");
    }
}

TEST_F(MarkForAdd, ACommandThatCannotRunLeavesTheTextsItDoesNotOwn)
{
    const KELHandle<IDbObject> fern = CreateSavedAsset("Fern");
    const KELPtr<kel4::IDataControl> dataControl = DataControl();
    // Without a data control in the database the command cannot run.
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
TEST_F(MarkForAdd, ARefusalNamesTheUserWhoAddedTheSameFileFirst)
{
    const KELHandle<IDbObject> fern = CreateSavedAsset("Fern");
    const std::string bobFern = BobPath(FilesOf("Fern").front().substr(AlicePath("").size()));
    QFile file(QFile::decodeName(QByteArray::fromStdString(bobFern)));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("bob's fern\n");
    file.close();
    BobExpects(Bob().add(BobTicket(), {bobFern}, ""));

    const kelResult result = markForAdd({fern});
    EXPECT_LT(result.GetCode(), 0);
    EXPECT_NE(errorString.find("bob"), std::string::npos) << errorString;
    EXPECT_EQ(message,
              "Cannot mark-for-add the assets\n"
              "because the following users have marked for add some of the files\n"
              "\nbob\n");
    EXPECT_EQ(details, "Files:\n" + FilesOf("Fern").front() + "\n");
}

// An expired session: a batch run fails with the session's code; with a window the password is
// asked for once, and the files are marked.
TEST_F(MarkForAdd, AnExpiredSessionFailsABatchRunAndIsReopenedOnceWhenTheUserGivesThePassword)
{
    const KELHandle<IDbObject> fern = CreateSavedAsset("Fern");
    ASSERT_TRUE(services.ExpireSessionNow().IsSuccess());
    {
        DialogDriver driver;  // expects nothing: a batch run asks nothing
        EXPECT_EQ(markForAdd({fern}).GetCode(), kel4::kResultSessionUnusable);
        EXPECT_TRUE(driver.finished()) << driver.failures().join('\n').toStdString();
        EXPECT_EQ(message.rfind("Cannot mark-for-add the assets\nCannot connect to source control.\n", 0), 0u) << message;
        EXPECT_FALSE(errorString.empty());
    }
    const auto window = std::make_unique<QWidget>();
    DialogDriver driver;
    driver.expect("password", [](QWidget* dialog) {
        EXPECT_EQ(dialog->windowTitle(), "Data Source Password Required");
        QTest::keyClicks(dialog->findChild<QLineEdit*>(), QStringLiteral("alice-pw"));
        dialog->findChildren<QPushButton*>().front()->click();  // Ok
    });
    EXPECT_EQ(markForAdd({fern}).GetCode(), kel4::kResultSuccess);
    EXPECT_TRUE(driver.finished()) << driver.failures().join('\n').toStdString();
    EXPECT_EQ(statusesOf("Fern"), std::vector<unsigned>{kel4::eStatusMarkedForAdd});
}

}  // namespace
