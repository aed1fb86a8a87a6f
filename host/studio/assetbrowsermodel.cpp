#include "assetbrowsermodel.h"

#include "relatedholds.h"
#include "statuschange.h"

#include <hbrcdatamodel/backgroundrelease.h>
#include <hbrcdatamodel/workspace.h>
#include <kel4/revisionstatus.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <QStyle>

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

namespace hbrc::studio {

using namespace kel4;  // the status bits

namespace {

// A slice of the rows takes about this long on the UI thread; the clock is read every so many rows.
constexpr qint64 kSliceMs = 8;
constexpr std::size_t kRowsBetweenClockReads = 256;

bool sliceIsOver(std::size_t row, std::size_t first, const QElapsedTimer& spent)
{
    return row > first && row % kRowsBetweenClockReads == 0 && spent.hasExpired(kSliceMs);
}

using host::ObjectStore;

constexpr unsigned kHeldByOthers =
    eStatusCheckedOutByOthers | eStatusMarkedForAddByOthers | eStatusMarkedForDeleteByOthers | eStatusLockedByOthers;
constexpr unsigned kOpenedHere = eStatusCheckedOut | eStatusMarkedForAdd | eStatusMarkedForDelete;

// The style reads its icons from image files each time it is asked, and painting asks once per
// visible row and column: each icon is kept until the application's style changes.
QIcon styleIcon(QStyle::StandardPixmap which)
{
    static QPointer<QStyle> iconsStyle;
    static std::map<QStyle::StandardPixmap, QIcon> icons;
    QStyle* style = QApplication::style();
    if (style != iconsStyle) {
        icons.clear();
        iconsStyle = style;
    }
    auto [icon, added] = icons.try_emplace(which);
    if (added)
        icon->second = style->standardIcon(which);
    return icon->second;
}

QIcon statusIcon(unsigned word, bool known)
{
    if (!known)
        return styleIcon(QStyle::SP_BrowserReload);
    if (word & eStatusIOError)
        return styleIcon(QStyle::SP_MessageBoxCritical);
    if (word & kHeldByOthers)
        return styleIcon(QStyle::SP_MessageBoxWarning);
    if (word & kOpenedHere)
        return styleIcon(QStyle::SP_DialogApplyButton);
    return styleIcon(QStyle::SP_FileIcon);
}

QIcon holderIcon(const AssetStatus& status)
{
    if (status.heldBy.empty())
        return {};
    const bool locked = std::any_of(status.heldBy.begin(), status.heldBy.end(),
                                    [](const revision::FileHolder& hold) { return hold.locked; });
    return styleIcon(locked ? QStyle::SP_MessageBoxCritical : QStyle::SP_MessageBoxWarning);
}

QString holdsText(const AssetStatus& status, const QStringList& relatedHolds)
{
    QStringList lines;
    for (const revision::FileHolder& hold : status.heldBy)
        lines << StatusChange::describeHold(hold);
    lines.removeDuplicates();
    return (lines + relatedHolds).join(QLatin1Char('\n'));
}

}  // namespace

AssetBrowserModel::AssetBrowserModel(QObject* parent)
    : QAbstractTableModel(parent), m_questionSlices(new QTimer(this)), m_answerSlices(new QTimer(this))
{
    m_questionSlices->setInterval(0);
    connect(m_questionSlices, &QTimer::timeout, this, &AssetBrowserModel::gatherQuestionSlice);
    m_answerSlices->setInterval(0);
    connect(m_answerSlices, &QTimer::timeout, this, &AssetBrowserModel::applyAnswerSlice);
    connect(&m_query, &AssetStatusQuery::answered, this, &AssetBrowserModel::takeAnswer);
}

void AssetBrowserModel::setWorkspace(host::Workspace* workspace)
{
    if (workspace == m_workspace)
        return;
    m_question.reset();  // it was about the other workspace's assets
    m_questionSlices->stop();
    m_answerSlices->stop();
    beginResetModel();
    m_workspace = workspace;
    // Freeing 100,000 rows and an answer still being applied to them would hold the UI thread.
    host::BackgroundRelease::Instance().Free(
        std::make_pair(std::exchange(m_rows, {}), std::exchange(m_answer, nullptr)));
    endResetModel();
    reload();
}

void AssetBrowserModel::reload()
{
    Rows rows;
    if (m_workspace) {
        const ObjectStore& store = m_workspace->Model().Store();
        std::map<std::string, const Row*> known;
        for (const std::unique_ptr<Row>& row : m_rows)
            known[row->id] = row.get();
        store.ForEachLive([&](std::uint32_t slot) {
            if (!store.IsAsset(slot))
                return;
            std::unique_ptr<Row> row = newRow(slot);
            if (auto found = known.find(row->id); found != known.end()) {
                row->status = found->second->status;
                row->known = found->second->known;
            }
            rows.push_back(std::move(row));
        });
    }
    Rows sorted;
    sorted.reserve(rows.size());
    for (std::size_t position : nameOrder(rows))
        sorted.push_back(std::move(rows[position]));
    beginResetModel();
    m_rows = std::move(sorted);
    m_inNameOrder = true;
    endResetModel();
    restartRowWork();
}

// The rows moved: a question being gathered and an answer being applied start over.
void AssetBrowserModel::restartRowWork()
{
    if (m_question) {
        m_question->ids.clear();
        m_question->files.clear();
    }
    m_answerRow = 0;
}

std::unique_ptr<AssetBrowserModel::Row> AssetBrowserModel::newRow(std::uint32_t slot) const
{
    const ObjectStore& store = m_workspace->Model().Store();
    return std::make_unique<Row>(
        Row{slot, store.IdOf(slot), QString::fromStdString(store.NameOf(slot)).toCaseFolded(), {}, false});
}

// The keys are made as the rows are: a workspace being read spreads that work over its slices.
std::vector<std::size_t> AssetBrowserModel::nameOrder(const Rows& rows)
{
    std::vector<std::size_t> order(rows.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::stable_sort(order.begin(), order.end(),
                     [&rows](std::size_t a, std::size_t b) { return rows[a]->nameKey < rows[b]->nameKey; });
    return order;
}

// The browser shows the model's order when it is sorted by name: one sort here costs less than
// a sorting view that places every appended slice among all rows.
void AssetBrowserModel::sortByName()
{
    if (m_inNameOrder)
        return;
    const std::vector<std::size_t> order = nameOrder(m_rows);
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    std::vector<int> newRow(m_rows.size());
    Rows sorted;
    sorted.reserve(m_rows.size());
    for (std::size_t position : order) {
        newRow[position] = int(sorted.size());
        sorted.push_back(std::move(m_rows[position]));
    }
    m_rows = std::move(sorted);
    m_inNameOrder = true;
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& index : before)
        after << this->index(newRow[std::size_t(index.row())], index.column());
    changePersistentIndexList(before, after);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
    restartRowWork();
}

void AssetBrowserModel::appendAssets(const std::vector<std::uint32_t>& assetSlots)
{
    if (!m_workspace || assetSlots.empty())
        return;
    beginInsertRows({}, int(m_rows.size()), int(m_rows.size() + assetSlots.size()) - 1);
    for (std::uint32_t slot : assetSlots)
        m_rows.push_back(newRow(slot));
    m_inNameOrder = false;
    endInsertRows();
}

void AssetBrowserModel::refreshStatus(const Account& account)
{
    if (!m_workspace)
        return;
    m_question = std::make_unique<Question>(Question{account, {}, {}});
    m_question->ids.reserve(m_rows.size());
    m_question->files.reserve(m_rows.size());
    m_questionSlices->start();  // a turn of its own: the caller may have just shown 100,000 rows
}

void AssetBrowserModel::gatherQuestionSlice()
{
    QElapsedTimer spent;
    spent.start();
    const host::DataModelMgr& model = m_workspace->Model();
    const std::size_t first = m_question->ids.size();
    for (std::size_t row = first; row < m_rows.size(); ++row) {
        if (sliceIsOver(row, first, spent)) {
            m_questionSlices->start();
            return;
        }
        const kel4::Set<std::string> assetFiles =
            model.FilesOf(model.HandleOf(m_rows[row]->slot), true, kel4::closureId::Persistence);
        m_question->files.emplace_back(assetFiles.begin(), assetFiles.end());
        m_question->ids.push_back(m_rows[row]->id);
    }
    m_questionSlices->stop();
    const std::unique_ptr<Question> question = std::move(m_question);
    m_query.ask(question->account, std::move(question->ids), std::move(question->files));
}

// A refused question changes no row. An answer is applied from the first row on, in slices of a
// few milliseconds, so that a workspace of 100,000 assets does not hold the UI thread; a newer
// answer takes the place of one still being applied.
void AssetBrowserModel::takeAnswer(const std::shared_ptr<const StatusAnswer>& answer)
{
    if (answer->code < 0 || answer->assets.size() != answer->keys.size()) {
        emit statusRefreshed(*answer);
        return;
    }
    m_answer = answer;
    m_answerRow = 0;
    m_answerChanges.clear();
    applyAnswerSlice();
}

void AssetBrowserModel::applyAnswerSlice()
{
    QElapsedTimer spent;
    spent.start();
    const std::size_t first = m_answerRow;
    std::size_t row = first;
    // The view's work on changed rows grows with their number: they are announced every so many
    // rows, so that the slice's clock counts that work too.
    std::size_t announced = first;
    const auto announce = [&] {
        if (row > announced)
            emit dataChanged(index(int(announced), StatusColumn), index(int(row) - 1, RevisionColumn));
        announced = row;
    };
    while (row < m_rows.size() && !sliceIsOver(row, first, spent)) {
        Row& current = *m_rows[row];
        if (const AssetStatus* status = m_answer->statusOf(current.id, row)) {
            if (current.known) {
                if (const QString change = StatusChange::describe(name(current), current.status, *status);
                    !change.isEmpty())
                    m_answerChanges << change;
            }
            current.status = *status;
            current.known = true;
        }
        if (++row % kRowsBetweenClockReads == 0)
            announce();
    }
    announce();
    m_answerRow = row;
    if (row < m_rows.size()) {
        m_answerSlices->start();
        return;
    }
    m_answerSlices->stop();
    const std::shared_ptr<const StatusAnswer> answer = std::exchange(m_answer, nullptr);
    if (!m_answerChanges.isEmpty())
        emit changesSeen(std::exchange(m_answerChanges, {}));
    emit statusRefreshed(*answer);
}

void AssetBrowserModel::setStatusUnavailable(const QString& reason)
{
    if (reason == m_statusUnavailable)
        return;
    m_statusUnavailable = reason;
    // Rows a read appended are shown anew when sortByName puts them in order; telling the views
    // now would cost them a pass over every row.
    if (!m_rows.empty() && m_inNameOrder)
        emit dataChanged(index(0, StatusColumn), index(int(m_rows.size()) - 1, StatusColumn));
}

KELHandle<kel4::IDbObject> AssetBrowserModel::assetAt(int row) const
{
    if (!m_workspace || row < 0 || row >= int(m_rows.size()))
        return {};
    return m_workspace->Model().HandleOf(m_rows[std::size_t(row)]->slot);
}

const AssetStatus* AssetBrowserModel::statusAt(int row) const
{
    if (row < 0 || row >= int(m_rows.size()) || !m_rows[std::size_t(row)]->known)
        return nullptr;
    return &m_rows[std::size_t(row)]->status;
}

QString AssetBrowserModel::name(const Row& row) const
{
    return QString::fromStdString(m_workspace->Model().Store().AssetAt(row.slot).record.name);
}

int AssetBrowserModel::rowOf(const KELHandleBase& asset) const
{
    if (!m_workspace || asset.IsNull())
        return -1;
    const std::uint32_t slot = m_workspace->Model().SlotOf(asset);
    const auto found =
        std::find_if(m_rows.begin(), m_rows.end(), [slot](const std::unique_ptr<Row>& row) { return row->slot == slot; });
    return found == m_rows.end() ? -1 : int(found - m_rows.begin());
}

std::string AssetBrowserModel::idAt(int row) const
{
    return row < 0 || row >= int(m_rows.size()) ? std::string() : m_rows[std::size_t(row)]->id;
}

int AssetBrowserModel::rowOfId(const std::string& id) const
{
    const auto found =
        std::find_if(m_rows.begin(), m_rows.end(), [&id](const std::unique_ptr<Row>& row) { return row->id == id; });
    return found == m_rows.end() ? -1 : int(found - m_rows.begin());
}

QStringList AssetBrowserModel::relatedHolds(int row) const
{
    const KELHandle<kel4::IDbObject> asset = assetAt(row);
    if (asset.IsNull())
        return {};
    const host::DataModelMgr& model = m_workspace->Model();
    const host::DataModelMgr::ObjectSet related = model.RelatedObjects({asset});
    std::vector<RelatedHolds::Related> held;
    for (const KELHandle<kel4::IDbObject>& owner : model.OwningAssets({related.begin(), related.end()})) {
        if (owner == asset)
            continue;  // its own parts
        const int ownerRow = rowOf(owner);
        if (ownerRow >= 0)
            held.push_back({name(*m_rows[std::size_t(ownerRow)]), statusAt(ownerRow)});
    }
    return RelatedHolds::describe(name(*m_rows[std::size_t(row)]), held);
}

int AssetBrowserModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int AssetBrowserModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant AssetBrowserModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || !m_workspace || index.row() >= int(m_rows.size()))
        return {};
    const Row& row = *m_rows[std::size_t(index.row())];
    const ObjectStore& store = m_workspace->Model().Store();
    if (!store.IsAsset(row.slot))
        return {};
    if (role == StatusWordRole)
        return row.status.word;
    if (role == StatusKnownRole)
        return row.known;
    if (!m_statusUnavailable.isEmpty() && index.column() == StatusColumn) {
        if (role == StatusWordsRole)
            return QStringList{m_statusUnavailable};
        if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
            return m_statusUnavailable;
        if (role == StatusKnownRole)
            return false;  // the badge in the colour of an unknown status
        if (role != StatusWordRole)
            return {};
    }
    if (role == StatusWordsRole)
        return row.known ? statusWords(row.status.word, row.status.holders) : QStringList{tr("asking...")};
    if (role == Qt::DecorationRole && index.column() == StatusColumn)
        return statusIcon(row.status.word, row.known);
    if (role == Qt::DecorationRole && index.column() == HolderColumn)
        return holderIcon(row.status);
    if (role == Qt::DecorationRole && index.column() == RevisionColumn && row.status.behind)
        return styleIcon(QStyle::SP_ArrowDown);
    if (role == Qt::ForegroundRole && index.column() == RevisionColumn && row.status.behind)
        return QColor(0xc0, 0x7a, 0x12);
    if (role == Qt::ToolTipRole && (index.column() == StatusColumn || index.column() == HolderColumn)) {
        if (const QStringList related = relatedHolds(index.row()); !row.status.heldBy.empty() || !related.isEmpty())
            return holdsText(row.status, related);
    }
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
        return {};
    const host::StoredAsset& asset = store.AssetAt(row.slot);
    switch (index.column()) {
    case NameColumn:
        return name(row) + (store.DirtyAssets().count(row.slot) ? QStringLiteral(" *") : QString());
    case TypeColumn:
        return QString::fromStdString(asset.record.type);
    case StatusColumn:
        return row.known ? statusText(row.status.word, row.status.holders) : tr("asking...");
    case HolderColumn:
        return row.status.holders.join(QStringLiteral(", "));
    case ChangelistColumn:
        return row.status.opened ? (row.status.changelist.isEmpty() ? tr("default") : row.status.changelist) : QString();
    case RevisionColumn:
        if (!row.known || row.status.headRevision == 0)
            return QString();
        if (role == Qt::ToolTipRole && row.status.behind)
            return tr("A newer revision is on the server: you have #%1 of #%2")
                .arg(row.status.haveRevision)
                .arg(row.status.headRevision);
        return tr("#%1/#%2").arg(row.status.haveRevision).arg(row.status.headRevision);
    case FilesColumn:
        return int(1 + asset.record.externalFiles.size());
    default:
        return {};
    }
}

QVariant AssetBrowserModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case NameColumn: return tr("Name");
    case TypeColumn: return tr("Type");
    case StatusColumn: return tr("Status");
    case HolderColumn: return tr("Held by");
    case ChangelistColumn: return tr("Changelist");
    case RevisionColumn: return tr("Revision");
    case FilesColumn: return tr("Files");
    default: return {};
    }
}

QStringList AssetBrowserModel::statusWords(unsigned word, const QStringList& holders)
{
    QStringList words;
    if (word & eStatusCheckedOut)
        words << tr("checked out");
    if (word & eStatusMarkedForAdd)
        words << tr("marked for add");
    if (word & eStatusMarkedForDelete)
        words << tr("marked for delete");
    if (word & kHeldByOthers)
        words << (holders.isEmpty() ? tr("held by another user") : tr("held by %1").arg(holders.join(QStringLiteral(", "))));
    if (word & eStatusNotHeadRevision)
        words << tr("not at head");
    if (word & eStatusNotInDatabase)
        words << tr("not in depot");
    if (word & eStatusIOError)
        words << tr("I/O error");
    return words.isEmpty() ? QStringList{tr("up to date")} : words;
}

}  // namespace hbrc::studio
