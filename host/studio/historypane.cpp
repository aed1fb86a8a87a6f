#include "historypane.h"

#include "assetbrowsermodel.h"
#include "assetcommands.h"
#include "assetversions.h"
#include "differenceview.h"
#include "pendingchangesmodel.h"
#include "serverquestion.h"
#include "studiosession.h"
#include "submittedchangesmodel.h"

#include <hbrcdatamodel/workspace.h>

#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <optional>
#include <set>

namespace hbrc::studio {

namespace {

// The most revisions listed per file: a history of this length comes in one round trip.
constexpr std::size_t kRevisionsListed = 1000;
// The row of the edits in memory has no entry of the history.
constexpr int kEditsRow = -1;
// A row's file and revision ("your edits" for the edits), to choose it again after a refresh.
constexpr int kRowKeyRole = Qt::UserRole + 1;

struct HistoryAnswer
{
    revision::Result result;
    std::vector<std::vector<revision::FileRevision>> histories;
};

}  // namespace

HistoryPane::HistoryPane(StudioSession& session, AssetCommands& commands, const AssetBrowserModel& model,
                         QWidget* parent)
    : QWidget(parent), m_session(session), m_commands(commands), m_model(model),
      m_historyQuestion(new ServerQuestion(this)), m_differenceQuestion(new ServerQuestion(this))
{
    setObjectName(QStringLiteral("revisionHistoryPage"));
    auto* layout = new QVBoxLayout(this);
    m_state = new QLabel(this);
    m_state->setObjectName(QStringLiteral("historyState"));
    m_state->setWordWrap(true);
    layout->addWidget(m_state);
    auto* splitter = new QSplitter(Qt::Vertical, this);
    m_revisions = new QTreeWidget(splitter);
    m_revisions->setObjectName(QStringLiteral("revisions"));
    m_revisions->setRootIsDecorated(false);
    m_revisions->setUniformRowHeights(true);
    m_revisions->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_revisions->setHeaderLabels(
        {tr("File"), tr("Revision"), tr("Change"), tr("User"), tr("Date"), tr("Action"), tr("Description")});
    m_revisions->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_differences = new DifferenceView(splitter);
    splitter->addWidget(m_revisions);
    splitter->addWidget(m_differences);
    layout->addWidget(splitter, 1);
    m_getRevision = new QPushButton(tr("&Get This Revision"), this);
    m_getRevision->setObjectName(QStringLiteral("getThisRevision"));
    m_getRevision->setFocusPolicy(Qt::StrongFocus);
    m_getRevision->setEnabled(false);
    layout->addWidget(m_getRevision, 0, Qt::AlignLeft);
    connect(m_revisions, &QTreeWidget::itemSelectionChanged, this, &HistoryPane::compareChosen);
    connect(m_getRevision, &QPushButton::clicked, this, &HistoryPane::getChosenRevision);
}

HistoryPane::~HistoryPane() = default;

bool HistoryPane::isPending() const
{
    return m_historyQuestion->isPending() || m_differenceQuestion->isPending();
}

void HistoryPane::showAsset(const KELHandle<kel4::IDbObject>& asset)
{
    if (asset == m_asset && !m_stale)
        return;
    m_asset = asset;
    refresh();
}

void HistoryPane::refresh()
{
    m_stale = true;
    if (isVisible()) {
        askHistory();
        return;
    }
    m_historyQuestion->cancel();
    m_differenceQuestion->cancel();
    m_revisions->clear();
    m_history = {};
}

void HistoryPane::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (m_stale)
        askHistory();
}

void HistoryPane::askHistory()
{
    m_stale = false;
    // The rows chosen stay chosen when the same asset's history comes again (after an operation).
    m_chosen.clear();
    for (const QTreeWidgetItem* item : m_revisions->selectedItems())
        m_chosen << item->data(FileColumn, kRowKeyRole).toString();
    m_revisions->clear();
    m_history = {};
    m_differences->showMessage({});
    m_getRevision->setEnabled(false);
    m_differenceQuestion->cancel();
    host::Workspace* workspace = m_session.currentWorkspace();
    const std::uint32_t slot = workspace && !m_asset.IsNull() ? workspace->Model().SlotOf(m_asset) : host::ObjectStore::kNoSlot;
    if (slot == host::ObjectStore::kNoSlot || !workspace->Model().Store().IsAsset(slot)) {
        m_historyQuestion->cancel();
        m_state->setText(tr("Select an asset to see its history."));
        return;
    }
    if (m_session.workOfflineChosen()) {
        m_historyQuestion->cancel();
        m_state->setText(tr("Working offline: the history is asked for when you work online."));
        return;
    }
    const host::DataModelMgr& model = workspace->Model();
    const host::StoredAsset& stored = model.Store().AssetAt(slot);
    std::vector<std::string> files{model.AbsolutePath(stored.kelPath)};
    for (const std::string& name : stored.record.externalFiles)
        files.push_back(model.AbsolutePath(stored.ExternalPath(name)));
    m_state->setText(tr("Asking the server for the history of %1...").arg(QString::fromStdString(stored.record.name)));
    m_historyQuestion->ask<HistoryAnswer>(
        m_session.sessionAccount(),
        [files](host::RevisionServer& server, const std::string& ticket) {
            HistoryAnswer answer;
            answer.result = server.fileHistory(ticket, files, kRevisionsListed, answer.histories);
            return answer;
        },
        [this, files](const HistoryAnswer& answer) {
            showHistory(files, answer.result.code, QString::fromStdString(answer.result.error), answer.histories);
        });
}

