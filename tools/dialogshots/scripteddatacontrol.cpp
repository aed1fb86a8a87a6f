#include "scripteddatacontrol.h"

#include <kel4/idatamodelmgr.h>

#include <algorithm>

namespace {

kelResult notOffered(std::string& errorText)
{
    errorText = "not offered by the scripted data control";
    return kelResult(kel4::kResultFailed);
}

kelResult notOffered()
{
    return kelResult(kel4::kResultFailed);
}

}  // namespace

void* ScriptedDataControl::QueryInterface(const kel4::InterfaceId& iid)
{
    return iid == kel4::IDataControl::GetIID() ? static_cast<kel4::IDataControl*>(this) : nullptr;
}

bool ScriptedDataControl::ChangeListExists(const std::string& changelist)
{
    return std::any_of(m_changeLists.begin(), m_changeLists.end(),
                       [&](const auto& entry) { return entry.first == changelist; });
}

kelResult ScriptedDataControl::GetPendingChangeLists(kel4::List<std::string>& changelists, std::string&)
{
    for (const auto& entry : m_changeLists)
        changelists.push_back(entry.first);
    return kelResult(kel4::kResultSuccess);
}

kelResult ScriptedDataControl::GetChangeListDescription(const std::string& changelist, std::string& description,
                                                        std::string& errorText)
{
    for (const auto& entry : m_changeLists) {
        if (entry.first == changelist) {
            description = entry.second;
            return kelResult(kel4::kResultSuccess);
        }
    }
    errorText = "no pending changelist " + changelist;
    return kelResult(kel4::kResultFailed);
}

kelResult ScriptedDataControl::CreateChangeList(const std::string& description, std::string& changelist,
                                                std::string&)
{
    changelist = std::to_string(100 + m_changeLists.size());
    m_changeLists.emplace_back(changelist, description);
    return kelResult(kel4::kResultSuccess);
}

kelResult ScriptedDataControl::GetStatus(const ObjectList&, bool, kel4::closureId, bool, kel4::List<unsigned>&,
                                         std::string& errorText)
{
    return notOffered(errorText);
}

kelResult ScriptedDataControl::CanCheckOut(const KELHandle<IDbObject>&, bool, kel4::closureId, bool&)
{
    return notOffered();
}

kelResult ScriptedDataControl::GetUsersOfObject(const KELHandle<IDbObject>&, kel4::closureId,
                                                kel4::List<std::string>&)
{
    return notOffered();
}

kelResult ScriptedDataControl::CheckOut(const ObjectList&, bool, kel4::closureId, const std::string&,
                                        std::string& errorText)
{
    return notOffered(errorText);
}

kelResult ScriptedDataControl::MarkForAdd(const ObjectList&, bool, kel4::closureId, const std::string&,
                                          std::string& errorText)
{
    return notOffered(errorText);
}

kelResult ScriptedDataControl::MakeWritable(const KELHandle<IDbObject>&, bool, kel4::closureId,
                                            std::string& errorText)
{
    return notOffered(errorText);
}

kelResult ScriptedDataControl::GetFiles(const ObjectList&, bool, kel4::closureId, const std::string&,
                                        kel4::Set<std::string>&, kel4::List<kel4::Set<std::string>>&)
{
    return notOffered();
}

kelResult ScriptedDataControl::GetFiles(const KELHandle<IDbObject>&, bool, kel4::closureId, const std::string&,
                                        kel4::Set<std::string>&)
{
    return notOffered();
}

kelResult ScriptedDataControl::GetExternalFiles(const KELHandle<IDbObject>&, kel4::closureId,
                                                kel4::Set<std::string>&)
{
    return notOffered();
}

kelResult ScriptedDataControl::GetRelatedObjects(const ObjectList&, ObjectSet&)
{
    return notOffered();
}

kelResult ScriptedDataControl::GetOwningAssets(kel4::closureId, const ObjectList&, ObjectSet&, int)
{
    return notOffered();
}

kelResult ScriptedDataControl::GetDbObjectIds(const ObjectList&, kel4::List<DbObjectId>&)
{
    return notOffered();
}
