// The workspace files a depot operation changes: a user's local change is never overwritten by a
// sync, any legal file name works, and a file step that fails is finished by a later command.
#include "depotfixture.h"

using namespace hbrc::depot;
namespace fs = std::filesystem;

namespace {

using DepotWorkspaceFiles = DepotFixture;

TEST_F(DepotWorkspaceFiles, SyncKeepsAWritableLocalChangeUnlessForced)
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

TEST_F(DepotWorkspaceFiles, TheLongestLegalFileNameGoesThroughEveryOperation)
{
    const std::string name = std::string(255 - 4, 'n') + ".kel";
    write(aliceFile(name), "long");
    ok(m_alice->add(m_aliceTicket, {aliceFile(name)}, ""));
    ok(submit(*m_alice, m_aliceTicket, "a long name"));
    ok(m_bob->sync(m_bobTicket, {}));
    EXPECT_EQ(read(bobFile(name)), "long");
    ok(m_bob->edit(m_bobTicket, {bobFile(name)}, ""));
    write(bobFile(name), "scribbles");
    ok(m_bob->revert(m_bobTicket, {bobFile(name)}));
    EXPECT_EQ(read(bobFile(name)), "long");
    EXPECT_FALSE(isWritable(bobFile(name)));
    for (const auto& entry : fs::directory_iterator(path("bob")))
        EXPECT_EQ(entry.path().filename().string().rfind(".hbdepot-", 0), std::string::npos) << "left over";
}

TEST_F(DepotWorkspaceFiles, AFileThatCannotBeWrittenIsRefusedAloneBySync)
{
    bobSubmitsNewFile("ship.kel", "hull");
    bobSubmitsNewFile("art/rock.kel", "rock");
    // alice has a folder where the depot has a file.
    fs::create_directories(aliceFile("ship.kel"));
    const Result result = m_alice->sync(m_aliceTicket, {});
    EXPECT_EQ(result.code, code::Failed);
    EXPECT_NE(result.error.find(aliceFile("ship.kel")), std::string::npos) << result.error;
    EXPECT_EQ(read(aliceFile("art/rock.kel")), "rock");
    EXPECT_EQ(aliceSees("art/rock.kel"), 0u);
    EXPECT_EQ(aliceSees("ship.kel") & status::NotAtHead, status::NotAtHead);
}

TEST_F(DepotWorkspaceFiles, AFileStepThatFailsAfterTheCommitIsFinishedByTheNextCommand)
{
    bobSubmitsNewFile("art/rock.kel", "rock");
    ok(m_alice->sync(m_aliceTicket, {}));
    ok(m_alice->edit(m_aliceTicket, {aliceFile("art/rock.kel")}, ""));
    // The revert is recorded, but its file cannot follow while a file stands where its folder was.
    fs::remove_all(aliceFile("art"));
    write(aliceFile("art"), "in the way");
    const Result revert = m_alice->revert(m_aliceTicket, {aliceFile("art/rock.kel")});
    EXPECT_EQ(revert.code, code::IoError);
    EXPECT_NE(revert.error.find("the next command tries again"), std::string::npos) << revert.error;
    EXPECT_EQ(aliceSees("art/rock.kel"), 0u);

    fs::remove(aliceFile("art"));
    // Any command, from any connection, finishes what the journal holds.
    statusOf(*m_bob, m_bobTicket, bobFile("shared.kel"));
    EXPECT_EQ(read(aliceFile("art/rock.kel")), "rock");
    EXPECT_FALSE(isWritable(aliceFile("art/rock.kel")));
}

}  // namespace
