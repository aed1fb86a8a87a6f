#include "assetbrowsermodel.h"

#include "relatedholds.h"
#include "statuschange.h"

#include <hbrcdatamodel/workspace.h>
#include <kel4/revisionstatus.h>

#include <QApplication>
#include <QStyle>

#include <algorithm>

namespace hbrc::studio {

using namespace kel4;  // the status bits

namespace {

using host::ObjectStore;

constexpr unsigned kHeldByOthers =
    eStatusCheckedOutByOthers | eStatusMarkedForAddByOthers | eStatusMarkedForDeleteByOthers | eStatusLockedByOthers;
constexpr unsigned kOpenedHere = eStatusCheckedOut | eStatusMarkedForAdd | eStatusMarkedForDelete;

QIcon statusIcon(unsigned word, bool known)
{
    QStyle* style = QApplication::style();
    if (!known)
        return style->standardIcon(QStyle::SP_BrowserReload);
    if (word & eStatusIOError)
        return style->standardIcon(QStyle::SP_MessageBoxCritical);
    if (word & kHeldByOthers)
        return style->standardIcon(QStyle::SP_MessageBoxWarning);
    if (word & kOpenedHere)
        return style->standardIcon(QStyle::SP_DialogApplyButton);
    return style->standardIcon(QStyle::SP_FileIcon);
}

QIcon holderIcon(const AssetStatus& status)
{
    if (status.heldBy.empty())
        return {};
    const bool locked = std::any_of(status.heldBy.begin(), status.heldBy.end(),
                                    [](const revision::FileHolder& hold) { return hold.locked; });
    return QApplication::style()->standardIcon(locked ? QStyle::SP_MessageBoxCritical : QStyle::SP_MessageBoxWarning);
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

AssetBrowserModel::AssetBrowserModel(QObject* parent) : QAbstractTableModel(parent)
{
    connect(&m_query, &AssetStatusQuery::answered, this, &AssetBrowserModel::takeAnswer);
}

void AssetBrowserModel::setWorkspace(host::Workspace* workspace)
{
    if (workspace == m_workspace)
        return;
    beginResetModel();
    m_workspace = workspace;
    m_rows.clear();
    endResetModel();
    reload();
}

void AssetBrowserModel::reload()
{
    std::vector<Row> rows;
    if (m_workspace) {
        const ObjectStore& store = m_workspace->Model().Store();
        std::map<std::string, const Row*> known;
        for (const Row& row : m_rows)
            known[row.id] = &row;
        store.ForEachLive([&](std::uint32_t slot) {
            if (!store.IsAsset(slot))
                return;
            Row row{slot, store.IdOf(slot), {}, false};
            if (auto found = known.find(row.id); found != known.end()) {
                row.status = found->second->status;
                row.known = found->second->known;
            }
            rows.push_back(std::move(row));
        });
    }
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

void AssetBrowserModel::appendAssets(const std::vector<std::uint32_t>& assetSlots)
{
    if (!m_workspace || assetSlots.empty())
        return;
    const ObjectStore& store = m_workspace->Model().Store();
    beginInsertRows({}, int(m_rows.size()), int(m_rows.size() + assetSlots.size()) - 1);
    for (std::uint32_t slot : assetSlots)
        m_rows.push_back({slot, store.IdOf(slot), {}, false});
    endInsertRows();
}

void AssetBrowserModel::refreshStatus(const Account& account)
{
    if (!m_workspace)
        return;
    AssetStatusQuery::FilesPerAsset files;
    files.reserve(m_rows.size());
    std::vector<std::string> ids;
    const host::DataModelMgr& model = m_workspace->Model();
    for (const Row& row : m_rows) {
        const kel4::Set<std::string> assetFiles =
            model.FilesOf(model.HandleOf(row.slot), true, kel4::closureId::Persistence);
        files.emplace_back(assetFiles.begin(), assetFiles.end());
        ids.push_back(row.id);
    }
    m_query.ask(account, std::move(ids), std::move(files));
}

void AssetBrowserModel::takeAnswer(const StatusAnswer& answer)
{
    if (answer.code >= 0 && answer.assets.size() == answer.keys.size()) {
        std::map<std::string, const AssetStatus*> byId;
        for (std::size_t i = 0; i < answer.keys.size(); ++i)
            byId[answer.keys[i]] = &answer.assets[i];
        QStringList changes;
        for (Row& row : m_rows) {
            if (auto found = byId.find(row.id); found != byId.end()) {
                if (row.known) {
                    if (const QString change = StatusChange::describe(name(row), row.status, *found->second);
                        !change.isEmpty())
                        changes << change;
                }
                row.status = *found->second;
                row.known = true;
            }
        }
        if (!m_rows.empty())
            emit dataChanged(index(0, StatusColumn), index(int(m_rows.size()) - 1, RevisionColumn));
        if (!changes.isEmpty())
            emit changesSeen(changes);
    }
    emit statusRefreshed(answer);
}

void AssetBrowserModel::setStatusUnavailable(const QString& reason)
{
    if (reason == m_statusUnavailable)
        return;
    m_statusUnavailable = reason;
    if (!m_rows.empty())
        emit dataChanged(index(0, StatusColumn), index(int(m_rows.size()) - 1, StatusColumn));
}

KELHandle<kel4::IDbObject> AssetBrowserModel::assetAt(int row) const
{
    if (!m_workspace || row < 0 || row >= int(m_rows.size()))
        return {};
    return m_workspace->Model().HandleOf(m_rows[std::size_t(row)].slot);
}

const AssetStatus* AssetBrowserModel::statusAt(int row) const
{
    if (row < 0 || row >= int(m_rows.size()) || !m_rows[std::size_t(row)].known)
        return nullptr;
    return &m_rows[std::size_t(row)].status;
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
    const auto found = std::find_if(m_rows.begin(), m_rows.end(), [slot](const Row& row) { return row.slot == slot; });
    return found == m_rows.end() ? -1 : int(found - m_rows.begin());
}

std::string AssetBrowserModel::idAt(int row) const
{
    return row < 0 || row >= int(m_rows.size()) ? std::string() : m_rows[std::size_t(row)].id;
}

int AssetBrowserModel::rowOfId(const std::string& id) const
{
    const auto found = std::find_if(m_rows.begin(), m_rows.end(), [&id](const Row& row) { return row.id == id; });
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
            held.push_back({name(m_rows[std::size_t(ownerRow)]), statusAt(ownerRow)});
    }
    return RelatedHolds::describe(name(m_rows[std::size_t(row)]), held);
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
    const Row& row = m_rows[std::size_t(index.row())];
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
        return QApplication::style()->standardIcon(QStyle::SP_ArrowDown);
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
