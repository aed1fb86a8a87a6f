#include "schema.h"

#include <sstream>
#include <string>
#include <vector>

#include "contentstore.h"
#include "depoterror.h"
#include "sqlite.h"

namespace hbrc::depot {

namespace {

constexpr std::int64_t kSchemaVersion = 4;
// Version 3 differs only in what a writer needs (workspaces with history cannot be removed), so
// it is read as it is where it cannot be upgraded.
constexpr std::int64_t kOldestReadable = 3;

// Submitted changes name their workspace and user as they were; both may be removed later.
constexpr const char* kChanges = R"sql(
CREATE TABLE changes (number INTEGER PRIMARY KEY AUTOINCREMENT, workspace TEXT NOT NULL, user TEXT NOT NULL,
                      description TEXT NOT NULL, submitted INTEGER NOT NULL DEFAULT 0, time INTEGER NOT NULL DEFAULT 0);
)sql";

// Depot paths are relative to every workspace root ("art/ship.kel"); a missing change number on
// an opened file is the workspace's default changelist.
constexpr const char* kTables = R"sql(
CREATE TABLE settings (key TEXT PRIMARY KEY, value INTEGER NOT NULL);
CREATE TABLE users (name TEXT PRIMARY KEY, password_hash TEXT);
CREATE TABLE workspaces (name TEXT PRIMARY KEY, owner TEXT NOT NULL REFERENCES users(name), root TEXT NOT NULL);
CREATE TABLE sessions (ticket_digest TEXT PRIMARY KEY, user TEXT NOT NULL REFERENCES users(name),
                       workspace TEXT NOT NULL REFERENCES workspaces(name), expires_at INTEGER NOT NULL);
CREATE TABLE files (path TEXT PRIMARY KEY, head_rev INTEGER NOT NULL, head_deleted INTEGER NOT NULL);
CREATE TABLE revisions (path TEXT NOT NULL REFERENCES files(path), rev INTEGER NOT NULL,
                        change INTEGER NOT NULL REFERENCES changes(number), action TEXT NOT NULL,
                        content_id INTEGER REFERENCES contents(id), PRIMARY KEY (path, rev));
CREATE TABLE have (workspace TEXT NOT NULL REFERENCES workspaces(name), path TEXT NOT NULL, rev INTEGER NOT NULL,
                   PRIMARY KEY (workspace, path));
CREATE TABLE opened (workspace TEXT NOT NULL REFERENCES workspaces(name), path TEXT NOT NULL, user TEXT NOT NULL,
                     action TEXT NOT NULL, change INTEGER REFERENCES changes(number), locked INTEGER NOT NULL DEFAULT 0,
                     PRIMARY KEY (workspace, path));
CREATE INDEX opened_by_path ON opened(path);
CREATE INDEX revisions_by_change ON revisions(change);
)sql";

// File contents, once per SHA-256 digest, as zstd frames of at most ContentStore::kChunkSize
// bytes each (see contentstore.h). Version 2 depots kept each revision whole in revisions.content.
constexpr const char* kContents = R"sql(
CREATE TABLE contents (id INTEGER PRIMARY KEY, digest BLOB UNIQUE, size INTEGER NOT NULL);
CREATE TABLE content_chunks (content INTEGER NOT NULL REFERENCES contents(id), seq INTEGER NOT NULL,
                             data BLOB NOT NULL, PRIMARY KEY (content, seq));
)sql";

// Workspace file steps that are committed but not yet known to be done (see filesteps.h).
// Version 1 depots get it on their first opening.
constexpr const char* kJournal = R"sql(
CREATE TABLE journal (id INTEGER PRIMARY KEY, workspace TEXT NOT NULL, path TEXT NOT NULL, step TEXT NOT NULL,
                      rev INTEGER NOT NULL);
)sql";

// 0 for a database without the depot's settings. A file that cannot be read at all fails here
// with what stops it (the query of SQLite's own table reports that).
std::int64_t versionOf(Database& db)
{
    Statement settings(db, "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = 'settings'");
    if (!settings.step())
        return 0;
    settings.reset();
    Statement version(db, "SELECT value FROM settings WHERE key = 'schema_version'");
    return version.step() ? version.integer(0) : 0;
}

