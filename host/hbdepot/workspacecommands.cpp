#include "workspacecommands.h"

#include <depot/depot.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <ostream>

#include "changecommands.h"
#include "commandcontext.h"
#include "keepmine.h"

namespace hbrc::hbdepot {

using depot::Depot;
using depot::FileAction;
using depot::Result;
using depot::WorkspaceChange;

namespace {

namespace fs = std::filesystem;

Depot::Files filesFor(const std::vector<WorkspaceChange>& changes, FileAction action)
{
    Depot::Files files;
    for (const WorkspaceChange& change : changes) {
        if (change.action == action)
            files.push_back(change.localPath);
    }
    return files;
}

// Un-opens what the earlier actions opened, leaving the disk as the user had it: a reverted add
// stays as it is, and a reverted delete gets its revision back, which goes again since the user
// had removed it. Says what became of them.
std::string revertEarlier(Context& c, const Depot::Files& added, const Depot::Files& deleted)
{
    Depot::Files opened = added;
    opened.insert(opened.end(), deleted.begin(), deleted.end());
    if (opened.empty())
        return "Nothing was opened.";
    const Result reverted = c.depot.revert(c.ticket, opened);
    for (const std::string& file : deleted) {
        std::error_code ignored;
        fs::remove(file, ignored);
    }
    if (!reverted.ok())
        return "The files opened before it could not be reverted: " + reverted.error;
    return "Nothing was opened: what the earlier actions opened was reverted, the files left as they were.";
}

// One round trip per action, all or none. Adds go first, then deletes, then edits: reverting an add
// or a delete loses nothing, whereas reverting an edit would write the workspace's revision over
// the user's change, so an edit is never reverted here.
Result openAll(Context& c, const std::vector<WorkspaceChange>& changes, const depot::ChangelistId& changelist)
{
    using Open = Result (Depot::*)(const std::string&, const Depot::Files&, const depot::ChangelistId&,
                                   const depot::CancelCheck&);
    const std::pair<FileAction, Open> actions[] = {
        {FileAction::Add, &Depot::add}, {FileAction::Delete, &Depot::remove}, {FileAction::Edit, &Depot::edit}};
    Depot::Files added;
    Depot::Files deleted;
    for (const auto& [action, open] : actions) {
        const Depot::Files files = filesFor(changes, action);
        if (files.empty())
            continue;
        const Result opened = (c.depot.*open)(c.ticket, files, changelist, {});
        if (!opened.ok())
            return {opened.code, opened.error + "\n" + revertEarlier(c, added, deleted)};
        Depot::Files& done = action == FileAction::Add ? added : deleted;
        done.insert(done.end(), files.begin(), files.end());
    }
    return {};
}

}  // namespace

Result collectWorkspaceStatus(Context& c, std::vector<StatusEntry>& entries)
{
    Depot::Files known;
    std::vector<WorkspaceChange> changes;
    Result result = c.depot.workspaceFiles(c.ticket, known);
    if (result.ok())
        result = c.depot.workspaceChanges(c.ticket, {}, changes);
    if (!result.ok())
        return result;
    std::map<std::string, std::optional<FileAction>> unopened;  // by local path: in path order
    for (const std::string& file : known)
        unopened.emplace(file, std::nullopt);
    for (const WorkspaceChange& change : changes)
        unopened[change.localPath] = change.action;
    Depot::Files asked;
    for (const auto& [file, action] : unopened)
        asked.push_back(file);
    std::vector<depot::FileStatus> statuses;
    result = c.depot.status(c.ticket, asked, statuses);
    for (std::size_t i = 0; result.ok() && i < statuses.size(); ++i) {
        const std::optional<FileAction>& action = unopened[asked[i]];
        if (statuses[i].word != 0 || action)
            entries.push_back({Context::shown(asked[i]), asked[i], statuses[i], action});
    }
    return result;
}

Result reconcileFiles(Context& c)
{
    const bool onlySay = c.args.flag("-n");
    const bool keepMine = c.args.flag("--keep-mine");
    // What -n says is its answer, printed even with -q.
    std::ostream& out = onlySay ? c.out : c.report();
    std::vector<WorkspaceChange> changes;
    Result result = c.depot.workspaceChanges(c.ticket, c.files(), changes);
    if (result.ok() && recoverKeptCopies(changes, onlySay, out))
        result = c.depot.workspaceChanges(c.ticket, c.files(), changes);
    changes.erase(std::remove_if(changes.begin(), changes.end(),
                                 [](const WorkspaceChange& change) { return isKeptCopy(change.localPath); }),
                  changes.end());
    std::vector<KeptFile> behind;
    if (result.ok())
        result = findBehind(c, changes, behind);
    if (!result.ok())
        return result;
    const depot::ChangelistId changelist = c.changelistOption();
    if (!onlySay && !changes.empty()) {
        if (keepMine)
            result = keepOverHead(c, behind);
        if (result.ok())
            result = openAll(c, changes, changelist);
        if (keepMine && !result.ok())
            bringBack(c, behind);
        dropKeptCopies(behind);
    }
    if (!result.ok())
        return !keepMine && !behind.empty()
                   ? Result{result.code, result.error + "\n'hbdepot reconcile --keep-mine' keeps your content over "
                                                         "the newer revisions."}
                   : result;
    if (changes.empty())
        out << "No files changed without being opened.\n";
    for (const WorkspaceChange& change : changes) {
        const auto newer = std::find_if(behind.begin(), behind.end(),
                                        [&](const KeptFile& file) { return file.path == change.localPath; });
        out << Context::shown(change.localPath) << " - ";
        if (newer != behind.end() && !keepMine) {
            out << "would be refused: revision " << newer->head << " is newer (--keep-mine keeps your content over it)\n";
            continue;
        }
        out << (onlySay ? "would be opened for " : "opened for ") << depot::actionName(change.action) << " in "
            << inChangelist(changelist);
        if (newer != behind.end())
            out << ", keeping your content over revision " << newer->head;
        out << "\n";
    }
    return result;
}

}  // namespace hbrc::hbdepot
