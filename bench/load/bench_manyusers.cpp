// Many users at once on one server: 16 processes (--users), each a user with a workspace of their
// own, run edit / save / submit / sync cycles on 32 shared files for 60 s (--seconds, and at most
// --cycles cycles each), against the embedded depot and against svnserve on 127.0.0.1 in turn
// (--server depot|svnserve|both). Printed per server: cycles and submits per second, p50 and p99
// of the editability question (a status question about the file) and of the status+edit round,
// the operations the server refused or found busy (with their first reasons), and the lost
// updates: every submit a user saw succeed is looked up afterwards in the file's history, and its
// revision must hold exactly the bytes that user submitted. A load test, run by hand; not a ctest.
#include <svnrepositoryfixture.h>

#include <depot/depot.h>
#include <hbrcservices/revisionserver.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using hbrc::host::RevisionServer;
using namespace hbrc::revision;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int kSharedFiles = 32;
const char* const kPassword = "load-pw";

struct Options {
    int users = 16;
    int seconds = 60;
    int cycles = 5000;  // per user: the run is bounded in count as well as in time
    std::string servers = "both";
};

std::string userName(int index)
{
    return (index < 10 ? "u0" : "u") + std::to_string(index);
}

std::string sharedFile(int index) { return "shared/f" + std::to_string(index) + ".txt"; }

template <class AnyResult>  // the services' and the depot library's
void check(const AnyResult& result, const std::string& what)
{
    if (!result.ok())
        throw std::runtime_error(what + ": " + result.error);
}

// One user's connection, logged in to their workspace (a depot workspace, or the working copy's
// folder on Subversion).
struct UserSession {
    std::unique_ptr<RevisionServer> server;
    std::string ticket;
    std::string folder;

    UserSession(const std::string& setting, const std::string& user, const std::string& workspace,
                std::string folderPath)
        : server(hbrc::host::OpenRevisionServer(setting, {PasswordHashCost::Minimal})), folder(std::move(folderPath))
    {
        check(server->login(user, kPassword, workspace, ticket), "log-in of " + user);
    }
    std::string local(const std::string& relative) const { return folder + "/" + relative; }
};

// --- a worker process: one user's cycles --------------------------------------------------------

// Counted per kind of failure, with the first reason of each kind.
struct Failures {
    std::map<std::string, int> counts;
    std::map<std::string, std::string> firstReasons;
    void add(const std::string& kind, const Result& result)
    {
        ++counts[kind];
        std::string reason = result.error;
        std::replace(reason.begin(), reason.end(), '\n', ' ');
        firstReasons.emplace(kind, reason);
    }
};

void writeFile(const std::string& path, const std::string& content)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << content;
    if (!out)
        throw std::runtime_error("cannot write " + path);
}

// Lines written: "Q <status µs> <status+edit µs>" per cycle, "S <change> <file> <bytes>" per
// submit, "F <kind> <count> <first reason>" at the end.
int runWorker(int index, const std::string& setting, const std::string& workspace, const std::string& folder,
              const Options& options, const std::string& outPath)
{
    UserSession me(setting, userName(index), workspace, folder);
    check(me.server->sync(me.ticket, {}), "first sync");
    std::ofstream out(outPath);
    Failures failures;
    std::mt19937 random(1234u + unsigned(index));
    const auto deadline = Clock::now() + std::chrono::seconds(options.seconds);
    const auto micros = [](Clock::duration d) { return std::chrono::duration_cast<std::chrono::microseconds>(d).count(); };
    for (int cycle = 0; cycle < options.cycles && Clock::now() < deadline; ++cycle) {
        const std::string relative = sharedFile(int(random() % kSharedFiles));
        const std::string file = me.local(relative);
        const auto start = Clock::now();
        std::vector<FileStatus> statuses;
        const Result asked = me.server->status(me.ticket, {file}, statuses);
        const auto askedAt = Clock::now();
        if (!asked.ok() || statuses.empty()) {
            failures.add("status", asked);
            continue;
        }
        if (statuses.front().word & status::NotAtHead) {
            if (const Result synced = me.server->sync(me.ticket, {file}); !synced.ok())
                failures.add("sync", synced);
        }
        const Result edited = me.server->edit(me.ticket, {file}, "");
        out << "Q " << micros(askedAt - start) << ' ' << micros(Clock::now() - start) << '\n';
        if (!edited.ok()) {
            failures.add("edit", edited);
            continue;
        }
        const std::string bytes = userName(index) + "-cycle" + std::to_string(cycle) + "-" + std::to_string(random());
        writeFile(file, bytes);
        ChangelistId change;
        if (const Result submitted = me.server->submit(me.ticket, "", userName(index) + " cycle", change);
            !submitted.ok()) {
            failures.add("submit", submitted);
            me.server->revert(me.ticket, {file});
            continue;
        }
        out << "S " << change << ' ' << relative << ' ' << bytes << '\n';
    }
    for (const auto& [kind, count] : failures.counts)
        out << "F " << kind << ' ' << count << ' ' << failures.firstReasons[kind] << '\n';
    return 0;
}

