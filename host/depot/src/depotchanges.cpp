// The depot's changelists: listing, describing, creating, and submitting them.
#include <depot/depot.h>

#include <filesystem>

#include "contentstore.h"
#include "depoterror.h"
#include "depotimpl.h"
#include "filestate.h"
#include "pendingchange.h"

namespace hbrc::depot {

namespace fs = std::filesystem;

namespace {

struct SubmittedFile
{
    std::string key;
    FileAction action;
};

std::vector<SubmittedFile> filesOpenedIn(Call& call, const std::optional<std::int64_t>& change)
{
    Statement select(call.db(), "SELECT path, action FROM opened WHERE workspace = ?1 AND change IS ?2 ORDER BY path");
    select.bind(1, call.workspace().name()).bind(2, change);
    std::vector<SubmittedFile> files;
    while (select.step())
        files.push_back({select.text(0), actionFromName(select.text(1))});
    return files;
}

std::int64_t changeForSubmit(Call& call, const std::optional<std::int64_t>& pending, const std::string& description)
{
    if (pending) {
        if (!description.empty()) {
            Statement update(call.db(), "UPDATE changes SET description = ?1 WHERE number = ?2");
            update.bind(1, description).bind(2, *pending).run();
        }
        return *pending;
    }
    if (description.empty())
        throw DepotError(code::Failed, "Submitting the default changelist needs a description.");
    Statement insert(call.db(), "INSERT INTO changes(workspace, user, description) VALUES (?1, ?2, ?3)");
    insert.bind(1, call.workspace().name()).bind(2, call.user()).bind(3, description).run();
    return call.db().lastInsertId();
}

std::vector<ChangelistFile> changelistFiles(Call& call, const Changelist& changelist,
                                            const std::optional<std::int64_t>& number)
{
    const bool pending = changelist.state == ChangelistState::Pending;
    Statement select(call.db(), pending
                                    ? "SELECT path, action, 0 FROM opened WHERE change IS ?1 AND workspace = ?2 "
                                      "ORDER BY path"
                                    : "SELECT path, action, rev FROM revisions WHERE change = ?1 ORDER BY path");
    select.bind(1, number);
    if (pending)
        select.bind(2, changelist.workspace);
    std::vector<ChangelistFile> files;
    while (select.step())
        files.push_back({depotPathOf(select.text(0)), actionFromName(select.text(1)),
                         static_cast<int>(select.integer(2))});
    return files;
}

}  // namespace

Result Depot::submit(const std::string& ticket, const ChangelistId& changelist, const std::string& description,
                     ChangelistId& submitted, const CancelCheck& cancel)
{
    std::int64_t number = 0;
    const Result result = d->runInSession(Operation::Submit, Transaction::Kind::Write, ticket, cancel, [&](Call& call) {
        const WorkspaceView& workspace = call.workspace();
        const std::optional<std::int64_t> pending = resolvePendingChange(call, changelist);
        const std::vector<SubmittedFile> files = filesOpenedIn(call, pending);
        if (files.empty())
            throw DepotError(code::Failed, "No files to submit in the " +
                                               (pending ? "changelist " + changelist : std::string("default changelist")) +
                                               ".");
        number = changeForSubmit(call, pending, description);
        Statement head(call.db(), "SELECT head_rev FROM files WHERE path = ?1");
        Statement setHead(call.db(), "INSERT INTO files(path, head_rev, head_deleted) VALUES (?1, ?2, ?3) "
                                     "ON CONFLICT(path) DO UPDATE SET head_rev = excluded.head_rev, "
                                     "head_deleted = excluded.head_deleted");
        ContentStore contents(call.db());
        Statement addRevision(call.db(), "INSERT INTO revisions(path, rev, change, action, content_id) "
                                         "VALUES (?1, ?2, ?3, ?4, ?5)");
        Statement setHave(call.db(), "INSERT INTO have(workspace, path, rev) VALUES (?1, ?2, ?3) "
                                     "ON CONFLICT(workspace, path) DO UPDATE SET rev = excluded.rev");
        Statement dropHave(call.db(), "DELETE FROM have WHERE workspace = ?1 AND path = ?2");
        for (const SubmittedFile& file : files) {
            call.checkpoint();
            const std::int64_t revision = (head.bind(1, file.key).step() ? head.integer(0) : 0) + 1;
            head.reset();
            const bool deleting = file.action == FileAction::Delete;
            setHead.bind(1, file.key).bind(2, revision).bind(3, std::int64_t{deleting}).run();
            addRevision.bind(1, file.key).bind(2, revision).bind(3, number).bind(4, std::string(actionName(file.action)));
            if (deleting) {
                addRevision.bind(5, std::optional<std::int64_t>()).run();
                dropHave.bind(1, workspace.name()).bind(2, file.key).run();
                continue;
            }
            addRevision.bind(5, contents.storeFile(workspace.localPathOf(file.key))).run();
            setHave.bind(1, workspace.name()).bind(2, file.key).bind(3, revision).run();
            call.schedule(FileStep::Kind::MakeReadOnly, file.key);
        }
        Statement close(call.db(), "DELETE FROM opened WHERE workspace = ?1 AND change IS ?2");
        close.bind(1, workspace.name()).bind(2, pending).run();
        Statement(call.db(), "UPDATE changes SET submitted = 1, time = ?2 WHERE number = ?1")
            .bind(1, number)
            .bind(2, d->now())
            .run();
        call.checkpoint();
    });
    if (result.ok())
        submitted = std::to_string(number);
    return result;
}

Result Depot::opened(const std::string& ticket, bool allWorkspaces, std::vector<OpenedFile>& files)
{
    std::vector<OpenedFile> answer;
    const Result result = d->runInSession(Operation::Opened, Transaction::Kind::Read, ticket, {}, [&](Call& call) {
        Statement select(call.db(), "SELECT o.path, o.action, o.change, o.user, o.workspace, o.locked, w.root "
                                    "FROM opened o JOIN workspaces w ON w.name = o.workspace "
                                    "WHERE ?1 OR o.workspace = ?2 ORDER BY o.path, o.workspace");
        select.bind(1, std::int64_t{allWorkspaces}).bind(2, call.workspace().name());
        while (select.step()) {
            const std::string key = select.text(0);
            answer.push_back({depotPathOf(key), (fs::path(select.text(6)) / key).string(),
                              actionFromName(select.text(1)), changelistIdOf(select.optionalInteger(2)),
                              select.text(3), select.text(4), select.integer(5) != 0});
        }
    });
    if (result.ok())
        files = std::move(answer);
    return result;
}

Result Depot::changelists(const std::string& ticket, ChangelistState state, std::vector<Changelist>& changelists)
{
    std::vector<Changelist> answer;
    const bool submitted = state == ChangelistState::Submitted;
    const Result result = d->runInSession(Operation::Changelists, Transaction::Kind::Read, ticket, {}, [&](Call& call) {
        Statement select(call.db(), "SELECT number, description, user, workspace, time FROM changes "
                                    "WHERE submitted = ?1 AND (?1 OR workspace = ?2) ORDER BY number");
        select.bind(1, std::int64_t{submitted}).bind(2, call.workspace().name());
        while (select.step())
            answer.push_back({std::to_string(select.integer(0)), select.text(1), select.text(2), select.text(3), state,
                              {}, select.integer(4)});
    });
    if (result.ok())
        changelists = std::move(answer);
    return result;
}

Result Depot::describe(const std::string& ticket, const ChangelistId& changelist, Changelist& description)
{
    Changelist answer;
    const Result result = d->runInSession(Operation::Describe, Transaction::Kind::Read, ticket, {}, [&](Call& call) {
        const std::optional<std::int64_t> number = parseChangelistId(changelist);
        if (number) {
            Statement select(call.db(),
                             "SELECT description, user, workspace, submitted, time FROM changes WHERE number = ?1");
            if (!select.bind(1, *number).step())
                throw DepotError(code::Failed, "Change " + changelist + " unknown.");
            answer = {std::to_string(*number), select.text(0), select.text(1), select.text(2),
                      select.integer(3) ? ChangelistState::Submitted : ChangelistState::Pending, {}, select.integer(4)};
        } else {
            answer = {{}, {}, call.user(), call.workspace().name(), ChangelistState::Pending, {}, 0};
        }
        answer.files = changelistFiles(call, answer, number);
    });
    if (result.ok())
        description = std::move(answer);
    return result;
}

Result Depot::createChangelist(const std::string& ticket, const std::string& description, ChangelistId& created)
{
    std::int64_t number = 0;
    const Result result =
        d->runInSession(Operation::CreateChangelist, Transaction::Kind::Write, ticket, {}, [&](Call& call) {
            Statement insert(call.db(),
                             "INSERT INTO changes(workspace, user, description, time) VALUES (?1, ?2, ?3, ?4)");
            insert.bind(1, call.workspace().name()).bind(2, call.user()).bind(3, description).bind(4, d->now()).run();
            number = call.db().lastInsertId();
        });
    if (result.ok())
        created = std::to_string(number);
    return result;
}

Result Depot::changelistExists(const std::string& ticket, const ChangelistId& changelist, bool& exists)
{
    bool answer = false;
    const Result result =
        d->runInSession(Operation::ChangelistExists, Transaction::Kind::Read, ticket, {}, [&](Call& call) {
            try {
                resolvePendingChange(call, changelist);
                answer = true;
            } catch (const DepotError& error) {
                if (error.code() != code::Failed)
                    throw;
            }
        });
    if (result.ok())
        exists = answer;
    return result;
}

}  // namespace hbrc::depot
