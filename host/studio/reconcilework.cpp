#include "reconcilework.h"

#include "keptcontent.h"

#include <hbrcservices/revisionserver.h>

#include <QFile>
#include <QStringList>

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <set>

namespace hbrc::studio {

namespace {

using revision::FileAction;

constexpr std::uint32_t kOpenHere =
    revision::status::OpenedForEdit | revision::status::OpenedForAdd | revision::status::OpenedForDelete;

ReconcileWork::Files pathsOf(const std::vector<ReconcileItem>& items, FileAction action)
{
    ReconcileWork::Files files;
    for (const ReconcileItem& item : items)
        if (item.action == action)
            files.push_back(item.localPath);
    return files;
}

// Reverts opened files without losing what the user changed in them: a revert writes the
// workspace's revision over an edited file, so its content is read before and put back after.
void revertKeepingContent(host::RevisionServer& server, const std::string& ticket, const ReconcileWork::Files& edited,
                          const ReconcileWork::Files& added)
{
    std::map<std::string, QByteArray> kept;
    for (const std::string& file : edited)
        if (std::optional<QByteArray> content = KeptContent::read(QFile::decodeName(QByteArray::fromStdString(file))))
            kept[file] = std::move(*content);
    ReconcileWork::Files opened = edited;
    opened.insert(opened.end(), added.begin(), added.end());
    server.revert(ticket, opened);
    for (const auto& [file, content] : kept)
        KeptContent::write(file, content);
}

// Brings files whose content is kept elsewhere to the revisions named. Each is removed first, so
// that neither backend merges into it or refuses to replace it: both write a missing file afresh.
revision::Result bringTo(host::RevisionServer& server, const std::string& ticket,
                         const std::vector<revision::FileAtRevision>& files)
{
    for (const revision::FileAtRevision& file : files) {
        std::error_code ignored;
        std::filesystem::remove(file.file, ignored);
    }
    return server.syncTo(ticket, files);
}

// Writes the kept copies over their files; false when one did not get its content.
bool putBack(const std::map<std::string, QString>& copies)
{
    bool all = true;
    for (const auto& [file, copy] : copies) {
        const std::optional<QByteArray> content = KeptContent::read(copy);
        all = content && KeptContent::write(file, *content) && all;
    }
    return all;
}

}  // namespace

ReconcileSurvey ReconcileWork::plan(const Files& files, const std::vector<revision::FileStatus>& statuses,
                                    const std::vector<bool>& onDisk, const std::vector<bool>& unchangedKnown)
{
    ReconcileSurvey survey;
    const std::size_t count = std::min({files.size(), statuses.size(), onDisk.size(), unchangedKnown.size()});
    for (std::size_t i = 0; i < count; ++i) {
        const revision::FileStatus& status = statuses[i];
        const bool inWorkspace = status.haveRevision > 0;
        const bool unchanged = unchangedKnown[i] && onDisk[i] && inWorkspace;
        if ((status.word & kOpenHere) || (!onDisk[i] && !inWorkspace) || unchanged) {
            survey.settled.push_back(files[i]);
            continue;
        }
        ReconcileItem item;
        item.localPath = files[i];
        item.action = !inWorkspace ? FileAction::Add : onDisk[i] ? FileAction::Edit : FileAction::Delete;
        item.heldBy = status.heldBy;
        item.haveRevision = status.haveRevision;
        item.headRevision = status.headRevision;
        survey.items.push_back(std::move(item));
    }
    return survey;
}

RevisionOperations::Work ReconcileWork::survey(Files journalled, std::shared_ptr<ReconcileSurvey> into)
{
    return [journalled = std::move(journalled), into](host::RevisionServer& server, const std::string& ticket,
                                                     OperationOutcome& outcome) {
        std::vector<revision::WorkspaceChange> changes;
        const revision::Result scanned = server.workspaceChanges(ticket, {}, changes);
        if (scanned.code == revision::code::SessionUnusable)
            return scanned;
        std::set<std::string> unique(journalled.begin(), journalled.end());
        for (const revision::WorkspaceChange& change : changes)
            unique.insert(change.localPath);
        const Files files(unique.begin(), unique.end());
        std::vector<revision::FileStatus> statuses;
        if (!files.empty()) {
            if (const revision::Result asked = server.status(ticket, files, statuses); !asked.ok())
                return asked;
        }
        std::set<std::string> changed;
        for (const revision::WorkspaceChange& change : changes)
            changed.insert(change.localPath);
        std::vector<bool> onDisk;
        std::vector<bool> unchangedKnown;
        for (const std::string& file : files) {
            onDisk.push_back(std::filesystem::exists(file));
            unchangedKnown.push_back(scanned.ok() && !changed.count(file));
        }
        ReconcileSurvey found = plan(files, statuses, onDisk, unchangedKnown);
        found.scanProblem = scanned.ok() ? std::string() : scanned.error;

        Files behind;
        for (const ReconcileItem& item : found.items)
            if (item.behind())
                behind.push_back(item.localPath);
        std::vector<std::vector<revision::FileRevision>> histories;
        // Without the history the dialog still says that a newer revision is there, not by whom.
        if (!behind.empty() && server.fileHistory(ticket, behind, 1, histories).ok()) {
            std::size_t next = 0;
            for (ReconcileItem& item : found.items) {
                if (!item.behind())
                    continue;
                if (next < histories.size() && !histories[next].empty())
                    item.newerBy = histories[next].front().user;
                ++next;
            }
        }
        outcome.done = tr("Found %n file(s) changed without being opened", nullptr, int(found.items.size()));
        *into = std::move(found);
        return revision::Result{};
    };
}

RevisionOperations::Work ReconcileWork::reconcile(ReconcileChoice choice, std::shared_ptr<Files> opened)
{
    return [choice = std::move(choice), opened](host::RevisionServer& server, const std::string& ticket,
                                               OperationOutcome& outcome) {
        revision::ChangelistId changelist = choice.changelist;
        if (!choice.newDescription.empty()) {
            if (const revision::Result made = server.createChangelist(ticket, choice.newDescription, changelist);
                !made.ok())
                return made;
        }
        std::vector<revision::FileAtRevision> newer;
        std::vector<revision::FileAtRevision> older;
        for (const ReconcileItem& item : choice.items)
            if (item.keepsMine() && choice.keptCopies.count(item.localPath)) {
                newer.push_back({item.localPath, item.headRevision});
                older.push_back({item.localPath, item.haveRevision});
            }
        const Files edited = pathsOf(choice.items, FileAction::Edit);
        const Files added = pathsOf(choice.items, FileAction::Add);
        const Files deleted = pathsOf(choice.items, FileAction::Delete);
        revision::Result result;
        // The kept content goes back before the edit: whenever this stops, the file holds either
        // that content or nothing of the user's, which is what KeptContent::recover tells apart.
        if (!newer.empty() && (result = bringTo(server, ticket, newer)).ok() && !putBack(choice.keptCopies))
            result = {revision::code::IoError,
                      tr("Cannot put your content back over the newer revisions").toStdString()};
        // Edits first, since others' holds refuse them most often: then nothing needs reverting.
        Files editedSoFar;
        Files addedSoFar;
        if (result.ok() && !edited.empty() && (result = server.edit(ticket, edited, changelist)).ok())
            editedSoFar = edited;
        if (result.ok() && !added.empty() && (result = server.add(ticket, added, changelist)).ok())
            addedSoFar = added;
        if (result.ok() && !deleted.empty())
            result = server.remove(ticket, deleted, changelist);
        if (!result.ok()) {
            if (!editedSoFar.empty() || !addedSoFar.empty())
                revertKeepingContent(server, ticket, editedSoFar, addedSoFar);
            if (!newer.empty())
                bringTo(server, ticket, older);
            if (!choice.newDescription.empty())
                server.deleteChangelist(ticket, changelist);
            return result;
        }
        for (const ReconcileItem& item : choice.items)
            opened->push_back(item.localPath);
        outcome.done = changelist.empty()
                           ? tr("Reconciled %n file(s) into the default changelist", nullptr, int(opened->size()))
                           : tr("Reconciled %n file(s) into changelist %1", nullptr, int(opened->size()))
                                 .arg(QString::fromStdString(changelist));
        return result;
    };
}

QString ReconcileWork::actionText(const ReconcileItem& item)
{
    if (item.keepsMine())
        return item.newerBy.empty()
                   ? tr("edit (keeps your content over revision %1)").arg(item.headRevision)
                   : tr("edit (keeps your content over %1's revision %2)")
                         .arg(QString::fromStdString(item.newerBy))
                         .arg(item.headRevision);
    switch (item.action) {
    case FileAction::Add: return tr("add");
    case FileAction::Delete: return tr("delete");
    case FileAction::Edit: break;
    }
    return tr("edit");
}

QString ReconcileWork::serverText(const ReconcileItem& item)
{
    QStringList parts;
    for (const revision::FileHolder& hold : item.heldBy) {
        const QString user = QString::fromStdString(hold.user);
        if (hold.locked)
            parts << tr("locked by %1").arg(user);
        else if (hold.action == FileAction::Add)
            parts << tr("added by %1").arg(user);
        else if (hold.action == FileAction::Delete)
            parts << tr("deleted by %1").arg(user);
        else
            parts << tr("checked out by %1").arg(user);
    }
    if (item.behind())
        parts << (item.newerBy.empty() ? tr("revision %1 was submitted").arg(item.headRevision)
                                       : tr("revision %1 was submitted by %2")
                                             .arg(item.headRevision)
                                             .arg(QString::fromStdString(item.newerBy)));
    return parts.isEmpty() ? tr("nothing new") : parts.join(QStringLiteral("; "));
}

}  // namespace hbrc::studio