// --- the coordinator: one server, its users, their processes and the check for lost updates ------

struct Submit {
    std::string change, file, bytes;
};

struct Outcome {
    std::vector<double> statusMicros, roundMicros;
    std::vector<Submit> submits;
    std::map<std::string, int> failures;
    std::map<std::string, std::string> reasons;
    double seconds = 0;
    int cycles = 0;
};

void readWorkerOutput(const QString& path, Outcome& outcome)
{
    std::ifstream in(QFile::encodeName(path).toStdString());
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string tag;
        fields >> tag;
        if (tag == "Q") {
            double status = 0, round = 0;
            fields >> status >> round;
            outcome.statusMicros.push_back(status);
            outcome.roundMicros.push_back(round);
            ++outcome.cycles;
        } else if (tag == "S") {
            Submit submit;
            fields >> submit.change >> submit.file >> submit.bytes;
            outcome.submits.push_back(submit);
        } else if (tag == "F") {
            std::string kind, reason;
            int count = 0;
            fields >> kind >> count;
            std::getline(fields >> std::ws, reason);
            outcome.failures[kind] += count;
            outcome.reasons.emplace(kind, reason);
        }
    }
}

double percentile(std::vector<double> values, double share)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, std::size_t(share * double(values.size())))] / 1000.0;
}

// The submits whose revision is missing or holds other bytes than were submitted.
int lostUpdates(const UserSession& checker, const std::vector<Submit>& submits)
{
    std::vector<std::string> files;
    for (int i = 0; i < kSharedFiles; ++i)
        files.push_back(checker.local(sharedFile(i)));
    std::vector<std::vector<FileRevision>> histories;
    check(checker.server->fileHistory(checker.ticket, files, 0, histories), "file history");
    std::map<std::pair<std::string, std::string>, std::int64_t> revisionOf;  // (file, change) -> revision
    for (std::size_t i = 0; i < files.size() && i < histories.size(); ++i)
        for (const FileRevision& revision : histories[i])
            revisionOf[{sharedFile(int(i)), revision.changelist}] = revision.revision;
    int lost = 0;
    for (const Submit& submit : submits) {
        const auto found = revisionOf.find({submit.file, submit.change});
        std::string content;
        if (found == revisionOf.end() ||
            !checker.server->fileContent(checker.ticket, {checker.local(submit.file), found->second}, content).ok() ||
            content != submit.bytes) {
            std::fprintf(stderr, "lost: change %s of %s\n", submit.change.c_str(), submit.file.c_str());
            ++lost;
        }
    }
    return lost;
}

