// The plug-in's editability question and check-out flow in the reference host, against its
// embedded depot, in a workspace of 10,000 assets checked out by the user ("Clay") and 1,000
// submitted and read-only ("Stone"):
// - CanEditObjects for 1,000 and 10,000 assets that need no action, with nothing known about
//   their status beforehand: time and depot round trips per call;
// - CheckOutObjects of 10, 100 and 1,000 read-only assets (each reverted after the measurement):
//   round trips per asset, and side by side the same depot work done directly through the data
//   control, one asset at a time, which leaves the plug-in's and the host's commands' own share.
#include "hbrevisioncontrolpropertiesmgr.h"
#include "revisioncontroluihelper.h"

#include <ratioreporter.h>

#include <depot/depot.h>
#include <hbrcservices/revisioncontrolservices.h>
#include <hbrcsession/hostsession.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <memory>
#include <stdexcept>

using namespace hbrc::host;

namespace {

constexpr kel4::closureId kPersistence = kel4::closureId::Persistence;
constexpr int kClay = 10000;
constexpr int kStone = 1000;

void expect(bool ok, const std::string& what)
{
    if (!ok)
        throw std::runtime_error(what);
}

class Scene
{
public:
    static Scene& Get()
    {
        if (!Instance())
            Instance().reset(new Scene);
        return *Instance();
    }
    // Closes the host while the application still runs.
    static void Release() { Instance().reset(); }

    CRevisionControlUIHelper& Helper() { return m_helper; }
    ServerConnection& Connection() { return *m_services.connection; }
    DataControl& Data() { return *m_services.dataControl; }
    kel4::IDataControl::ObjectList Clay(int count) const { return Slice(m_clay, count); }
    kel4::IDataControl::ObjectList Stone(int count) const { return Slice(m_stone, count); }
    // Leaves the first count stones read-only and not open again.
    void RevertStone(int count)
    {
        kel4::Set<std::string> files;
        kel4::List<kel4::Set<std::string>> perObject;
        Data().GetFiles(Stone(count), true, kPersistence, "", files, perObject);
        std::string error;
        expect(m_services.fileVersionControl
                   ->Revert(Data().GetUserParameters().Get(), {files.begin(), files.end()}, error, 0, 0)
                   .IsSuccess(),
               error);
    }

private:
    Scene() : m_host(m_dir.filePath(QStringLiteral("preferences.ini")))
    {
        QDir(m_dir.path()).mkpath(QStringLiteral("ws"));
        const std::string root =
            QFile::encodeName(QDir(m_dir.filePath(QStringLiteral("ws"))).canonicalPath()).toStdString();
        const std::string depotPath = m_dir.filePath(QStringLiteral("depot.db")).toStdString();
        hbrc::depot::DepotOptions options;
        options.passwordHashCost = hbrc::depot::PasswordHashCost::Minimal;
        hbrc::depot::Depot admin(depotPath, options);
        expect(hbrc::depot::Depot::create(depotPath).ok() && admin.addUser("bench", "pw").ok() &&
                   admin.addWorkspace("bench-ws", "bench", root).ok(),
               "cannot set up the depot");
        ConnectionOptions connection;
        connection.server.passwordHashCost = hbrc::revision::PasswordHashCost::Minimal;
        m_host.AddWorkspaceSetup([&](Workspace& workspace) {
            std::string error;
            m_services = InstallRevisionControlServices(workspace, depotPath, {"bench", "pw", "bench-ws"}, error,
                                                        connection);
            expect(error.empty(), error);
        });
        m_host.Preferences().SetBoolPref(CHBRevisionControlPropertiesMgr::kUseSourceDataControlKey, true, 1);
        m_host.Preferences().SetBoolPref(CHBRevisionControlPropertiesMgr::kPromptForChangeListKey, false, 1);
        m_host.System().RegisterSingleton(CHBRevisionControlPropertiesMgr::GetSingletonName(), &m_settings);
        std::string error;
        Workspace* workspace = m_host.OpenWorkspace(QString::fromStdString(root), error);
        expect(workspace, error);

        for (int i = 0; i < kClay + kStone; ++i) {
            NewAsset asset;
            asset.name = (i < kClay ? "Clay" : "Stone") + std::to_string(i);
            const KELHandle<kel4::IDbObject> created(workspace->CreateAsset(asset, error));
            expect(!created.IsNull(), error);
            (i < kClay ? m_clay : m_stone).push_back(created);
        }
        workspace->Save();
        kel4::IDataControl::ObjectList all = m_clay;
        all.insert(all.end(), m_stone.begin(), m_stone.end());
        expect(Data().MarkForAdd(all, true, kPersistence, "", error).IsSuccess(), error);
        expect(Connection()
                   .Run(Data().GetUserParameters().Get(),
                        [](hbrc::host::RevisionServer& server, const std::string& ticket,
                           const hbrc::revision::CancelCheck& cancel) {
                            hbrc::revision::ChangelistId submitted;
                            return server.submit(ticket, "", "bench assets", submitted, cancel);
                        },
                        error)
                   .IsSuccess(),
               error);
        expect(Data().CheckOut(m_clay, true, kPersistence, "", error).IsSuccess(), error);
    }

