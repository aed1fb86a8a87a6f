#include "recordingreceiver.h"

#include <hostworkspacefixture.h>

#include <hbrcdatamodel/itemlibrarycontext.h>
#include <hbrchost/logcapture.h>

#include <gtest/gtest.h>

#include <chrono>

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace hbrc::host;

namespace {

constexpr int kChangesAndCommits = kNotifyItemChanges | kNotifyCommits;

class WorkspaceSave : public HostWorkspaceFixture
{
protected:
    void SetUp() override
    {
        HostWorkspaceFixture::SetUp();
        Open();
        workspace->Library().Context().RegisterNotification(&receiver, kChangesAndCommits, 0);
    }
    void TearDown() override
    {
        if (workspace)
            workspace->Library().Context().UnregisterNotification(&receiver, kChangesAndCommits, 0);
        HostWorkspaceFixture::TearDown();
    }

    // What the workspace's multi-file data source tracked, read through the SDK as the
    // post-commit hook reads it, then reset.
    struct Tracked
    {
        std::set<std::string> deleted;
        std::set<std::string> addedNames;
    };
    Tracked TakeTracked()
    {
        Tracked tracked;
        for (const KELPtr<kel4::IDataSource>& source : host->Proxy().GetDataModelMgr()->GetDataSources()) {
            const KELPtr<kel4::IMultiFileDataSource> files(source);
            if (!files)
                continue;
            kel4::List<std::string> deleted;
            kel4::List<DbObjectId> ids;
            kel4::List<KELHandle<kel4::IDbObject>> objects;
            files->GetDeletedFiles(deleted);
            files->GetAddedObjects(ids, objects);
            files->ResetTracking();
            tracked.deleted.insert(deleted.begin(), deleted.end());
            for (const auto& object : objects)
                tracked.addedNames.insert(object.GetName());
        }
        return tracked;
    }

    static std::set<std::string> Paths(const std::vector<std::string>& files) { return {files.begin(), files.end()}; }

