// Another process on the same depot: the hbdepot tool run as bob while alice works in-process.
#include "depotfixture.h"

#include <QProcess>

#include <map>
#include <memory>

using namespace hbrc::depot;
namespace fs = std::filesystem;

namespace {

struct ToolRun
{
    int exitCode = -1;
    QString output;
    QString errors;
};

class DepotProcesses : public DepotFixture
{
public:
    // hbdepot as bob in his workspace, logging in with his password or another one.
    QStringList bobArguments(const QStringList& command, const QString& password = "bob-pw") const
    {
        return QStringList{"-d", QString::fromStdString(m_depotPath), "-u", "bob", "-w", "bob-ws", "-P", password} +
               command;
    }

    // Kept tickets go to the test's folder, never to the user's home. `variables` are set in the
    // process's environment, and it runs in `folder` when one is given.
    std::unique_ptr<QProcess> start(const QStringList& arguments, const QByteArray& input = {},
                                    const std::map<QString, QString>& variables = {}, const QString& folder = {}) const
    {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HBDEPOT_TICKETS", QString::fromStdString(path("tickets")));
        for (const char* name : {"HBDEPOT", "HBDEPOT_USER", "HBDEPOT_WORKSPACE", "HBDEPOT_PASSWORD", "HBDEPOT_TICKET"})
            environment.remove(name);
        for (const auto& [name, value] : variables)
            environment.insert(name, value);
        process->setProcessEnvironment(environment);
        process->setWorkingDirectory(folder);
        process->start(QStringLiteral(HBDEPOT_EXECUTABLE), arguments);
        process->write(input);
        process->closeWriteChannel();
        return process;
    }

