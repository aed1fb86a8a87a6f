// The revision-control settings: defaults, persistence, the deliberate quirks, the change signal
// and the hand-over of the account to the data control.
#include "hbrevisioncontrolpropertiesmgr.h"

#include <hostfakes.h>

#include <hbrchost/debugoutputcapture.h>
#include <hbrchost/logcapture.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

using hbrc::test::FakeHost;
using hbrc::test::FakeUserParameters;
using ::testing::_;
using ::testing::Return;
using Action = IRevisionControlPropertiesMgr::ActionWhenEditingReadOnlyAsset;

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
    FakeHost host;
    std::unique_ptr<CHBRevisionControlPropertiesMgr> mgr{new CHBRevisionControlPropertiesMgr};
};

TEST_F(PropertiesMgrTest, AFreshStoreGivesTheDefaults)
{
    Action action = IRevisionControlPropertiesMgr::eActionNone;
    EXPECT_TRUE(mgr->GetActionWhenEditingReadOnlyAsset(action));
    EXPECT_EQ(action, IRevisionControlPropertiesMgr::eActionPrompt);
    bool always = true, prompt = true, use = true;
    mgr->GetAlwaysUseSetting(always);
    mgr->GetPromptForChangeListWhenCheckingOut(prompt);
    mgr->GetUseSourceDataControl(use);
    EXPECT_FALSE(always);
    EXPECT_FALSE(prompt);
    EXPECT_FALSE(use);
    std::string user = "x", server = "x", workspace = "x", changelist = "x";
    mgr->GetAccountProperties(user, server, workspace);
    mgr->GetChangeListToUseWhenAutoCheckingOut(changelist);
    EXPECT_EQ(user + server + workspace + changelist, "");
    EXPECT_FALSE(mgr->GetUserSawSourceControlDialog());
}

// Whatever action is set, "check out" is stored; every stored value the settings know is read back,
// and one they do not know leaves the caller's value as it was.
TEST_F(PropertiesMgrTest, SettingTheActionAlwaysStoresCheckOutAndAnUnknownOneIsNotRead)
{
    for (Action asked : {IRevisionControlPropertiesMgr::eActionNone, IRevisionControlPropertiesMgr::eActionPrompt,
                         IRevisionControlPropertiesMgr::eActionMakeWritable}) {
        mgr->SetActionWhenEditingReadOnlyAsset(asked);
        Action stored = IRevisionControlPropertiesMgr::eActionNone;
        ASSERT_TRUE(mgr->GetActionWhenEditingReadOnlyAsset(stored));
        EXPECT_EQ(stored, IRevisionControlPropertiesMgr::eActionCheckOut) << "asked " << asked;
    }
    // The ends of the known range are read as they were stored (a host may store them itself).
    Action action = IRevisionControlPropertiesMgr::eActionPrompt;
    for (Action stored : {IRevisionControlPropertiesMgr::eActionNone, IRevisionControlPropertiesMgr::eActionMakeWritable}) {
        host.prefs->SetIntPref(CHBRevisionControlPropertiesMgr::kActionKey, stored, 1);
        EXPECT_TRUE(mgr->GetActionWhenEditingReadOnlyAsset(action));
        EXPECT_EQ(action, stored);
    }
    host.prefs->SetIntPref(CHBRevisionControlPropertiesMgr::kActionKey, 7, 1);
    EXPECT_FALSE(mgr->GetActionWhenEditingReadOnlyAsset(action));
    EXPECT_EQ(action, IRevisionControlPropertiesMgr::eActionMakeWritable);
}

TEST_F(PropertiesMgrTest, ValuesSurviveARestartOfTheStoreButTheDialogFlagDoesNot)
{
    EXPECT_CALL(*host.dataControl, SetUserParameters(_)).Times(2);
    mgr->SetAccountProperties("bob", "/srv/depot.db", "bob-ws");
    mgr->SetAlwaysUseSetting(true);
    mgr->SetChangeListToUseWhenAutoCheckingOut("12");
    mgr->SetPromptForChangeListWhenCheckingOut(true);
    mgr->SetUseSourceDataControl(true);
    mgr->SetUserSawSourceControlDialog(true);
    const QString file = host.prefs->FilePath();

    // A new store object over the same file, and a new manager, as after a restart.
    host.system.UnregisterSingleton(IHBPrefManager::GetSingletonName());
    host.prefs = std::make_unique<hbrc::host::PrefManager>(file);
    host.system.RegisterSingleton(IHBPrefManager::GetSingletonName(), host.prefs.get());
    mgr = std::make_unique<CHBRevisionControlPropertiesMgr>();

    std::string user, server, workspace, changelist;
    bool always = false, prompt = false, use = false;
    mgr->GetAccountProperties(user, server, workspace);
    mgr->GetChangeListToUseWhenAutoCheckingOut(changelist);
    mgr->GetAlwaysUseSetting(always);
    mgr->GetPromptForChangeListWhenCheckingOut(prompt);
    mgr->GetUseSourceDataControl(use);
    EXPECT_EQ(user, "bob");
    EXPECT_EQ(server, "/srv/depot.db");
    EXPECT_EQ(workspace, "bob-ws");
    EXPECT_EQ(changelist, "12");
    EXPECT_TRUE(always && prompt && use);
    EXPECT_FALSE(mgr->GetUserSawSourceControlDialog());
}

