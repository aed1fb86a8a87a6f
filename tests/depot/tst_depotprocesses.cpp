// Another process on the same depot: the hbdepot tool run as bob while alice works in-process.
#include "depotfixture.h"

#include <poll.h>
#include <pty.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace hbrc::depot;
namespace fs = std::filesystem;

namespace {

class DepotProcesses : public DepotFixture
{
public:
    // hbdepot as bob in his workspace, logging in with his password or another one.
    QStringList bobArguments(const QStringList& command, const QString& password = "bob-pw") const
    {
        return bobWithoutPassword(QStringList{"-P", password} + command);
    }
    // hbdepot as bob with no password option: a kept ticket, or standard input with --password-stdin.
    QStringList bobWithoutPassword(const QStringList& command) const
    {
        return QStringList{"-d", depotArgument(), "-u", "bob", "-w", "bob-ws"} + command;
    }

    // hbdepot in a folder of the test's, with no depot, user or workspace given.
    ToolRun runIn(const std::string& folder, const QStringList& arguments) const { return run(arguments, {}, {}, folder); }
    // Runs hbdepot, expecting its exit code and `says` on standard output (exit code 0) or error.
    ToolRun expect(const QStringList& arguments, int exitCode, const QString& says = {}, const QByteArray& input = {},
                   const Variables& variables = {}, const std::string& folder = {}) const
    {
        ToolRun result = run(arguments, input, variables, folder);
        const std::string call = arguments.join(' ').toStdString();
        EXPECT_EQ(result.exitCode, exitCode) << call << ": " << result.errors.toStdString();
        const QString& text = exitCode == 0 ? result.output : result.errors;
        EXPECT_TRUE(text.contains(says)) << call << ": " << text.toStdString() << "\nlacks: " << says.toStdString();
        return result;
    }
    // hbdepot on a pseudo-terminal; each answer is typed as soon as a prompt (": ") shows.
    ToolRun runOnTerminal(const QStringList& arguments, std::vector<std::string> answers) const
    {
        int terminal = -1;
        const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
        if (child == 0) {
            ::setenv("HBDEPOT_TICKETS", path("tickets").c_str(), 1);
            std::vector<std::string> words{HBDEPOT_EXECUTABLE};
            for (const QString& argument : arguments)
                words.push_back(argument.toStdString());
            std::vector<char*> argv;
            for (std::string& word : words)
                argv.push_back(word.data());
            argv.push_back(nullptr);
            ::execv(argv[0], argv.data());
            ::_exit(127);
        }
        std::string seen;
        std::reverse(answers.begin(), answers.end());
        for (pollfd ready{terminal, POLLIN, 0}; ::poll(&ready, 1, 30000) > 0;) {
            char buffer[256];
            const ssize_t got = ::read(terminal, buffer, sizeof buffer);
            if (got <= 0)
                break;
            seen.append(buffer, static_cast<std::size_t>(got));
            if (!answers.empty() && seen.size() >= 2 && seen.compare(seen.size() - 2, 2, ": ") == 0) {
                const std::string typed = answers.back() + "\n";
                EXPECT_EQ(::write(terminal, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
                answers.pop_back();
            }
        }
        ::close(terminal);
        int status = -1;
        ::waitpid(child, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, QString::fromStdString(seen), {}};
    }
    QString depotArgument() const { return QString::fromStdString(m_depotPath); }
    QString bobPath(const std::string& relative) const { return QString::fromStdString(bobFile(relative)); }
};

TEST_F(DepotProcesses, BobWorksThroughTheToolWhileAliceWorksInProcess)
{
    m_now = 1700000000;  // 2023-11-14, whatever the time zone
    write(aliceFile("a.kel"), "a");
    ok(m_alice->add(m_aliceTicket, {aliceFile("a.kel")}, ""));
    ok(submit(*m_alice, m_aliceTicket, "alice's \"a\"\n\tsecond line"));
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    const ToolRun status = expect(bobArguments({"status", bobPath("shared.kel")}), 0);
    EXPECT_TRUE(status.output.endsWith("shared.kel - edited by others (alice)\n")) << status.output.toStdString();
    EXPECT_TRUE(status.errors.contains("warning: a password given with -P is visible")) << "-P works, with a warning";
    EXPECT_EQ(run(bobWithoutPassword({"opened"})).exitCode, 1) << "no password, no terminal: not logged in";
    ASSERT_EQ(expect(bobWithoutPassword({"--password-stdin", "login"}), 0, "", "bob-pw\n").exitCode, 0);
    EXPECT_EQ((fs::status(path("tickets")).permissions() & fs::perms::all), fs::perms::owner_read | fs::perms::owner_write);
    write(bobFile("ship.kel"), "hull");
    EXPECT_EQ(expect(bobWithoutPassword({"add", bobPath("ship.kel")}), 0).errors, "");
    ASSERT_EQ(run(bobWithoutPassword({"logout"})).exitCode, 0);
    EXPECT_EQ(run(bobWithoutPassword({"opened"})).exitCode, 1) << "the kept ticket is gone";
    EXPECT_EQ(run(bobWithoutPassword({"logout"})).exitCode, 1) << "nobody to log out";
    expect(bobWithoutPassword({"--password-stdin", "opened"}), 0, "//depot/ship.kel - add", "bob-pw\n");
    EXPECT_EQ(expect(bobArguments({"submit", "-d", "the ship"}), 0).output.trimmed(), "Change 3 submitted.");
    EXPECT_EQ(aliceSees("ship.kel"), status::NotAtHead);

    const ToolRun all = run(bobArguments({"changes", "-s", "submitted"}));
    const QStringList lines = all.output.split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3) << all.output.toStdString();
    EXPECT_TRUE(lines[0].startsWith("Change 3 on ") && lines[0].endsWith("by bob@bob-ws *submitted* 'the ship'"))
        << lines[0].toStdString();
    EXPECT_TRUE(lines[1].startsWith("Change 2 on 2023/11/1")) << lines[1].toStdString();
    EXPECT_TRUE(lines[1].endsWith(R"(by alice@alice-ws *submitted* 'alice's "a"  second line')")) << "one line a change";
    EXPECT_EQ(run(bobArguments({"changes", "-s", "submitted", "-m", "1"})).output.count("Change "), 1);
    const ToolRun alices = expect(bobArguments({"--json", "changes", "-s", "submitted", "-u", "alice", "-m", "1"}), 0,
                                  R"("description":"alice's \"a\"\n\tsecond line")");
    EXPECT_TRUE(alices.output.startsWith("{\"format\":1,\"changes\":[{\"change\":\"2\",\"user\":\"alice\""))
        << alices.output.toStdString();
    EXPECT_TRUE(alices.output.contains("\"time\":1700000000,")) << alices.output.toStdString();
    EXPECT_TRUE(run(bobArguments({"describe", "2"})).output.startsWith("Change 2 by alice@alice-ws on 2023/11/1"));
}

// Each call's exit code (0 done, 1 refused, 2 bad usage) and what it says on the way.
TEST_F(DepotProcesses, EveryCallAnswersWithItsExitCodeAndSaysWhy)
{
    // bob changed his writable copy of shared.kel, which alice is about to change in the depot.
    write(bobFile("shared.kel"), "bob's work");
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    write(aliceFile("shared.kel"), "v2");
    ok(submit(*m_alice, m_aliceTicket, "v2"));
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    // bob keeps a ticket whose session then expires: a log-in two hours later clears it from the depot.
    ASSERT_EQ(run(bobWithoutPassword({"--password-stdin", "login"}), "bob-pw\n").exitCode, 0);
    m_now += 2 * 3600;
    ok(m_alice->login("alice", "alice-pw", "alice-ws", m_aliceTicket));
    struct Row
    {
        QStringList arguments;
        int exitCode;
        QString says = {};
    };
    const QStringList depot = {"-d", depotArgument()};
    const std::vector<Row> rows = {
        {bobArguments({"opened"}, "nope"), 1, "Invalid password for user bob. (code -1)"},
        {bobWithoutPassword({"opened"}), 1,
         "The session of bob in workspace bob-ws has expired or ended: log in again with 'hbdepot login'. (code -34)"},
        {depot + QStringList{"-u", "alice", "-w", "alice-ws", "opened"}, 1,
         "User alice in workspace alice-ws is not logged in: log in with 'hbdepot login'. (code -34)"},
        {depot + QStringList{"-u", "mallory", "-w", "bob-ws", "-P", "x", "opened"}, 1, "Invalid password"},
        {bobArguments({"revert", bobPath("shared.kel")}), 1, "file not opened"},
        {depot + QStringList{"-t", "bogus", "login"}, 1, "The ticket is not valid"},
        {depot + QStringList{"-t", QString::fromStdString(m_aliceTicket), "-u", "bob", "opened"}, 1,
         "not of bob in workspace alice-ws"},
        {depot + QStringList{"workspace", "add", "carol-ws", "bob", at("nowhere")}, 1,
         "does not exist; create it first, or give --create"},
        {bobArguments({"change", "-d", "default"}), 1, "The default changelist cannot be deleted."},
        {bobArguments({"unlock", bobPath("shared.kel")}), 1, "Cannot unlock:"},
        {bobArguments({"reopen", "-c", "1", bobPath("shared.kel")}), 1, "is not a pending changelist of workspace bob-ws"},
        {bobArguments({"sync"}), 1, "Can't clobber writable file " + bobPath("shared.kel")},
        {depot + QStringList{"workspace", "delete", "alice-ws"}, 1, "Workspace alice-ws has 1 open files"},
        {depot + QStringList{"user", "delete", "alice"}, 1, "User alice owns workspaces (alice-ws)"},
        {depot + QStringList{"workspace", "add", "--create", "bob-ws", "bob", at("again/deeper")}, 1,
         "Workspace bob-ws already exists."},
        {{"-d", at("missing.db"), "-u", "bob", "-w", "bob-ws", "opened"}, 1, "there is no depot file"},
        {bobArguments({"edit", "-x", "f.kel"}), 2, "Usage: hbdepot [OPTIONS] edit"},
        {{"user"}, 2, "missing sub-command of 'user' (add, delete)"},
        {{"sync", "--help"}, 0, "  -f, --force   overwrite"},
        {{"sync", "--help"}, 0, "\nExample: hbdepot sync"},
        {depot + QStringList{"workspace", "add", "--create", "carol-ws", "bob", at("nowhere")}, 0},
    };
    for (const Row& row : rows)
        expect(row.arguments, row.exitCode, row.says);
    for (const QStringList& command : std::vector<QStringList>{
             {"frobnicate"}, {"edit"}, {"edit", "-c"}, {"status", "-n"}, {"opened", "more"}, {"describe"}, {"user", "add"},
             {"user", "add", "carol", "pw", "extra"}, {"sync", "--forse"}, {"submit", "-d", "a", "-d", "b"}, {"reopen"},
             {"unlock"}, {"revert"}, {"change", "-d", "3", "extra"}, {"change"}, {"changes", "-m", "0"},
             {"-z", "xml", "opened"}, {}, {"user"}, {"workspace", "frob"}, {"passwd", "bob", "extra"}, {"user", "delete"}})
        expect(bobArguments(command), 2);
    EXPECT_TRUE(run({}).errors.startsWith("Usage: hbdepot [OPTIONS] COMMAND"));
    EXPECT_TRUE(run({"sync", "--help"}).output.startsWith("Usage: hbdepot [OPTIONS] sync [-f] [FILE[#REV]...]"));
    const ToolRun help = expect({"help"}, 0);
    for (const char* verb : {"init", "user add", "workspace add", "login", "logout", "info", "sync", "edit", "add",
                             "delete", "revert", "reopen", "lock", "unlock", "opened", "change", "changes", "describe",
                             "submit", "status", "reconcile", "help", "passwd", "user delete", "workspace delete"})
        EXPECT_TRUE(help.output.contains(QString("\n  ") + verb + " ")) << verb << " is not listed";

    EXPECT_TRUE(fs::is_directory(path("nowhere")));
    EXPECT_FALSE(fs::exists(path("again"))) << "a refused workspace add leaves no folder";
    // The new workspace's .hbdepot names the depot, owner and workspace: no HBDEPOT needed inside.
    EXPECT_TRUE(runIn("nowhere", {"--json", "info"}).output.contains("\"workspace\":\"carol-ws\""));
    EXPECT_EQ(runIn("nowhere", {"workspace", "delete", "carol-ws"}).exitCode, 0);
    EXPECT_FALSE(fs::exists(path("nowhere/.hbdepot"))) << "the file named the deleted workspace";
    EXPECT_EQ(read(bobFile("shared.kel")), "bob's work") << "the refused sync kept bob's change";
    expect(bobArguments({"sync", "-f"}), 0);
    EXPECT_EQ(read(bobFile("shared.kel")), "v2");
}

TEST_F(DepotProcesses, AReadOnlyOrDamagedDepotAnswersClearly)
{
    fs::permissions(m_depotPath, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    expect(bobArguments({"status", bobPath("shared.kel")}), 0, " - up to date");
    expect(bobArguments({"edit", bobPath("shared.kel")}), 1, "is read-only for you");
    EXPECT_FALSE(isWritable(bobFile("shared.kel")));
    std::ofstream(path("damaged.db")) << std::string(200, 'x');
    const ToolRun unreadable = expect({"-d", at("damaged.db"), "-u", "bob", "-w", "bob-ws", "opened"}, 1);
    EXPECT_EQ(unreadable.errors.count("file is not a database"), 1) << unreadable.errors.toStdString();
}

TEST_F(DepotProcesses, ConcurrentWritersAllLand)
{
    // Each process adds its file in its own session, at the same time as the others.
    std::vector<std::unique_ptr<QProcess>> writers;
    for (const std::string name : {"part0.kel", "part1.kel", "part2.kel", "part3.kel"}) {
        write(bobFile(name), "part");
        writers.push_back(start(bobArguments({"add", bobPath(name)})));
    }
    for (auto& writer : writers)
        EXPECT_EQ(finish(*writer).exitCode, 0);
    std::vector<OpenedFile> opened;
    ok(m_alice->opened(m_aliceTicket, true, opened));
    EXPECT_EQ(opened.size(), writers.size());
}

TEST_F(DepotProcesses, TheAccountComesFromOptionEnvironmentFileOrFolderInThatOrder)
{
    write(path(".hbdepot"), "# the test's depot\ndepot = depot.db\nuser = bob\nworkspace = file-ws\n");
    // The file, then the environment over the file, then the option over both.
    const Variables environment = {{"HBDEPOT_WORKSPACE", "env-ws"}};
    using Row = std::tuple<QStringList, Variables, QString>;
    for (const auto& [options, variables, workspace] : std::vector<Row>{
             {{}, {}, "file-ws"}, {{}, environment, "env-ws"}, {{"-w", "option-ws"}, environment, "option-ws"}}) {
        const QString info = expect(options + QStringList{"--json", "info"}, 0, {}, {}, variables, "bob").output;
        EXPECT_TRUE(info.startsWith(R"({"format":1,"depot":")" + depotArgument() + R"(","user":"bob","workspace":")" + workspace))
            << info.toStdString();
    }

    // Without user and workspace in the file, the folder names them: bob works in his own.
    write(path(".hbdepot"), "depot = depot.db\n");
    write(aliceFile("art/ship.kel"), "hull");
    ok(m_alice->add(m_aliceTicket, {aliceFile("art/ship.kel")}, ""));
    ok(submit(*m_alice, m_aliceTicket, "the ship"));
    EXPECT_EQ(expect({"--password-stdin", "login"}, 0, {}, "bob-pw\n", {}, "bob").output,
              "User bob logged in to workspace bob-ws.\n");
    EXPECT_EQ(expect({"sync"}, 0, {}, {}, {}, "bob").output, "//depot/art/ship.kel#1 - updated\nupdated 1, deleted 0\n");
    fs::create_directories(bobFile("art"));
    EXPECT_EQ(runIn("bob/art", {"edit", "-q", "ship.kel"}).output, "") << "-q, also after the command, says nothing";
    const ToolRun status = runIn("bob/art", {"-z", "json", "status", "ship.kel", "../shared.kel"});
    EXPECT_EQ(status.output.toStdString(),
              "{\"format\":1,\"files\":[{\"file\":\"ship.kel\",\"path\":\"" + bobFile("art/ship.kel") +
                  "\",\"status\":\"0x1\",\"words\":[\"open for edit\"],\"changelist\":\"default\",\"holders\":[]},"
                  "{\"file\":\"../shared.kel\",\"path\":\"" + bobFile("shared.kel") +
                  "\",\"status\":\"0x0\",\"words\":[\"up to date\"],\"changelist\":\"\",\"holders\":[]}]}\n");
    EXPECT_EQ(runIn(".", {"opened"}).exitCode, 2) << "above every workspace nobody is inferred";
}

TEST_F(DepotProcesses, ThePromptHidesWhatIsTypedAtOnceAndPasswdAsksTwice)
{
    const ToolRun login = runOnTerminal(bobWithoutPassword({"login"}), {"bob-pw"});
    EXPECT_EQ(login.exitCode, 0) << login.output.toStdString();
    EXPECT_TRUE(login.output.contains("Password for bob: ") && !login.output.contains("bob-pw"))
        << login.output.toStdString();
    const ToolRun differ = runOnTerminal(bobWithoutPassword({"passwd"}), {"one", "two"});
    EXPECT_EQ(differ.exitCode, 1);
    EXPECT_TRUE(differ.output.contains("the two passwords differ")) << differ.output.toStdString();
    const ToolRun passwd = runOnTerminal(bobWithoutPassword({"passwd"}), {"new-pw", "new-pw"});
    EXPECT_EQ(passwd.exitCode, 0) << passwd.output.toStdString();
    EXPECT_FALSE(passwd.output.contains("new-pw")) << passwd.output.toStdString();
    EXPECT_EQ(run(bobWithoutPassword({"login", "--password-stdin"}), "new-pw\n").exitCode, 0);
}

TEST_F(DepotProcesses, AUserWhoMayOnlyReadGetsTheWritersAnswers)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "runs hbdepot as a second user (nobody), which needs root";
    // No connection stays open, so that no side file of the write-ahead log stays either.
    m_alice.reset();
    m_bob.reset();
    const auto readable = fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                          fs::perms::others_read | fs::perms::others_exec;
    for (const std::string& folder : {path("bob"), path("")})
        fs::permissions(folder, readable, fs::perm_options::add);
    const QStringList asNobody = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
    for (const QStringList& reading : std::vector<QStringList>{{"status", bobPath("shared.kel")},
                                                               {"opened", "-a"},
                                                               {"changes", "-s", "submitted"},
                                                               {"describe", "1"},
                                                               {"--json", "info"}}) {
        m_runAs = {};
        const ToolRun writer = run(bobArguments(reading));
        m_runAs = asNobody;
        const ToolRun reader = run(bobArguments(reading));
        EXPECT_EQ(reader.exitCode, 0) << reader.errors.toStdString();
        EXPECT_EQ(reader.output, writer.output) << reading.join(' ').toStdString();
    }
    expect(bobArguments({"edit", bobPath("shared.kel")}), 1, "is read-only for you");
    fs::permissions(m_depotPath, fs::perms::owner_read | fs::perms::owner_write);
    expect(bobArguments({"opened"}), 1, "you may not read the depot file");
}

TEST_F(DepotProcesses, AFullDiskFailsOnlyTheFilesItHitAndOnlyInItsWorkspace)
{
    const std::string small = path("small");
    fs::create_directories(small);
    if (::geteuid() != 0 || ::mount("tmpfs", small.c_str(), "tmpfs", 0, "size=64k") != 0)
        GTEST_SKIP() << "needs a 64 KiB file system: a tmpfs that only root may mount";
    const std::unique_ptr<const char, void (*)(const char*)> unmount(small.c_str(),
                                                                   [](const char* at) { ::umount2(at, MNT_DETACH); });
    ok(m_alice->addWorkspace("small-ws", "bob", small));
    std::vector<std::string> big;
    for (char c = 'a'; c < 'g'; ++c) {
        big.push_back(aliceFile(std::string(1, c) + ".bin"));
        write(big.back(), std::string(20000, c));
    }
    ok(m_alice->add(m_aliceTicket, big, ""));
    ok(submit(*m_alice, m_aliceTicket, "six files of 20 kB"));
    const QStringList inSmall = {"-d", depotArgument(), "-u", "bob", "-w", "small-ws", "-P", "bob-pw"};
    const ToolRun sync = expect(inSmall + QStringList{"sync"}, 1, "Cannot write '" + at("small/f.bin") + "': No space left");
    const auto written = [&] { return std::distance(fs::directory_iterator(small), fs::directory_iterator()); };
    const auto count = written();
    EXPECT_TRUE(count > 0 && count < 7) << count;
    EXPECT_TRUE(sync.output.contains(QString("updated %1, deleted 0").arg(count))) << sync.output.toStdString();
    EXPECT_FALSE(sync.errors.contains(".hbdepot-")) << "names the workspace file, not its temporary";

    const ToolRun elsewhere = expect(bobArguments({"edit", bobPath("shared.kel")}), 0);
    EXPECT_FALSE(elsewhere.errors.contains("waiting")) << "another workspace's steps are not its concern";
    fs::remove(small + "/a.bin");
    const ToolRun later = expect(inSmall + QStringList{"opened"}, 0);
    EXPECT_TRUE(later.errors.contains("still waiting") && later.errors.contains("f.bin")) << later.errors.toStdString();
    EXPECT_EQ(written(), count) << "the freed space took the next waiting file, and nothing else";
}

}  // namespace
