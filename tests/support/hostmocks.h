#pragma once

// GoogleMock doubles of the host's revision-control services, for tests that must control one
// answer precisely (a status word, a result code). Hold them in KELPtr; they are counted.
#include <kel4/idatacontrol.h>
#include <kel4/ifileversioncontrol.h>
#include <kel4/iuserparameters.h>

#include <gmock/gmock.h>

namespace hbrc::test {

class MockDataControl : public kel4::RefCounted<kel4::IDataControl>
{
public:
    using ObjectList = kel4::IDataControl::ObjectList;
    using ObjectSet = kel4::IDataControl::ObjectSet;
    using FileSets = kel4::List<kel4::Set<std::string>>;

    void* QueryInterface(const kel4::InterfaceId& iid) override
    {
        return iid == kel4::IDataControl::GetIID() ? static_cast<kel4::IDataControl*>(this) : nullptr;
    }

    MOCK_METHOD(kelResult, GetStatus,
                (const ObjectList&, bool, kel4::closureId, bool, kel4::List<unsigned>&, std::string&), (override));
    MOCK_METHOD(bool, NeedsAction, (const KELHandle<IDbObject>&, bool, kel4::closureId), (override));
    MOCK_METHOD(kelResult, CanCheckOut, (const KELHandle<IDbObject>&, bool, kel4::closureId, bool&), (override));
    MOCK_METHOD(bool, CanMakeWritable, (const KELHandle<IDbObject>&, bool, kel4::closureId), (override));
    MOCK_METHOD(bool, IsReadOnly, (const KELHandle<IDbObject>&, bool, kel4::closureId), (override));
    MOCK_METHOD(kelResult, GetUsersOfObject, (const KELHandle<IDbObject>&, kel4::closureId, kel4::List<std::string>&),
                (override));
    MOCK_METHOD(kelResult, CheckOut, (const ObjectList&, bool, kel4::closureId, const std::string&, std::string&),
                (override));
    MOCK_METHOD(kelResult, MarkForAdd, (const ObjectList&, bool, kel4::closureId, const std::string&, std::string&),
                (override));
    MOCK_METHOD(kelResult, MakeWritable, (const KELHandle<IDbObject>&, bool, kel4::closureId, std::string&),
                (override));
    MOCK_METHOD(bool, ChangeListExists, (const std::string&), (override));
    MOCK_METHOD(kelResult, GetPendingChangeLists, (kel4::List<std::string>&, std::string&), (override));
    MOCK_METHOD(kelResult, GetChangeListDescription, (const std::string&, std::string&, std::string&), (override));
    MOCK_METHOD(kelResult, CreateChangeList, (const std::string&, std::string&, std::string&), (override));
    MOCK_METHOD(kelResult, GetFiles,
                (const ObjectList&, bool, kel4::closureId, const std::string&, kel4::Set<std::string>&, FileSets&),
                (override));
    MOCK_METHOD(kelResult, GetFiles,
                (const KELHandle<IDbObject>&, bool, kel4::closureId, const std::string&, kel4::Set<std::string>&),
                (override));
    MOCK_METHOD(kelResult, GetExternalFiles, (const KELHandle<IDbObject>&, kel4::closureId, kel4::Set<std::string>&),
                (override));
    MOCK_METHOD(bool, HasExternalFile, (const KELHandle<IDbObject>&, kel4::closureId), (override));
    MOCK_METHOD(kelResult, GetRelatedObjects, (const ObjectList&, ObjectSet&), (override));
    MOCK_METHOD(kelResult, GetOwningAssets, (kel4::closureId, const ObjectList&, ObjectSet&, int), (override));
    MOCK_METHOD(kelResult, GetDbObjectIds, (const ObjectList&, kel4::List<DbObjectId>&), (override));
    MOCK_METHOD(std::string, GetAssetDisplayName, (const KELHandle<IDbObject>&), (override));
    MOCK_METHOD(void, SetUserParameters, (const KELPtr<kel4::IUserParameters>&), (override));
    MOCK_METHOD(KELPtr<kel4::IUserParameters>, GetUserParameters, (), (const, override));
    MOCK_METHOD(void, SetSession, (const KELPtr<kel4::IUserParameters>&), (override));
};

class MockFileVersionControl : public kel4::RefCounted<kel4::IFileVersionControl>
{
public:
    using Files = kel4::List<std::string>;

    void* QueryInterface(const kel4::InterfaceId& iid) override
    {
        return iid == kel4::IFileVersionControl::GetIID() ? static_cast<kel4::IFileVersionControl*>(this) : nullptr;
    }

    MOCK_METHOD(void, SetTimeOutDelegate, (kel4::ITimeOutDelegate*), (override));
    MOCK_METHOD(KELPtr<kel4::IUserParameters>, Login,
                (const std::string&, const std::string&, const std::string&, const std::string&, std::string&),
                (override));
    MOCK_METHOD(KELPtr<kel4::IUserParameters>, CreateUserParameters,
                (const std::string&, const std::string&, const std::string&, const std::string&, std::string&),
                (override));
    MOCK_METHOD(kelResult, GetStatus,
                (const kel4::IUserParameters*, const Files&, kel4::List<unsigned>&, kel4::List<std::string>&,
                 std::string&, int),
                (override));
    MOCK_METHOD(kelResult, Revert, (const kel4::IUserParameters*, const Files&, std::string&, int, int), (override));
    MOCK_METHOD(kelResult, MarkForDeleteInChangelist,
                (const kel4::IUserParameters*, const Files&, const std::string&, std::string&), (override));
    MOCK_METHOD(kelResult, GetUsersOfFiles,
                (const kel4::IUserParameters*, const Files&, kel4::List<std::string>&, std::string&), (override));
};

// A plain account value.
class FakeUserParameters : public kel4::RefCounted<kel4::IUserParameters>
{
public:
    FakeUserParameters(std::string user, std::string workspace, std::string server, bool session = false)
        : m_user(std::move(user)), m_workspace(std::move(workspace)), m_server(std::move(server)), m_session(session) {}
    std::string GetUserName() const override { return m_user; }
    std::string GetWorkspace() const override { return m_workspace; }
    std::string GetServer() const override { return m_server; }
    bool HasSession() const override { return m_session; }

private:
    std::string m_user, m_workspace, m_server;
    bool m_session;
};

}  // namespace hbrc::test
