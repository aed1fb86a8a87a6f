// Another process on the same depot: the hbdepot tool run as bob while alice works in-process.
#include "depotfixture.h"

#include <QProcess>

#include <memory>

using namespace hbrc::depot;

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

    static std::unique_ptr<QProcess> start(const QStringList& arguments)
    {
        auto process = std::make_unique<QProcess>();
        process->start(QStringLiteral(HBDEPOT_EXECUTABLE), arguments);
        return process;
    }

    static ToolRun finish(QProcess& process)
    {
        EXPECT_TRUE(process.waitForFinished(60000)) << "hbdepot did not finish";
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    static ToolRun run(const QStringList& arguments) { return finish(*start(arguments)); }
};

TEST_F(DepotProcesses, EachSideSeesTheOthersChanges)
{
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    const ToolRun status = run(bobArguments({"status", QString::fromStdString(bobFile("shared.kel"))}));
    ASSERT_EQ(status.exitCode, 0) << status.errors.toStdString();
    EXPECT_TRUE(status.output.contains(" 0x2 held by alice")) << status.output.toStdString();

    write(bobFile("ship.kel"), "hull");
    const ToolRun add = run(bobArguments({"add", QString::fromStdString(bobFile("ship.kel"))}));
    ASSERT_EQ(add.exitCode, 0) << add.errors.toStdString();
    const ToolRun submit = run(bobArguments({"submit", "-d", "the ship"}));
    ASSERT_EQ(submit.exitCode, 0) << submit.errors.toStdString();
    EXPECT_EQ(submit.output.trimmed(), "Change 2 submitted.");
    EXPECT_EQ(statusOf(*m_alice, m_aliceTicket, aliceFile("ship.kel")).word, status::NotAtHead);
}

TEST_F(DepotProcesses, RefusalsAndBadUsageHaveTheirExitCodes)
{
    const ToolRun wrongPassword = run(bobArguments({"opened"}, "nope"));
    EXPECT_EQ(wrongPassword.exitCode, 1);
    EXPECT_TRUE(wrongPassword.errors.contains("Invalid password")) << wrongPassword.errors.toStdString();
    EXPECT_EQ(run(bobArguments({"frobnicate"})).exitCode, 2);
    EXPECT_EQ(run(bobArguments({"edit", "-c"})).exitCode, 2);
    const ToolRun help = run({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.output.contains("submit [-c CHANGE] [-d DESCRIPTION]"));
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

}  // namespace
