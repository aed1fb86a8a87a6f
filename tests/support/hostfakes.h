#pragma once

// Recording fakes of the host: the database proxy with its three connection signals, a data-model
// manager with its database instance, and an item-library context that records registrations.
// FakeHost stands them up together with a real component system and preference manager.
#include "hostmocks.h"

#include <borax/datamodel/accessors.h>
#include <borax/datamodel/iitemlibrary.h>
#include <hbrchost/componentsystem.h>
#include <hbrchost/prefmanager.h>
#include <kel4/idatamodelmgr.h>
#include <kel4/ikelinstance.h>
#include <nrk/fwk/ikeldbproxy.h>

#include <boost/signals2/signal.hpp>

#include <QTemporaryDir>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace hbrc::test {

class FakeKELInstance : public kel4::RefCounted<kel4::IKELInstance>
{
public:
    KELPtr<kel4::IService> GetService(const kel4::ServiceId& id) const override
    {
        const auto found = m_services.find(id.name);
        return found == m_services.end() ? KELPtr<kel4::IService>() : found->second;
    }
    void SetService(const kel4::ServiceId& id, KELPtr<kel4::IService> service) { m_services[id.name] = std::move(service); }

private:
    std::map<std::string, KELPtr<kel4::IService>> m_services;
};

// Objects are made with AddObject; handles carry the manager, a cache index and instance 1.
class FakeDataModelMgr : public kel4::RefCounted<kel4::IDataModelMgr>
{
public:
    struct Object {
        std::string id;
        std::string name;
        bool isAsset = true;
        std::string ancestor = "v1";
    };

    KELHandle<IDbObject> AddObject(const std::string& id, const std::string& name, bool isAsset = true);
    void SetInstance(KELPtr<kel4::IKELInstance> instance) { m_instance = std::move(instance); }
    int instanceRequests() const { return m_instanceRequests; }

    KELPtr<kel4::IKELInstance> GetInstance() const override
    {
        ++m_instanceRequests;
        return m_instance;
    }
    KELHandle<IDbObject> ResolveObject(const DbObjectId& id) const override;
    kelResult Query(const std::string&, kel4::Vector<CQueryResult>&, int, std::string&) const override;
    kel4::Vector<KELPtr<kel4::IDataSource>> GetDataSources() const override { return {}; }
    bool IsHandleValid(const KELHandleBase& object) const override { return find(object) != nullptr; }
    DbObjectId GetObjectId(const KELHandleBase& object) const override
    {
        return find(object) ? DbObjectId(find(object)->id) : DbObjectId();
    }
    std::string GetObjectName(const KELHandleBase& object) const override
    {
        return find(object) ? find(object)->name : std::string();
    }
    VersionId GetAncestorId(const KELHandleBase& object) const override
    {
        return find(object) ? VersionId(find(object)->ancestor) : VersionId();
    }
    bool IsObjectOfType(const KELHandleBase& object, const char* typeId) const override;

private:
    const Object* find(const KELHandleBase& object) const;

    KELPtr<kel4::IKELInstance> m_instance;
    std::vector<Object> m_objects;
    mutable int m_instanceRequests = 0;
};

// A context bound (or not) to a library; records notification registrations.
class FakeItemLibraryContext : public borax::datamodel::IItemLibraryContext, public borax::datamodel::IItemLibrary
{
public:
    struct Registration {
        borax::datamodel::IItemLibraryNotification* receiver;
        int code;
        int contextIndex;
    };

    void SetBound(bool bound) { m_bound = bound; }
    const std::vector<Registration>& registrations() const { return m_registrations; }
    const std::vector<Registration>& unregistrations() const { return m_unregistrations; }

    IItemLibrary* GetLibrary() const override { return m_bound ? const_cast<FakeItemLibraryContext*>(this) : nullptr; }
    void RegisterNotification(borax::datamodel::IItemLibraryNotification* r, int code, int index) override
    {
        m_registrations.push_back({r, code, index});
    }
    void UnregisterNotification(borax::datamodel::IItemLibraryNotification* r, int code, int index) override
    {
        m_unregistrations.push_back({r, code, index});
    }

    bool FindItemByDbUid(const std::string&, borax::datamodel::ItemID&) const override { return false; }
    DbObjectId GetItemDbUid(const borax::datamodel::ItemID&) const override { return {}; }
    std::string GetItemName(const borax::datamodel::ItemID&) const override { return {}; }
    void CreateItemAccessStateChanged(const borax::datamodel::ItemID&, long) override {}

private:
    bool m_bound = true;
    std::vector<Registration> m_registrations;
    std::vector<Registration> m_unregistrations;
};

class FakeDBProxy : public nrk::fwk::IKELDBProxy, public nrk::IBase
{
public:
    using Signal = boost::signals2::signal<void()>;
    using Slot = nrk::fwk::IKELDBProxy_Slot;
    using Connection = nrk::signalling::IConnection;

    const char* GetClsName() const override { return "FakeDBProxy"; }
    void Connect_OnInitialConnectionToDB(Slot* slot, Connection** c) override
    {
        Connect(initialConnection, &Slot::OnInitialConnectionToDB, slot, c);
    }
    void Connect_OnConnectedToDB(Slot* slot, Connection** c) override { Connect(connected, &Slot::OnConnectedToDB, slot, c); }
    void Connect_OnDisconnectedFromDB(Slot* slot, Connection** c) override
    {
        Connect(disconnected, &Slot::OnDisconnectedFromDB, slot, c);
    }
    bool IsConnected() const override { return m_connected; }
    kel4::IDataModelMgr* GetDataModelMgr() const override { return m_manager; }
    KELPtr<kel4::IKELInstance> GetKELInstance() const override;
    borax::datamodel::ItemLibraryAccessor GetItemLibraryAccessor() const override { return m_accessor; }

    void SetConnected(bool connected) { m_connected = connected; }
    void SetManager(kel4::IDataModelMgr* manager) { m_manager = manager; }
    void SetAccessor(const borax::datamodel::ItemLibraryAccessor& accessor) { m_accessor = accessor; }

    Signal initialConnection;
    Signal connected;
    Signal disconnected;

private:
    static void Connect(Signal& signal, void (Slot::*handler)(), Slot* slot, Connection** connection);

    bool m_connected = true;
    kel4::IDataModelMgr* m_manager = nullptr;
    borax::datamodel::ItemLibraryAccessor m_accessor;
};

// A host with a real component system and preference manager (in a temporary folder), the fake
// proxy registered as "KELDBProxy", and a manager whose instance offers the two mocked services.
struct FakeHost {
    FakeHost();
    ~FakeHost();

    QTemporaryDir folder;
    hbrc::host::ComponentSystem system;
    std::unique_ptr<hbrc::host::PrefManager> prefs;
    FakeDBProxy proxy;
    FakeItemLibraryContext libraryContext;
    KELPtr<FakeDataModelMgr> manager{new FakeDataModelMgr};
    KELPtr<FakeKELInstance> instance{new FakeKELInstance};
    KELPtr<::testing::NiceMock<MockDataControl>> dataControl{new ::testing::NiceMock<MockDataControl>};
    KELPtr<::testing::NiceMock<MockFileVersionControl>> fileVersionControl{
        new ::testing::NiceMock<MockFileVersionControl>};
};

}  // namespace hbrc::test
