#include "filesteps.h"

#include "contentstore.h"
#include "depoterror.h"
#include "sqlite.h"
#include "workspacefiles.h"

namespace hbrc::depot::journal {

namespace {

constexpr const char* kStepNames[] = {"write", "remove", "writable", "readonly"};

const char* nameOf(FileStep::Kind kind)
{
    return kStepNames[static_cast<int>(kind)];
}

FileStep::Kind kindNamed(const std::string& name)
{
    for (int i = 0; i < 4; ++i) {
        if (name == kStepNames[i])
            return static_cast<FileStep::Kind>(i);
    }
    throw DepotError(code::Failed, "The depot's journal holds an unknown step '" + name + "'");
}

void applyOne(ContentStore& contents, const FileStep& step)
{
    switch (step.kind) {
    case FileStep::Kind::WriteRevision: {
        const std::int64_t content = contents.ofRevision(step.key, step.revision);
        workspacefiles::writeReadOnly(step.local, [&](std::ostream& out) { contents.copy(content, out); });
        break;
    }
    case FileStep::Kind::Remove:
        workspacefiles::remove(step.local);
        break;
    case FileStep::Kind::MakeWritable:
        workspacefiles::setWritable(step.local, true);
        break;
    case FileStep::Kind::MakeReadOnly:
        workspacefiles::setWritable(step.local, false);
        break;
    }
}

}  // namespace

void record(Database& db, std::vector<FileStep>& steps)
{
    Statement insert(db, "INSERT INTO journal(workspace, path, step, rev) VALUES (?1, ?2, ?3, ?4)");
    // Writing or removing a file decides all of it: a step of the same file that still waits
    // (it failed before) must not be done after this one.
    Statement supersede(db, "DELETE FROM journal WHERE workspace = ?1 AND path = ?2");
    for (FileStep& step : steps) {
        if (step.kind == FileStep::Kind::WriteRevision || step.kind == FileStep::Kind::Remove)
            supersede.bind(1, step.workspace).bind(2, step.key).run();
        insert.bind(1, step.workspace).bind(2, step.key).bind(3, std::string(nameOf(step.kind)));
        insert.bind(4, step.revision).run();
        step.journalId = db.lastInsertId();
    }
}

std::vector<FailedStep> apply(Database& db, std::vector<FileStep>& steps, std::vector<std::int64_t>& done)
{
    std::vector<FailedStep> failures;
    ContentStore contents(db);
    for (FileStep& step : steps) {
        try {
            applyOne(contents, step);
            step.applied = true;
            done.push_back(step.journalId);
        } catch (const DepotError& error) {
            failures.push_back({step.workspace, error.what()});
        }
    }
    return failures;
}

void forget(Database& db, const std::vector<std::int64_t>& done)
{
    if (done.empty())
        return;
    Transaction transaction(db, Transaction::Kind::Write);
    Statement remove(db, "DELETE FROM journal WHERE id = ?1");
    for (std::int64_t id : done)
        remove.bind(1, id).run();
    transaction.commit();
}

bool pending(Database& db)
{
    Statement any(db, "SELECT EXISTS (SELECT 1 FROM journal)");
    const bool found = any.step() && any.integer(0) != 0;
    any.reset();
    return found;
}

std::vector<FailedStep> replay(Database& db)
{
    std::vector<FileStep> steps;
    {
        Transaction reading(db, Transaction::Kind::Read);
        Statement select(db, "SELECT j.id, j.workspace, j.path, j.step, j.rev, w.root FROM journal j "
                             "JOIN workspaces w ON w.name = j.workspace ORDER BY j.id");
        while (select.step()) {
            FileStep step{kindNamed(select.text(3)), select.text(1), select.text(2),
                          std::filesystem::path(select.text(5)) / select.text(2), select.integer(4),
                          select.integer(0)};
            steps.push_back(std::move(step));
        }
        reading.commit();
    }
    std::vector<std::int64_t> done;
    std::vector<FailedStep> failures = journal::apply(db, steps, done);
    forget(db, done);
    return failures;
}

}  // namespace hbrc::depot::journal