void HistoryPane::showHistory(const std::vector<std::string>& files, int code, const QString& error,
                              std::vector<std::vector<revision::FileRevision>> histories)
{
    if (code < 0) {
        m_state->setText(tr("The history is unknown: %1").arg(error));
        return;
    }
    m_history = AssetHistory(files, std::move(histories));
    const QString name = QString::fromStdString(m_asset.GetName());
    m_state->setText(m_history.entries().empty()
                         ? tr("%1 has no submitted revision.").arg(name)
                         : tr("%n revision(s) of %1 and its files.", nullptr, int(m_history.entries().size())).arg(name));
    QList<QTreeWidgetItem*> rows;
    auto* edits = new QTreeWidgetItem({name, tr("your edits"), QString(), QString(), QString(), QString(),
                                       tr("the revision you have, with the edits in memory")});
    edits->setData(FileColumn, Qt::UserRole, kEditsRow);
    edits->setData(FileColumn, kRowKeyRole, QString::fromStdString(files.front()) + QStringLiteral("#edits"));
    rows << edits;
    for (std::size_t i = 0; i < m_history.entries().size(); ++i) {
        const AssetHistory::Entry& entry = m_history.entries()[i];
        const revision::FileRevision& made = entry.revision;
        QString description = QString::fromStdString(made.description).simplified();
        auto* row = new QTreeWidgetItem(
            {QFileInfo(QString::fromStdString(m_history.files()[entry.file])).fileName(),
             QStringLiteral("#%1").arg(made.revision), QString::fromStdString(made.changelist),
             QString::fromStdString(made.user), SubmittedChangesModel::timeText(made.time),
             PendingChangesModel::actionText(made.action), description});
        row->setToolTip(DescriptionColumn, QString::fromStdString(made.description));
        row->setData(FileColumn, Qt::UserRole, int(i));
        row->setData(FileColumn, kRowKeyRole,
                     QStringLiteral("%1#%2").arg(QString::fromStdString(m_history.files()[entry.file])).arg(made.revision));
        rows << row;
    }
    m_revisions->addTopLevelItems(rows);
    for (QTreeWidgetItem* row : rows)
        if (m_chosen.contains(row->data(FileColumn, kRowKeyRole).toString()))
            row->setSelected(true);
}

std::vector<revision::ChangelistId> HistoryPane::chosenChanges(bool& edits) const
{
    edits = false;
    std::vector<revision::ChangelistId> changes;
    std::set<revision::ChangelistId> seen;
    for (const QTreeWidgetItem* item : m_revisions->selectedItems()) {
        const int entry = item->data(FileColumn, Qt::UserRole).toInt();
        if (entry == kEditsRow) {
            edits = true;
            continue;
        }
        const revision::ChangelistId& change = m_history.entries()[std::size_t(entry)].revision.changelist;
        if (seen.insert(change).second)
            changes.push_back(change);
    }
    return changes;
}

revision::ChangelistId HistoryPane::haveChange() const
{
    const AssetStatus* status = m_model.statusAt(m_model.rowOf(m_asset));
    return status ? m_history.changeOfRevision(status->haveRevision) : revision::ChangelistId();
}

void HistoryPane::compareChosen()
{
    bool edits = false;
    const std::vector<revision::ChangelistId> changes = chosenChanges(edits);
    m_getRevision->setEnabled(!edits && changes.size() == 1);
    const AssetHistory::Comparison comparison = m_history.choose(changes, edits, haveChange());
    if (!comparison.valid) {
        m_differenceQuestion->cancel();
        m_differences->showMessage(tr("Choose one revision, or two to compare."));
        return;
    }
    auto label = [](const revision::ChangelistId& change) {
        return change.empty() ? tr("Before") : tr("Change %1").arg(QString::fromStdString(change));
    };
    const QString before = label(comparison.before);
    const QString after = comparison.withEdits ? tr("Your edits") : label(comparison.after);
    std::optional<AssetInMemory> inMemory;
    if (comparison.withEdits) {
        host::Workspace* workspace = m_session.currentWorkspace();
        const std::uint32_t slot = workspace ? workspace->Model().SlotOf(m_asset) : host::ObjectStore::kNoSlot;
        if (slot == host::ObjectStore::kNoSlot || !workspace->Model().Store().IsAsset(slot))
            return;
        inMemory = AssetInMemory::of(workspace->Model(), slot);
    }
    m_differences->showMessage(tr("Asking the server..."));
    m_differenceQuestion->ask<DifferenceAnswer>(
        m_session.sessionAccount(),
        [history = m_history, comparison, inMemory](host::RevisionServer& server, const std::string& ticket) {
            AssetVersionReader reader(server, ticket, history);
            return inMemory ? reader.compare(comparison.before, *inMemory)
                            : reader.compare(comparison.before, comparison.after);
        },
        [this, before, after](const DifferenceAnswer& answer) {
            if (!answer.result.ok())
                m_differences->showMessage(
                    tr("The difference is unknown: %1").arg(QString::fromStdString(answer.result.error)));
            else
                m_differences->showRows(answer.rows, before, after);
        });
}

void HistoryPane::getChosenRevision()
{
    bool edits = false;
    const std::vector<revision::ChangelistId> changes = chosenChanges(edits);
    if (edits || changes.size() != 1)
        return;
    m_commands.getRevision(m_asset, m_history.filesAt(changes.front()), QString::fromStdString(changes.front()));
}

}  // namespace hbrc::studio
