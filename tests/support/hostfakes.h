#pragma once

// Recording fakes of the host: the database proxy with its three connection signals, a data-model
// manager with its database instance, and an item-library context that records registrations.
// FakeHost stands them up together with a real component system and preference manager.
#include "hostmocks.h"

#include <basesystem/hbconnection.h>
#include <borax/datamodel/accessors.h>
#include <borax/datamodel/iitemlibrary.h>
#include <hbrchost/componentsystem.h>
#include <hbrchost/prefmanager.h>
#include <kel4/idatamodelmgr.h>
#include <kel4/ikelinstance.h>
#include <nrk/fwk/ikeldbproxy.h>

#include <boost/signals2/signal.hpp>

#include <QTemporaryDir>

#include <cstring>
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

    KELHandle<IDbObject> AddObject(const std::string& id, const std::string& name, bool isAsset = true)
    {
        m_objects.push_back({id, name, isAsset, "v1"});
        return KELHandle<IDbObject>(this, static_cast<std::uint32_t>(m_objects.size()), 1);
    }
    void SetInstance(KELPtr<kel4::IKELInstance> instance) { m_instance = std::move(instance); }
    int instanceRequests() const { return m_instanceRequests; }

    KELPtr<kel4::IKELInstance> GetInstance() const override
    {
        ++m_instanceRequests;
        return m_instance;
    }
    KELHandle<IDbObject> ResolveObject(const DbObjectId& id) const override
    {
        for (std::size_t i = 0; i < m_objects.size(); ++i) {
            if (m_objects[i].id == id.GetStr())
                return KELHandle<IDbObject>(const_cast<FakeDataModelMgr*>(this), static_cast<std::uint32_t>(i + 1), 1);
        }
        return {};
    }
    kelResult Query(const std::string&, kel4::Vector<CQueryResult>&, int, std::string& errorText) const override
    {
        errorText = "queries are not supported by the fake manager";
        return kelResult(kel4::kResultFailed);
    }
    kel4::Vector<KELPtr<kel4::IDataSource>> GetDataSources() const override { return {}; }
    bool IsHandleValid(const KELHandleBase& object) const override { return find(object) != nullptr; }
    DbObjectId GetObjectId(const KELHandleBase& object) const override { return DbObjectId(text(object, &Object::id)); }
    std::string GetObjectName(const KELHandleBase& object) const override { return text(object, &Object::name); }
    VersionId GetAncestorId(const KELHandleBase& object) const override { return VersionId(text(object, &Object::ancestor)); }
    bool IsObjectOfType(const KELHandleBase& object, const char* typeId) const override
    {
        const Object* o = find(object);
        return o && (std::strcmp(typeId, IDbObject::GetTypeId()) == 0 ||
                     (o->isAsset && std::strcmp(typeId, IAsset::GetTypeId()) == 0));
    }

private:
    const Object* find(const KELHandleBase& object) const
    {
        const std::uint32_t index = object.GetCacheIndex();
        return index >= 1 && index <= m_objects.size() ? &m_objects[index - 1] : nullptr;
    }
    // A text of the object, empty for a handle this manager did not make.
    std::string text(const KELHandleBase& object, std::string Object::*member) const
    {
        return find(object) ? find(object)->*member : std::string();
    }

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
    KELPtr<kel4::IKELInstance> GetKELInstance() const override
    {
        return m_manager ? m_manager->GetInstance() : KELPtr<kel4::IKELInstance>();
    }
    borax::datamodel::ItemLibraryAccessor GetItemLibraryAccessor() const override { return m_accessor; }

    void SetConnected(bool connected) { m_connected = connected; }
    void SetManager(kel4::IDataModelMgr* manager) { m_manager = manager; }
    void SetAccessor(const borax::datamodel::ItemLibraryAccessor& accessor) { m_accessor = accessor; }

    Signal initialConnection;
    Signal connected;
    Signal disconnected;

private:
    static void Connect(Signal& signal, void (Slot::*handler)(), Slot* slot, Connection** connection)
    {
        *connection = new BaseSystem::hbconnection(signal.connect([slot, handler] { (slot->*handler)(); }));
    }

    bool m_connected = true;
    kel4::IDataModelMgr* m_manager = nullptr;
    borax::datamodel::ItemLibraryAccessor m_accessor;
};

// A host with a real component system and preference manager (in a temporary folder), the fake
// proxy registered as "KELDBProxy", and a manager whose instance offers the two mocked services.
struct FakeHost {
    FakeHost()
    {
        system.RegisterSingleton(IHBPrefManager::GetSingletonName(), prefs.get());
        system.RegisterSingleton(nrk::fwk::IKELDBProxy::GetSingletonName(), &proxy);
        manager->SetInstance(instance);
        instance->SetService(kel4::UID_DataControl(), KELPtr<kel4::IService>(dataControl.Get()));
        instance->SetService(kel4::UID_FileVersionControl(), KELPtr<kel4::IService>(fileVersionControl.Get()));
        proxy.SetManager(manager.Get());
        proxy.SetAccessor(borax::datamodel::ItemLibraryAccessor(&libraryContext, 7));
    }
    ~FakeHost() { system.DestroyOwnedSingletons(); }

    QTemporaryDir folder;
    hbrc::host::ComponentSystem system;
    std::unique_ptr<hbrc::host::PrefManager> prefs{
        std::make_unique<hbrc::host::PrefManager>(folder.filePath(QStringLiteral("preferences.ini")))};
    FakeDBProxy proxy;
    FakeItemLibraryContext libraryContext;
    KELPtr<FakeDataModelMgr> manager{new FakeDataModelMgr};
    KELPtr<FakeKELInstance> instance{new FakeKELInstance};
    KELPtr<::testing::NiceMock<MockDataControl>> dataControl{new ::testing::NiceMock<MockDataControl>};
    KELPtr<::testing::NiceMock<MockFileVersionControl>> fileVersionControl{
        new ::testing::NiceMock<MockFileVersionControl>};
};

}  // namespace hbrc::test
