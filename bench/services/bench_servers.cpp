// The services on both revision servers side by side in one run: the embedded depot and a
// Subversion repository served by svnserve on 127.0.0.1, each with one workspace of 10,000
// submitted files. Measures a status question about 1,000 and 10,000 files and a check-out of 100
// files (reverted between iterations); reports round trips per question, the ratios between the
// servers and the growth from 1,000 to 10,000 files on each.
#include <ratioreporter.h>
#include <svnrepositoryfixture.h>

#include <depot/depot.h>
#include <hbrcservices/revisioncontrolservices.h>
#include <hbrcservices/revisionserver.h>

#include <hbrcdatamodel/workspace.h>

#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <memory>
#include <stdexcept>

using namespace hbrc::host;

namespace {

constexpr int kFiles = 10000;
enum ServerIndex { kDepot = 0, kSvn = 1 };
const char* const kServerNames[] = {"depot", "svnserve"};

// A server with one user whose workspace holds kFiles submitted files, with the services logged in.
class Scene
{
public:
    static Scene& Get(int server)
    {
        static Scene depot(kDepot);
        static Scene svn(kSvn);
        return server == kDepot ? depot : svn;
    }

    FileVersionControl& Files() { return *m_services.fileVersionControl; }
    ServerConnection& Connection() { return *m_services.connection; }
    const kel4::IUserParameters* Session() const { return m_services.dataControl->GetUserParameters().Get(); }
    kel4::List<std::string> FileNames(int count) const { return {m_files.begin(), m_files.begin() + count}; }

    kelResult Run(const ServerConnection::Operation& operation)
    {
        std::string error;
        const kelResult result = Connection().Run(Session(), operation, error);
        if (result.IsFailure())
            throw std::runtime_error(error);
        return result;
    }

private:
    explicit Scene(int server)
    {
        QDir(m_dir.path()).mkpath(QStringLiteral("ws/files"));
        m_root = QFile::encodeName(QDir(m_dir.filePath(QStringLiteral("ws"))).canonicalPath()).toStdString();
        std::string serverSetting;
        std::string workspaceName = m_root;
        ConnectionOptions connection;
        connection.server.passwordHashCost = hbrc::revision::PasswordHashCost::Minimal;
        if (server == kDepot) {
            serverSetting = m_dir.filePath(QStringLiteral("depot.db")).toStdString();
            hbrc::depot::DepotOptions adminOptions;
            adminOptions.passwordHashCost = hbrc::depot::PasswordHashCost::Minimal;
            hbrc::depot::Depot admin(serverSetting, adminOptions);
            workspaceName = "alice-ws";
            if (!hbrc::depot::Depot::create(serverSetting).ok() || !admin.addUser("alice", "alice-pw").ok() ||
                !admin.addWorkspace(workspaceName, "alice", m_root).ok())
                throw std::runtime_error("cannot set up the depot");
        } else {
            m_repository = std::make_unique<SvnRepositoryFixture>(m_dir.path(), SvnRepositoryFixture::Access::Served);
            serverSetting = m_repository->Url();
        }
        std::string error;
        m_workspace = Workspace::Open(QString::fromStdString(m_root), error);
        if (!m_workspace)
            throw std::runtime_error(error);
        m_services = InstallRevisionControlServices(*m_workspace, serverSetting,
                                                    {"alice", "alice-pw", workspaceName}, error, connection);
        if (!error.empty())
            throw std::runtime_error(error);
        for (int i = 0; i < kFiles; ++i) {
            m_files.push_back(m_root + "/files/f" + std::to_string(i) + ".kel");
            QFile file(QFile::decodeName(m_files.back().c_str()));
            if (!file.open(QIODevice::WriteOnly) || file.write("asset\n") <= 0)
                throw std::runtime_error("cannot write " + m_files.back());
        }
        Run([&](RevisionServer& s, const std::string& ticket, const hbrc::revision::CancelCheck&) {
            return s.add(ticket, m_files, "");
        });
        Run([&](RevisionServer& s, const std::string& ticket, const hbrc::revision::CancelCheck&) {
            hbrc::revision::ChangelistId submitted;
            return s.submit(ticket, "", "10,000 files", submitted);
        });
    }

    QTemporaryDir m_dir;
    std::unique_ptr<SvnRepositoryFixture> m_repository;
    std::string m_root;
    std::unique_ptr<Workspace> m_workspace;
    RevisionControlServices m_services;
    std::vector<std::string> m_files;
};

void ReportRoundTrips(benchmark::State& state, Scene& scene, std::uint64_t before)
{
    state.counters["round_trips_per_question"] =
        benchmark::Counter(double(scene.Connection().RoundTrips() - before) / double(state.iterations()));
}

void Status(Scene& scene, const kel4::List<std::string>& files)
{
    kel4::List<unsigned> statuses;
    kel4::List<std::string> changelists;
    std::string error;
    if (scene.Files().GetStatus(scene.Session(), files, statuses, changelists, error, 0).IsFailure())
        throw std::runtime_error(error);
    benchmark::DoNotOptimize(statuses);
}

void CheckOutAndRevert(Scene& scene, const kel4::List<std::string>& files)
{
    const std::vector<std::string> list(files.begin(), files.end());
    scene.Run([&](RevisionServer& s, const std::string& ticket, const hbrc::revision::CancelCheck& cancel) {
        return s.edit(ticket, list, "", cancel);
    });
    std::string error;
    if (scene.Files().Revert(scene.Session(), files, error, 0, 0).IsFailure())
        throw std::runtime_error(error);
}

// range(0): the server; range(1): how many files the question names.
void BM_Status(benchmark::State& state)
{
    Scene& scene = Scene::Get(int(state.range(0)));
    const kel4::List<std::string> files = scene.FileNames(int(state.range(1)));
    state.SetLabel(kServerNames[state.range(0)]);
    const auto before = scene.Connection().RoundTrips();
    for (auto _ : state)
        Status(scene, files);
    ReportRoundTrips(state, scene, before);
    state.SetItemsProcessed(state.iterations() * state.range(1));
}
BENCHMARK(BM_Status)->ArgsProduct({{kDepot, kSvn}, {1000, kFiles}})->Unit(benchmark::kMillisecond);

// A check-out of 100 files, then their revert (both in the time).
void BM_CheckOut100(benchmark::State& state)
{
    Scene& scene = Scene::Get(int(state.range(0)));
    const kel4::List<std::string> files = scene.FileNames(100);
    state.SetLabel(kServerNames[state.range(0)]);
    const auto before = scene.Connection().RoundTrips();
    for (auto _ : state)
        CheckOutAndRevert(scene, files);
    ReportRoundTrips(state, scene, before);
}
BENCHMARK(BM_CheckOut100)->Arg(kDepot)->Arg(kSvn)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv)
{
    RatioReporter reporter({
        {"depot: status of 10,000 files / of 1,000", "BM_Status/0/10000", "BM_Status/0/1000"},
        {"svnserve: status of 10,000 files / of 1,000", "BM_Status/1/10000", "BM_Status/1/1000"},
        {"svnserve / depot: status of 1,000 files", "BM_Status/1/1000", "BM_Status/0/1000"},
        {"svnserve / depot: status of 10,000 files", "BM_Status/1/10000", "BM_Status/0/10000"},
        {"svnserve / depot: check-out and revert of 100 files", "BM_CheckOut100/1", "BM_CheckOut100/0"},
    });
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
