// hbdepot on the files alice changed without opening them: the status of her whole workspace, and
// reconcile opening them, all or none, while bob holds one of them.
#include "depotfixture.h"

#include <functional>

using namespace hbrc::depot;
namespace fs = std::filesystem;

namespace {

class DepotReconcile : public DepotFixture
{
public:
    // hbdepot as alice in her workspace's root, so that it names files from there: its exit code
    // and all it wrote.
    std::pair<int, QString> alice(const QStringList& arguments) const
    {
        const ToolRun answer = run(QStringList{"-d", at("depot.db"), "-u", "alice", "-w", "alice-ws"} + arguments, {},
                                   {{"HBDEPOT_PASSWORD", "alice-pw"}}, "alice");
        return {answer.exitCode, answer.output + answer.errors};
    }
    std::vector<std::string> aliceOpened()
    {
        std::vector<OpenedFile> files;
        ok(m_alice->opened(m_aliceTicket, false, files));
        std::vector<std::string> lines;
        for (const OpenedFile& file : files)
            lines.push_back(file.depotPath + " " + actionName(file.action) + " " + file.changelist);
        return lines;
    }
};

TEST_F(DepotReconcile, StatusShowsTheUnopenedChangesAndReconcileOpensThemAllOrNone)
{
    for (const char* file : {"edited.kel", "gone.kel", "held.kel"})
        write(aliceFile(file), "v1");
    ok(m_alice->add(m_aliceTicket, {aliceFile("edited.kel"), aliceFile("gone.kel"), aliceFile("held.kel")}, ""));
    ok(submit(*m_alice, m_aliceTicket, "three more"));
    ok(m_bob->sync(m_bobTicket, {}));
    write(aliceFile("edited.kel"), "v2 by alice");
    write(aliceFile("held.kel"), "v2 by alice");
    write(aliceFile("props/new.kel"), "new");
    fs::remove(aliceFile("gone.kel"));
    ok(m_bob->edit(m_bobTicket, {bobFile("held.kel")}, ""));
    ok(m_bob->lock(m_bobTicket, {bobFile("held.kel")}));
    ChangelistId offline;
    ok(m_alice->createChangelist(m_aliceTicket, "offline work", offline));

    struct Row
    {
        const char* name;
        std::function<void()> before;
        QStringList arguments;
        int exitCode;
        QStringList says;
        std::function<void()> after = {};
    };
    const std::vector<Row> rows = {
        {"StatusOfTheWholeWorkspace", {}, {"status"}, 0,
         {"edited.kel - edited, not opened\ngone.kel - deleted, not opened\n"
          "held.kel - edited by others, locked by others, edited, not opened (bob)\n"
          "props/new.kel - not in depot, new, not opened\n"}},
        {"StatusAsJson", {}, {"--json", "status"}, 0, {R"("file":"gone.kel")", R"("unopened":"delete")"}},
        {"OnlySaysWithN", {}, {"reconcile", "-n", "-q"}, 0,
         {"edited.kel - would be opened for edit in the default changelist\n",
          "props/new.kel - would be opened for add in the default changelist\n"}},
        {"RefusedWhileBobHoldsOne", {}, {"reconcile"}, 1,
         {"//depot/held.kel is locked by bob@bob-ws", "Nothing was opened"},
         [&] {
             EXPECT_TRUE(aliceOpened().empty()) << "all or none";
             EXPECT_FALSE(fs::exists(aliceFile("gone.kel"))) << "the reverted delete leaves the file gone";
             EXPECT_EQ(read(aliceFile("props/new.kel")), "new");
         }},
        {"IntoAChangelistBelowPaths", [&] { ok(m_bob->revert(m_bobTicket, {bobFile("held.kel")})); },
         {"reconcile", "-c", QString::fromStdString(offline), "props", "edited.kel"}, 0,
         {"edited.kel - opened for edit in change " + QString::fromStdString(offline) +
          "\nprops/new.kel - opened for add in change " + QString::fromStdString(offline) + "\n"}},
        {"TheRestIntoTheDefault", {}, {"reconcile"}, 0,
         {"gone.kel - opened for delete in the default changelist\nheld.kel - opened for edit"}},
        {"NothingLeft", {}, {"reconcile", "-n"}, 0, {"No files changed without being opened."}},
        {"ABadOption", {}, {"reconcile", "-x"}, 2, {"Usage: hbdepot [OPTIONS] reconcile [-n] [-c CHANGE] [PATH...]"}},
    };
    for (const Row& row : rows) {
        if (row.before)
            row.before();
        const auto [exitCode, text] = alice(row.arguments);
        EXPECT_EQ(exitCode, row.exitCode) << row.name << ": " << text.toStdString();
        for (const QString& part : row.says)
            EXPECT_TRUE(text.contains(part)) << row.name << ": " << text.toStdString() << "\nlacks: " << part.toStdString();
        if (row.after)
            row.after();
    }
    EXPECT_EQ(aliceOpened(), (std::vector<std::string>{"//depot/edited.kel edit " + offline, "//depot/gone.kel delete ",
                                                       "//depot/held.kel edit ", "//depot/props/new.kel add " + offline}));
    EXPECT_EQ(read(aliceFile("edited.kel")), "v2 by alice");
    EXPECT_EQ(read(aliceFile("held.kel")), "v2 by alice");
}

}  // namespace
