#include <hbrcservices/datacontrol.h>

#include <hbrcservices/serverqueries.h>
#include <hbrcservices/filepermissions.h>
#include <hbrcservices/statusrules.h>

#include "filesofobjects.h"

#include <hbrcdatamodel/offlinejournal.h>
#include <log/log.h>

#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace hbrc::host {

namespace {

bool EndsWith(const std::string& text, const std::string& suffix)
{
    return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

kel4::Set<std::string> Filtered(const kel4::Set<std::string>& files, const std::string& filter)
{
    if (filter.empty())
        return files;
    kel4::Set<std::string> kept;
    for (const std::string& file : files)
        if (EndsWith(file, filter))
            kept.insert(file);
    return kept;
}

// Appends the files not seen yet, keeping the order in which they first appear.
template <class FileContainer>
void AppendUnique(const FileContainer& files, std::vector<std::string>& into, std::unordered_set<std::string>& seen)
{
    for (const std::string& file : files)
        if (seen.insert(file).second)
            into.push_back(file);
}

// The answer about a list of files, asked about any of them.
class StatusByFile
{
public:
    StatusByFile(const std::vector<std::string>& asked, const std::vector<revision::FileStatus>& answered)
    {
        for (std::size_t i = 0; i < asked.size() && i < answered.size(); ++i)
            m_byFile.emplace(asked[i], &answered[i]);
    }

    std::vector<revision::FileStatus> Of(const std::vector<std::string>& files) const
    {
        std::vector<revision::FileStatus> statuses;
        statuses.reserve(files.size());
        for (const std::string& file : files) {
            const auto found = m_byFile.find(file);
            statuses.push_back(found != m_byFile.end() ? *found->second : revision::FileStatus{});
        }
        return statuses;
    }

private:
    std::unordered_map<std::string, const revision::FileStatus*> m_byFile;
};

}  // namespace

DataControl::DataControl(KELPtr<DataModelMgr> model, std::shared_ptr<ServerConnection> connection)
    : m_model(std::move(model)), m_connection(std::move(connection))
{
    // MarkForAdd confirms them; a save's new assets left unmarked while no call failed were declined.
    m_model->DataSource().KeepNewObjectsUntilAdded(
        [connection = std::weak_ptr<ServerConnection>(m_connection)]() -> std::uint64_t {
            const std::shared_ptr<ServerConnection> alive = connection.lock();
            return alive ? alive->FailedCalls() : 0;
        });
}

void* DataControl::QueryInterface(const kel4::InterfaceId& iid)
{
    if (iid == kel4::IDataControl::GetIID())
        return static_cast<kel4::IDataControl*>(this);
    return nullptr;
}

// --- files and objects ----------------------------------------------------------------------------

DataControl::Files DataControl::FilesOf(const KELHandleBase& object, bool includeExternalFiles,
                                        kel4::closureId closure) const
{
    const kel4::Set<std::string> files = m_model->FilesOf(object, includeExternalFiles, closure);
    return {files.begin(), files.end()};
}

DataControl::Files DataControl::FilesOf(const ObjectList& objects, bool includeExternalFiles,
                                        kel4::closureId closure) const
{
    Files all;
    std::unordered_set<std::string> seen;
    for (const auto& object : objects)
        AppendUnique(m_model->FilesOf(object, includeExternalFiles, closure), all, seen);
    return all;
}

kelResult DataControl::GetFiles(const ObjectList& objects, bool includeExternalFiles, kel4::closureId closure,
                                const std::string& filter, kel4::Set<std::string>& allFiles,
                                kel4::List<kel4::Set<std::string>>& filesPerObject)
{
    for (const auto& object : objects) {
        kel4::Set<std::string> files = Filtered(m_model->FilesOf(object, includeExternalFiles, closure), filter);
        allFiles.insert(files.begin(), files.end());
        filesPerObject.push_back(std::move(files));
    }
    return kel4::kResultSuccess;
}

kelResult DataControl::GetFiles(const KELHandle<kel4::IDbObject>& object, bool includeExternalFiles,
                                kel4::closureId closure, const std::string& filter, kel4::Set<std::string>& files)
{
    const kel4::Set<std::string> found = Filtered(m_model->FilesOf(object, includeExternalFiles, closure), filter);
    files.insert(found.begin(), found.end());
    return kel4::kResultSuccess;
}

kelResult DataControl::GetExternalFiles(const KELHandle<kel4::IDbObject>& object, kel4::closureId closure,
                                        kel4::Set<std::string>& files)
{
    const kel4::Set<std::string> found = m_model->ExternalFilesOf(object, closure);
    files.insert(found.begin(), found.end());
    return kel4::kResultSuccess;
}

bool DataControl::HasExternalFile(const KELHandle<kel4::IDbObject>& object, kel4::closureId closure)
{
    return !m_model->ExternalFilesOf(object, closure).empty();
}

kelResult DataControl::GetRelatedObjects(const ObjectList& objects, ObjectSet& related)
{
    const ObjectSet found = m_model->RelatedObjects(objects);
    related.insert(found.begin(), found.end());
    m_objectsInQuestion = found;
    m_objectsInQuestion.insert(objects.begin(), objects.end());
    return kel4::kResultSuccess;
}

kelResult DataControl::GetOwningAssets(kel4::closureId /*closure*/, const ObjectList& objects, ObjectSet& assets,
                                       int /*options*/)
{
    const ObjectSet found = m_model->OwningAssets(objects);
    assets.insert(found.begin(), found.end());
    return kel4::kResultSuccess;
}

kelResult DataControl::GetDbObjectIds(const ObjectList& objects, kel4::List<DbObjectId>& ids)
{
    ids.splice(ids.end(), m_model->DbObjectIdsOf(objects));
    return kel4::kResultSuccess;
}

std::string DataControl::GetAssetDisplayName(const KELHandle<kel4::IDbObject>& object)
{
    return m_model->DisplayName(object);
}

// --- status and editability -----------------------------------------------------------------------

// While the host keeps an offline journal it works without its server's say (offline, or with
// revision control off): the questions asked before every edit and save answer at once instead of
// waiting for a server that is not there or whose answer would not count.
bool DataControl::Offline(std::string& errorText) const
{
    if (!m_model->Journal())
        return false;
    errorText = "Working offline";
    return true;
}

DataControl::Files DataControl::FilesToAsk(const KELHandle<kel4::IDbObject>& object, bool includeExternalFiles,
                                           kel4::closureId closure, const Files& objectFiles) const
{
    Files asked = objectFiles;
    if (m_objectsInQuestion.find(object) == m_objectsInQuestion.end())
        return asked;
    const StatusCache& cache = m_connection->Cache();
    std::unordered_set<std::string> seen(asked.begin(), asked.end());
    for (const auto& other : m_objectsInQuestion) {
        for (const std::string& file : m_model->FilesOf(other, includeExternalFiles, closure))
            if (!cache.Knows(file) && seen.insert(file).second)
                asked.push_back(file);
    }
    return asked;
}

kelResult DataControl::KnownStatuses(const KELHandle<kel4::IDbObject>& object, bool includeExternalFiles, kel4::closureId closure,
                                     const Files& files, std::vector<revision::FileStatus>& statuses,
                                     std::string& errorText)
{
    if (auto cached = m_connection->Cache().Lookup(files)) {
        statuses = std::move(*cached);
        return kel4::kResultSuccess;
    }
    if (Offline(errorText))
        return kel4::kResultSessionUnusable;
    const Files asked = FilesToAsk(object, includeExternalFiles, closure, files);
    std::vector<revision::FileStatus> answered;
    const kelResult result = ServerQueries::Status(*m_connection, m_session.Get(), asked, answered, errorText);
    if (result.IsSuccess())
        statuses = StatusByFile(asked, answered).Of(files);
    return result;
}

kelResult DataControl::GetStatus(const ObjectList& objects, bool includeExternalFiles, kel4::closureId closure,
                                 bool refresh, kel4::List<unsigned>& statuses, std::string& errorText)
{
    if (objects.empty())
        return kel4::kResultEmptyQuery;
    FilesOfObjects asked(objects.size());
    for (const auto& object : objects)
        asked.Add(m_model->FilesOf(object, includeExternalFiles, closure));
    const Files& files = asked.Files();
    std::vector<revision::FileStatus> answered;
    if (auto cached = refresh ? std::nullopt : m_connection->Cache().Lookup(files)) {
        answered = std::move(*cached);
    } else if (Offline(errorText)) {
        return kel4::kResultSessionUnusable;
    } else if (!files.empty()) {
        const kelResult result = ServerQueries::Status(*m_connection, m_session.Get(), files, answered, errorText);
        if (result.IsFailure())
            return result;
    }
    statuses.clear();
    for (std::size_t object = 0; object < asked.ObjectCount(); ++object)
        statuses.push_back(StatusRules::ObjectWord(asked.StatusesOf(object, answered)));
    return kel4::kResultSuccess;
}

bool DataControl::NeedsAction(const KELHandle<kel4::IDbObject>& object, bool includeExternalFiles,
                              kel4::closureId closure)
{
    const Files files = FilesOf(object, includeExternalFiles, closure);
    if (files.empty())
        return false;
    std::vector<revision::FileStatus> statuses;
    std::string ignored;
    // Without an answer from the depot, every file counts as under revision control: a read-only
    // file then still asks for an action, whose own failure (e.g. an expired session) is reported.
    if (KnownStatuses(object, includeExternalFiles, closure, files, statuses, ignored).IsFailure())
        statuses.assign(files.size(), revision::FileStatus{});
    return StatusRules::NeedsAction(files, statuses, FilePermissions::IsReadOnly);
}

kelResult DataControl::CanCheckOut(const KELHandle<kel4::IDbObject>& object, bool includeExternalFiles,
                                   kel4::closureId closure, bool& canCheckOut)
{
    canCheckOut = false;
    std::vector<revision::FileStatus> statuses;
    std::string ignored;
    const kelResult result = KnownStatuses(object, includeExternalFiles, closure,
                                           FilesOf(object, includeExternalFiles, closure), statuses, ignored);
    if (result.IsSuccess())
        canCheckOut = StatusRules::CanCheckOut(statuses);
    return result;
}

bool DataControl::CanMakeWritable(const KELHandle<kel4::IDbObject>& object, bool includeExternalFiles,
                                  kel4::closureId closure)
{
    return IsReadOnly(object, includeExternalFiles, closure);
}

bool DataControl::IsReadOnly(const KELHandle<kel4::IDbObject>& object, bool includeExternalFiles,
                             kel4::closureId closure)
{
    for (const std::string& file : FilesOf(object, includeExternalFiles, closure))
        if (FilePermissions::IsReadOnly(file))
            return true;
    return false;
}

kelResult DataControl::GetUsersOfObject(const KELHandle<kel4::IDbObject>& object, kel4::closureId closure,
                                        kel4::List<std::string>& users)
{
    std::string ignored;
    return ServerQueries::Holders(*m_connection, m_session.Get(), FilesOf(object, true, closure), users, ignored);
}

// --- revision operations --------------------------------------------------------------------------

kelResult DataControl::ChangeFiles(const Files& files, const ServerConnection::Operation& change,
                                   std::string& errorText)
{
    if (files.empty()) {
        errorText.clear();
        return kel4::kResultSuccess;
    }
    return ServerQueries::Change(*m_connection, m_session.Get(), files, change, errorText);
}

kelResult DataControl::CheckOut(const ObjectList& objects, bool includeExternalFiles, kel4::closureId closure,
                                const std::string& changelist, std::string& errorText)
{
    const Files files = FilesOf(objects, includeExternalFiles, closure);
    const kelResult result = ChangeFiles(
        files,
        [&](RevisionServer& server, const std::string& ticket, const revision::CancelCheck& cancel) {
            return server.edit(ticket, files, changelist, cancel);
        },
        errorText);
    // A check-out that also put something right (locks an interrupted one left) says so.
    if (result.IsSuccess() && !errorText.empty())
        Log::Singleton::Instance().Write(Log::eWarning, errorText);
    return result;
}

kelResult DataControl::MarkForAdd(const ObjectList& objects, bool includeExternalFiles, kel4::closureId closure,
                                  const std::string& changelist, std::string& errorText)
{
    const Files files = FilesOf(objects, includeExternalFiles, closure);
    // Only the files the depot does not know are added: an asset whose .kel file is in the depot
    // may have gained a new external file. Their statuses come from the cache when it knows them
    // all (the post-save hook asked about every new asset's files in one question just before
    // marking them asset by asset), so that each call is one round trip, not two.
    const std::optional<std::vector<revision::FileStatus>> known = m_connection->Cache().Lookup(files);
    const kelResult result = ChangeFiles(
        files,
        [&](RevisionServer& server, const std::string& ticket, const revision::CancelCheck& cancel) {
            std::vector<revision::FileStatus> statuses;
            revision::Result result;
            if (known)
                statuses = *known;
            else
                result = server.status(ticket, files, statuses, cancel);
            if (!result.ok())
                return result;
            Files unknown;
            for (std::size_t i = 0; i < files.size() && i < statuses.size(); ++i)
                if (statuses[i].word & revision::status::NotInDepot)
                    unknown.push_back(files[i]);
            return unknown.empty() ? result : server.add(ticket, unknown, changelist, cancel);
        },
        errorText);
    // Saves stop offering these assets as new (they did until now, should an add have failed).
    if (result.IsSuccess())
        m_model->DataSource().ConfirmAdded(m_model->DbObjectIdsOf(objects));
    return result;
}

kelResult DataControl::MakeWritable(const KELHandle<kel4::IDbObject>& object, bool includeExternalFiles,
                                    kel4::closureId closure, std::string& errorText)
{
    errorText.clear();
    bool allWritable = true;
    for (const std::string& file : FilesOf(object, includeExternalFiles, closure)) {
        std::string error;
        // Offline, the journal names the file before it becomes writable, or it stays read-only.
        OfflineJournal* journal = m_model->Journal();
        const bool journalled = !journal || !FilePermissions::IsReadOnly(file) ||
                                journal->Record(file, OfflineJournal::Change::MadeWritable, error);
        if (!journalled || !FilePermissions::MakeWritable(file, error)) {
            allWritable = false;
            errorText += error + "\n";
        }
    }
    return allWritable ? kel4::kResultSuccess : kel4::kResultFailed;
}

// --- changelists ----------------------------------------------------------------------------------

bool DataControl::ChangeListExists(const std::string& changelist)
{
    // Every workspace has its default changelist: no need to ask.
    if (changelist.empty())
        return true;
    bool exists = false;
    std::string ignored;
    const kelResult result = m_connection->Run(
        m_session.Get(),
        [&](RevisionServer& server, const std::string& ticket, const revision::CancelCheck&) {
            return server.changelistExists(ticket, changelist, exists);
        },
        ignored);
    return result.IsSuccess() && exists;
}

kelResult DataControl::GetPendingChangeLists(kel4::List<std::string>& changelists, std::string& errorText)
{
    std::vector<revision::Changelist> pending;
    const kelResult result = m_connection->Run(
        m_session.Get(),
        [&](RevisionServer& server, const std::string& ticket, const revision::CancelCheck&) {
            return server.changelists(ticket, revision::ChangelistState::Pending, pending);
        },
        errorText);
    if (result.IsSuccess())
        for (const revision::Changelist& changelist : pending)
            changelists.push_back(changelist.id);
    return result;
}

kelResult DataControl::GetChangeListDescription(const std::string& changelist, std::string& description,
                                                std::string& errorText)
{
    revision::Changelist described;
    const kelResult result = m_connection->Run(
        m_session.Get(),
        [&](RevisionServer& server, const std::string& ticket, const revision::CancelCheck&) {
            return server.describe(ticket, changelist, described);
        },
        errorText);
    if (result.IsSuccess())
        description = described.description;
    return result;
}

kelResult DataControl::CreateChangeList(const std::string& description, std::string& changelist,
                                        std::string& errorText)
{
    return m_connection->Run(
        m_session.Get(),
        [&](RevisionServer& server, const std::string& ticket, const revision::CancelCheck&) {
            return server.createChangelist(ticket, description, changelist);
        },
        errorText);
}

// --- account and session --------------------------------------------------------------------------

void DataControl::SetUserParameters(const KELPtr<kel4::IUserParameters>& user)
{
    // The settings hand the account over again whenever it is written or revision control is
    // switched on; a description of the same account, without a session, keeps the running one.
    const bool sameAccountAgain = !user.IsNull() && !user->HasSession() && !m_session.IsNull() &&
                                  m_session->HasSession() && user->GetUserName() == m_session->GetUserName() &&
                                  user->GetWorkspace() == m_session->GetWorkspace() &&
                                  user->GetServer() == m_session->GetServer();
    if (sameAccountAgain)
        return;
    m_session = user;
    m_connection->Cache().Invalidate();
}

KELPtr<kel4::IUserParameters> DataControl::GetUserParameters() const
{
    return m_session;
}

void DataControl::SetSession(const KELPtr<kel4::IUserParameters>& session)
{
    SetUserParameters(session);
}

}  // namespace hbrc::host
