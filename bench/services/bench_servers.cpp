// The services on both revision servers side by side in one run: the embedded depot and a
// Subversion repository served by svnserve on 127.0.0.1, each with one workspace of 10,000
// submitted files. Measures a status question about 1,000 and 10,000 files and a check-out of 100
// files (reverted between iterations); reports round trips per question, the ratios between the
// servers and the growth from 1,000 to 10,000 files on each. Then the history questions on a
// repository of 10,000 submitted changes: the history of a file with 1,000 revisions and the list
// of every submitted change, each one round trip (the depot's history replayed through its server,
// the repository's loaded from a dump).
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

#include <cstdio>
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

// --- history: a file with 1,000 revisions among 10,000 submitted changes ---

constexpr int kChanges = 10000;
constexpr int kOtherFiles = 100;
// The hot file changes in every tenth change (the first adds it): kChanges / 10 revisions.
constexpr int kHotEvery = 10;

// The files of the history: the hot file and kOtherFiles others, all added by the first change.
std::vector<std::string> HistoryFiles()
{
    std::vector<std::string> files{"assets/hot.kel"};
    for (int other = 0; other < kOtherFiles; ++other)
        files.push_back("assets/f" + std::to_string(other) + ".kel");
    return files;
}

// The file a later change (2..kChanges) edits: the hot file in every tenth, else one of the others.
std::string EditedBy(int change)
{
    return change % kHotEvery == 1 ? "assets/hot.kel" : "assets/f" + std::to_string(change % kOtherFiles) + ".kel";
}

std::string HistoryText(int change)
{
    return "asset " + std::to_string(change) + "\n";
}

std::string DumpProperties(const std::vector<std::pair<std::string, std::string>>& properties)
{
    std::string block;
    for (const auto& [name, value] : properties)
        block += "K " + std::to_string(name.size()) + "\n" + name + "\nV " + std::to_string(value.size()) + "\n" + value +
                 "\n";
    return block + "PROPS-END\n";
}

std::string DumpFile(const std::string& path, bool added, const std::string& text)
{
    const std::string properties = added ? DumpProperties({}) : std::string();
    std::string node = "Node-path: " + path + "\nNode-kind: file\nNode-action: " + (added ? "add" : "change") + "\n";
    if (added)
        node += "Prop-content-length: " + std::to_string(properties.size()) + "\n";
    node += "Text-content-length: " + std::to_string(text.size()) + "\nContent-length: " +
            std::to_string(properties.size() + text.size()) + "\n\n";
    return node + properties + text + "\n\n";
}

// kChanges revisions by alice and bob in turn, one a second: the first adds the folder "assets"
// with the hot file and kOtherFiles others, each later one edits the hot file or one of the others.
QByteArray HistoryDump()
{
    std::string dump = "SVN-fs-dump-format-version: 2\n\n";
    for (int revision = 1; revision <= kChanges; ++revision) {
        char date[32];
        std::snprintf(date, sizeof date, "2026-01-01T%02d:%02d:%02d.000000Z", revision / 3600, revision / 60 % 60,
                      revision % 60);
        const std::string properties = DumpProperties(
            {{"svn:author", revision % 2 ? "alice" : "bob"}, {"svn:date", date}, {"svn:log", "change " + std::to_string(revision)}});
        dump += "Revision-number: " + std::to_string(revision) + "\nProp-content-length: " +
                std::to_string(properties.size()) + "\nContent-length: " + std::to_string(properties.size()) + "\n\n" +
                properties + "\n";
        const std::string text = HistoryText(revision);
        if (revision == 1) {
            const std::string folder = DumpProperties({});
            dump += "Node-path: assets\nNode-kind: dir\nNode-action: add\nProp-content-length: " +
                    std::to_string(folder.size()) + "\nContent-length: " + std::to_string(folder.size()) + "\n\n" +
                    folder + "\n\n";
            for (const std::string& file : HistoryFiles())
                dump += DumpFile(file, true, text);
        } else {
            dump += DumpFile(EditedBy(revision), false, text);
        }
    }
    return QByteArray::fromStdString(dump);
}

// A server with the history of HistoryDump(), and alice logged in to a workspace on it: on
// Subversion loaded from the dump, on the depot replayed change by change (by alice alone).
class HistoryScene
{
public:
    static HistoryScene& Get(int server)
    {
        static HistoryScene depot(kDepot);
        static HistoryScene svn(kSvn);
        return server == kDepot ? depot : svn;
    }

    RevisionServer& Server() { return *m_server; }
    const std::string& Ticket() const { return m_ticket; }
    std::string HotFile() const { return Local("assets/hot.kel"); }

private:
    explicit HistoryScene(int server)
    {
        QDir(m_dir.path()).mkpath(QStringLiteral("ws"));
        m_root = QFile::encodeName(QDir(m_dir.filePath(QStringLiteral("ws"))).canonicalPath()).toStdString();
        std::string workspace = m_root;
        if (server == kDepot) {
            const std::string depotPath = m_dir.filePath(QStringLiteral("depot.db")).toStdString();
            hbrc::depot::DepotOptions options;
            options.passwordHashCost = hbrc::depot::PasswordHashCost::Minimal;
            hbrc::depot::Depot admin(depotPath, options);
            workspace = "alice-ws";
            if (!hbrc::depot::Depot::create(depotPath).ok() || !admin.addUser("alice", "alice-pw").ok() ||
                !admin.addWorkspace(workspace, "alice", m_root).ok())
                throw std::runtime_error("cannot set up the depot");
            m_server = OpenRevisionServer(depotPath, {hbrc::revision::PasswordHashCost::Minimal});
        } else {
            m_repository = std::make_unique<SvnRepositoryFixture>(m_dir.path(), SvnRepositoryFixture::Access::Served);
            m_repository->Load(HistoryDump());
            m_server = OpenRevisionServer(m_repository->Url(), {});
        }
        Expect(m_server->login("alice", "alice-pw", workspace, m_ticket));
        if (server == kDepot)
            Replay();
    }

