// The helper's frame: start and end, the proxy's connection events and the host-facing queries that
// the flows lean on. (The progress box runs over the real services in tst_progressbox.)
#include "revisioncontroluihelper.h"

#include <hostfakes.h>

#include <gtest/gtest.h>

#include <memory>

using hbrc::test::FakeHost;
using ::testing::_;

namespace {

class HelperTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        helper = std::make_unique<CRevisionControlUIHelper>();
        helper->Init();
    }
    void TearDown() override
    {
        if (helper)
            helper->Term();
    }

    FakeHost host;
    std::unique_ptr<CRevisionControlUIHelper> helper;
};

// From the initial connection until Term the helper is the file service's time-out delegate; it
// follows the proxy's three signals until it is destroyed, Term or not.
TEST_F(HelperTest, FollowsTheProxysSignalsAndIsTheTimeOutDelegateUntilTerm)
{
    EXPECT_EQ(host.proxy.initialConnection.num_slots(), 1u);
    EXPECT_EQ(host.proxy.connected.num_slots(), 1u);
    EXPECT_EQ(host.proxy.disconnected.num_slots(), 1u);
    auto* delegate = static_cast<kel4::ITimeOutDelegate*>(helper.get());
    {
        ::testing::InSequence order;
        EXPECT_CALL(*host.fileVersionControl, SetTimeOutDelegate(delegate));
        EXPECT_CALL(*host.fileVersionControl, SetTimeOutDelegate(nullptr));
    }
    host.proxy.initialConnection();
    helper->Term();
    EXPECT_FALSE(helper->GetUserInput()) << "after Term a time-out question shows nothing and lets the work go on";
    helper->Close();
    helper.reset();
    ::testing::Mock::VerifyAndClearExpectations(host.fileVersionControl.Get());
    EXPECT_EQ(host.proxy.initialConnection.num_slots(), 0u);
    EXPECT_EQ(host.proxy.connected.num_slots(), 0u);
    EXPECT_EQ(host.proxy.disconnected.num_slots(), 0u);
}

TEST_F(HelperTest, TheInitialConnectionWithoutAFileServiceRaises)
{
    host.instance->SetService(kel4::UID_FileVersionControl(), {});
    kel4::DisableErrorReportingGuard quiet;
    EXPECT_THROW(host.proxy.initialConnection(), kel4::ExBase::NullPtr);
    host.proxy.SetManager(nullptr);
    EXPECT_THROW(host.proxy.initialConnection(), kel4::ExBase::NullPtr);
}

// Connecting registers the helper with the item library, disconnecting unregisters it; an accessor
// bound to no library gets neither.
TEST_F(HelperTest, ConnectAndDisconnectRegisterAndUnregisterWithABoundItemLibrary)
{
    host.libraryContext.SetBound(false);
    host.proxy.connected();
    host.proxy.disconnected();
    EXPECT_TRUE(host.libraryContext.registrations().empty());
    EXPECT_TRUE(host.libraryContext.unregistrations().empty());

    host.libraryContext.SetBound(true);
    host.proxy.connected();
    host.proxy.disconnected();
    host.proxy.connected();
    const auto& registrations = host.libraryContext.registrations();
    const auto& unregistrations = host.libraryContext.unregistrations();
    ASSERT_EQ(registrations.size(), 2u);
    ASSERT_EQ(unregistrations.size(), 1u);
    auto* receiver = static_cast<borax::datamodel::IItemLibraryNotification*>(helper.get());
    for (const auto& r : {registrations[0], registrations[1], unregistrations[0]}) {
        EXPECT_EQ(r.receiver, receiver);
        EXPECT_EQ(r.code, 40);
        EXPECT_EQ(r.contextIndex, 7);
    }
}

TEST_F(HelperTest, GetDataControlFollowsTheProxyOnlyWhileConnected)
{
    EXPECT_EQ(helper->GetDataControl({}).Get(), host.dataControl.Get());
    KELPtr<kel4::IDataModelMgr> given(host.manager.Get());
    EXPECT_EQ(helper->GetDataControl(given).Get(), host.dataControl.Get());

    const int before = host.manager->instanceRequests();
    host.proxy.SetConnected(false);
    EXPECT_TRUE(helper->GetDataControl({}).IsNull());
    EXPECT_EQ(host.manager->instanceRequests(), before) << "the database is not touched";

    host.proxy.SetConnected(true);
    host.instance->SetService(kel4::UID_DataControl(), {});
    EXPECT_TRUE(helper->GetDataControl({}).IsNull());
}

TEST_F(HelperTest, ResolveObjectUsesAndFillsTheCallersManager)
{
    host.manager->AddObject("id-a", "a");
    const KELHandle<IDbObject> b = host.manager->AddObject("id-b", "b");
    KELPtr<kel4::IDataModelMgr> manager;
    EXPECT_EQ(helper->ResolveObject(DbObjectId("id-b"), manager), b);
    EXPECT_EQ(manager.Get(), host.manager.Get());
    EXPECT_TRUE(helper->ResolveObject(DbObjectId("id-unknown")).IsNull());

    host.proxy.SetManager(nullptr);
    EXPECT_TRUE(helper->ResolveObject(DbObjectId("id-b")).IsNull()) << "a proxy without manager resolves nothing";

    host.system.UnregisterSingleton("KELDBProxy");
    kel4::DisableErrorReportingGuard quiet;
    EXPECT_THROW(helper->ResolveObject(DbObjectId("id-b")), kel4::ExBase::NullPtr);
}

}  // namespace
