// The changelist dialog and the object-files services over the reference host: alice's workspace
// on the embedded depot and on a Subversion server with its real pending changelists, and the
// host's data control.
#include "changelistdialogui.h"
#include "objectlisthelpers.h"
#include "revisioncontroluihelper.h"

#include <serverhostfixture.h>

#include <gtest/gtest.h>

using namespace hbrc::test;

namespace {

using Dialog = hbChangeListSelectionDialog;

class InHost : public ServerHostFixture, public ::testing::WithParamInterface<ServerKind>
{
public:
    ServerKind Server() const override { return GetParam(); }
};
INSTANTIATE_TEST_SUITE_P(Servers, InHost, ::testing::Values(ServerKind::EmbeddedDepot, ServerKind::SvnServe),
                         ServerKindName);

TEST_P(InHost, NewCreatesADepotChangeListThatTheNextDialogLists)
{
    Dialog first(DataControl(), QString(), {}, false, true, nullptr);
    EXPECT_EQ(comboTexts(first), (QStringList{"New", "Default"}));
    const int created = runDialog(first, [&] {
        combo(first)->setCurrentIndex(0);
        QTest::keyClicks(descriptionEdit(first), QStringLiteral("Granite set"));
        click(first, QStringLiteral("Check Out"));
    });
    const std::string granite = first.getChangeList();
    ASSERT_EQ(created, Dialog::UseChangeList);
    ASSERT_FALSE(granite.empty());
    EXPECT_TRUE(DataControl()->ChangeListExists(granite));

    const std::string longDescription(100, 'x');
    const std::string lighting = NewChangelist(longDescription);
    Dialog second(DataControl(), QString(), {}, false, true, nullptr);
    EXPECT_EQ(comboTexts(second),
              (QStringList{"New", "Default", QString::fromStdString(granite + " Granite set"),
                           QString::fromStdString((lighting + ' ' + longDescription).substr(0, 80))}));
    const int chosen = runDialog(second, [&] {
        combo(second)->setCurrentIndex(3);
        EXPECT_EQ(descriptionEdit(second)->toPlainText().toStdString(), longDescription);
        click(second, QStringLiteral("Check Out"));
    });
    EXPECT_EQ(chosen, Dialog::UseChangeList);
    EXPECT_EQ(second.getChangeList(), lighting);
}

TEST_P(InHost, AnExpiredSessionListsNothingAndKeepsTheDialogOpenOnNew)
{
    NewChangelist("made before the session expired");
    ASSERT_TRUE(services.ExpireSessionNow().IsSuccess());
    Dialog dialog(DataControl(), QString(), {}, false, true, nullptr);
    EXPECT_EQ(comboTexts(dialog), (QStringList{"New", "Default"}));
    bool stayedOpen = false;
    const int result = runDialog(dialog, [&] {
        combo(dialog)->setCurrentIndex(0);
        click(dialog, QStringLiteral("Check Out"));
        stayedOpen = dialog.isVisible();
        click(dialog, QStringLiteral("Cancel"));
    });
    EXPECT_TRUE(stayedOpen);
    EXPECT_EQ(result, Dialog::Cancelled);
}

TEST_P(InHost, TheFilesOfASavedAssetAreListedSortedAndDescribed)
{
    const KELHandle<IDbObject> moss = CreateSavedAsset("Moss", "moss.geo");
    ASSERT_TRUE(workspace->AddExternalFile(moss, "albedo.tex", "texture"));
    workspace->Save();

    CRevisionControlUIHelper helper;
    QStringList files;
    helper.GetObjectFiles(moss, files);
    QStringList sorted = files;
    sorted.sort();
    EXPECT_EQ(files, sorted);
    ASSERT_EQ(files.size(), 3);
    EXPECT_TRUE(files.contains(QString::fromStdString(AlicePath("albedo.tex"))));
    EXPECT_TRUE(files.contains(QString::fromStdString(AlicePath("moss.geo"))));
    EXPECT_TRUE(helper.ObjectHasExternalFile(moss));
    EXPECT_FALSE(helper.ObjectHasExternalFile(Asset("Sky")));

    QString text;
    hbrc::internal::GetAssetListPrettyNames(DataControl(), {moss}, true, text);
    EXPECT_EQ(text.toStdString(), DataControl()->GetAssetDisplayName(moss) + " (with External: albedo.tex)moss.geo)\n");
}

}  // namespace
