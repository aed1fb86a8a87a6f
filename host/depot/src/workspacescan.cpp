#include "workspacescan.h"

#include <filesystem>
#include <system_error>

#include "depoterror.h"
#include "workspaceview.h"

namespace hbrc::depot {

namespace fs = std::filesystem;

namespace {

bool isAtOrBelow(const std::string& key, const std::string& scope)
{
    return scope.empty() || (key.compare(0, scope.size(), scope) == 0 &&
                             (key.size() == scope.size() || key[scope.size()] == '/'));
}

// The temporary a file step writes before renaming it over the file (workspacefiles::temporaryFor).
bool isStepTemporary(const std::string& name)
{
    static const std::string prefix = ".hbdepot-";
    static const std::string suffix = ".tmp";
    return name.size() > prefix.size() + suffix.size() && name.compare(0, prefix.size(), prefix) == 0 &&
           name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// Size first: only a file of the revision's size is read and hashed.
bool contentDiffers(const fs::path& file, std::uintmax_t size, const ContentFingerprint& revision)
{
    if (static_cast<std::int64_t>(size) != revision.size)
        return true;
    try {
        return !(ContentStore::fingerprintOfFile(file) == revision);
    } catch (const DepotError&) {
        // A file that cannot be read cannot be shown to be unchanged: it is offered, not passed over.
        return true;
    }
}

class Scan
{
public:
    Scan(const WorkspaceView& workspace, const WorkspaceRecords& records, const std::function<void()>& checkpoint)
        : m_workspace(workspace), m_records(records), m_checkpoint(checkpoint)
    {
    }

    void walk(const std::string& scope)
    {
        const fs::path start = scope.empty() ? m_workspace.root() : m_workspace.localPathOf(scope);
        std::error_code error;
        const fs::file_status found = fs::status(start, error);
        if (fs::is_regular_file(found)) {
            visit(scope, start, fs::file_size(start, error));
            return;
        }
        // Nothing there: what the workspace had there is found gone by findDeleted.
        if (!fs::is_directory(found))
            return;
        std::string base = start.string();
        if (base.back() != '/')
            base += '/';
        const std::string keyBase = scope.empty() ? std::string() : scope + '/';
        // The folder a failure names: the last one entered (or the start).
        fs::path folder = start;
        for (fs::recursive_directory_iterator entry(start, error), end; !error && entry != end; entry.increment(error)) {
            std::error_code typeError;
            if (entry->is_regular_file(typeError))
                visit(keyBase + entry->path().string().substr(base.size()), entry->path(), entry->file_size(typeError));
            else if (entry->is_directory(typeError))
                folder = entry->path();
        }
        if (error)
            throw DepotError(code::IoError, "Cannot read the folder '" + folder.string() + "': " + error.message());
    }

    void findDeleted(const std::vector<std::string>& scopes)
    {
        for (const auto& [key, revision] : m_records.have) {
            if (m_seen.count(key) || m_records.openHere.count(key) || !inScope(key, scopes))
                continue;
            m_checkpoint();
            const fs::path local = m_workspace.localPathOf(key);
            std::error_code error;
            if (fs::symlink_status(local, error).type() == fs::file_type::not_found)
                m_changes[key] = {local.string(), depotPathOf(key), FileAction::Delete, revision.number};
        }
    }

    std::vector<WorkspaceChange> changes() const
    {
        std::vector<WorkspaceChange> all;
        all.reserve(m_changes.size());
        for (const auto& [key, change] : m_changes)
            all.push_back(change);
        return all;
    }

private:
    static bool inScope(const std::string& key, const std::vector<std::string>& scopes)
    {
        for (const std::string& scope : scopes) {
            if (isAtOrBelow(key, scope))
                return true;
        }
        return false;
    }

    void visit(const std::string& key, const fs::path& file, std::uintmax_t size)
    {
        m_checkpoint();
        if (!m_seen.insert(key).second || m_records.openHere.count(key) || m_records.ownFiles.count(key) ||
            isStepTemporary(file.filename().string()))
            return;
        const auto have = m_records.have.find(key);
        if (have == m_records.have.end()) {
            // Also a file the depot has at the head that this workspace never got: opening it for
            // add is refused, and the refusal names the conflict.
            m_changes[key] = {file.string(), m_records.atHead.count(key) ? depotPathOf(key) : std::string(),
                              FileAction::Add, 0};
        } else if (contentDiffers(file, size, have->second.content)) {
            m_changes[key] = {file.string(), depotPathOf(key), FileAction::Edit, have->second.number};
        }
    }

    const WorkspaceView& m_workspace;
    const WorkspaceRecords& m_records;
    const std::function<void()>& m_checkpoint;
    std::set<std::string> m_seen;
    std::map<std::string, WorkspaceChange> m_changes;  // by key: in path order, each file once
};

}  // namespace

std::vector<WorkspaceChange> scanWorkspace(const WorkspaceView& workspace, const WorkspaceRecords& records,
                                           const std::vector<std::string>& scopes,
                                           const std::function<void()>& checkpoint)
{
    Scan scan(workspace, records, checkpoint);
    for (const std::string& scope : scopes)
        scan.walk(scope);
    scan.findDeleted(scopes);
    return scan.changes();
}

}  // namespace hbrc::depot