struct SetterCase {
    const char* name;
    std::function<void(IRevisionControlPropertiesMgr&)> set;
};

class PropertiesMgrSignalTest : public PropertiesMgrTest, public ::testing::WithParamInterface<SetterCase>
{
};

TEST_P(PropertiesMgrSignalTest, EverySetterNotifiesEachTimeEvenWithTheSameValue)
{
    CountingSlot first, second;
    nrk::signalling::IConnection* c1 = nullptr;
    nrk::signalling::IConnection* c2 = nullptr;
    mgr->Connect_OnRevisionControlPropertiesChange(&first, &c1);
    mgr->Connect_OnRevisionControlPropertiesChange(&second, &c2);
    GetParam().set(*mgr);
    GetParam().set(*mgr);
    EXPECT_EQ(first.calls, 2);
    EXPECT_EQ(second.calls, 2);
    EXPECT_EQ(first.last, mgr.get());
    delete c1;  // releasing the connection disconnects
    GetParam().set(*mgr);
    EXPECT_EQ(first.calls, 2);
    EXPECT_EQ(second.calls, 3);
    delete c2;
}

INSTANTIATE_TEST_SUITE_P(
    Setters, PropertiesMgrSignalTest,
    ::testing::Values(
        SetterCase{"Account", [](IRevisionControlPropertiesMgr& m) { m.SetAccountProperties("u", "s", "w"); }},
        SetterCase{"Action",
                   [](IRevisionControlPropertiesMgr& m) {
                       m.SetActionWhenEditingReadOnlyAsset(IRevisionControlPropertiesMgr::eActionPrompt);
                   }},
        SetterCase{"AlwaysUse", [](IRevisionControlPropertiesMgr& m) { m.SetAlwaysUseSetting(false); }},
        SetterCase{"ChangeList", [](IRevisionControlPropertiesMgr& m) { m.SetChangeListToUseWhenAutoCheckingOut(""); }},
        SetterCase{"Prompt", [](IRevisionControlPropertiesMgr& m) { m.SetPromptForChangeListWhenCheckingOut(false); }},
        SetterCase{"UseSource", [](IRevisionControlPropertiesMgr& m) { m.SetUseSourceDataControl(false); }},
        SetterCase{"SawDialog", [](IRevisionControlPropertiesMgr& m) { m.SetUserSawSourceControlDialog(true); }}),
    [](const ::testing::TestParamInfo<SetterCase>& info) { return std::string(info.param.name); });

TEST_F(PropertiesMgrTest, TheAccountReachesTheDataControlAsTheServiceDescribesIt)
{
    KELPtr<kel4::IUserParameters> described(new FakeUserParameters("carol", "carol-ws", "/d.db"));
    EXPECT_CALL(*host.fileVersionControl, CreateUserParameters("carol", "", "/d.db", "carol-ws", _))
        .WillOnce(Return(described));
    EXPECT_CALL(*host.dataControl, SetUserParameters(described));
    mgr->SetAccountProperties("carol", "/d.db", "carol-ws");
}

TEST_F(PropertiesMgrTest, AnAccountTheServiceRejectsIsLoggedAndHandedOverAsNull)
{
    hbrc::host::LogCapture log;
    EXPECT_CALL(*host.fileVersionControl, CreateUserParameters(_, _, _, _, _))
        .WillRepeatedly([](auto&&, auto&&, auto&&, auto&&, std::string& error) {
            error = "no such workspace";
            return KELPtr<kel4::IUserParameters>();
        });
    EXPECT_CALL(*host.dataControl, SetUserParameters(KELPtr<kel4::IUserParameters>()));
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
    hbrc::host::DebugOutputCapture debug;
    EXPECT_THROW(mgr->SetUseSourceDataControl(true), kel4::ExBase::NullPtr);
    bool use = false;
    mgr->GetUseSourceDataControl(use);
    EXPECT_TRUE(use);
    EXPECT_EQ(slot.calls, 1);
    ASSERT_EQ(debug.Lines().size(), 1u);
    EXPECT_NE(debug.Lines().front().find("GetPointeeNotNull"), std::string::npos);
    {
        kel4::DisableErrorReportingGuard quiet;
        EXPECT_THROW(mgr->SetUseSourceDataControl(false), kel4::ExBase::NullPtr);
    }
    EXPECT_EQ(debug.Lines().size(), 1u) << "no text while reporting is disabled";
    delete connection;
}

}  // namespace
