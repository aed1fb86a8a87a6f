#pragma once

#include <kel4/idatacontrol.h>

#include <string>
#include <utility>
#include <vector>

// A data control that knows only pending changelists (identifier, description), for pictures of
// the dialogs that list them. Every question about objects or files fails.
class ScriptedDataControl final : public kel4::RefCounted<kel4::IDataControl>
{
public:
    using ChangeLists = std::vector<std::pair<std::string, std::string>>;
    explicit ScriptedDataControl(ChangeLists changeLists) : m_changeLists(std::move(changeLists)) {}

    void* QueryInterface(const kel4::InterfaceId& iid) override;

    bool ChangeListExists(const std::string& changelist) override;
    kelResult GetPendingChangeLists(kel4::List<std::string>& changelists, std::string& errorText) override;
    kelResult GetChangeListDescription(const std::string& changelist, std::string& description,
                                       std::string& errorText) override;
    kelResult CreateChangeList(const std::string& description, std::string& changelist,
                               std::string& errorText) override;

    kelResult GetStatus(const ObjectList&, bool, kel4::closureId, bool, kel4::List<unsigned>&,
                        std::string& errorText) override;
    bool NeedsAction(const KELHandle<IDbObject>&, bool, kel4::closureId) override { return false; }
    kelResult CanCheckOut(const KELHandle<IDbObject>&, bool, kel4::closureId, bool&) override;
    bool CanMakeWritable(const KELHandle<IDbObject>&, bool, kel4::closureId) override { return false; }
    bool IsReadOnly(const KELHandle<IDbObject>&, bool, kel4::closureId) override { return false; }
    kelResult GetUsersOfObject(const KELHandle<IDbObject>&, kel4::closureId, kel4::List<std::string>&) override;
    kelResult CheckOut(const ObjectList&, bool, kel4::closureId, const std::string&, std::string& errorText) override;
    kelResult MarkForAdd(const ObjectList&, bool, kel4::closureId, const std::string&,
                         std::string& errorText) override;
    kelResult MakeWritable(const KELHandle<IDbObject>&, bool, kel4::closureId, std::string& errorText) override;
    kelResult GetFiles(const ObjectList&, bool, kel4::closureId, const std::string&, kel4::Set<std::string>&,
                       kel4::List<kel4::Set<std::string>>&) override;
    kelResult GetFiles(const KELHandle<IDbObject>&, bool, kel4::closureId, const std::string&,
                       kel4::Set<std::string>&) override;
    kelResult GetExternalFiles(const KELHandle<IDbObject>&, kel4::closureId, kel4::Set<std::string>&) override;
    bool HasExternalFile(const KELHandle<IDbObject>&, kel4::closureId) override { return false; }
    kelResult GetRelatedObjects(const ObjectList&, ObjectSet&) override;
    kelResult GetOwningAssets(kel4::closureId, const ObjectList&, ObjectSet&, int) override;
    kelResult GetDbObjectIds(const ObjectList&, kel4::List<DbObjectId>&) override;
    std::string GetAssetDisplayName(const KELHandle<IDbObject>& object) override { return object.GetName(); }
    void SetUserParameters(const KELPtr<kel4::IUserParameters>&) override {}
    KELPtr<kel4::IUserParameters> GetUserParameters() const override { return {}; }
    void SetSession(const KELPtr<kel4::IUserParameters>&) override {}

private:
    ChangeLists m_changeLists;
};
