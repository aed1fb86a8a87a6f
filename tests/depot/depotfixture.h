#pragma once

// Two users on one depot, each with a workspace and a connection of their own, as two hosts
// would be: alice (password "alice-pw", workspace "alice-ws") and bob ("bob-pw", "bob-ws").
// The depot starts with "shared.kel" (revision 1, "v1") synced into both workspaces. The hbdepot
// tool runs as another process on the same depot.

#include <depot/depot.h>

#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>

// What a run of hbdepot answered.
struct ToolRun
{
    int exitCode = -1;
    QString output;
    QString errors;
};

class DepotFixture : public ::testing::Test
{
public:  // the status table's rows act on the fixture from outside
    using Depot = hbrc::depot::Depot;

    void SetUp() override
    {
        using namespace hbrc::depot;
        ASSERT_TRUE(m_dir.isValid());
        m_depotPath = path("depot.db");
        ASSERT_TRUE(Depot::create(m_depotPath, std::chrono::seconds(3600)).ok());
        // The tests move their own clock, starting from now, since hbdepot runs on the real one.
        m_now = std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch())
                    .count();
        DepotOptions options;
        options.clock = [this] { return m_now; };
        options.passwordHashCost = PasswordHashCost::Minimal;
        m_alice = std::make_unique<Depot>(m_depotPath, options);
        m_bob = std::make_unique<Depot>(m_depotPath, options);
        ok(m_alice->addUser("alice", "alice-pw"));
        ok(m_alice->addUser("bob", "bob-pw"));
        ok(m_alice->addWorkspace("alice-ws", "alice", path("alice")));
        ok(m_alice->addWorkspace("bob-ws", "bob", path("bob")));
        ok(m_alice->login("alice", "alice-pw", "alice-ws", m_aliceTicket));
        ok(m_bob->login("bob", "bob-pw", "bob-ws", m_bobTicket));
        write(aliceFile("shared.kel"), "v1");
        ok(m_alice->add(m_aliceTicket, {aliceFile("shared.kel")}, ""));
        ok(submit(*m_alice, m_aliceTicket, "first asset"));
        ok(m_bob->sync(m_bobTicket, {}));
    }

    static void ok(const hbrc::depot::Result& result) { ASSERT_TRUE(result.ok()) << result.error; }
    // A refusal with its code and a text saying `says`.
    static void refused(const hbrc::depot::Result& result, int code, const std::string& says)
    {
        EXPECT_EQ(result.code, code) << result.error;
        EXPECT_NE(result.error.find(says), std::string::npos) << result.error << "\nlacks: " << says;
    }

    std::string path(const std::string& relative) const
    {
        return m_dir.filePath(QString::fromStdString(relative)).toStdString();
    }
    std::string aliceFile(const std::string& relative) const { return path("alice/" + relative); }
    std::string bobFile(const std::string& relative) const { return path("bob/" + relative); }
    // The status words alice and bob get for a file of their own workspace.
    std::uint32_t aliceSees(const std::string& relative) { return statusOf(*m_alice, m_aliceTicket, aliceFile(relative)).word; }
    std::uint32_t bobSees(const std::string& relative) { return statusOf(*m_bob, m_bobTicket, bobFile(relative)).word; }

    static void write(const std::string& file, const std::string& content)
    {
        namespace fs = std::filesystem;
        fs::create_directories(fs::path(file).parent_path());
        std::error_code ignored;
        fs::permissions(file, fs::perms::owner_write, fs::perm_options::add, ignored);
        std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
    }
    static std::string read(const std::string& file)
    {
        std::ifstream in(file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    static bool isWritable(const std::string& file)
    {
        namespace fs = std::filesystem;
        return (fs::status(file).permissions() & fs::perms::owner_write) != fs::perms::none;
    }

    static hbrc::depot::FileStatus statusOf(Depot& depot, const std::string& ticket, const std::string& file)
    {
        std::vector<hbrc::depot::FileStatus> statuses;
        const hbrc::depot::Result result = depot.status(ticket, {file}, statuses);
        EXPECT_TRUE(result.ok()) << result.error;
        return statuses.empty() ? hbrc::depot::FileStatus{} : statuses.front();
    }
    // Submits the default changelist.
    static hbrc::depot::Result submit(Depot& depot, const std::string& ticket, const std::string& description)
    {
        hbrc::depot::ChangelistId submitted;
        return depot.submit(ticket, "", description, submitted);
    }
    // Adds and submits a new file holding `content` from bob's workspace.
    void bobSubmitsNewFile(const std::string& relative, const std::string& content)
    {
        write(bobFile(relative), content);
        ok(m_bob->add(m_bobTicket, {bobFile(relative)}, ""));
        ok(submit(*m_bob, m_bobTicket, "bob adds " + relative));
    }

    // hbdepot with these arguments. Kept tickets go to the test's folder, never to the user's home.
    // `variables` are set in the process's environment, and it runs in `folder` (of the test's)
    // when one is given.
    using Variables = std::map<QString, QString>;
    std::unique_ptr<QProcess> start(const QStringList& arguments, const QByteArray& input = {},
                                    const Variables& variables = {}, const std::string& folder = {}) const
    {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HBDEPOT_TICKETS", QString::fromStdString(path("tickets")));
        for (const char* name : {"HBDEPOT", "HBDEPOT_USER", "HBDEPOT_WORKSPACE", "HBDEPOT_PASSWORD", "HBDEPOT_TICKET"})
            environment.remove(name);
        for (const auto& [name, value] : variables)
            environment.insert(name, value);
        process->setProcessEnvironment(environment);
        process->setWorkingDirectory(folder.empty() ? QString() : at(folder));
        const QStringList command = m_runAs + QStringList{QStringLiteral(HBDEPOT_EXECUTABLE)} + arguments;
        process->start(command.first(), command.mid(1));
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
    ToolRun run(const QStringList& arguments, const QByteArray& input = {}, const Variables& variables = {},
                const std::string& folder = {}) const
    {
        return finish(*start(arguments, input, variables, folder));
    }
    QString at(const std::string& relative) const { return QString::fromStdString(path(relative)); }

    QTemporaryDir m_dir;
    std::string m_depotPath;
    std::int64_t m_now = 0;
    std::unique_ptr<Depot> m_alice;
    std::unique_ptr<Depot> m_bob;
    std::string m_aliceTicket;
    std::string m_bobTicket;
    // A program and its arguments that hbdepot runs under (another user's), or none.
    QStringList m_runAs;
};