    RecordingReceiver receiver;
};

// One save flow: the first save writes every new asset; the next ones only the dirty ones, leaving
// a clean asset's file changed elsewhere alone; a read-only file and an unwritable external file
// are reported and their assets' edits kept (with the old asset file); a cancelled pre-commit
// writes, deletes and tracks nothing; what was saved is what the workspace opens with.
TEST_F(WorkspaceSave, WritesExactlyTheDirtyAssetsAndKeepsTheEditsItCannotWrite)
{
    const auto steel = Create(AssetKind::Metadata, "steel", {{"roughness", "0.4"}});
    const auto fade = Create(AssetKind::Value, "fade");
    const auto mesh = Create(AssetKind::Data, "mesh");
    const SaveReport first = workspace->Save();
    EXPECT_EQ(Paths(first.writtenFiles), (std::set<std::string>{PathOf("steel.kel"), PathOf("fade.kel"), PathOf("mesh.kel")}));
    EXPECT_EQ(receiver.events, (std::vector<std::string>{"pre", "post"}));

    const QByteArray foreign = ReadFile("mesh.kel") + "# edited elsewhere\n";
    WriteFile("mesh.kel", foreign);
    ASSERT_TRUE(workspace->SetField(steel, "roughness", "0.9"));
    const SaveReport second = workspace->Save();
    EXPECT_TRUE(second.Succeeded()) << second.DescribeFailures();
    EXPECT_EQ(second.writtenFiles, std::vector<std::string>{PathOf("steel.kel")});
    EXPECT_EQ(ReadFile("mesh.kel"), foreign);
    EXPECT_FALSE(workspace->HasUnsavedChanges());

    ASSERT_EQ(::chmod(PathOf("steel.kel").c_str(), 0444), 0);
    const QByteArray onDisk = ReadFile("steel.kel");
    ASSERT_TRUE(workspace->SetField(steel, "colour", "grey"));
    ASSERT_TRUE(workspace->SetField(fade, "length", "3"));
    {
        LogCapture log;
        const SaveReport report = workspace->Save();
        EXPECT_EQ(report.DescribeFailures(), "Could not save 1 file:\n" + PathOf("steel.kel") + ": the file is read-only");
        EXPECT_EQ(log.TextsOfType(Log::eError),
                  std::vector<std::string>{"Could not save " + PathOf("steel.kel") + ": the file is read-only"});
        EXPECT_EQ(report.writtenFiles, std::vector<std::string>{PathOf("fade.kel")});
    }
    EXPECT_EQ(ReadFile("steel.kel"), onDisk);
    EXPECT_TRUE(workspace->Model().IsDirty(steel));
    EXPECT_FALSE(workspace->Model().IsDirty(fade));
    // Once writable (checked out), the kept edit is saved.
    ASSERT_EQ(::chmod(PathOf("steel.kel").c_str(), 0644), 0);
    EXPECT_EQ(workspace->Save().writtenFiles, std::vector<std::string>{PathOf("steel.kel")});
    EXPECT_TRUE(ReadFile("steel.kel").contains("field colour = grey\n"));

    // A folder where the external file should go: the write fails as on a full or broken disk.
    ASSERT_TRUE(QDir().mkpath(QFile::decodeName(QByteArray::fromStdString(PathOf("mesh.bin")))));
    ASSERT_TRUE(workspace->AddExternalFile(mesh, "mesh.bin", "vertices"));
    ASSERT_TRUE(workspace->AddExternalFile(mesh, "mesh.idx", "indices"));
    const SaveReport broken = workspace->Save();
    ASSERT_EQ(broken.failures.size(), 1u);
    EXPECT_EQ(broken.failures[0].path, PathOf("mesh.bin"));
    EXPECT_EQ(broken.writtenFiles, std::vector<std::string>{PathOf("mesh.idx")});
    EXPECT_EQ(ReadFile("mesh.kel"), foreign);
    EXPECT_TRUE(workspace->Model().IsDirty(mesh));

    TakeTracked();
    receiver.events.clear();
    ASSERT_TRUE(workspace->SetField(steel, "colour", "blue"));
    ASSERT_TRUE(workspace->AddExternalFile(steel, "steel.bin", "data"));
    ASSERT_TRUE(workspace->DeleteAsset(fade));
    Create(AssetKind::Value, "fresh");
    const QByteArray before = ReadFile("steel.kel");
    receiver.cancelSave = true;
    const SaveReport cancelled = workspace->Save();
    EXPECT_TRUE(cancelled.cancelled);
    EXPECT_FALSE(cancelled.Succeeded());
    EXPECT_TRUE(cancelled.writtenFiles.empty());
    EXPECT_EQ(receiver.events, std::vector<std::string>{"pre"});
    EXPECT_EQ(receiver.lastLibrary, workspace->Accessor());
    EXPECT_EQ(ReadFile("steel.kel"), before);
    EXPECT_TRUE(Exists("fade.kel"));
    EXPECT_FALSE(Exists("fresh.kel"));
    EXPECT_FALSE(Exists("steel.bin"));
    EXPECT_TRUE(workspace->Model().IsDirty(steel));
    const Tracked tracked = TakeTracked();
    EXPECT_TRUE(tracked.deleted.empty());
    EXPECT_TRUE(tracked.addedNames.empty());

    Workspace& reopened = Open();
    const auto loaded = reopened.FindAsset("steel");
    ASSERT_FALSE(loaded.IsNull());
    const auto& fields = reopened.Model().Store().AssetAt(loaded.GetCacheIndex()).record.fields;
    EXPECT_EQ(fields.at("roughness"), "0.9");
    EXPECT_EQ(fields.at("colour"), "grey");
    EXPECT_EQ(loaded.GetAncestorId().GetStr(), "3") << "written three times";
}

// A save killed at any moment leaves every asset file with either its old or its new content, and
// the workspace opens: killed at once, killed as soon as its first file was put in place (amid the
// renames, where some files are new and some old), and not killed.
TEST_F(WorkspaceSave, KilledSaveLeavesEachFileOldOrNew)
{
    constexpr int kAssets = 300;
    std::vector<KELHandle<kel4::IAsset>> assets;
    for (int i = 0; i < kAssets; ++i)
        assets.push_back(Create(AssetKind::Metadata, "a" + std::to_string(i)));
    ASSERT_TRUE(workspace->Save().Succeeded());
    const auto readAll = [&] {
        std::vector<QByteArray> contents;
        for (int i = 0; i < kAssets; ++i)
            contents.push_back(ReadFile("a" + std::to_string(i) + ".kel"));
        return contents;
    };
    const auto inodeOfFirst = [&] {
        struct stat info {};
        ::stat(PathOf("a0.kel").c_str(), &info);
        return info.st_ino;
    };
    enum class Kill { AtOnce, AfterFirstRename, Never };
    std::vector<QByteArray> before = readAll();
    int mixedRounds = 0;
    int round = 0;
    for (const Kill when : {Kill::AtOnce, Kill::AfterFirstRename, Kill::AfterFirstRename, Kill::AfterFirstRename, Kill::Never}) {
        ++round;
        for (const auto& asset : assets)
            ASSERT_TRUE(workspace->SetField(asset, "round", std::to_string(round)));
        const ino_t firstBefore = inodeOfFirst();
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            workspace->Save();
            ::_exit(0);
        }
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (when == Kill::AfterFirstRename && inodeOfFirst() == firstBefore &&
               ::waitpid(child, nullptr, WNOHANG) == 0 && std::chrono::steady_clock::now() < deadline) {
        }
        if (when != Kill::Never)
            ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);

