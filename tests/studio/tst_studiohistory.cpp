// Who changed Rock's colour, when, and what was it before: the History tab, Get This Revision and
// Submitted Changes in alice's real window, on the embedded depot and on Subversion, after alice
// and bob each submitted two changes to Rock from their own workspaces; and the per-field
// difference itself, row by row.
#include "assetdiff.h"
#include "differenceview.h"
#include "historypane.h"
#include "studiofixture.h"
#include "submittedchangesdock.h"
#include "submittedchangesmodel.h"

#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <qtextention/qfunctoraction.h>

#include <QComboBox>
#include <QPushButton>
#include <QTabBar>
#include <QTreeWidget>

using namespace hbrc::studio;
using namespace hbrc::test;

namespace {

enum class Backend { Depot, Subversion };

// A list as lines, so that a failure prints it readably.
std::string lines(const QStringList& list)
{
    return list.join('\n').toStdString();
}

// One change to Rock: who makes it, its new fields and its description.
struct RockChange
{
    const char* user;
    std::map<std::string, std::string> fields;
    const char* description;
};

const RockChange kChanges[] = {
    {"alice", {{"colour", "#aa0000"}}, "alice: a warmer rock"},
    {"bob", {{"colour", "#00bb00"}}, "bob: mossy rock"},
    {"alice", {{"colour", "#0000cc"}}, "alice: a bluish rock"},
    {"bob", {{"colour", "#dddd00"}, {"roughness", "0.40"}}, "bob: polished yellow rock"},
};

class StudioHistory : public StudioFixture<::testing::TestWithParam<Backend>>
{
protected:
    void SetUp() override
    {
        StudioFixture::SetUp();
        makeDemo(GetParam() == Backend::Subversion);
        alice = hbrc::host::OpenRevisionServer(depot->path(), {});
        ASSERT_TRUE(alice->login("alice", "alice-pw", depot->workspace("alice"), aliceTicket).ok());
        for (const RockChange& change : kChanges)
            submit(change);
        ASSERT_TRUE(alice->sync(aliceTicket, {}).ok());
        startAlice("alice-pw");
    }
    // The user brings Rock up to date, opens it, changes its fields and submits it.
    void submit(const RockChange& change)
    {
        const bool byBob = std::string(change.user) == "bob";
        hbrc::host::RevisionServer& connection = byBob ? depot->bob() : *alice;
        const std::string& ticket = byBob ? depot->bobTicket() : aliceTicket;
        const std::string file = depot->folderPath(change.user) + "/Rock.kel";
        ASSERT_TRUE(connection.sync(ticket, {file}).ok());
        ASSERT_TRUE(connection.edit(ticket, {file}, "").ok());
        SubmitFields(connection, ticket, file, change.fields, change.description);
    }
    HistoryPane& history() const { return window->history(); }
    // Clicks the property pane's tab of that page.
    void clickTab(const QString& page)
    {
        QTabBar* tabs = window->propertyPane().tabBar();
        const int index = window->propertyPane().indexOfPage(page);
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(index).center());
        ASSERT_EQ(window->propertyPane().currentIndex(), index);
    }
    void waitFor(const std::function<bool()>& done) { ASSERT_TRUE(DialogDriver::waitUntil(done, 20000)); }
    // Selects the rows of the History tab that show these texts in the description column.
    void chooseRevisions(const QStringList& descriptions)
    {
        waitFor([this] { return !history().isPending() && history().revisions()->topLevelItemCount() > 1; });
        QTreeWidget* list = history().revisions();
        list->clearSelection();
        for (int row = 0; row < list->topLevelItemCount(); ++row)
            if (descriptions.contains(list->topLevelItem(row)->text(HistoryPane::DescriptionColumn)))
                list->topLevelItem(row)->setSelected(true);
        waitFor([this] { return !history().isPending() && history().differences()->message().isEmpty(); });
    }
    // The difference shown: "field: before -> after (kind)" per row.
    static QStringList differencesIn(const DifferenceView& view)
    {
        QStringList rows;
        for (const FieldDifference& row : view.differences().rows())
            rows << QStringLiteral("%1: %2 -> %3 (%4)").arg(row.field, row.before, row.after, AssetDiff::kindName(row.kind));
        return rows;
    }

