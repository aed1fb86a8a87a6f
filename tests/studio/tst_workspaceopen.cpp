// A workspace of a few thousand assets opening in hbrc-studio's window: the assets are read off
// the UI thread and shown batch by batch with the progress in the status bar, nothing acts on the
// half-read workspace, and once it is read it is whole, asked about once, and editable.
#include "studiofixture.h"

#include <hbrcdatamodel/kelformat.h>
#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>

#include <QDir>
#include <QRegularExpression>
#include <QTreeView>

#include <algorithm>

namespace {

class WorkspaceOpen : public hbrc::test::StudioFixture<>
{
protected:
    // count metadata assets that were never submitted, in a sub-folder of folder.
    static void writeAssets(const QString& folder, int count)
    {
        ASSERT_TRUE(QDir(folder).mkpath(QStringLiteral("many")));
        for (int i = 0; i < count; ++i) {
            hbrc::host::AssetRecord record;
            record.id = "many-" + std::to_string(i);
            record.kind = hbrc::host::AssetKind::Metadata;
            record.type = "Asset";
            record.name = "Many" + std::to_string(i);
            record.fields = {{"colour", "#808080"}};
            QFile file(QStringLiteral("%1/many/Many%2.kel").arg(folder).arg(i));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(QByteArray::fromStdString(hbrc::host::KelFormat::Serialize(record)));
        }
    }
};

TEST_F(WorkspaceOpen, ShowsTheAssetsWhileTheyAreReadAndIsWholeAndEditableOnceRead)
{
    startOnDemo();
    const int seeded = window->model().rowCount();
    window->closeWorkspace();
    constexpr int kMany = 3000;
    writeAssets(depot->folder("alice"), kMany);

    // What the window shows when rows arrive before the read ends: the first rows, the last progress.
    int firstRows = 0;
    bool browserTookInput = false;
    QString progress;
    QObject::connect(&window->model(), &QAbstractItemModel::rowsInserted, window.get(), [&] {
        if (!window->isOpening())
            return;
        firstRows = firstRows ? firstRows : window->model().rowCount();
        browserTookInput = browserTookInput || window->browser().isEnabled();
        progress = window->statusBar()->currentMessage();
    });
    const std::uint64_t roundTrips = window->model().statusQuery().roundTrips();
    ASSERT_TRUE(window->openWorkspace(depot->folder("alice")));
    EXPECT_TRUE(window->isOpening()) << "the assets are read off the UI thread";
    waitForStatus();

    const int all = kMany + seeded;
    EXPECT_GT(firstRows, 0);
    EXPECT_LT(firstRows, all) << "the browser shows rows before the read ends";
    EXPECT_FALSE(browserTookInput) << "no asset of a half-read workspace can be selected";
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^Opening workspace: [\\d,]+ of %L1 assets$").arg(all))
                    .match(progress).hasMatch())
        << progress.toStdString();
    EXPECT_EQ(window->model().rowCount(), all);
    // Read in the order the folders list them, the rows are shown by name once the read ends.
    const QAbstractItemModel* shown = window->browser().view()->model();
    QStringList names;
    for (int row = 0; row < shown->rowCount(); ++row)
        names << shown->index(row, 0).data().toString();
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end(), [](const QString& a, const QString& b) {
        return a.compare(b, Qt::CaseInsensitive) < 0;
    }));
    EXPECT_EQ(window->model().statusQuery().roundTrips() - roundTrips, 1u);
    EXPECT_EQ(status("Many2999"), "not in depot");

    session->settings()->SetActionWhenEditingReadOnlyAsset(IRevisionControlPropertiesMgr::eActionCheckOut);
    select("Sky");
    typeColour(QStringLiteral("#ff8c42"));
    waitForStatus();
    EXPECT_EQ(status("Sky"), "checked out");
    EXPECT_TRUE(session->currentWorkspace()->HasUnsavedChanges());
}

}  // namespace