    static std::unique_ptr<Scene>& Instance()
    {
        static std::unique_ptr<Scene> scene;
        return scene;
    }
    static kel4::IDataControl::ObjectList Slice(const kel4::IDataControl::ObjectList& from, int count)
    {
        auto end = from.begin();
        std::advance(end, count);
        return {from.begin(), end};
    }

    QTemporaryDir m_dir;
    CHBRevisionControlPropertiesMgr m_settings;  // outlives the host that knows it by name
    CRevisionControlUIHelper m_helper;
    HostSession m_host;
    RevisionControlServices m_services;
    kel4::IDataControl::ObjectList m_clay;
    kel4::IDataControl::ObjectList m_stone;
};

void BM_CanEditObjectsNeedingNoAction(benchmark::State& state)
{
    Scene& scene = Scene::Get();
    const kel4::IDataControl::ObjectList objects = scene.Clay(int(state.range(0)));
    std::uint64_t roundTrips = 0;
    for (auto _ : state) {
        state.PauseTiming();
        scene.Connection().Cache().Invalidate();
        const auto before = scene.Connection().RoundTrips();
        state.ResumeTiming();
        if (!scene.Helper().CanEditObjects(objects, true, true, ""))
            state.SkipWithError("an asset needing no action was refused");
        state.PauseTiming();
        roundTrips += scene.Connection().RoundTrips() - before;
        state.ResumeTiming();
    }
    state.counters["round_trips_per_call"] = benchmark::Counter(double(roundTrips) / double(state.iterations()));
}
BENCHMARK(BM_CanEditObjectsNeedingNoAction)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

// Check-outs of the first N stones, each reverted outside the measurement.
template <class CheckOut>
void MeasureCheckOut(benchmark::State& state, CheckOut&& checkOut)
{
    Scene& scene = Scene::Get();
    const int count = int(state.range(0));
    const kel4::IDataControl::ObjectList objects = scene.Stone(count);
    std::uint64_t roundTrips = 0;
    for (auto _ : state) {
        const auto before = scene.Connection().RoundTrips();
        checkOut(objects);
        state.PauseTiming();
        roundTrips += scene.Connection().RoundTrips() - before;
        scene.RevertStone(count);
        state.ResumeTiming();
    }
    state.counters["round_trips_per_asset"] =
        benchmark::Counter(double(roundTrips) / double(state.iterations()) / double(count));
}

void BM_CheckOutObjects(benchmark::State& state)
{
    MeasureCheckOut(state, [&](const kel4::IDataControl::ObjectList& objects) {
        bool cancelled = false;
        if (!Scene::Get().Helper().CheckOutObjects(objects, cancelled, true))
            state.SkipWithError("check-out failed");
    });
}
BENCHMARK(BM_CheckOutObjects)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

// The same depot work without the plug-in: one data-control check-out per asset.
void BM_DataControlCheckOutPerAsset(benchmark::State& state)
{
    MeasureCheckOut(state, [&](const kel4::IDataControl::ObjectList& objects) {
        std::string error;
        for (const auto& object : objects)
            if (Scene::Get().Data().CheckOut({object}, true, kPersistence, "", error).IsFailure())
                state.SkipWithError(error.c_str());
    });
}
BENCHMARK(BM_DataControlCheckOutPerAsset)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv)
{
    RatioReporter reporter({
        {"CanEditObjects 10k/1k", "BM_CanEditObjectsNeedingNoAction/10000", "BM_CanEditObjectsNeedingNoAction/1000"},
        {"CheckOutObjects/depot work alone, N=10", "BM_CheckOutObjects/10", "BM_DataControlCheckOutPerAsset/10"},
        {"CheckOutObjects/depot work alone, N=100", "BM_CheckOutObjects/100", "BM_DataControlCheckOutPerAsset/100"},
        {"CheckOutObjects/depot work alone, N=1000", "BM_CheckOutObjects/1000",
         "BM_DataControlCheckOutPerAsset/1000"},
    });
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    Scene::Release();
    return 0;
}
