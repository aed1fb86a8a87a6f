#include "pendingchangesmodel.h"

#include <QDir>

#include <algorithm>

namespace hbrc::studio {

namespace {

QStandardItem* readOnlyItem(const QString& text)
{
    auto* item = new QStandardItem(text);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    return item;
}

}  // namespace

PendingChangesModel::PendingChangesModel(QObject* parent) : QStandardItemModel(parent)
{
    setHorizontalHeaderLabels({tr("Changelist / File"), tr("Action"), tr("Asset")});
}

void PendingChangesModel::setPending(std::vector<revision::PendingChangelist> pending, const QString& root,
                                     const std::map<std::string, QString>& assetOfPath)
{
    m_pending = std::move(pending);
    std::set<std::string> stillOpen;
    removeRows(0, rowCount());
    const QDir folder(root);
    for (const revision::PendingChangelist& list : m_pending) {
        const std::string& id = list.changelist.id;
        const QString description = QString::fromStdString(list.changelist.description).section(QLatin1Char('\n'), 0, 0);
        QStandardItem* changelist =
            readOnlyItem(id.empty() ? tr("Default") : tr("Change %1: %2").arg(QString::fromStdString(id), description));
        changelist->setData(QString::fromStdString(id), ChangelistRole);
        changelist->setToolTip(QString::fromStdString(list.changelist.description));
        changelist->setFlags(changelist->flags() | Qt::ItemIsUserCheckable);
        for (const revision::OpenedFile& file : list.files) {
            const QString path = QString::fromStdString(file.localPath);
            QStandardItem* name = readOnlyItem(root.isEmpty() ? path : folder.relativeFilePath(path));
            name->setData(QString::fromStdString(id), ChangelistRole);
            name->setData(path, PathRole);
            name->setToolTip(QString::fromStdString(file.depotPath));
            name->setFlags(name->flags() | Qt::ItemIsUserCheckable);
            name->setCheckState(m_checked.count(file.localPath) ? Qt::Checked : Qt::Unchecked);
            const auto asset = assetOfPath.find(file.localPath);
            changelist->appendRow({name, readOnlyItem(actionText(file.action)),
                                   readOnlyItem(asset == assetOfPath.end() ? QString() : asset->second)});
            stillOpen.insert(file.localPath);
        }
        appendRow({changelist, readOnlyItem({}), readOnlyItem({})});
        updateChangelistCheck(changelist);
    }
    for (auto path = m_checked.begin(); path != m_checked.end();)
        path = stillOpen.count(*path) ? std::next(path) : m_checked.erase(path);
}

QString PendingChangesModel::actionText(revision::FileAction action)
{
    switch (action) {
    case revision::FileAction::Add:
        return tr("add");
    case revision::FileAction::Delete:
        return tr("delete");
    case revision::FileAction::Edit:
        break;
    }
    return tr("edit");
}

const revision::PendingChangelist* PendingChangesModel::changelist(const std::string& id) const
{
    const auto found = std::find_if(m_pending.begin(), m_pending.end(),
                                    [&](const revision::PendingChangelist& list) { return list.changelist.id == id; });
    return found == m_pending.end() ? nullptr : &*found;
}

std::string PendingChangesModel::changelistOf(const QModelIndex& index)
{
    return index.siblingAtColumn(NameColumn).data(ChangelistRole).toString().toStdString();
}

std::string PendingChangesModel::pathOf(const QModelIndex& index)
{
    return index.siblingAtColumn(NameColumn).data(PathRole).toString().toStdString();
}

QModelIndex PendingChangesModel::changelistIndex(const std::string& id) const
{
    for (int row = 0; row < rowCount(); ++row)
        if (changelistOf(index(row, 0)) == id)
            return index(row, 0);
    return {};
}

QModelIndex PendingChangesModel::fileIndex(const std::string& path) const
{
    for (int row = 0; row < rowCount(); ++row) {
        const QModelIndex changelist = index(row, 0);
        for (int file = 0; file < rowCount(changelist); ++file)
            if (pathOf(index(file, 0, changelist)) == path)
                return index(file, 0, changelist);
    }
    return {};
}

std::vector<std::string> PendingChangesModel::checkedFiles() const
{
    std::vector<std::string> files;
    for (const revision::PendingChangelist& list : m_pending) {
        const std::vector<std::string> checked = checkedFiles(list.changelist.id);
        files.insert(files.end(), checked.begin(), checked.end());
    }
    return files;
}

std::vector<std::string> PendingChangesModel::checkedFiles(const std::string& changelist) const
{
    std::vector<std::string> files;
    if (const revision::PendingChangelist* list = this->changelist(changelist))
        for (const revision::OpenedFile& file : list->files)
            if (m_checked.count(file.localPath))
                files.push_back(file.localPath);
    return files;
}

bool PendingChangesModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    QStandardItem* item = itemFromIndex(index);
    if (role != Qt::CheckStateRole || !item || !item->isCheckable())
        return QStandardItemModel::setData(index, value, role);
    const bool checked = value.toInt() != Qt::Unchecked;
    QStandardItem* changelist = item->parent() ? item->parent() : item;
    const auto check = [&](QStandardItem* file) {
        file->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
        const std::string path = file->data(PathRole).toString().toStdString();
        if (checked)
            m_checked.insert(path);
        else
            m_checked.erase(path);
    };
    if (item->parent())
        check(item);
    else
        for (int row = 0; row < changelist->rowCount(); ++row)
            check(changelist->child(row));
    updateChangelistCheck(changelist);
    return true;
}

void PendingChangesModel::updateChangelistCheck(QStandardItem* changelist)
{
    int checked = 0;
    for (int row = 0; row < changelist->rowCount(); ++row)
        checked += changelist->child(row)->checkState() == Qt::Checked ? 1 : 0;
    changelist->setCheckState(checked == 0                        ? Qt::Unchecked
                              : checked == changelist->rowCount() ? Qt::Checked
                                                                  : Qt::PartiallyChecked);
}

}  // namespace hbrc::studio
