#pragma once

// A full reference host on a revision server, for scenario tests that link hbrc_services and
// hbrc_hostsession; header-only so that the shared test support does not depend on the host.
// The server is the embedded depot unless Server() names a Subversion repository (svnserve or
// file://); ServerFixture runs a TEST_P suite on all three (ServerKinds(), ServerKindName).
//
// SetUp stands up, in a temporary directory: a server with alice ("alice-pw", workspace
// "alice-ws", folder "alice"; a Subversion workspace is its working copy's folder) and bob
// ("bob-pw", "bob-ws", "bob"); alice's HostSession over her folder, her account in the
// "RevControl." preferences, both services installed and her session logged in; the assets
// "Rock" (external file rock.bin), "Tree" (tree.bin) and "Sky" (none) submitted by alice as
// change 1 and synced by bob, who acts through a connection of his own (Bob(), BobTicket()).
// Derived fixtures may override ConnectionOptionsForAlice and load the plug-in after SetUp.

#include <svnrepositoryfixture.h>

#include <hbrcservices/revisioncontrolservices.h>
#include <hbrcservices/revisionserver.h>
#include <hbrcsession/hostsession.h>

#include <depot/depot.h>

#include <kel4/idatacontrol.h>
#include <kel4/ifileversioncontrol.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

enum class ServerKind { EmbeddedDepot, SvnServe, SvnFile };

inline std::string ServerKindName(const ::testing::TestParamInfo<ServerKind>& info)
{
    return std::array{"EmbeddedDepot", "SvnServe", "SvnFile"}.at(static_cast<std::size_t>(info.param));
}

class ServerHostFixture : public ::testing::Test
{
public:  // table-driven tests' rows act on the fixture from outside
    using ObjectList = kel4::IDataControl::ObjectList;

    static constexpr kel4::closureId kPersistence = kel4::closureId::Persistence;

    virtual ServerKind Server() const { return ServerKind::EmbeddedDepot; }
    bool IsSubversion() const { return Server() != ServerKind::EmbeddedDepot; }
    // The workspace names an account logs in with: depot workspaces, or working-copy folders.
    std::string AliceWorkspace() const { return IsSubversion() ? Encoded(AliceFolder()) : "alice-ws"; }
    std::string BobWorkspace() const { return IsSubversion() ? Encoded(BobFolder()) : "bob-ws"; }

