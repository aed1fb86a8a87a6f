// The save hooks in the reference host, with the built plug-in loaded as a host loads it, on the
// embedded depot, in a workspace of 10,000 metadata assets whose files are writable:
// - a save of 1,000 and of 10,000 dirty assets, in a host without the plug-in and in one with it:
//   the plug-in's share of the save;
// - the pre-save hook alone for 1,000 and 10,000 dirty assets: how it grows;
// - a save that adds 1,000 new assets, which the post-save hook marks for add: round trips in all
//   and per asset, on the embedded depot and on a Subversion repository served by svnserve on
//   127.0.0.1.
// Ratios are of CPU time. Run it with TMPDIR on a memory file system (TMPDIR=/dev/shm) so that
// the saves' synced writes do not drown the hooks' work in the disk's.
#include <ratioreporter.h>
#include <svnrepositoryfixture.h>

#include <borax/datamodel/iitemlibrarynotification.h>
#include <depot/depot.h>
#include <hbrcservices/revisioncontrolservices.h>
#include <hbrcsession/hostsession.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using namespace hbrc::host;

namespace {

constexpr int kAssets = 10000;

void expect(bool ok, const std::string& what)
{
    if (!ok)
        throw std::runtime_error(what);
}

// A host over a workspace of kAssets saved metadata assets, with or without the plug-in, on the
// embedded depot or on svnserve.
class Scene
{
public:
    enum class Plugin { Absent, Loaded };
    enum class Server { Depot, SvnServe };

    static Scene& Get(Plugin plugin, Server server = Server::Depot)
    {
        std::unique_ptr<Scene>& scene = Instance();
        if (!scene || scene->m_plugin != plugin || scene->m_server != server) {
            scene.reset();  // one host session at a time
            scene.reset(new Scene(plugin, server));
        }
        return *scene;
    }
    static void Release() { Instance().reset(); }

    Workspace& Space() { return *m_workspace; }
    ServerConnection& Connection() { return *m_services.connection; }
    borax::datamodel::IItemLibraryNotification& Hooks()
    {
        auto* hooks = dynamic_cast<borax::datamodel::IItemLibraryNotification*>(m_helper);
        expect(hooks, "the plug-in's helper does not receive item-library notifications");
        return *hooks;
    }

    // Makes the first count assets dirty with a new value.
    void Edit(int count)
    {
        ++m_edits;
        for (int i = 0; i < count; ++i)
            expect(bool(m_workspace->SetField(m_assets[i], "note", std::to_string(m_edits))), "cannot edit");
    }
    // Creates count new assets, not saved yet.
    void Create(int count)
    {
        for (int i = 0; i < count; ++i)
            CreateAsset("New" + std::to_string(m_created++));
    }

private:
    static std::unique_ptr<Scene>& Instance()
    {
        static std::unique_ptr<Scene> scene;
        return scene;
    }

    Scene(Plugin plugin, Server server)
        : m_plugin(plugin), m_server(server), m_host(m_dir.filePath(QStringLiteral("preferences.ini")))
    {
        QDir(m_dir.path()).mkpath(QStringLiteral("ws"));
        const QString folder = QDir(m_dir.filePath(QStringLiteral("ws"))).canonicalPath();
        const std::string folderName = QFile::encodeName(folder).toStdString();
        hbrc::host::RevisionControlAccount account{"alice", "alice-pw", folderName};  // a working copy is its folder
        std::string serverSetting;
        if (server == Server::SvnServe) {
            m_repository = std::make_unique<SvnRepositoryFixture>(m_dir.path(), SvnRepositoryFixture::Access::Served);
            serverSetting = m_repository->Url();
        } else {
            account.workspace = "bench-ws";
            serverSetting = m_dir.filePath(QStringLiteral("depot.db")).toStdString();
            hbrc::depot::DepotOptions options;
            options.passwordHashCost = hbrc::depot::PasswordHashCost::Minimal;
            hbrc::depot::Depot admin(serverSetting, options);
            expect(hbrc::depot::Depot::create(serverSetting).ok() && admin.addUser("alice", "alice-pw").ok() &&
                       admin.addWorkspace(account.workspace, "alice", folderName).ok(),
                   "cannot set up the depot");
        }

        m_host.Preferences().SetStringPref("RevControl.UserName", account.userName, 1);
        m_host.Preferences().SetStringPref("RevControl.Workspace", account.workspace, 1);
        m_host.Preferences().SetStringPref("RevControl.Server", serverSetting, 1);
        m_host.Preferences().SetBoolPref("RevControl.UseSourceDataControl", true, 1);
        m_host.AddWorkspaceSetup([this, serverSetting, account](Workspace& workspace) {
            ConnectionOptions connection;
            connection.server.passwordHashCost = hbrc::revision::PasswordHashCost::Minimal;
            connection.timeOutThreshold = std::chrono::minutes(10);  // no progress box
            std::string error;
            m_services = InstallRevisionControlServices(workspace, serverSetting, account, error, connection);
            expect(error.empty(), error);
        });
        std::string error;
        if (plugin == Plugin::Loaded) {
            expect(m_host.LoadPlugin(HBRC_PLUGIN_PATH, error), error);
            expect(m_host.StartComponent("RevisionControlPropertiesMgr") != nullptr, "no settings component");
            m_helper = m_host.StartComponent("RevisionControlUIHelper");
            expect(m_helper != nullptr, "no helper component");
        }
        m_workspace = m_host.OpenWorkspace(folder, error);
        expect(m_workspace, error);
        for (int i = 0; i < kAssets; ++i)
            m_assets.push_back(CreateAsset("Asset" + std::to_string(i)));
        expect(m_workspace->Save().Succeeded(), "the first save failed");
    }

