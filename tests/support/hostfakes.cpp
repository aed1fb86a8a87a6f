#include "hostfakes.h"

#include <basesystem/hbconnection.h>

#include <cstring>

namespace hbrc::test {

KELHandle<IDbObject> FakeDataModelMgr::AddObject(const std::string& id, const std::string& name, bool isAsset)
{
    m_objects.push_back({id, name, isAsset, "v1"});
    return KELHandle<IDbObject>(this, static_cast<std::uint32_t>(m_objects.size()), 1);
}

KELHandle<IDbObject> FakeDataModelMgr::ResolveObject(const DbObjectId& id) const
{
    for (std::size_t i = 0; i < m_objects.size(); ++i) {
        if (m_objects[i].id == id.GetStr())
            return KELHandle<IDbObject>(const_cast<FakeDataModelMgr*>(this), static_cast<std::uint32_t>(i + 1), 1);
    }
    return {};
}

kelResult FakeDataModelMgr::Query(const std::string&, kel4::Vector<CQueryResult>&, int, std::string& errorText) const
{
    errorText = "queries are not supported by the fake manager";
    return kelResult(kel4::kResultFailed);
}

const FakeDataModelMgr::Object* FakeDataModelMgr::find(const KELHandleBase& object) const
{
    const std::uint32_t index = object.GetCacheIndex();
    return index >= 1 && index <= m_objects.size() ? &m_objects[index - 1] : nullptr;
}

bool FakeDataModelMgr::IsObjectOfType(const KELHandleBase& object, const char* typeId) const
{
    const Object* o = find(object);
    return o && (std::strcmp(typeId, IDbObject::GetTypeId()) == 0 ||
                 (o->isAsset && std::strcmp(typeId, IAsset::GetTypeId()) == 0));
}

void FakeDBProxy::Connect(Signal& signal, void (Slot::*handler)(), Slot* slot, Connection** connection)
{
    *connection = new BaseSystem::hbconnection(signal.connect([slot, handler] { (slot->*handler)(); }));
}

KELPtr<kel4::IKELInstance> FakeDBProxy::GetKELInstance() const
{
    return m_manager ? m_manager->GetInstance() : KELPtr<kel4::IKELInstance>();
}

FakeHost::FakeHost()
    : prefs(std::make_unique<hbrc::host::PrefManager>(folder.filePath(QStringLiteral("preferences.ini"))))
{
    system.RegisterSingleton(IHBPrefManager::GetSingletonName(), prefs.get());
    system.RegisterSingleton(nrk::fwk::IKELDBProxy::GetSingletonName(), &proxy);
    manager->SetInstance(instance);
    instance->SetService(kel4::UID_DataControl(), KELPtr<kel4::IService>(dataControl.Get()));
    instance->SetService(kel4::UID_FileVersionControl(), KELPtr<kel4::IService>(fileVersionControl.Get()));
    proxy.SetManager(manager.Get());
    proxy.SetAccessor(borax::datamodel::ItemLibraryAccessor(&libraryContext, 7));
}

FakeHost::~FakeHost()
{
    system.DestroyOwnedSingletons();
}

}  // namespace hbrc::test
