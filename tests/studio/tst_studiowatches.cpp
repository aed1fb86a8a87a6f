// Being told when an asset someone else holds is free: alice, refused Rock because bob locked it,
// takes the offer to be told; the watch outlives a restart of her studio; bob's release shows in
// her window within one status refresh, and the notice checks Rock out. And the line that names
// a related asset another user holds.
#include "assetwatches.h"
#include "noticebar.h"
#include "relatedholds.h"
#include "studiofixture.h"

#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <qtextention/qfunctoraction.h>

#include <QPushButton>

using namespace hbrc::studio;
using namespace hbrc::test;

namespace {

class StudioWatches : public StudioFixture<>
{
protected:
    void SetUp() override
    {
        StudioFixture::SetUp();
        makeDemo();
        startAliceCheckingOut();
    }
    void startAliceCheckingOut()
    {
        startAlice("alice-pw");
        session->settings()->SetActionWhenEditingReadOnlyAsset(IRevisionControlPropertiesMgr::eActionCheckOut);
    }
    void refresh()
    {
        window->refreshStatus();
        waitForStatus();
    }
    QFunctorAction* watchAction() const { return window->action(QStringLiteral("watchAsset")); }
};

TEST_F(StudioWatches, BobReleasesRockAndAlicesWatchSurvivesARestartAndChecksItOut)
{
    bobHolds("Rock", "", true);
    refresh();
    select("Rock");
    const AssetStatus* rock = window->model().statusAt(window->model().rowOf(asset("Rock")));
    EXPECT_EQ(RelatedHolds::describe(QStringLiteral("Moss"), {{QStringLiteral("Rock"), rock}}),
              QStringList{"Moss: its related asset Rock is locked by bob"});

    // The refused check-out offers the watch in the window's notice bar.
    driver.expectMessageBox(QStringLiteral("Checkout Error"), QMessageBox::Ok, QStringLiteral("bob"));
    window->action(QStringLiteral("checkOut"))->trigger();
    NoticeBar& offer = window->noticeBar();
    ASSERT_TRUE(offer.isVisible());
    EXPECT_EQ(offer.text(), "Rock is held by bob.");
    offer.actionButton()->click();
    EXPECT_FALSE(offer.isVisible());

    startAliceCheckingOut();
    select("Rock");
    EXPECT_TRUE(watchAction()->isEnabled());
    EXPECT_TRUE(watchAction()->isChecked()) << "the watch was kept in the preferences";

    ASSERT_TRUE(depot->bob().revert(depot->bobTicket(), {bobFile("Rock")}).ok());
    refresh();
    NoticeBar& notice = window->noticeBar();
    ASSERT_TRUE(notice.isVisible());
    EXPECT_EQ(notice.text(), "Rock is free: bob released it");
    EXPECT_TRUE(logged(QStringLiteral("Rock is free: bob released it")));
    EXPECT_FALSE(window->assetWatches().isWatching(asset("Rock"))) << "the watch ends once it told";

    notice.actionButton()->click();
    waitForOperations();
    EXPECT_EQ(status("Rock"), "checked out");
    EXPECT_FALSE(watchAction()->isChecked());
}

}  // namespace