    static ToolRun finish(QProcess& process)
    {
        EXPECT_TRUE(process.waitForFinished(60000)) << "hbdepot did not finish";
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    ToolRun run(const QStringList& arguments, const QByteArray& input = {}) const
    {
        return finish(*start(arguments, input));
    }
    // hbdepot in a folder of the test's, with no depot, user or workspace given but `variables`.
    ToolRun runIn(const std::string& folder, const QStringList& arguments,
                  const std::map<QString, QString>& variables = {}) const
    {
        return finish(*start(arguments, {}, variables, QString::fromStdString(path(folder))));
    }
    // hbdepot as bob with no password option: a kept ticket, or standard input with --password-stdin.
    ToolRun runAsBob(const QStringList& command, const QByteArray& input = {}) const
    {
        return run(QStringList{"-d", depotArgument(), "-u", "bob", "-w", "bob-ws"} + command, input);
    }
    QString depotArgument() const { return QString::fromStdString(m_depotPath); }
    QString bobPath(const std::string& relative) const { return QString::fromStdString(bobFile(relative)); }
};

TEST_F(DepotProcesses, EachSideSeesTheOthersChanges)
{
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    const ToolRun status = run(bobArguments({"status", QString::fromStdString(bobFile("shared.kel"))}));
    ASSERT_EQ(status.exitCode, 0) << status.errors.toStdString();
    EXPECT_TRUE(status.output.endsWith("shared.kel - edited by others (alice)\n")) << status.output.toStdString();

    write(bobFile("ship.kel"), "hull");
    const ToolRun add = run(bobArguments({"add", QString::fromStdString(bobFile("ship.kel"))}));
    ASSERT_EQ(add.exitCode, 0) << add.errors.toStdString();
    const ToolRun submit = run(bobArguments({"submit", "-d", "the ship"}));
    ASSERT_EQ(submit.exitCode, 0) << submit.errors.toStdString();
    EXPECT_EQ(submit.output.trimmed(), "Change 2 submitted.");
    EXPECT_EQ(statusOf(*m_alice, m_aliceTicket, aliceFile("ship.kel")).word, status::NotAtHead);
}

TEST_F(DepotProcesses, BadUsageIsRefusedWithTheCommandsUsage)
{
    const std::vector<QStringList> badUsage = {
        {"frobnicate"},     {"edit"},   {"edit", "-x", "f.kel"}, {"edit", "-c"},      {"status"},
        {"opened", "more"}, {"describe"}, {"user", "add"},       {"user", "add", "carol", "pw", "extra"},
        {"sync", "--forse"}, {"submit", "-d", "a", "-d", "b"}, {"reopen"}, {"unlock"}, {"revert"},
        {"change", "-d", "3", "extra"}, {"change"}, {"changes", "-m", "0"}, {"-z", "xml", "opened"},
    };
    for (const QStringList& command : badUsage) {
        const ToolRun result = run(bobArguments(command));
        EXPECT_EQ(result.exitCode, 2) << command.join(' ').toStdString() << ": " << result.errors.toStdString();
    }
    EXPECT_TRUE(run(bobArguments({"edit", "-x", "f.kel"})).errors.contains("Usage: hbdepot [OPTIONS] edit"));
    const ToolRun help = run({"help"});
    EXPECT_EQ(help.exitCode, 0);
    for (const char* verb : {"init", "user add", "workspace add", "login", "logout", "info", "sync", "edit", "add",
                             "delete", "revert", "reopen", "lock", "unlock", "opened", "change", "changes", "describe",
                             "submit", "status", "help"})
        EXPECT_TRUE(help.output.contains(QString("\n  ") + verb + " ")) << verb << " is not listed";
    const ToolRun verbHelp = run({"sync", "--help"});
    EXPECT_EQ(verbHelp.exitCode, 0);
    EXPECT_TRUE(verbHelp.output.startsWith("Usage: hbdepot [OPTIONS] sync [-f] [FILE...]"));
}

TEST_F(DepotProcesses, RefusalsSayWhyAndExitWith1)
{
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    // bob keeps a ticket whose session then expires: a log-in two hours later clears it from the depot.
    ASSERT_EQ(runAsBob({"--password-stdin", "login"}, "bob-pw\n").exitCode, 0);
    m_now += 2 * 3600;
    ok(m_alice->login("alice", "alice-pw", "alice-ws", m_aliceTicket));
    struct Refusal
    {
        QStringList arguments;
        QString says;
    };
    const std::vector<Refusal> refusals = {
        {bobArguments({"opened"}, "nope"), "Invalid password for user bob. (code -1)"},
        {{"-d", depotArgument(), "-u", "bob", "-w", "bob-ws", "opened"},
         "The session of bob in workspace bob-ws has expired or ended: log in again with 'hbdepot login'. (code -34)"},
        {{"-d", depotArgument(), "-u", "alice", "-w", "alice-ws", "opened"},
         "User alice in workspace alice-ws is not logged in: log in with 'hbdepot login'. (code -34)"},
        {{"-d", depotArgument(), "-u", "mallory", "-w", "bob-ws", "-P", "x", "opened"}, "Invalid password"},
        {bobArguments({"revert", bobPath("shared.kel")}), "file not opened"},
        {{"-d", depotArgument(), "-t", "bogus", "login"}, "The ticket is not valid"},
        {{"-d", depotArgument(), "-t", QString::fromStdString(m_aliceTicket), "-u", "bob", "opened"},
         "not of bob in workspace alice-ws"},
        {{"-d", depotArgument(), "workspace", "add", "carol-ws", "bob", QString::fromStdString(path("nowhere"))},
         "does not exist; create it first, or give --create"},
        {bobArguments({"change", "-d", "default"}), "The default changelist cannot be deleted."},
        {bobArguments({"unlock", bobPath("shared.kel")}), "Cannot unlock:"},
        {bobArguments({"reopen", "-c", "1", bobPath("shared.kel")}), "is not a pending changelist of workspace bob-ws"},
    };
    for (const Refusal& refusal : refusals) {
        const ToolRun result = run(refusal.arguments);
        EXPECT_EQ(result.exitCode, 1) << refusal.arguments.join(' ').toStdString();
        EXPECT_TRUE(result.errors.contains(refusal.says)) << result.errors.toStdString();
    }
    const ToolRun created = run({"-d", depotArgument(), "workspace", "add", "--create", "carol-ws", "bob",
                                 QString::fromStdString(path("nowhere"))});
    EXPECT_EQ(created.exitCode, 0) << created.errors.toStdString();
    EXPECT_TRUE(fs::is_directory(path("nowhere")));
}

TEST_F(DepotProcesses, LoginKeepsATicketOnlyItsOwnerCanReadAndLogoutEndsIt)
{
    // -P still works, with a warning.
    EXPECT_TRUE(run(bobArguments({"opened"})).errors.contains("warning: a password given with -P is visible"));
    EXPECT_EQ(runAsBob({"opened"}).exitCode, 1) << "no password, no terminal: not logged in";
    const ToolRun login = runAsBob({"--password-stdin", "login"}, "bob-pw\n");
    ASSERT_EQ(login.exitCode, 0) << login.errors.toStdString();
    EXPECT_EQ((fs::status(path("tickets")).permissions() & fs::perms::all), fs::perms::owner_read | fs::perms::owner_write);

    write(bobFile("ship.kel"), "hull");
    const ToolRun add = runAsBob({"add", bobPath("ship.kel")});
    EXPECT_EQ(add.exitCode, 0) << add.errors.toStdString();
    EXPECT_TRUE(add.errors.isEmpty()) << add.errors.toStdString();

    ASSERT_EQ(runAsBob({"logout"}).exitCode, 0);
    EXPECT_EQ(runAsBob({"opened"}).exitCode, 1) << "the kept ticket is gone";
    EXPECT_EQ(runAsBob({"logout"}).exitCode, 1) << "nobody to log out";
    const ToolRun viaStandardInput = runAsBob({"--password-stdin", "opened"}, "bob-pw\n");
    EXPECT_EQ(viaStandardInput.exitCode, 0) << viaStandardInput.errors.toStdString();
    EXPECT_TRUE(viaStandardInput.output.contains("//depot/ship.kel - add")) << viaStandardInput.output.toStdString();
}

TEST_F(DepotProcesses, SyncKeepsWritableChangesUntilForced)
{
    write(bobFile("shared.kel"), "bob's work");
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    write(aliceFile("shared.kel"), "v2");
    ok(submit(*m_alice, m_aliceTicket, "v2"));
    const ToolRun kept = run(bobArguments({"sync"}));
    EXPECT_EQ(kept.exitCode, 1);
    EXPECT_TRUE(kept.errors.contains("Can't clobber writable file " + bobPath("shared.kel"))) << kept.errors.toStdString();
    EXPECT_EQ(read(bobFile("shared.kel")), "bob's work");
    EXPECT_EQ(run(bobArguments({"sync", "-f"})).exitCode, 0);
    EXPECT_EQ(read(bobFile("shared.kel")), "v2");
}

TEST_F(DepotProcesses, AReadOnlyOrDamagedDepotAnswersClearly)
{
    fs::permissions(m_depotPath, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    const ToolRun status = run(bobArguments({"status", bobPath("shared.kel")}));
    EXPECT_EQ(status.exitCode, 0) << status.errors.toStdString();
    EXPECT_TRUE(status.output.contains(" - up to date")) << status.output.toStdString();
    const ToolRun edit = run(bobArguments({"edit", bobPath("shared.kel")}));
    EXPECT_EQ(edit.exitCode, 1);
    EXPECT_TRUE(edit.errors.contains("The depot is read-only")) << edit.errors.toStdString();
    EXPECT_FALSE(isWritable(bobFile("shared.kel")));

    const std::string damaged = path("damaged.db");
    std::ofstream(damaged) << std::string(200, 'x');
    const ToolRun unreadable = run({"-d", QString::fromStdString(damaged), "-u", "bob", "-w", "bob-ws", "opened"});
    EXPECT_EQ(unreadable.exitCode, 1);
    EXPECT_EQ(unreadable.errors.count("file is not a database"), 1) << unreadable.errors.toStdString();
}

TEST_F(DepotProcesses, ConcurrentWritersAllLand)
{
    constexpr int kWriters = 4;
    std::vector<std::unique_ptr<QProcess>> writers;
    for (int i = 0; i < kWriters; ++i) {
        const std::string file = bobFile("part" + std::to_string(i) + ".kel");
        write(file, "part");
        // Each process adds its file in its own session, at the same time as the others.
        writers.push_back(start(bobArguments({"add", QString::fromStdString(file)})));
    }
    for (auto& writer : writers) {
        const ToolRun result = finish(*writer);
        EXPECT_EQ(result.exitCode, 0) << result.errors.toStdString();
    }
    std::vector<OpenedFile> opened;
    ok(m_alice->opened(m_aliceTicket, true, opened));
    EXPECT_EQ(opened.size(), static_cast<std::size_t>(kWriters));
}

TEST_F(DepotProcesses, TheAccountComesFromOptionEnvironmentFileOrFolderInThatOrder)
{
    write(path(".hbdepot"), "# the test's depot\ndepot = depot.db\nuser = bob\nworkspace = file-ws\n");
    struct Row
    {
        const char* name;
        QStringList options;
        std::map<QString, QString> variables;
        QString workspace;
    };
    const std::vector<Row> rows = {
        {"the file", {}, {}, "file-ws"},
        {"the environment over the file", {}, {{"HBDEPOT_WORKSPACE", "env-ws"}}, "env-ws"},
        {"the option over both", {"-w", "option-ws"}, {{"HBDEPOT_WORKSPACE", "env-ws"}}, "option-ws"},
    };
    for (const Row& row : rows) {
        const ToolRun info = runIn("bob", row.options + QStringList{"--json", "info"}, row.variables);
        EXPECT_EQ(info.exitCode, 0) << row.name << ": " << info.errors.toStdString();
        EXPECT_TRUE(info.output.contains("\"workspace\":\"" + row.workspace + "\"")) << row.name << ": "
                                                                                     << info.output.toStdString();
        EXPECT_TRUE(info.output.contains("\"depot\":\"" + depotArgument() + "\"")) << info.output.toStdString();
    }

    // Without user and workspace in the file, the folder names them: bob works in his own.
    write(path(".hbdepot"), "depot = depot.db\n");
    write(aliceFile("art/ship.kel"), "hull");
    ok(m_alice->add(m_aliceTicket, {aliceFile("art/ship.kel")}, ""));
    ok(submit(*m_alice, m_aliceTicket, "the ship"));
    const ToolRun login =
        finish(*start({"--password-stdin", "login"}, "bob-pw\n", {}, QString::fromStdString(bobFile(""))));
    ASSERT_EQ(login.exitCode, 0) << login.errors.toStdString();
    EXPECT_EQ(login.output, "User bob logged in to workspace bob-ws.\n");
    const ToolRun sync = runIn("bob", {"sync"});
    EXPECT_EQ(sync.output, "//depot/art/ship.kel#1 - updated\nupdated 1, deleted 0\n") << sync.errors.toStdString();
    fs::create_directories(bobFile("art"));
    EXPECT_EQ(runIn("bob/art", {"-q", "edit", "ship.kel"}).output, "") << "-q says nothing";
    const ToolRun status = runIn("bob/art", {"-z", "json", "status", "ship.kel", "../shared.kel"});
    EXPECT_EQ(status.output.toStdString(),
              "[{\"file\":\"ship.kel\",\"path\":\"" + bobFile("art/ship.kel") +
                  "\",\"status\":\"0x1\",\"words\":[\"open for edit\"],\"changelist\":\"default\",\"holders\":[]},"
                  "{\"file\":\"../shared.kel\",\"path\":\"" + bobFile("shared.kel") +
                  "\",\"status\":\"0x0\",\"words\":[\"up to date\"],\"changelist\":\"\",\"holders\":[]}]\n");
    EXPECT_EQ(runIn(".", {"opened"}).exitCode, 2) << "above every workspace nobody is inferred";
}

TEST_F(DepotProcesses, ChangesListNewestFirstWithDatesAndFilters)
{
    m_now = 1700000000;  // 2023-11-14, whatever the time zone
    write(aliceFile("a.kel"), "a");
    ok(m_alice->add(m_aliceTicket, {aliceFile("a.kel")}, ""));
    ok(submit(*m_alice, m_aliceTicket, "alice's \"a\"\n\tsecond line"));
    m_now += 86400 * 2;
    bobSubmitsNewFile("b.kel", "b");
    const ToolRun all = run(bobArguments({"changes", "-s", "submitted"}));
    const QStringList lines = all.output.split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3) << all.output.toStdString();
    EXPECT_TRUE(lines[0].startsWith("Change 3 on 2023/11/1")) << lines[0].toStdString();
    EXPECT_TRUE(lines[0].endsWith("by bob@bob-ws *submitted* 'bob adds b.kel'")) << lines[0].toStdString();
    EXPECT_TRUE(lines[1].startsWith("Change 2 on 2023/11/1")) << lines[1].toStdString();
    EXPECT_TRUE(lines[1].endsWith(R"(*submitted* 'alice's "a"  second line')")) << "one line a change";
    EXPECT_EQ(run(bobArguments({"changes", "-s", "submitted", "-m", "1"})).output.count("Change "), 1);
    const ToolRun alices = run(bobArguments({"--json", "changes", "-s", "submitted", "-u", "alice", "-m", "1"}));
    EXPECT_TRUE(alices.output.startsWith("[{\"change\":\"2\",\"user\":\"alice\"")) << alices.output.toStdString();
    EXPECT_TRUE(alices.output.contains("\"time\":1700000000,")) << alices.output.toStdString();
    EXPECT_TRUE(alices.output.contains(R"("description":"alice's \"a\"\n\tsecond line")")) << alices.output.toStdString();
    const ToolRun described = run(bobArguments({"describe", "3"}));
    EXPECT_TRUE(described.output.startsWith("Change 3 by bob@bob-ws on 2023/11/1")) << described.output.toStdString();
}

}  // namespace
