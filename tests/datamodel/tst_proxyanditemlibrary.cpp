#include "recordingreceiver.h"

#include <hostworkspacefixture.h>

#include <hbrcdatamodel/itemlibrarycontext.h>

#include <kel4/idatacontrol.h>

#include <gtest/gtest.h>

#include <memory>

using namespace hbrc::host;
using borax::datamodel::ItemID;

namespace {

// Records the proxy's signals, and what the proxy offered at the moment of each.
class RecordingSlot final : public nrk::fwk::IKELDBProxy_Slot
{
public:
    explicit RecordingSlot(nrk::fwk::IKELDBProxy& proxy) : m_proxy(proxy)
    {
        nrk::signalling::IConnection* connection = nullptr;
        proxy.Connect_OnInitialConnectionToDB(this, &connection);
        connections.emplace_back(connection);
        proxy.Connect_OnConnectedToDB(this, &connection);
        connections.emplace_back(connection);
        proxy.Connect_OnDisconnectedFromDB(this, &connection);
        connections.emplace_back(connection);
    }
    void OnInitialConnectionToDB() override { Record("initial"); }
    void OnConnectedToDB() override { Record("connected"); }
    void OnDisconnectedFromDB() override { Record("disconnected"); }

    std::vector<std::string> events;
    std::vector<std::unique_ptr<nrk::signalling::IConnection>> connections;

private:
    void Record(const std::string& event)
    {
        const bool hasModel = m_proxy.GetDataModelMgr() != nullptr;
        const bool hasService = m_proxy.GetKELInstance() && m_proxy.GetKELInstance()->GetService(kel4::UID_DataControl());
        events.push_back(event + (m_proxy.IsConnected() && hasModel ? "+model" : "") + (hasService ? "+service" : ""));
    }
    nrk::fwk::IKELDBProxy& m_proxy;
};

// Stands for the data control another library registers into the instance; only its identity counts.
class PlaceholderService final : public kel4::RefCounted<kel4::IService>
{
public:
    void* QueryInterface(const kel4::InterfaceId&) override { return nullptr; }
};

using ProxyTest = HostWorkspaceFixture;

TEST_F(ProxyTest, OpeningAndClosingWorkspacesDrivesTheSignalsInOrder)
{
    auto* proxy = nrk::GetSingletonAs<nrk::fwk::IKELDBProxy>(nrk::fwk::IKELDBProxy::GetSingletonName());
    ASSERT_EQ(proxy, &host->Proxy());
    RecordingSlot slot(*proxy);
    host->AddWorkspaceSetup([](Workspace& w) {
        w.Model().Instance().RegisterService(kel4::UID_DataControl(), KELPtr<kel4::IService>(new PlaceholderService));
    });
    EXPECT_FALSE(proxy->IsConnected());
    EXPECT_EQ(proxy->GetDataModelMgr(), nullptr);
    EXPECT_EQ(proxy->GetItemLibraryAccessor().GetContext(), nullptr);

    Open();
    Open();  // reopening closes the first one
    host->CloseWorkspace();
    EXPECT_EQ(slot.events, (std::vector<std::string>{"initial+model+service", "connected+model+service",
                                                     "disconnected+model+service", "connected+model+service",
                                                     "disconnected+model+service"}));
    EXPECT_FALSE(proxy->IsConnected());
    EXPECT_TRUE(proxy->GetKELInstance().IsNull());

    // The initial connection comes once per host session; a destroyed connection is disconnected.
    slot.connections[1].reset();
    Open();
    EXPECT_EQ(slot.events.size(), 5u);
    host->CloseWorkspace();
    EXPECT_EQ(slot.events.size(), 6u);
}

TEST_F(ProxyTest, ProxyOffersTheOpenWorkspaceItsItemsAndTheObjectQuestionsOfTheServices)
{
    Open();
    const auto rock = Create(AssetKind::Metadata, "rock");
    const auto sand = Create(AssetKind::Value, "sand");
    std::string error;
    const auto moss = workspace->AddPart(rock, "Layer", "moss", error);
    const auto lichen = workspace->AddPart(rock, "Layer", "lichen", error);
    ASSERT_TRUE(workspace->AddExternalFile(rock, "rock.bin", "r"));
    const DataModelMgr& model = workspace->Model();
    auto& proxy = host->Proxy();
    EXPECT_EQ(proxy.GetDataModelMgr(), &model);
    EXPECT_EQ(proxy.GetKELInstance().Get(), model.GetInstance().Get());

    const auto library = proxy.GetItemLibraryAccessor();
    EXPECT_EQ(library, workspace->Accessor());
    ASSERT_NE(library.GetLibrary(), nullptr);
    const borax::datamodel::Internal::ItemLibraryInternalAccessor internal(library);
    const ItemID rockItem = internal.FindItemByDbUid(rock.GetDbObjectId().GetStr());
    const ItemID mossItem = internal.FindItemByDbUid(moss.GetDbObjectId().GetStr());
    EXPECT_EQ(library.GetLibrary()->GetItemDbUid(mossItem), moss.GetDbObjectId());
    EXPECT_EQ(library.GetLibrary()->GetItemName(rockItem), "rock");
    EXPECT_FALSE(internal.FindItemByDbUid("unknown").IsValid());

    using Set = DataModelMgr::ObjectSet;
    EXPECT_EQ(model.RelatedObjects({rock}), (Set{moss, lichen}));
    EXPECT_EQ(model.RelatedObjects({moss, sand}), (Set{rock, lichen}));
    EXPECT_EQ(model.OwningAssets({moss, lichen, sand}), (Set{rock, sand}));
    EXPECT_EQ(model.FilesOf(rock, true, kel4::closureId::All),
              (kel4::Set<std::string>{PathOf("rock.bin"), PathOf("rock.kel")}));
    EXPECT_TRUE(model.FilesOf(rock, true, kel4::closureId::Runtime).empty());
    EXPECT_EQ(model.ExternalFilesOf(sand, kel4::closureId::Persistence).size(), 0u);
    const auto ids = model.DbObjectIdsOf({rock, sand});
    EXPECT_EQ(std::vector<DbObjectId>(ids.begin(), ids.end()),
              (std::vector<DbObjectId>{rock.GetDbObjectId(), moss.GetDbObjectId(), lichen.GetDbObjectId(),
                                       sand.GetDbObjectId()}));
    EXPECT_EQ(model.DisplayName(lichen), "rock/lichen");
    EXPECT_EQ(model.ResolveObject(lichen.GetDbObjectId()), lichen);

    ASSERT_TRUE(workspace->DeleteAsset(rock));
    EXPECT_FALSE(internal.FindItemByDbUid(moss.GetDbObjectId().GetStr()).IsValid());
}

using ItemLibraryNotifications = HostWorkspaceFixture;

// Receivers get what their registration code selects; a receiver unregistered in the middle of a
// round, or after the receiver that cancelled the save, is not called.
TEST_F(ItemLibraryNotifications, ReceiversGetWhatTheirCodeSelectsWhileRegisteredAndNotAfterACancel)
{
    Open();
    const auto rock = Create(AssetKind::Metadata, "rock");
    ItemID rockItem;
    workspace->Library().FindItemByDbUid(rock.GetDbObjectId().GetStr(), rockItem);
    auto& context = workspace->Library().Context();
    RecordingReceiver everything, commitsOnly, changesOnly;
    context.RegisterNotification(&everything, 40, 0);
    context.RegisterNotification(&commitsOnly, kNotifyCommits, 0);
    context.RegisterNotification(&changesOnly, kNotifyItemChanges, 0);

    workspace->Library().CreateItemAccessStateChanged(rockItem, borax::datamodel::eItemAccessCheckedOut);
    ASSERT_TRUE(workspace->Rename(rock, "boulder"));
    ASSERT_TRUE(workspace->Save().Succeeded());

    const std::string access = "access:" + std::to_string(rockItem.GetValue()) + ":3";
    const std::string name = "name:" + std::to_string(rockItem.GetValue());
    EXPECT_EQ(everything.events, (std::vector<std::string>{access, name, "pre", "post"}));
    EXPECT_EQ(commitsOnly.events, (std::vector<std::string>{"pre", "post"}));
    EXPECT_EQ(changesOnly.events, (std::vector<std::string>{access, name}));
    EXPECT_EQ(everything.lastLibrary, host->Proxy().GetItemLibraryAccessor());
    EXPECT_EQ(workspace->Library().GetItemName(rockItem), "boulder");

    context.UnregisterNotification(&commitsOnly, 8, 0);  // another code: still registered
    context.UnregisterNotification(&changesOnly, kNotifyItemChanges, 0);
    EXPECT_EQ(context.RegistrationCount(), 2u);
    context.UnregisterNotification(&commitsOnly, kNotifyCommits, 0);
    EXPECT_EQ(context.RegistrationCount(), 1u);

    RecordingReceiver second;
    everything.onPostCommit = [&](RecordingReceiver::Accessor&) { context.UnregisterNotification(&second, 40, 0); };
    context.RegisterNotification(&second, 40, 0);
    workspace->Save();
    EXPECT_EQ(second.events, std::vector<std::string>{"pre"});

    // The first cancel ends the pre-commit round.
    everything.cancelSave = true;
    second.events.clear();
    context.RegisterNotification(&second, 40, 0);
    EXPECT_TRUE(workspace->Save().cancelled);
    EXPECT_TRUE(second.events.empty());
    context.UnregisterNotification(&everything, 40, 0);
    context.UnregisterNotification(&second, 40, 0);
    EXPECT_EQ(context.RegistrationCount(), 0u);
}

}  // namespace