void moveContentsOutOfRevisions(Database& db)
{
    db.execute(kContents);
    db.execute("ALTER TABLE revisions ADD COLUMN content_id INTEGER REFERENCES contents(id)");
    std::vector<std::int64_t> rows;
    Statement select(db, "SELECT rowid FROM revisions WHERE content IS NOT NULL");
    while (select.step())
        rows.push_back(select.integer(0));
    ContentStore contents(db);
    Statement old(db, "SELECT content FROM revisions WHERE rowid = ?1");
    Statement link(db, "UPDATE revisions SET content_id = ?1 WHERE rowid = ?2");
    for (std::int64_t row : rows) {
        old.bind(1, row).step();
        const std::vector<char> bytes = old.blob(0);
        old.reset();
        std::istringstream in(std::string(bytes.begin(), bytes.end()));
        link.bind(1, contents.store(in)).bind(2, row).run();
    }
    db.execute("ALTER TABLE revisions DROP COLUMN content");
}

// Changes carry their time (created, then submitted) since 0.2; older files get the column, with
// 0 for "unknown", on their first writable opening.
bool hasChangeTimes(Database& db)
{
    Statement columns(db, "SELECT 1 FROM pragma_table_info('changes') WHERE name = 'time'");
    return columns.step();
}

// Until version 4 a change referred to its workspace's record, so that no workspace with a
// history could go. The table is made anew without the reference (SQLite cannot drop one),
// keeping the numbers and the next number to give.
void unlinkChangesFromWorkspaces(Database& db)
{
    Statement next(db, "SELECT seq FROM sqlite_sequence WHERE name = 'changes'");
    const std::int64_t nextNumber = next.step() ? next.integer(0) : 0;
    next.reset();
    // Made under another name and renamed last, so that the references of other tables to
    // "changes" are left as they are.
    std::string created = kChanges;
    created.replace(created.find("changes"), 7, "changes_new");
    db.execute(created.c_str());
    db.execute("INSERT INTO changes_new(number, workspace, user, description, submitted, time) "
               "SELECT number, workspace, user, description, submitted, time FROM changes");
    db.execute("DROP TABLE changes");
    db.execute("ALTER TABLE changes_new RENAME TO changes");
    Statement(db, "UPDATE sqlite_sequence SET seq = max(seq, ?1) WHERE name = 'changes'").bind(1, nextNumber).run();
}

// Brings a depot of an earlier version up to this one, in one transaction, with the references
// between tables unchecked while tables are made anew (SQLite's way of changing a table).
void upgrade(Database& db)
{
    db.execute("PRAGMA foreign_keys=OFF");
    Transaction transaction(db, Transaction::Kind::Write);
    const std::int64_t version = versionOf(db);
    if (version == 1)
        db.execute(kJournal);
    if (version == 1 || version == 2)
        moveContentsOutOfRevisions(db);
    if (!hasChangeTimes(db))
        db.execute("ALTER TABLE changes ADD COLUMN time INTEGER NOT NULL DEFAULT 0");
    unlinkChangesFromWorkspaces(db);
    Statement(db, "UPDATE settings SET value = ?1 WHERE key = 'schema_version'").bind(1, kSchemaVersion).run();
    transaction.commit();
    db.execute("PRAGMA foreign_keys=ON");
}

}  // namespace

void createSchema(Database& db, std::int64_t sessionLifetimeSeconds)
{
    Transaction transaction(db, Transaction::Kind::Write);
    db.execute(kContents);
    db.execute(kChanges);
    db.execute(kTables);
    db.execute(kJournal);
    Statement setting(db, "INSERT INTO settings(key, value) VALUES (?1, ?2)");
    setting.bind(1, std::string("schema_version")).bind(2, kSchemaVersion).run();
    setting.bind(1, std::string("session_lifetime")).bind(2, sessionLifetimeSeconds).run();
    transaction.commit();
}

void checkSchema(Database& db)
{
    const std::int64_t version = versionOf(db);
    if (version == kSchemaVersion && hasChangeTimes(db))
        return;
    if (version > kSchemaVersion)
        throw DepotError(code::SessionUnusable,
                         "Cannot read the depot: it was made by a later version of hbdepot; use that version");
    if (version < 1)
        throw DepotError(code::SessionUnusable, "Cannot reach the depot: the file is a database but no depot; check the depot path");
    if (db.readOnly() && version >= kOldestReadable && hasChangeTimes(db))
        return;
    if (db.readOnly())
        throw DepotError(code::SessionUnusable,
                         "Cannot read the depot: it was made by an earlier version of hbdepot; open it once with "
                         "write permission to the depot file and its folder, which upgrades it");
    upgrade(db);
}

}  // namespace hbrc::depot