    virtual hbrc::host::ConnectionOptions ConnectionOptionsForAlice() const
    {
        hbrc::host::ConnectionOptions options;
        options.server.passwordHashCost = hbrc::revision::PasswordHashCost::Minimal;
        // Long enough that no test sees the cache go stale by itself.
        options.statusLifetime = std::chrono::minutes(10);
        return options;
    }

    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        ASSERT_TRUE(QDir(m_dir.path()).mkpath(QStringLiteral("alice")) && QDir(m_dir.path()).mkpath(QStringLiteral("bob")));
        if (IsSubversion())
            CreateRepository();
        else
            CreateDepot();
        OpenAliceHost();
        SeedAssets();
        BobExpects(Bob().login("bob", "bob-pw", BobWorkspace(), m_bobTicket));
        BobExpects(Bob().sync(m_bobTicket, {}));
    }

    void TearDown() override
    {
        services = {};
        host.reset();
        m_bob.reset();
        m_repository.reset();
    }

    // The server setting: the depot file's path or the repository's URL.
    const std::string& DepotPath() const { return m_depotPath; }
    SvnRepositoryFixture* Repository() const { return m_repository.get(); }
    // A server setting of the same kind that nothing answers.
    std::string UnreachableServer() const
    {
        if (!IsSubversion())
            return m_depotPath + ".missing";
        return Server() == ServerKind::SvnServe ? "svn://127.0.0.1:1" : "file://" + AlicePath("no-repository");
    }
    QString AliceFolder() const { return CanonicalFolder(QStringLiteral("alice")); }
    QString BobFolder() const { return CanonicalFolder(QStringLiteral("bob")); }
    // Absolute paths as the data model names files (file-name encoding).
    std::string AlicePath(const std::string& relative) const { return PathIn(AliceFolder(), relative); }
    std::string BobPath(const std::string& relative) const { return PathIn(BobFolder(), relative); }

    // The data control as the plug-in finds it: through the database instance's service registry.
    KELPtr<kel4::IDataControl> DataControl() const { return Service<kel4::IDataControl>(kel4::UID_DataControl()); }
    KELPtr<kel4::IFileVersionControl> FileVersionControl() const
    {
        return Service<kel4::IFileVersionControl>(kel4::UID_FileVersionControl());
    }
    const kel4::IUserParameters* AliceSession() const { return DataControl()->GetUserParameters().Get(); }
    KELHandle<kel4::IDbObject> Asset(const std::string& name) const
    {
        const KELHandle<kel4::IDbObject> asset(workspace->FindAsset(name));
        if (asset.IsNull())
            throw std::runtime_error("no asset " + name);
        return asset;
    }
    ObjectList Assets(std::initializer_list<const char*> names) const
    {
        ObjectList objects;
        for (const char* name : names)
            objects.push_back(Asset(name));
        return objects;
    }
    // The object's status word, asked of the depot now.
    unsigned StatusOf(const std::string& assetName) const
    {
        kel4::List<unsigned> statuses;
        std::string error;
        EXPECT_EQ(DataControl()->GetStatus({Asset(assetName)}, true, kPersistence, true, statuses, error).GetCode(), 0)
            << error;
        return statuses.empty() ? 0xffffffffu : statuses.front();
    }
    // The files of one of alice's assets, external files included.
    kel4::List<std::string> FilesOf(const std::string& assetName) const
    {
        kel4::Set<std::string> files;
        DataControl()->GetFiles(Asset(assetName), true, kPersistence, "", files);
        return {files.begin(), files.end()};
    }
    // Checks one of alice's assets out (external files included), expecting success.
    void AliceChecksOut(const std::string& assetName, const std::string& changelist = "") const
    {
        std::string error;
        ASSERT_EQ(DataControl()->CheckOut({Asset(assetName)}, true, kPersistence, changelist, error).GetCode(), 0)
            << error;
    }
    // Creates an asset in alice's workspace, optionally with an external file, unsaved.
    KELHandle<kel4::IDbObject> CreateAsset(const std::string& name, const std::string& externalFile = {},
                                           hbrc::host::AssetKind kind = hbrc::host::AssetKind::Data)
    {
        hbrc::host::NewAsset asset;
        asset.kind = kind;
        asset.name = name;
        std::string error;
        const KELHandle<kel4::IDbObject> created(workspace->CreateAsset(asset, error));
        if (created.IsNull())
            throw std::runtime_error(error);
        if (!externalFile.empty() && !workspace->AddExternalFile(created, externalFile, "binary " + QByteArray::fromStdString(name)))
            throw std::runtime_error("cannot add " + externalFile);
        return created;
    }
    KELHandle<kel4::IDbObject> CreateSavedAsset(const std::string& name, const std::string& externalFile = {})
    {
        const KELHandle<kel4::IDbObject> created = CreateAsset(name, externalFile);
        workspace->Save();
        return created;
    }
    // Alice's own question to the server, through her services' connection, as the studio asks.
    using ServerCall = std::function<hbrc::revision::Result(hbrc::host::RevisionServer&, const std::string& ticket)>;
    hbrc::revision::Result AliceAsks(const ServerCall& call) const
    {
        std::optional<hbrc::revision::Result> answer;
        std::string error;
        services.connection->Run(
            AliceSession(),
            [&](hbrc::host::RevisionServer& server, const std::string& ticket, const hbrc::revision::CancelCheck&) {
                return *(answer = call(server, ticket));
            },
            error);
        return answer.value_or(hbrc::revision::Result{hbrc::revision::code::Failed, "the call did not run: " + error});
    }
    // Submits alice's changelist (the default one: with the description given).
    void AliceSubmits(const std::string& description, const std::string& changelist = "") const
    {
        const hbrc::revision::Result result = AliceAsks([&](hbrc::host::RevisionServer& server, const std::string& ticket) {
            hbrc::revision::ChangelistId submitted;
            return server.submit(ticket, changelist, description, submitted);
        });
        ASSERT_TRUE(result.ok()) << result.error;
    }
    std::string NewChangelist(const std::string& description) const
    {
        std::string changelist, error;
        EXPECT_EQ(DataControl()->CreateChangeList(description, changelist, error).GetCode(), 0) << error;
        return changelist;
    }

    // A file's status word and the changelist it is open in, as alice's file service reports them.
    struct FileState {
        unsigned status = 0;
        std::string changelist;
        bool operator==(const FileState& other) const { return status == other.status && changelist == other.changelist; }
        friend void PrintTo(const FileState& state, std::ostream* out)
        {
            *out << "0x" << std::hex << state.status << std::dec << " in \"" << state.changelist << '"';
        }
    };
    std::vector<FileState> StatesOf(const kel4::List<std::string>& files) const
    {
        kel4::List<unsigned> statuses;
        kel4::List<std::string> changelists;
        std::string error;
        EXPECT_EQ(FileVersionControl()->GetStatus(AliceSession(), files, statuses, changelists, error, 0).GetCode(), 0)
            << error;
        std::vector<FileState> states;
        auto changelist = changelists.begin();
        for (const unsigned status : statuses)
            states.push_back({status, *changelist++});
        return states;
    }
    FileState StateOfFile(const std::string& path) const
    {
        const std::vector<FileState> states = StatesOf({path});
        return states.empty() ? FileState{} : states.front();
    }
    // The owner's write bit of each file: permission checks do not stop root, the bits still tell.
    static std::vector<bool> Writable(const kel4::List<std::string>& files)
    {
        std::vector<bool> writable;
        for (const std::string& file : files)
            writable.push_back(QFileInfo(QFile::decodeName(QByteArray::fromStdString(file))).permissions() &
                               QFile::WriteOwner);
        return writable;
    }
    // A file's bytes ("" when it cannot be read); writing them, its folder made first (false when
    // the file cannot be written).
    static std::string ReadText(const std::string& file)
    {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    static bool WriteText(const std::string& file, const std::string& text, std::ios::openmode mode = std::ios::trunc)
    {
        std::filesystem::create_directories(std::filesystem::path(file).parent_path());
        return bool(std::ofstream(file, std::ios::binary | mode) << text);
    }
    // The asset's own .kel file.
    std::string KelFileOf(const std::string& assetName) const
    {
        const kel4::List<std::string> files = FilesOf(assetName);
        const auto kel = std::find_if(files.begin(), files.end(), [](const std::string& file) {
            return QFileInfo(QString::fromStdString(file)).suffix() == QStringLiteral("kel");
        });
        return kel == files.end() ? std::string() : *kel;
    }

    // The files of one of alice's assets (external files included), as they lie in bob's folder.
    std::vector<std::string> BobFilesOf(const std::string& assetName) const
    {
        std::vector<std::string> bobFiles;
        for (const std::string& file : FilesOf(assetName))
            bobFiles.push_back(BobPath(file.substr(AlicePath("").size())));
        return bobFiles;
    }
    hbrc::host::RevisionServer& Bob() { return *m_bob; }
    const std::string& BobTicket() const { return m_bobTicket; }
    template <typename Answer> void BobExpects(const Answer& result) const { ASSERT_TRUE(result.ok()) << result.error; }

    std::unique_ptr<hbrc::host::HostSession> host;
    hbrc::host::Workspace* workspace = nullptr;
    hbrc::host::RevisionControlServices services;

private:
    template <class Interface>
    KELPtr<Interface> Service(const kel4::ServiceId& id) const
    {
        return KELPtr<Interface>(workspace->Model().Instance().GetService(id));
    }
    QString CanonicalFolder(const QString& name) const { return QDir(m_dir.filePath(name)).canonicalPath(); }
    static std::string Encoded(const QString& folder) { return QFile::encodeName(folder).toStdString(); }
    static std::string PathIn(const QString& folder, const std::string& relative) { return Encoded(folder) + '/' + relative; }

    void CreateDepot()
    {
        using hbrc::depot::Depot;
        m_depotPath = m_dir.filePath(QStringLiteral("depot.db")).toStdString();
        ASSERT_TRUE(Depot::create(m_depotPath).ok());
        hbrc::depot::DepotOptions options;
        options.passwordHashCost = hbrc::depot::PasswordHashCost::Minimal;
        Depot admin(m_depotPath, options);
        BobExpects(admin.addUser("alice", "alice-pw"));
        BobExpects(admin.addUser("bob", "bob-pw"));
        BobExpects(admin.addWorkspace(AliceWorkspace(), "alice", Encoded(AliceFolder())));
        BobExpects(admin.addWorkspace(BobWorkspace(), "bob", Encoded(BobFolder())));
        m_bob = hbrc::host::OpenRevisionServer(m_depotPath, {hbrc::revision::PasswordHashCost::Minimal});
    }

    void CreateRepository()
    {
        using Access = SvnRepositoryFixture::Access;
        m_repository = std::make_unique<SvnRepositoryFixture>(
            m_dir.path(), Server() == ServerKind::SvnServe ? Access::Served : Access::Local);
        m_depotPath = m_repository->Url();
        m_bob = hbrc::host::OpenRevisionServer(m_depotPath, {});
    }

    void OpenAliceHost()
    {
        host = std::make_unique<hbrc::host::HostSession>(m_dir.filePath(QStringLiteral("preferences.ini")));
        host->Preferences().SetStringPref("RevControl.UserName", "alice", 1);
        host->Preferences().SetStringPref("RevControl.Workspace", AliceWorkspace(), 1);
        host->Preferences().SetStringPref("RevControl.Server", m_depotPath, 1);
        host->AddWorkspaceSetup([this](hbrc::host::Workspace& opened) {
            std::string error;
            services = hbrc::host::InstallRevisionControlServices(
                opened, m_depotPath, {"alice", "alice-pw", AliceWorkspace()}, error, ConnectionOptionsForAlice());
            if (!error.empty())
                throw std::runtime_error(error);
        });
        std::string error;
        workspace = host->OpenWorkspace(AliceFolder(), error);
        ASSERT_NE(workspace, nullptr) << error;
    }

    void SeedAssets()
    {
        const ObjectList assets{CreateSavedAsset("Rock", "rock.bin"), CreateSavedAsset("Tree", "tree.bin"),
                                CreateSavedAsset("Sky")};
        std::string error;
        ASSERT_EQ(DataControl()->MarkForAdd(assets, true, kPersistence, "", error).GetCode(), 0) << error;
        AliceSubmits("seed assets");
    }

    QTemporaryDir m_dir;
    std::string m_depotPath;
    std::unique_ptr<SvnRepositoryFixture> m_repository;  // before m_bob: outlives bob's connection
    std::unique_ptr<hbrc::host::RevisionServer> m_bob;
    std::string m_bobTicket;
};

// The same host (or a fixture derived from it) on each server in turn: TEST_P suites instantiated
// with INSTANTIATE_TEST_SUITE_P(Servers, Suite, ServerKinds(), ServerKindName), or some kinds.
template <class Fixture = ServerHostFixture>
class OnServers : public Fixture, public ::testing::WithParamInterface<ServerKind>
{
public:
    ServerKind Server() const override { return this->GetParam(); }
};
using ServerFixture = OnServers<>;

inline auto ServerKinds()
{
    return ::testing::Values(ServerKind::EmbeddedDepot, ServerKind::SvnServe, ServerKind::SvnFile);
}
