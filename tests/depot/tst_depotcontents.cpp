// What the depot keeps of file contents: every byte comes back through sync and revert, identical
// content is kept once and compressed, and a depot of the previous format is upgraded on opening.
#include "depotfixture.h"

#include <sqlite3.h>

#include <random>

using namespace hbrc::depot;
namespace fs = std::filesystem;

namespace {

// Runs SQL on the depot file, as a look inside the storage: the first value of the last row it
// answers (-1 for none).
std::int64_t sql(const std::string& depotPath, const char* statements)
{
    sqlite3* db = nullptr;
    sqlite3_open(depotPath.c_str(), &db);
    std::int64_t value = -1;
    char* error = nullptr;
    const auto keep = [](void* out, int, char** values, char**) {
        *static_cast<std::int64_t*>(out) = values[0] ? std::stoll(values[0]) : -1;
        return 0;
    };
    sqlite3_exec(db, statements, keep, &value, &error);
    EXPECT_EQ(error, nullptr) << error;
    sqlite3_free(error);
    sqlite3_close(db);
    return value;
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

    EXPECT_EQ(sql(m_depotPath, "SELECT COUNT(*) FROM contents"), 5) << "shared.kel, and the copy shares the text";
    EXPECT_EQ(sql(m_depotPath, "SELECT COUNT(*) FROM content_chunks c JOIN revisions r ON r.content_id = c.content "
                                 "WHERE r.path = 'big.bin'"),
              3);
    EXPECT_LT(sql(m_depotPath, "SELECT SUM(LENGTH(c.data)) FROM content_chunks c JOIN revisions r "
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
    EXPECT_EQ(sql(m_depotPath, "SELECT COUNT(*) FROM contents"), 5);
    EXPECT_EQ(sql(m_depotPath, "SELECT COUNT(*) FROM content_chunks WHERE content NOT IN (SELECT id FROM contents)"),
              0);
}

// Turns the depot back into the previous format, which kept every revision whole in the revisions
// table: shared.kel#1 "v1", shared.kel#2 "v2" and ship.kel#1 "v1".
constexpr const char* kBackToThePreviousFormat = R"sql(
ALTER TABLE revisions ADD COLUMN content BLOB;
UPDATE revisions SET content = CAST(CASE WHEN path = 'shared.kel' AND rev = 2 THEN 'v2' ELSE 'v1' END AS BLOB);
ALTER TABLE revisions DROP COLUMN content_id;
DROP TABLE content_chunks;
DROP TABLE contents;
UPDATE settings SET value = 2 WHERE key = 'schema_version';
)sql";

TEST_F(DepotContents, ADepotOfThePreviousFormatIsUpgradedOnItsFirstWritableOpening)
{
    bobSubmitsNewFile("ship.kel", "v1");
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    write(aliceFile("shared.kel"), "v2");
    ok(submit(*m_alice, m_aliceTicket, "v2"));
    m_alice.reset();
    m_bob.reset();
    sql(m_depotPath, kBackToThePreviousFormat);
    const std::string readOnlyCopy = path("readonly.db");
    fs::copy_file(m_depotPath, readOnlyCopy);
    fs::permissions(readOnlyCopy, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);

    std::string ticket;
    refused(Depot(readOnlyCopy).login("bob", "bob-pw", "bob-ws", ticket), code::SessionUnusable,
            "open it once with write permission");

    Depot upgraded(m_depotPath);
    ok(upgraded.login("bob", "bob-pw", "bob-ws", ticket));
    ok(upgraded.sync(ticket, {}));
    EXPECT_EQ(read(bobFile("shared.kel")), "v2");
    EXPECT_EQ(sql(m_depotPath, "SELECT value FROM settings WHERE key = 'schema_version'"), 4);
    EXPECT_EQ(sql(m_depotPath, "SELECT COUNT(*) FROM contents"), 2) << "'v1' and 'v2', each once";

    ok(upgraded.edit(ticket, {bobFile("ship.kel")}, ""));
    write(bobFile("ship.kel"), "scribbles");
    ok(upgraded.revert(ticket, {bobFile("ship.kel")}));
    EXPECT_EQ(read(bobFile("ship.kel")), "v1");
    // Workspaces with a history can go; the history and the change numbers stay.
    ok(upgraded.removeWorkspace("alice-ws"));
    EXPECT_EQ(sql(m_depotPath, "SELECT COUNT(*) FROM changes WHERE workspace = 'alice-ws'"), 2);
    ChangelistId created;
    ok(upgraded.createChangelist(ticket, "next", created));
    EXPECT_EQ(created, "4");
}

TEST_F(DepotContents, ADepotWithoutChangeTimesGetsThemOnItsFirstWritableOpening)
{
    // A depot of an earlier build: its changes table has no time column.
    sql(m_depotPath, "ALTER TABLE changes DROP COLUMN time");
    fs::permissions(m_depotPath, fs::perms::owner_write, fs::perm_options::remove);
    std::vector<Changelist> submitted;
    refused(Depot(m_depotPath).changelists(m_aliceTicket, ChangelistState::Submitted, submitted), code::SessionUnusable,
            "open it once with write permission");
    fs::permissions(m_depotPath, fs::perms::owner_write, fs::perm_options::add);

    Depot reopened(m_depotPath);
    ok(reopened.changelists(m_aliceTicket, ChangelistState::Submitted, submitted));
    ASSERT_EQ(submitted.size(), 1u);
    EXPECT_EQ(submitted[0].time, 0) << "unknown";
    ok(reopened.edit(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    ok(submit(reopened, m_aliceTicket, "second"));
    ok(reopened.changelists(m_aliceTicket, ChangelistState::Submitted, submitted));
    ASSERT_EQ(submitted.size(), 2u);
    EXPECT_GT(submitted[1].time, 0);
}

}  // namespace
