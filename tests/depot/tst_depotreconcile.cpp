// hbdepot on the files alice changed without opening them: the status of her whole workspace, and
// reconcile opening them, all or none, while bob holds one of them and has submitted a newer
// revision of another.
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
    for (const char* file : {"edited.kel", "gone.kel", "held.kel", "newer.kel"})
        write(aliceFile(file), "v1");
    ok(m_alice->add(m_aliceTicket, {aliceFile("edited.kel"), aliceFile("gone.kel"), aliceFile("held.kel"),
                                    aliceFile("newer.kel")}, ""));
    ok(submit(*m_alice, m_aliceTicket, "four more"));
    ok(m_bob->sync(m_bobTicket, {}));
    ok(m_bob->edit(m_bobTicket, {bobFile("newer.kel")}, ""));
    write(bobFile("newer.kel"), "v2 by bob");
    ok(submit(*m_bob, m_bobTicket, "bob's newer"));
    for (const char* file : {"edited.kel", "held.kel", "newer.kel"})
        write(aliceFile(file), "v2 by alice");
    const std::string kept = aliceFile("newer.kel.hbdepot-kept");
    const auto aliceHas = [&](const char* file) {
        std::vector<FileStatus> statuses;
        ok(m_alice->status(m_aliceTicket, {aliceFile(file)}, statuses));
        return statuses.at(0).haveRevision;
    };
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
          "newer.kel - not at head, edited, not opened\n"
          "props/new.kel - not in depot, new, not opened\n"}},
        {"StatusAsJson", {}, {"--json", "status"}, 0, {R"("file":"gone.kel")", R"("unopened":"delete")"}},
        {"OnlySaysWithN", {}, {"reconcile", "-n", "-q"}, 0,
         {"edited.kel - would be opened for edit in the default changelist\n",
          "newer.kel - would be refused: revision 2 is newer (--keep-mine keeps your content over it)\n"
          "props/new.kel - would be opened for add in the default changelist\n"}},
        {"RefusedWhileBobHoldsOne", {}, {"reconcile", "--keep-mine"}, 1,
         {"//depot/held.kel is locked by bob@bob-ws", "Nothing was opened"},
         [&] {
             EXPECT_TRUE(aliceOpened().empty()) << "all or none";
             EXPECT_EQ(read(aliceFile("newer.kel")), "v2 by alice");
             EXPECT_EQ(aliceHas("newer.kel"), 1) << "back at the revision she had";
             EXPECT_FALSE(fs::exists(kept));
             EXPECT_FALSE(fs::exists(aliceFile("gone.kel"))) << "the reverted delete leaves the file gone";
             EXPECT_EQ(read(aliceFile("props/new.kel")), "new");
         }},
        {"IntoAChangelistBelowPaths", [&] { ok(m_bob->revert(m_bobTicket, {bobFile("held.kel")})); },
         {"reconcile", "-c", QString::fromStdString(offline), "props", "edited.kel"}, 0,
         {"edited.kel - opened for edit in change " + QString::fromStdString(offline) +
          "\nprops/new.kel - opened for add in change " + QString::fromStdString(offline) + "\n"}},
        {"TheRestKeepingHersAfterAnInterruptedRun",
         [&] {
             write(kept, "v2 by alice");
             fs::remove(aliceFile("newer.kel"));
         },
         {"reconcile", "--keep-mine"}, 0,
         {"newer.kel - your content is back from an interrupted reconcile\n",
          "gone.kel - opened for delete in the default changelist\nheld.kel - opened for edit in the default "
          "changelist\nnewer.kel - opened for edit in the default changelist, keeping your content over revision 2\n"},
         [&] {
             EXPECT_EQ(aliceHas("newer.kel"), 2);
             EXPECT_FALSE(fs::exists(kept));
         }},
        {"NothingLeft", {}, {"reconcile", "-n"}, 0, {"No files changed without being opened."}},
        {"ABadOption", {}, {"reconcile", "-x"}, 2, {"Usage: hbdepot [OPTIONS] reconcile [-n] [--keep-mine] [-c CHANGE] [PATH...]"}},
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
                                                       "//depot/held.kel edit ", "//depot/newer.kel edit ",
                                                       "//depot/props/new.kel add " + offline}));
    for (const char* file : {"edited.kel", "held.kel", "newer.kel"})
        EXPECT_EQ(read(aliceFile(file)), "v2 by alice") << file;
}

}  // namespace