    std::unique_ptr<hbrc::host::RevisionServer> alice;
    std::string aliceTicket;
};

TEST_P(StudioHistory, WhoChangedRocksColourWhenAndWhatItWasBefore)
{
    select("Rock");
    clickTab(QStringLiteral("revisionHistoryPage"));
    waitFor([this] { return !history().isPending() && history().revisions()->topLevelItemCount() > 1; });
    QStringList listed;
    for (int row = 0; row < history().revisions()->topLevelItemCount(); ++row) {
        const QTreeWidgetItem* item = history().revisions()->topLevelItem(row);
        listed << item->text(HistoryPane::FileColumn) + ' ' + item->text(HistoryPane::UserColumn) + ' ' +
                      item->text(HistoryPane::DescriptionColumn);
    }
    EXPECT_EQ(lines(listed), lines({"Rock  the revision you have, with the edits in memory",
                                   "Rock.kel bob bob: polished yellow rock", "Rock.kel alice alice: a bluish rock",
                                   "Rock.kel bob bob: mossy rock", "Rock.kel alice alice: a warmer rock",
                                   "Rock.kel alice sample workspace", "rock.bin alice sample workspace"}));

    // Exactly the fields bob's last change touched, with the external file said to be unchanged.
    chooseRevisions({"alice: a bluish rock", "bob: polished yellow rock"});
    const QStringList bobsLast = differencesIn(*history().differences());
    ASSERT_EQ(bobsLast.size(), 3) << lines(bobsLast);
    EXPECT_EQ(lines(bobsLast.mid(0, 2)), lines({"colour: #0000cc -> #dddd00 (changed)", "roughness: 0.85 -> 0.40 (changed)"}));
    EXPECT_TRUE(bobsLast[2].startsWith("rock.bin:") && bobsLast[2].endsWith("(unchanged)")) << bobsLast[2].toStdString();
    const DifferenceModel& shown = history().differences()->differences();
    EXPECT_EQ(shown.index(0, DifferenceModel::BeforeColumn).data(Qt::DecorationRole).value<QColor>(), QColor("#0000cc"));

    // An edit in memory compares with what it was, and holds Get This Revision back until undone.
    session->settings()->SetActionWhenEditingReadOnlyAsset(IRevisionControlPropertiesMgr::eActionCheckOut);
    typeColour(QStringLiteral("#123456"));
    waitForOperations();
    ASSERT_EQ(colourShown(), QStringLiteral("#123456"));
    chooseRevisions({"alice: a bluish rock", "the revision you have, with the edits in memory"});
    EXPECT_EQ(differencesIn(*history().differences()).value(0).toStdString(), "colour: #0000cc -> #123456 (changed)");
    chooseRevisions({"alice: a warmer rock"});
    QTest::mouseClick(history().findChild<QPushButton*>(QStringLiteral("getThisRevision")), Qt::LeftButton);
    EXPECT_TRUE(logged(QStringLiteral("Not brought to the chosen revision because of unsaved edits: Rock. Save or undo them first.")));
    EXPECT_EQ(colourShown().toStdString(), "#123456");

    // Undone, the edit lets Get This Revision bring alice's first colour back from disk.
    window->action(QStringLiteral("undo"))->trigger();
    waitForOperations();
    chooseRevisions({"alice: a warmer rock"});
    QTest::mouseClick(history().findChild<QPushButton*>(QStringLiteral("getThisRevision")), Qt::LeftButton);
    waitForOperations();
    EXPECT_EQ(colourShown().toStdString(), "#aa0000");

    // Submitted Changes: newest first, filtered by user and text; a double-click selects Rock.
    select("Sky");
    window->action(QStringLiteral("submittedChanges"))->trigger();
    SubmittedChangesDock& dock = window->submittedChanges();
    waitFor([&dock] { return !dock.isPending() && dock.model().rowCount() == 5; });
    QStringList changes;
    for (int row = 0; row < dock.model().rowCount(); ++row)
        changes << dock.model().index(row, SubmittedChangesModel::DescriptionColumn).data().toString();
    EXPECT_EQ(lines(changes), lines({"bob: polished yellow rock", "alice: a bluish rock", "bob: mossy rock",
                                      "alice: a warmer rock", "sample workspace"}));
    auto* user = dock.findChild<QComboBox*>(QStringLiteral("userFilter"));
    user->setCurrentText(QStringLiteral("bob"));
    EXPECT_EQ(dock.model().rowCount(), 2);
    QTest::keyClicks(dock.findChild<QLineEdit*>(QStringLiteral("textFilter")), QStringLiteral("MOSSY"));
    ASSERT_EQ(dock.model().rowCount(), 1);
    dock.changes()->setCurrentIndex(dock.model().index(0, 0));
    waitFor([&dock] { return !dock.isPending() && dock.files()->topLevelItemCount() == 1 &&
                             dock.differences()->message().isEmpty(); });
    EXPECT_EQ(differencesIn(*dock.differences()).value(0).toStdString(), "colour: #aa0000 -> #00bb00 (changed)");
    QTreeWidgetItem* rockFile = dock.files()->topLevelItem(0);
    // A double-click as the window system delivers it: a click, then the second press.
    const QPoint onRock = dock.files()->visualItemRect(rockFile).center();
    QTest::mouseClick(dock.files()->viewport(), Qt::LeftButton, {}, onRock);
    QTest::mouseDClick(dock.files()->viewport(), Qt::LeftButton, {}, onRock);
    EXPECT_EQ(window->browser().currentAsset(), KELHandle<kel4::IDbObject>(asset("Rock")));
}

