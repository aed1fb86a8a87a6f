// The workspace scan behind reconcile on each server: files changed without being opened are found
// by their content (not their write bit), new and deleted files too, open files are left out, and
// what the scan finds opens for the action it names.
#include <serverhostfixture.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

namespace {

using hbrc::host::RevisionServer;
using hbrc::revision::FileAction;
using hbrc::revision::Result;
using hbrc::revision::WorkspaceChange;
namespace fs = std::filesystem;

using Found = std::pair<std::string, FileAction>;

void SetWritable(const std::string& file, bool writable)
{
    fs::permissions(file, fs::perms::owner_write, writable ? fs::perm_options::add : fs::perm_options::remove);
}

class WorkspaceChanges : public ServerFixture
{
public:
    std::vector<WorkspaceChange> ChangesBelow(const std::vector<std::string>& paths)
    {
        std::vector<WorkspaceChange> changes;
        const Result result = AliceAsks([&](RevisionServer& server, const std::string& ticket) {
            return server.workspaceChanges(ticket, paths, changes);
        });
        EXPECT_TRUE(result.ok()) << result.error;
        return changes;
    }
    static std::vector<Found> FilesOf(const std::vector<WorkspaceChange>& changes)
    {
        std::vector<Found> found;
        for (const WorkspaceChange& change : changes)
            found.push_back({change.localPath, change.action});
        return found;
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, WorkspaceChanges, ServerKinds(), ServerKindName);

TEST_P(WorkspaceChanges, FindsWhatChangedWithoutOpeningAndOpensItForTheActionNamed)
{
    const std::string edited = AlicePath("rock.bin"), changedByATool = AlicePath("tree.bin");
    const std::string writableUnchanged = KelFileOf("Tree"), deleted = KelFileOf("Sky"), open = KelFileOf("Rock");
    const std::string created = AlicePath("props/cart.bin");
    SetWritable(edited, true);
    WriteText(edited, "moss", std::ios::app);
    // Another tool rewrote it with as many bytes: only the content tells.
    std::string bark = ReadText(changedByATool);
    std::reverse(bark.begin(), bark.end());
    SetWritable(changedByATool, true);
    WriteText(changedByATool, bark);
    SetWritable(changedByATool, false);
    SetWritable(writableUnchanged, true);
    WriteText(created, "wheels");
    fs::remove(deleted);
    ASSERT_TRUE(AliceAsks([&](RevisionServer& server, const std::string& ticket) {
                    return server.edit(ticket, {open}, "");
                }).ok());
    WriteText(open, "edited while open", std::ios::app);
    if (!IsSubversion())
        WriteText(AlicePath(".hbdepot"), "workspace = alice-ws\n");

    const auto roundTrips = services.connection->RoundTrips();
    const std::vector<WorkspaceChange> changes = ChangesBelow({});
    EXPECT_EQ(services.connection->RoundTrips() - roundTrips, IsSubversion() ? 0u : 1u)
        << "the depot's records in one question; a working copy answers locally";
    std::vector<Found> expected = {{edited, FileAction::Edit},
                                   {changedByATool, FileAction::Edit},
                                   {created, FileAction::Add},
                                   {deleted, FileAction::Delete}};
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(FilesOf(changes), expected);
    for (const WorkspaceChange& change : changes) {
        const bool inDepot = change.action != FileAction::Add;
        EXPECT_EQ(change.depotPath.empty(), !inDepot) << change.localPath;
        EXPECT_EQ(change.haveRevision > 0, inDepot) << change.localPath;
    }

    const Result cancelled = AliceAsks([](RevisionServer& server, const std::string& ticket) {
        std::vector<WorkspaceChange> unused;
        return server.workspaceChanges(ticket, {}, unused, [] { return true; });
    });
    EXPECT_EQ(cancelled.code, hbrc::revision::code::Cancelled) << cancelled.error;

    // A filter of a file, a deleted file and a new folder.
    EXPECT_THAT(FilesOf(ChangesBelow({changedByATool, deleted, AlicePath("props")})),
                ::testing::UnorderedElementsAre(Found{changedByATool, FileAction::Edit}, Found{deleted, FileAction::Delete},
                                                Found{created, FileAction::Add}));

    // Each action opens what the scan named for it; then nothing is left and no edit was lost.
    for (const FileAction action : {FileAction::Edit, FileAction::Add, FileAction::Delete}) {
        RevisionServer::Files files;
        for (const WorkspaceChange& change : changes)
            if (change.action == action)
                files.push_back(change.localPath);
        const Result opened = AliceAsks([&](RevisionServer& server, const std::string& ticket) {
            return action == FileAction::Edit  ? server.edit(ticket, files, "")
                   : action == FileAction::Add ? server.add(ticket, files, "")
                                               : server.remove(ticket, files, "");
        });
        EXPECT_TRUE(opened.ok()) << opened.error;
    }
    EXPECT_THAT(ChangesBelow({}), ::testing::IsEmpty());
    EXPECT_THAT(ReadText(edited), ::testing::EndsWith("moss"));
}

}  // namespace
