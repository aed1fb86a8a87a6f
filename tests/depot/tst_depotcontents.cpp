// What the depot keeps of file contents: every byte comes back through sync and revert, identical
// content is kept once and compressed, and a depot of the previous format is upgraded on opening.
#include "depotfixture.h"

#include <sqlite3.h>

#include <random>

using namespace hbrc::depot;
namespace fs = std::filesystem;

namespace {

// Reads one number from the depot file, as a look inside the storage.
std::int64_t count(const std::string& depotPath, const char* sql)
{
    sqlite3* db = nullptr;
    sqlite3_open_v2(depotPath.c_str(), &db, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_stmt* statement = nullptr;
    std::int64_t value = -1;
    if (sqlite3_prepare_v2(db, sql, -1, &statement, nullptr) == SQLITE_OK && sqlite3_step(statement) == SQLITE_ROW)
        value = sqlite3_column_int64(statement, 0);
    sqlite3_finalize(statement);
    sqlite3_close(db);
    return value;
}

void execute(const std::string& depotPath, const char* sql)
{
    sqlite3* db = nullptr;
    sqlite3_open(depotPath.c_str(), &db);
    char* error = nullptr;
    sqlite3_exec(db, sql, nullptr, nullptr, &error);
    EXPECT_EQ(error, nullptr) << error;
    sqlite3_free(error);
    sqlite3_close(db);
}

std::string text(std::size_t size)
{
    std::string content;
    for (int line = 0; content.size() < size; ++line)
        content += "field weight_" + std::to_string(line % 97) + " = " + std::to_string(line * 7 % 1000) + "\n";
    return content.substr(0, size);
}

std::string noise(std::size_t size)
{
    std::mt19937 random(21);
    std::string content(size, '\0');
    for (char& c : content)
        c = static_cast<char>(random());
    return content;
}

using DepotContents = DepotFixture;

TEST_F(DepotContents, EveryByteComesBackAndIdenticalContentIsKeptOnce)
{
    // Larger than one chunk, with a tail; a copy of a text asset; an empty file; every byte value.
    const std::vector<std::pair<std::string, std::string>> files = {
        {"big.bin", noise(2 * 1024 * 1024 + 123)},
        {"art/text.kel", text(300 * 1024)},
        {"art/copy.kel", text(300 * 1024)},
        {"empty.kel", ""},
        {"bytes.bin", [] {
             std::string all;
             for (int c = 0; c < 256; ++c)
                 all += static_cast<char>(c);
             return all;
         }()},
    };
    std::vector<std::string> paths;
    for (const auto& [name, content] : files) {
        write(aliceFile(name), content);
        paths.push_back(aliceFile(name));
    }
    ok(m_alice->add(m_aliceTicket, paths, ""));
    ok(submit(*m_alice, m_aliceTicket, "contents"));

    EXPECT_EQ(count(m_depotPath, "SELECT COUNT(*) FROM contents"), 5) << "shared.kel, and the copy shares the text";
    EXPECT_EQ(count(m_depotPath, "SELECT COUNT(*) FROM content_chunks c JOIN revisions r ON r.content_id = c.content "
                                 "WHERE r.path = 'big.bin'"),
              3);
    EXPECT_LT(count(m_depotPath, "SELECT SUM(LENGTH(c.data)) FROM content_chunks c JOIN revisions r "
                                 "ON r.content_id = c.content WHERE r.path = 'art/text.kel'"),
              300 * 1024 / 4)
        << "text is kept compressed";

    ok(m_bob->sync(m_bobTicket, {}));
    for (const auto& [name, content] : files) {
        EXPECT_EQ(read(bobFile(name)), content) << name;
        EXPECT_FALSE(isWritable(bobFile(name))) << name;
    }

    // An edit that is reverted, and one submitted back unchanged, which needs no new content.
    ok(m_bob->edit(m_bobTicket, {bobFile("big.bin"), bobFile("art/copy.kel")}, ""));
    write(bobFile("big.bin"), "scribbles");
    ok(m_bob->revert(m_bobTicket, {bobFile("big.bin")}));
    EXPECT_EQ(read(bobFile("big.bin")), files[0].second);
    ok(submit(*m_bob, m_bobTicket, "unchanged"));
    EXPECT_EQ(count(m_depotPath, "SELECT COUNT(*) FROM contents"), 5);
    EXPECT_EQ(count(m_depotPath, "SELECT COUNT(*) FROM content_chunks WHERE content NOT IN (SELECT id FROM contents)"),
              0);
}

// The tables of the previous format, which kept every revision whole in revisions.content.
constexpr const char* kPreviousFormat = R"sql(
CREATE TABLE settings (key TEXT PRIMARY KEY, value INTEGER NOT NULL);
CREATE TABLE users (name TEXT PRIMARY KEY, password_hash TEXT);
CREATE TABLE workspaces (name TEXT PRIMARY KEY, owner TEXT NOT NULL REFERENCES users(name), root TEXT NOT NULL);
CREATE TABLE sessions (ticket_digest TEXT PRIMARY KEY, user TEXT NOT NULL REFERENCES users(name),
                       workspace TEXT NOT NULL REFERENCES workspaces(name), expires_at INTEGER NOT NULL);
CREATE TABLE changes (number INTEGER PRIMARY KEY AUTOINCREMENT, workspace TEXT NOT NULL REFERENCES workspaces(name),
                      user TEXT NOT NULL, description TEXT NOT NULL, submitted INTEGER NOT NULL DEFAULT 0);
CREATE TABLE files (path TEXT PRIMARY KEY, head_rev INTEGER NOT NULL, head_deleted INTEGER NOT NULL);
CREATE TABLE revisions (path TEXT NOT NULL REFERENCES files(path), rev INTEGER NOT NULL,
                        change INTEGER NOT NULL REFERENCES changes(number), action TEXT NOT NULL, content BLOB,
                        PRIMARY KEY (path, rev));
CREATE TABLE have (workspace TEXT NOT NULL REFERENCES workspaces(name), path TEXT NOT NULL, rev INTEGER NOT NULL,
                   PRIMARY KEY (workspace, path));
CREATE TABLE opened (workspace TEXT NOT NULL REFERENCES workspaces(name), path TEXT NOT NULL, user TEXT NOT NULL,
                     action TEXT NOT NULL, change INTEGER REFERENCES changes(number), locked INTEGER NOT NULL DEFAULT 0,
                     PRIMARY KEY (workspace, path));
CREATE INDEX opened_by_path ON opened(path);
CREATE INDEX revisions_by_change ON revisions(change);
CREATE TABLE journal (id INTEGER PRIMARY KEY, workspace TEXT NOT NULL, path TEXT NOT NULL, step TEXT NOT NULL,
                      rev INTEGER NOT NULL);
INSERT INTO settings VALUES ('schema_version', 2), ('session_lifetime', 3600);
INSERT INTO users VALUES ('carol', NULL);
INSERT INTO changes VALUES (1, 'carol-ws', 'carol', 'old', 1), (2, 'carol-ws', 'carol', 'older', 1);
INSERT INTO files VALUES ('old.kel', 2, 0), ('gone.kel', 2, 1), ('same.kel', 1, 0);
INSERT INTO revisions VALUES ('old.kel', 1, 1, 'add', 'first'), ('old.kel', 2, 2, 'edit', 'second'),
                             ('gone.kel', 1, 1, 'add', 'second'), ('gone.kel', 2, 2, 'delete', NULL),
                             ('same.kel', 1, 1, 'add', 'first');
)sql";

TEST_F(DepotContents, ADepotOfThePreviousFormatIsUpgradedOnItsFirstWritableOpening)
{
    const std::string old = path("old.db");
    const std::string root = path("carol");
    execute(old, kPreviousFormat);
    execute(old, ("INSERT INTO workspaces VALUES ('carol-ws', 'carol', '" + root + "')").c_str());
    const std::string readOnlyCopy = path("old-readonly.db");
    fs::copy_file(old, readOnlyCopy);
    fs::permissions(readOnlyCopy, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);

    Depot readOnly(readOnlyCopy);
    std::string ticket;
    const Result refused = readOnly.login("carol", "", "carol-ws", ticket);
    EXPECT_EQ(refused.code, code::SessionUnusable);
    EXPECT_NE(refused.error.find("open it once with write permission"), std::string::npos) << refused.error;

    Depot upgraded(old);
    ok(upgraded.login("carol", "", "carol-ws", ticket));
    ok(upgraded.sync(ticket, {}));
    EXPECT_EQ(read(path("carol/old.kel")), "second");
    EXPECT_EQ(read(path("carol/same.kel")), "first");
    EXPECT_FALSE(fs::exists(path("carol/gone.kel")));
    EXPECT_EQ(count(old, "SELECT value FROM settings WHERE key = 'schema_version'"), 3);
    EXPECT_EQ(count(old, "SELECT COUNT(*) FROM contents"), 2) << "'first' and 'second', each once";

    ok(upgraded.edit(ticket, {path("carol/old.kel")}, ""));
    write(path("carol/old.kel"), "third");
    ok(submit(upgraded, ticket, "after the upgrade"));
    ok(upgraded.edit(ticket, {path("carol/old.kel")}, ""));
    ok(upgraded.revert(ticket, {path("carol/old.kel")}));
    EXPECT_EQ(read(path("carol/old.kel")), "third");
}

}  // namespace