INSTANTIATE_TEST_SUITE_P(Backends, StudioHistory, ::testing::Values(Backend::Depot, Backend::Subversion),
                         [](const ::testing::TestParamInfo<Backend>& info) {
                             return info.param == Backend::Depot ? "Depot" : "Subversion";
                         });

// The rows of a difference for the cases a reader of the History tab relies on.
TEST(AssetDiff, RowsSayWhatChangedInFieldOrder)
{
    auto version = [](std::map<std::string, std::string> fields, std::vector<ExternalFileState> files = {}) {
        AssetVersion made{true, {}, std::move(files)};
        made.record.name = "Rock";
        made.record.fields = std::move(fields);
        return made;
    };
    const ExternalFileState small = ExternalFileState::of("rock.bin", "abc");
    const ExternalFileState sameSize = ExternalFileState::of("rock.bin", "abd");
    const struct
    {
        const char* name;
        AssetVersion before, after;
        QStringList rows;  // field, kind and how the values read
    } cases[] = {
        {"a changed number", version({{"roughness", "0.85"}}), version({{"roughness", "0.4"}}), {"roughness changed number"}},
        {"an added and a removed field, in field order", version({{"b", "1"}, {"z", "x"}}),
         version({{"a", "x"}, {"b", "1"}}), {"a added text", "z removed text"}},
        {"a colour", version({{"colour", "#7a746c"}}), version({{"colour", "#aa0000"}}), {"colour changed colour"}},
        {"an external file of the same size changed", version({}, {small}), version({}, {sameSize}),
         {"rock.bin changed file"}},
        {"an external file unchanged, one gone", version({}, {small, ExternalFileState::of("old.bin", "")}),
         version({}, {small}), {"rock.bin unchanged file", "old.bin removed file"}},
        {"an asset that did not exist", AssetVersion{}, version({{"colour", "#aa0000"}}),
         {"name added text", "type added text", "kind added text", "colour added colour"}},
    };
    const char* const values[] = {"text", "number", "colour", "file"};
    for (const auto& c : cases) {
        QStringList rows;
        for (const FieldDifference& row : AssetDiff::compare(c.before, c.after))
            rows << row.field + ' ' + AssetDiff::kindName(row.kind) + ' ' + values[int(row.value)];
        EXPECT_EQ(lines(rows), lines(c.rows)) << c.name;
    }
}

}  // namespace