    std::string Local(const std::string& relative) const { return m_root + "/" + relative; }
    static void Expect(const hbrc::revision::Result& result)
    {
        if (!result.ok())
            throw std::runtime_error(result.error);
    }
    void Write(const std::string& relative, const std::string& text) const
    {
        QFile file(QFile::decodeName(Local(relative).c_str()));
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(text.c_str()) <= 0)
            throw std::runtime_error("cannot write " + relative);
    }
    void Submit(int change)
    {
        hbrc::revision::ChangelistId submitted;
        Expect(m_server->submit(m_ticket, "", "change " + std::to_string(change), submitted));
    }
    void Replay()
    {
        QDir(QFile::decodeName(m_root.c_str())).mkpath(QStringLiteral("assets"));
        std::vector<std::string> added;
        for (const std::string& file : HistoryFiles()) {
            Write(file, HistoryText(1));
            added.push_back(Local(file));
        }
        Expect(m_server->add(m_ticket, added, ""));
        Submit(1);
        for (int change = 2; change <= kChanges; ++change) {
            Expect(m_server->edit(m_ticket, {Local(EditedBy(change))}, ""));
            Write(EditedBy(change), HistoryText(change));
            Submit(change);
        }
    }

    QTemporaryDir m_dir;
    std::unique_ptr<SvnRepositoryFixture> m_repository;
    std::string m_root;
    std::unique_ptr<RevisionServer> m_server;
    std::string m_ticket;
};

void ReportServerRoundTrips(benchmark::State& state, RevisionServer& server, std::uint64_t before)
{
    state.counters["round_trips_per_question"] =
        benchmark::Counter(double(server.roundTrips() - before) / double(state.iterations()));
}

// The whole history of the hot file; range(0): the server.
void BM_FileHistory1000(benchmark::State& state)
{
    HistoryScene& scene = HistoryScene::Get(int(state.range(0)));
    state.SetLabel(kServerNames[state.range(0)]);
    const auto before = scene.Server().roundTrips();
    for (auto _ : state) {
        std::vector<std::vector<hbrc::revision::FileRevision>> histories;
        if (const hbrc::revision::Result read = scene.Server().fileHistory(scene.Ticket(), {scene.HotFile()}, 0, histories);
            !read.ok() || histories.at(0).size() != std::size_t(kChanges / kHotEvery))
            throw std::runtime_error("history of the hot file: " + read.error);
    }
    ReportServerRoundTrips(state, scene.Server(), before);
}
BENCHMARK(BM_FileHistory1000)->Arg(kDepot)->Arg(kSvn)->Unit(benchmark::kMillisecond);

// Every submitted change, unfiltered; range(0): the server.
void BM_SubmittedChanges10000(benchmark::State& state)
{
    HistoryScene& scene = HistoryScene::Get(int(state.range(0)));
    state.SetLabel(kServerNames[state.range(0)]);
    const auto before = scene.Server().roundTrips();
    for (auto _ : state) {
        std::vector<hbrc::revision::Changelist> changes;
        if (const hbrc::revision::Result read = scene.Server().submittedChanges(scene.Ticket(), {}, changes);
            !read.ok() || changes.size() != std::size_t(kChanges))
            throw std::runtime_error("submitted changes: " + read.error);
    }
    ReportServerRoundTrips(state, scene.Server(), before);
}
BENCHMARK(BM_SubmittedChanges10000)->Arg(kDepot)->Arg(kSvn)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv)
{
    RatioReporter reporter({
        {"depot: status of 10,000 files / of 1,000", "BM_Status/0/10000", "BM_Status/0/1000"},
        {"svnserve: status of 10,000 files / of 1,000", "BM_Status/1/10000", "BM_Status/1/1000"},
        {"svnserve / depot: status of 1,000 files", "BM_Status/1/1000", "BM_Status/0/1000"},
        {"svnserve / depot: status of 10,000 files", "BM_Status/1/10000", "BM_Status/0/10000"},
        {"svnserve / depot: check-out and revert of 100 files", "BM_CheckOut100/1", "BM_CheckOut100/0"},
        {"svnserve / depot: history of a file with 1,000 revisions", "BM_FileHistory1000/1", "BM_FileHistory1000/0"},
        {"svnserve / depot: 10,000 submitted changes", "BM_SubmittedChanges10000/1", "BM_SubmittedChanges10000/0"},
        {"svnserve: 10,000 submitted changes / history of 1,000 revisions", "BM_SubmittedChanges10000/1",
         "BM_FileHistory1000/1"},
    });
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