        const std::vector<QByteArray> afterKill = readAll();
        ASSERT_TRUE(workspace->Save().Succeeded());  // the same edits: the content the child wrote
        const std::vector<QByteArray> after = readAll();
        int renewed = 0;
        for (int i = 0; i < kAssets; ++i) {
            ASSERT_TRUE(afterKill[i] == before[i] || afterKill[i] == after[i]) << "a" << i << ".kel in round " << round;
            renewed += afterKill[i] == after[i] ? 1 : 0;
        }
        mixedRounds += renewed > 0 && renewed < kAssets ? 1 : 0;
        if (when == Kill::Never) {
            EXPECT_EQ(renewed, kAssets);
        }
        before = after;
    }
    EXPECT_GT(mixedRounds, 0) << "no kill landed amid the renames";
    EXPECT_TRUE(Open().Model().Store().DirtyAssets().empty());
    EXPECT_FALSE(workspace->FindAsset("a" + std::to_string(kAssets - 1)).IsNull());
}

// What a save deleted is tracked for the post-commit receiver: an external file the asset no
// longer has, and a deleted asset's files. (What it added reaches the post-save hook, tst_savehooks.)
TEST_F(WorkspaceSave, TracksTheFilesTheSaveDeleted)
{
    const auto terrain = Create(AssetKind::Data, "terrain");
    ASSERT_TRUE(workspace->AddExternalFile(terrain, "terrain.height", "h"));
    ASSERT_TRUE(workspace->AddExternalFile(terrain, "terrain.splat", "s"));
    const auto rock = Create(AssetKind::Metadata, "rock");
    ASSERT_TRUE(workspace->AddExternalFile(rock, "rock.bin", "r"));
    ASSERT_TRUE(workspace->Save().Succeeded());
    TakeTracked();

    // Once on disk before an edit, an asset's ancestor is the version that was on disk.
    Tracked seenInPostCommit;
    receiver.onPostCommit = [&](RecordingReceiver::Accessor&) { seenInPostCommit = TakeTracked(); };
    ASSERT_TRUE(workspace->RemoveExternalFile(terrain, "terrain.splat"));
    EXPECT_EQ(terrain.GetAncestorId().GetStr(), "1");
    ASSERT_TRUE(workspace->DeleteAsset(rock));
    const SaveReport report = workspace->Save();
    EXPECT_TRUE(report.Succeeded()) << report.DescribeFailures();
    const std::set<std::string> removed{PathOf("terrain.splat"), PathOf("rock.kel"), PathOf("rock.bin")};
    EXPECT_EQ(Paths(report.deletedFiles), removed);
    EXPECT_EQ(seenInPostCommit.deleted, removed);
    EXPECT_FALSE(Exists("terrain.splat"));
    EXPECT_FALSE(Exists("rock.kel"));
    EXPECT_EQ(workspace->Model().FilesOf(terrain, true, kel4::closureId::Persistence),
              (kel4::Set<std::string>{PathOf("terrain.height"), PathOf("terrain.kel")}));
}

