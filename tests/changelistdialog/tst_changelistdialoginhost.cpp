// The changelist dialog over the reference host's data control, on the embedded depot and on a
// Subversion server, when the session has expired: nothing listed, and "New" cannot create.
#include "changelistdialogui.h"

#include <serverhostfixture.h>

#include <gtest/gtest.h>

using namespace hbrc::test;

namespace {

using Dialog = hbChangeListSelectionDialog;

using InHost = ServerFixture;
INSTANTIATE_TEST_SUITE_P(Servers, InHost, ::testing::Values(ServerKind::EmbeddedDepot, ServerKind::SvnServe),
                         ServerKindName);

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

}  // namespace
