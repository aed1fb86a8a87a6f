// Files in the depot and in the workspaces: every byte comes back through sync and revert, identical
// content is kept once and compressed, a depot of an earlier format is upgraded on opening, a
// user's local change is never overwritten by a sync, any legal file name works, and a file step
// that fails is finished by a later command.
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

using DepotFiles = DepotFixture;

TEST_F(DepotFiles, EveryByteComesBackAndIdenticalContentIsKeptOnce)
{
    // Larger than one chunk, with a tail; a copy of a text asset; an empty file; every byte value;
    // the longest legal file name.
    const std::string longName = std::string(255 - 4, 'n') + ".kel";
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
        {longName, "long"},
    };
    std::vector<std::string> paths;
    for (const auto& [name, content] : files) {
        write(aliceFile(name), content);
        paths.push_back(aliceFile(name));
    }
    ok(m_alice->add(m_aliceTicket, paths, ""));
    ok(submit(*m_alice, m_aliceTicket, "contents"));

    EXPECT_EQ(sql(m_depotPath, "SELECT COUNT(*) FROM contents"), 6) << "shared.kel, and the copy shares the text";
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

    // Edits that are reverted, and one submitted back unchanged, which needs no new content.
    ok(m_bob->edit(m_bobTicket, {bobFile("big.bin"), bobFile("art/copy.kel"), bobFile(longName)}, ""));
    write(bobFile("big.bin"), "scribbles");
    write(bobFile(longName), "scribbles");
    ok(m_bob->revert(m_bobTicket, {bobFile("big.bin"), bobFile(longName)}));
    EXPECT_EQ(read(bobFile("big.bin")), files[0].second);
    EXPECT_EQ(read(bobFile(longName)), "long");
    EXPECT_FALSE(isWritable(bobFile(longName)));
    for (const auto& entry : fs::directory_iterator(path("bob")))
        EXPECT_EQ(entry.path().filename().string().rfind(".hbdepot-", 0), std::string::npos) << "left over";
    ok(submit(*m_bob, m_bobTicket, "unchanged"));
    EXPECT_EQ(sql(m_depotPath, "SELECT COUNT(*) FROM contents"), 6);
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