    KELHandle<kel4::IAsset> CreateAsset(const std::string& name)
    {
        NewAsset asset;
        asset.kind = AssetKind::Metadata;
        asset.name = name;
        std::string error;
        const KELHandle<kel4::IAsset> created = m_workspace->CreateAsset(asset, error);
        expect(!created.IsNull(), error);
        return created;
    }

    Plugin m_plugin;
    Server m_server;
    QTemporaryDir m_dir;
    std::unique_ptr<SvnRepositoryFixture> m_repository;
    HostSession m_host;
    RevisionControlServices m_services;
    Workspace* m_workspace = nullptr;
    nrk::IBase* m_helper = nullptr;
    std::vector<KELHandle<kel4::IAsset>> m_assets;
    int m_edits = 0;
    int m_created = 0;
};

// A save of the first N assets, edited before each save (not timed).
void saveDirtyAssets(benchmark::State& state, Scene::Plugin plugin)
{
    Scene& scene = Scene::Get(plugin);
    for (auto _ : state) {
        state.PauseTiming();
        scene.Edit(static_cast<int>(state.range(0)));
        state.ResumeTiming();
        const SaveReport report = scene.Space().Save();
        benchmark::DoNotOptimize(report);
        expect(report.Succeeded(), "a save failed: " + report.DescribeFailures());
    }
}

void BM_SaveWithoutPlugin(benchmark::State& state) { saveDirtyAssets(state, Scene::Plugin::Absent); }
void BM_SaveWithPlugin(benchmark::State& state) { saveDirtyAssets(state, Scene::Plugin::Loaded); }

// The pre-save hook over N dirty writable assets: it finds nothing to do and lets the save go on.
void BM_PreSaveHook(benchmark::State& state)
{
    Scene& scene = Scene::Get(Scene::Plugin::Loaded);
    scene.Edit(static_cast<int>(state.range(0)));
    borax::datamodel::ItemLibraryAccessor library = scene.Space().Accessor();
    for (auto _ : state) {
        bool cancel = true;
        scene.Hooks().OnPreCommit(library, &cancel);
        expect(!cancel, "the pre-save hook cancelled a save of writable assets");
    }
    expect(scene.Space().Save().Succeeded(), "cannot save the edits");
}

// A save that adds N new assets (range(1)) on a server (range(0)); the post-save hook marks them for
// add (batch: the default changelist, one command for all of them).
void BM_SaveAddingNewAssets(benchmark::State& state)
{
    Scene& scene = Scene::Get(Scene::Plugin::Loaded, static_cast<Scene::Server>(state.range(0)));
    const int count = static_cast<int>(state.range(1));
    std::uint64_t roundTrips = 0;
    for (auto _ : state) {
        state.PauseTiming();
        scene.Create(count);
        const std::uint64_t before = scene.Connection().RoundTrips();
        state.ResumeTiming();
        expect(scene.Space().Save().Succeeded(), "a save of new assets failed");
        roundTrips += scene.Connection().RoundTrips() - before;
    }
    const double saves = static_cast<double>(state.iterations());
    state.counters["round_trips"] = static_cast<double>(roundTrips) / saves;
    state.counters["round_trips_per_asset"] = static_cast<double>(roundTrips) / saves / count;
}

BENCHMARK(BM_SaveWithoutPlugin)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_SaveWithPlugin)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_PreSaveHook)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveAddingNewAssets)
    ->ArgNames({"server", "assets"})
    ->Args({int(Scene::Server::Depot), 10})
    ->Args({int(Scene::Server::Depot), 1000})
    ->Args({int(Scene::Server::SvnServe), 10})
    ->Args({int(Scene::Server::SvnServe), 1000})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);

}  // namespace

int main(int argc, char** argv)
{
    RatioReporter reporter({{"save with plug-in / without, 1,000 dirty assets", "BM_SaveWithPlugin/1000/iterations:3",
                             "BM_SaveWithoutPlugin/1000/iterations:3"},
                            {"save with plug-in / without, 10,000 dirty assets",
                             "BM_SaveWithPlugin/10000/iterations:3", "BM_SaveWithoutPlugin/10000/iterations:3"},
                            {"pre-save hook t(10,000) / t(1,000)", "BM_PreSaveHook/10000", "BM_PreSaveHook/1000"},
                            {"pre-save hook share of the save, 10,000 dirty assets", "BM_PreSaveHook/10000",
                             "BM_SaveWithPlugin/10000/iterations:3"}},
                           RatioReporter::Clock::Cpu);
    return RunWidgetBenchmarks(argc, argv, reporter, &Scene::Release);
}