// Refused edits say why and change nothing: invalid names, a reload (after a revert or a sync
// rewrote the file) over unsaved edits, of a file that now holds other objects or is gone, and a
// handle whose asset was deleted, even with its slot reused. A reload otherwise takes the file.
TEST_F(WorkspaceSave, RefusedEditsSayWhyAndChangeNothing)
{
    const auto steel = Create(AssetKind::Metadata, "steel", {{"roughness", "0.4"}});
    const auto rock = Create(AssetKind::Data, "rock");
    ASSERT_TRUE(workspace->Save().Succeeded());
    const auto roughness = [&] { return workspace->Model().Store().AssetAt(steel.GetCacheIndex()).record.fields.at("roughness"); };
    const QByteArray saved = ReadFile("steel.kel");
    WriteFile("steel.kel", QByteArray(saved).replace("roughness = 0.4", "roughness = 0.7"));
    EXPECT_TRUE(workspace->ReloadFromDisk(steel));
    EXPECT_EQ(roughness(), "0.7");

    std::string unnamed;
    EXPECT_TRUE(workspace->CreateAsset(NewAsset{}, unnamed).IsNull());
    const std::pair<std::string, std::string> invalid[] = {  // the error, the one expected
        {workspace->SetField(steel, "two words", "x").error, "The field name \"two words\" must be one word without '='"},
        {workspace->AddExternalFile(steel, "../escape.bin", "x").error,
         "\"../escape.bin\" is not a file name inside the asset's folder"},
        {workspace->RemoveExternalFile(steel, "none.bin").error, "The asset has no external file \"none.bin\""},
        {workspace->Rename(steel, "").error, "A name cannot be empty"},
        {unnamed, "An asset needs a name"},
    };
    for (const auto& [error, expected] : invalid)
        EXPECT_EQ(error, expected);
    EXPECT_FALSE(workspace->HasUnsavedChanges());

    WriteFile("steel.kel", ReadFile("rock.kel"));
    EXPECT_EQ(workspace->ReloadFromDisk(steel).error, "steel.kel now holds other objects; open the workspace again");
    ASSERT_TRUE(workspace->SetField(steel, "roughness", "0.9"));
    WriteFile("steel.kel", saved);
    EXPECT_EQ(workspace->ReloadFromDisk(steel).error, "\"steel\" has unsaved edits");
    EXPECT_EQ(roughness(), "0.9");
    ASSERT_TRUE(QFile::remove(QString::fromStdString(PathOf("rock.kel"))));
    EXPECT_EQ(workspace->ReloadFromDisk(rock).error.rfind("Cannot read rock.kel: ", 0), 0u);
    EXPECT_FALSE(workspace->FindAsset("rock").IsNull());

    const DbObjectId id = rock.GetDbObjectId();
    ASSERT_TRUE(workspace->DeleteAsset(rock));
    const auto successor = Create(AssetKind::Data, "successor");
    EXPECT_EQ(successor.GetCacheIndex(), rock.GetCacheIndex());
    EXPECT_FALSE(workspace->Model().IsHandleValid(rock));
    EXPECT_TRUE(rock.GetName().empty());
    EXPECT_TRUE(workspace->Model().ResolveObject(id).IsNull());
    EXPECT_FALSE(workspace->DeleteAsset(rock));
    EXPECT_FALSE(workspace->SetField(rock, "a", "b"));
}

TEST_F(WorkspaceSave, NewAssetsGetDistinctFilesInTheirFolder)
{
    NewAsset asset;
    asset.name = "Big rock?";
    asset.folder = "props/stone";
    std::string error;
    const auto first = workspace->CreateAsset(asset, error);
    const auto second = workspace->CreateAsset(asset, error);
    ASSERT_TRUE(workspace->AddExternalFile(second, "lod/high.bin", "x"));
    ASSERT_TRUE(workspace->Save().Succeeded());
    for (const char* file : {"props/stone/Big_rock_.kel", "props/stone/Big_rock__2.kel", "props/stone/lod/high.bin"})
        EXPECT_TRUE(Exists(file)) << file;
    const auto owners = workspace->Model().AssetsOwningFiles(
        {PathOf("props/stone/lod/high.bin"), "props/stone/Big_rock_.kel", PathOf("elsewhere.kel")});
    EXPECT_EQ(std::vector<KELHandle<kel4::IAsset>>(owners.begin(), owners.end()),
              (std::vector<KELHandle<kel4::IAsset>>{second, first, {}}));
}

}  // namespace
