// The revision-control settings: defaults, persistence, the deliberate quirks, the change signal
// and the hand-over of the account to the data control.
#include "hbrevisioncontrolpropertiesmgr.h"

#include <hostfakes.h>

#include <hbrchost/logcapture.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <sstream>
#include <string>

using hbrc::test::FakeHost;
using hbrc::test::FakeUserParameters;
using ::testing::_;
using ::testing::Return;
using Mgr = IRevisionControlPropertiesMgr;

namespace {

class CountingSlot : public IRevisionControlPropertiesMgr_Slot
{
public:
    void OnRevisionControlPropertiesChange(IRevisionControlPropertiesMgr* mgr) override
    {
        ++calls;
        last = mgr;
    }
    int calls = 0;
    IRevisionControlPropertiesMgr* last = nullptr;
};

class PropertiesMgrTest : public ::testing::Test
{
protected:
    // Every setting on one line, as the manager reads it back.
    std::string Snapshot() const
    {
        std::string user = "x", server = "x", workspace = "x", changelist = "x";
        bool always = true, prompt = true, use = true;
        Mgr::ActionWhenEditingReadOnlyAsset action = Mgr::eActionNone;
        const bool actionRead = mgr->GetActionWhenEditingReadOnlyAsset(action);
        mgr->GetAccountProperties(user, server, workspace);
        mgr->GetChangeListToUseWhenAutoCheckingOut(changelist);
        mgr->GetAlwaysUseSetting(always);
        mgr->GetPromptForChangeListWhenCheckingOut(prompt);
        mgr->GetUseSourceDataControl(use);
        std::ostringstream line;
        line << user << '|' << server << '|' << workspace << " action " << (actionRead ? int(action) : -1) << " changelist "
             << changelist << " always " << always << " prompt " << prompt << " use " << use << " saw "
             << mgr->GetUserSawSourceControlDialog();
        return line.str();
    }
    // A new store object over the same file, and a new manager, as after a restart.
    void Restart()
    {
        const QString file = host.prefs->FilePath();
        host.system.UnregisterSingleton(IHBPrefManager::GetSingletonName());
        host.prefs = std::make_unique<hbrc::host::PrefManager>(file);
        host.system.RegisterSingleton(IHBPrefManager::GetSingletonName(), host.prefs.get());
        mgr = std::make_unique<CHBRevisionControlPropertiesMgr>();
    }