Outcome runServer(bool svn, const Options& options, const QString& program)
{
    QTemporaryDir dir;
    std::unique_ptr<SvnRepositoryFixture> repository;
    std::string setting;
    QByteArray svnUsers;
    for (int i = 0; i < options.users; ++i) {
        QDir(dir.path()).mkpath(QString::fromStdString(userName(i)));
        svnUsers += QByteArray::fromStdString(userName(i) + " = " + kPassword + "\n");
    }
    const auto folderOf = [&](int i) {
        return QFile::encodeName(QDir(dir.filePath(QString::fromStdString(userName(i)))).canonicalPath()).toStdString();
    };
    const auto workspaceOf = [&](int i) { return svn ? folderOf(i) : userName(i) + "-ws"; };
    if (svn) {
        repository = std::make_unique<SvnRepositoryFixture>(dir.path(), SvnRepositoryFixture::Access::Served);
        repository->SetUsers(svnUsers);
        setting = repository->Url();
    } else {
        setting = dir.filePath(QStringLiteral("depot.db")).toStdString();
        check(hbrc::depot::Depot::create(setting), "depot");
        hbrc::depot::DepotOptions adminOptions;
        adminOptions.passwordHashCost = hbrc::depot::PasswordHashCost::Minimal;
        hbrc::depot::Depot admin(setting, adminOptions);
        for (int i = 0; i < options.users; ++i) {
            check(admin.addUser(userName(i), kPassword), "user");
            check(admin.addWorkspace(workspaceOf(i), userName(i), folderOf(i)), "workspace");
        }
    }
    {  // the shared files, submitted once by the first user
        UserSession seeder(setting, userName(0), workspaceOf(0), folderOf(0));
        QDir(QString::fromStdString(seeder.folder)).mkpath(QStringLiteral("shared"));
        std::vector<std::string> files;
        for (int i = 0; i < kSharedFiles; ++i) {
            files.push_back(seeder.local(sharedFile(i)));
            writeFile(files.back(), "seed");
        }
        check(seeder.server->add(seeder.ticket, files, ""), "add");
        ChangelistId change;
        check(seeder.server->submit(seeder.ticket, "", "shared files", change), "seed submit");
    }

    Outcome outcome;
    std::vector<std::unique_ptr<QProcess>> workers;
    const auto start = Clock::now();
    for (int i = 0; i < options.users; ++i) {
        auto worker = std::make_unique<QProcess>();
        worker->setProcessChannelMode(QProcess::ForwardedChannels);
        worker->start(program, {"--worker", QString::number(i), QString::fromStdString(setting),
                                QString::fromStdString(workspaceOf(i)), QString::fromStdString(folderOf(i)),
                                QString::number(options.seconds), QString::number(options.cycles),
                                dir.filePath(QStringLiteral("out%1.txt").arg(i))});
        workers.push_back(std::move(worker));
    }
    for (int i = 0; i < options.users; ++i) {
        if (!workers[std::size_t(i)]->waitForFinished((options.seconds + 120) * 1000) ||
            workers[std::size_t(i)]->exitCode() != 0)
            ++outcome.failures["worker did not finish"];
        readWorkerOutput(dir.filePath(QStringLiteral("out%1.txt").arg(i)), outcome);
    }
    outcome.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const UserSession checker(setting, userName(0), workspaceOf(0), folderOf(0));
    outcome.failures["lost updates"] = lostUpdates(checker, outcome.submits);
    return outcome;
}

void print(const char* server, const Options& options, const Outcome& outcome)
{
    std::printf("%s: %d users, %.1f s: %d cycles (%.1f/s), %zu submits (%.1f/s)\n", server, options.users,
                outcome.seconds, outcome.cycles, outcome.cycles / outcome.seconds, outcome.submits.size(),
                double(outcome.submits.size()) / outcome.seconds);
    std::printf("  editability question (status): p50 %.1f ms, p99 %.1f ms\n", percentile(outcome.statusMicros, 0.5),
                percentile(outcome.statusMicros, 0.99));
    std::printf("  status+edit round:              p50 %.1f ms, p99 %.1f ms\n", percentile(outcome.roundMicros, 0.5),
                percentile(outcome.roundMicros, 0.99));
    for (const auto& [kind, count] : outcome.failures) {
        const auto reason = outcome.reasons.find(kind);
        std::printf("  %s: %d%s%s\n", kind.c_str(), count, reason == outcome.reasons.end() ? "" : " - first: ",
                    reason == outcome.reasons.end() ? "" : reason->second.c_str());
    }
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    Options options;
    try {
        if (args.size() == 9 && args[1] == QStringLiteral("--worker")) {
            options.seconds = args[6].toInt();
            options.cycles = args[7].toInt();
            return runWorker(args[2].toInt(), args[3].toStdString(), args[4].toStdString(), args[5].toStdString(),
                             options, args[8].toStdString());
        }
        for (int i = 1; i + 1 < args.size(); i += 2) {
            if (args[i] == QStringLiteral("--users"))
                options.users = std::clamp(args[i + 1].toInt(), 1, 64);
            else if (args[i] == QStringLiteral("--seconds"))
                options.seconds = std::clamp(args[i + 1].toInt(), 1, 600);
            else if (args[i] == QStringLiteral("--cycles"))
                options.cycles = std::max(1, args[i + 1].toInt());
            else if (args[i] == QStringLiteral("--server"))
                options.servers = args[i + 1].toStdString();
        }
        bool anyLost = false;
        for (const bool svn : {false, true}) {
            const char* name = svn ? "svnserve" : "depot";
            if (options.servers != "both" && options.servers != name)
                continue;
            const Outcome outcome = runServer(svn, options, app.applicationFilePath());
            print(name, options, outcome);
            anyLost = anyLost || outcome.failures.at("lost updates") > 0;
        }
        return anyLost ? 1 : 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_manyusers: %s\n", error.what());
        return 2;
    }
}