// Read-only it is refused, and so is a depot of this format from a build before changes had times.
TEST_F(DepotFiles, ADepotOfAnEarlierFormatIsUpgradedOnItsFirstWritableOpening)
{
    bobSubmitsNewFile("ship.kel", "v1");
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    write(aliceFile("shared.kel"), "v2");
    ok(submit(*m_alice, m_aliceTicket, "v2"));
    m_alice.reset();
    m_bob.reset();
    const auto refusedReadOnly = [&](const std::string& copy) {
        fs::copy_file(m_depotPath, path(copy));
        fs::permissions(path(copy), fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
        std::string ticket;
        refused(Depot(path(copy)).login("bob", "bob-pw", "bob-ws", ticket), code::SessionUnusable,
                "open it once with write permission");
    };
    sql(m_depotPath, "ALTER TABLE changes DROP COLUMN time");
    refusedReadOnly("without-times.db");
    sql(m_depotPath, kBackToThePreviousFormat);
    refusedReadOnly("previous-format.db");

    Depot upgraded(m_depotPath);
    std::string ticket;
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
    ok(upgraded.edit(ticket, {bobFile("shared.kel")}, ""));
    ChangelistId created;
    ok(upgraded.submit(ticket, "", "after the upgrade", created));
    EXPECT_EQ(created, "4");
    std::vector<Changelist> submitted;
    ok(upgraded.changelists(ticket, ChangelistState::Submitted, submitted));
    ASSERT_EQ(submitted.size(), 4u);
    EXPECT_EQ(submitted[2].time, 0) << "unknown";
    EXPECT_GT(submitted[3].time, 0);
}

TEST_F(DepotFiles, SyncKeepsAWritableLocalChangeUnlessForced)
{
    // bob made shared.kel writable without opening it and changed it; ship.kel he left alone.
    bobSubmitsNewFile("ship.kel", "hull");
    const std::string mine = bobFile("shared.kel");
    write(mine, "bob's unsaved work");
    ok(m_alice->sync(m_aliceTicket, {}));
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel"), aliceFile("ship.kel")}, ""));
    write(aliceFile("shared.kel"), "v2");
    write(aliceFile("ship.kel"), "hull v2");
    ok(submit(*m_alice, m_aliceTicket, "alice's v2"));

    const Result kept = m_bob->sync(m_bobTicket, {});
    EXPECT_EQ(kept.code, code::Failed);
    EXPECT_EQ(kept.error, "Can't clobber writable file " + mine);
    EXPECT_EQ(read(mine), "bob's unsaved work");
    EXPECT_EQ(statusOf(*m_bob, m_bobTicket, mine).word, status::NotAtHead) << "the kept file is not recorded";
    EXPECT_EQ(read(bobFile("ship.kel")), "hull v2") << "the other files are synced all the same";
    EXPECT_EQ(bobSees("ship.kel"), 0u);

    ok(m_bob->sync(m_bobTicket, {mine}, SyncMode::Force));
    EXPECT_EQ(read(mine), "v2");
    EXPECT_FALSE(isWritable(mine));

    // A file opened in the workspace is left as it is: one opened for delete (whose local copy
    // "hbdepot delete" removes) stays off the disk.
    ok(m_bob->remove(m_bobTicket, {bobFile("ship.kel")}, ""));
    fs::remove(bobFile("ship.kel"));
    ok(m_bob->sync(m_bobTicket, {}));
    EXPECT_FALSE(fs::exists(bobFile("ship.kel")));

    // A writable file that is still the synced revision (made writable, never changed) is replaced.
    write(mine, "v2");
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    write(aliceFile("shared.kel"), "v3");
    ok(submit(*m_alice, m_aliceTicket, "v3"));
    ok(m_bob->sync(m_bobTicket, {mine}));
    EXPECT_EQ(read(mine), "v3");

    // A head deletion removes a writable file only when it holds no local change.
    ok(m_alice->remove(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    ok(submit(*m_alice, m_aliceTicket, "retire"));
    write(bobFile("shared.kel"), "bob's notes");
    EXPECT_EQ(m_bob->sync(m_bobTicket, {}).code, code::Failed);
    EXPECT_EQ(read(bobFile("shared.kel")), "bob's notes");
}

TEST_F(DepotFiles, AFileThatCannotBeWrittenIsRefusedAloneAndAFailedStepIsFinishedByTheNextCommand)
{
    bobSubmitsNewFile("ship.kel", "hull");
    bobSubmitsNewFile("art/rock.kel", "rock");
    // alice has a folder where the depot has a file.
    fs::create_directories(aliceFile("ship.kel"));
    refused(m_alice->sync(m_aliceTicket, {}), code::Failed, aliceFile("ship.kel"));
    EXPECT_EQ(read(aliceFile("art/rock.kel")), "rock");
    EXPECT_EQ(aliceSees("art/rock.kel"), 0u);
    EXPECT_EQ(aliceSees("ship.kel") & status::NotAtHead, status::NotAtHead);

    ok(m_alice->edit(m_aliceTicket, {aliceFile("art/rock.kel")}, ""));
    // The revert is recorded, but its file cannot follow while a file stands where its folder was.
    fs::remove_all(aliceFile("art"));
    write(aliceFile("art"), "in the way");
    refused(m_alice->revert(m_aliceTicket, {aliceFile("art/rock.kel")}), code::IoError, "the next command tries again");
    EXPECT_EQ(aliceSees("art/rock.kel"), 0u);
    fs::remove(aliceFile("art"));
    // Any command, from any connection, finishes what the journal holds.
    statusOf(*m_bob, m_bobTicket, bobFile("shared.kel"));
    EXPECT_EQ(read(aliceFile("art/rock.kel")), "rock");
    EXPECT_FALSE(isWritable(aliceFile("art/rock.kel")));
}

}  // namespace