    FakeHost host;
    std::unique_ptr<CHBRevisionControlPropertiesMgr> mgr{new CHBRevisionControlPropertiesMgr};
};

// Every setter stores its value (the action always as check-out, whatever is asked: a reset to
// prompting still leaves check-out stored) and notifies each listener each time, also with the
// same value; the account and the switch hand the account over to the data control. Everything
// but the dialog flag survives a restart.
TEST_F(PropertiesMgrTest, SettersStoreNotifyAndHandOverAndAllButTheDialogFlagSurviveARestart)
{
    EXPECT_EQ(Snapshot(), "|| action 1 changelist  always 0 prompt 0 use 0 saw 0");
    EXPECT_CALL(*host.dataControl, SetUserParameters(_)).Times(4);
    CountingSlot first, second;
    nrk::signalling::IConnection* c1 = nullptr;
    nrk::signalling::IConnection* c2 = nullptr;
    mgr->Connect_OnRevisionControlPropertiesChange(&first, &c1);
    mgr->Connect_OnRevisionControlPropertiesChange(&second, &c2);
    const std::function<void()> setters[] = {
        [&] { mgr->SetAccountProperties("bob", "/srv/depot.db", "bob-ws"); },
        [&] { mgr->SetActionWhenEditingReadOnlyAsset(Mgr::eActionPrompt); },
        [&] { mgr->SetAlwaysUseSetting(true); },
        [&] { mgr->SetChangeListToUseWhenAutoCheckingOut("12"); },
        [&] { mgr->SetPromptForChangeListWhenCheckingOut(true); },
        [&] { mgr->SetUseSourceDataControl(true); },
        [&] { mgr->SetUserSawSourceControlDialog(true); },
    };
    int calls = 0;
    for (int pass = 0; pass < 2; ++pass) {
        for (const auto& set : setters) {
            set();
            EXPECT_EQ(first.calls, ++calls) << "setter " << (&set - setters) << " in pass " << pass;
        }
    }
    EXPECT_EQ(first.last, mgr.get());
    EXPECT_EQ(Snapshot(), "bob|/srv/depot.db|bob-ws action 2 changelist 12 always 1 prompt 1 use 1 saw 1");
    delete c1;  // releasing the connection disconnects
    setters[2]();
    EXPECT_EQ(first.calls, calls);
    EXPECT_EQ(second.calls, calls + 1);
    delete c2;
    Restart();
    EXPECT_EQ(Snapshot(), "bob|/srv/depot.db|bob-ws action 2 changelist 12 always 1 prompt 1 use 1 saw 0");
}

// The ends of the known range are read as they were stored (a host may store them itself); a value
// the settings do not know leaves the caller's value as it was.
TEST_F(PropertiesMgrTest, AStoredActionIsReadWithinTheKnownRangeOnly)
{
    Mgr::ActionWhenEditingReadOnlyAsset action = Mgr::eActionPrompt;
    for (Mgr::ActionWhenEditingReadOnlyAsset stored : {Mgr::eActionNone, Mgr::eActionMakeWritable}) {
        host.prefs->SetIntPref(CHBRevisionControlPropertiesMgr::kActionKey, stored, 1);
        EXPECT_TRUE(mgr->GetActionWhenEditingReadOnlyAsset(action));
        EXPECT_EQ(action, stored);
    }
    host.prefs->SetIntPref(CHBRevisionControlPropertiesMgr::kActionKey, 7, 1);
    EXPECT_FALSE(mgr->GetActionWhenEditingReadOnlyAsset(action));
    EXPECT_EQ(action, Mgr::eActionMakeWritable);
}

// The account reaches the data control as the file service describes it; one the service rejects
// is logged and handed over as null; an empty account is silent.
TEST_F(PropertiesMgrTest, TheAccountReachesTheDataControlAsTheServiceDescribesItOrAsNull)
{
    hbrc::host::LogCapture log;
    KELPtr<kel4::IUserParameters> described(new FakeUserParameters("carol", "carol-ws", "/d.db"));
    EXPECT_CALL(*host.fileVersionControl, CreateUserParameters("carol", "", "/d.db", "carol-ws", _))
        .WillOnce(Return(described));
    EXPECT_CALL(*host.fileVersionControl, CreateUserParameters("dave", _, _, _, _))
        .WillOnce([](auto&&, auto&&, auto&&, auto&&, std::string& error) {
            error = "no such workspace";
            return KELPtr<kel4::IUserParameters>();
        });
    EXPECT_CALL(*host.fileVersionControl, CreateUserParameters("", _, _, _, _));
    ::testing::InSequence order;
    EXPECT_CALL(*host.dataControl, SetUserParameters(described));
    EXPECT_CALL(*host.dataControl, SetUserParameters(KELPtr<kel4::IUserParameters>()));
    mgr->SetAccountProperties("carol", "/d.db", "carol-ws");
    mgr->SetAccountProperties("dave", "/d.db", "missing");
    EXPECT_EQ(log.TextsOfType(Log::eWarning), std::vector<std::string>{"no such workspace\n"});

    log.Clear();
    host.prefs->SetStringPref("RevControl.UserName", "", 1);
    host.prefs->SetStringPref("RevControl.Workspace", "", 1);
    host.prefs->SetStringPref("RevControl.Server", "", 1);
    EXPECT_TRUE(mgr->GetUserParameters().IsNull());
    EXPECT_TRUE(log.Entries().empty()) << "an empty account is silent";
}

TEST_F(PropertiesMgrTest, WithoutAnOpenDatabaseTheHandOverRaisesAfterStoringAndNotifying)
{
    host.proxy.SetManager(nullptr);
    CountingSlot slot;
    nrk::signalling::IConnection* connection = nullptr;
    mgr->Connect_OnRevisionControlPropertiesChange(&slot, &connection);
    kel4::DisableErrorReportingGuard quiet;
    EXPECT_THROW(mgr->SetUseSourceDataControl(true), kel4::ExBase::NullPtr);
    bool use = false;
    mgr->GetUseSourceDataControl(use);
    EXPECT_TRUE(use);
    EXPECT_EQ(slot.calls, 1);
    delete connection;
}

}  // namespace
