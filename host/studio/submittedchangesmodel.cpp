#include "submittedchangesmodel.h"

#include <QDateTime>
#include <QLocale>

#include <set>

namespace hbrc::studio {

SubmittedChangesModel::SubmittedChangesModel(QObject* parent) : QAbstractTableModel(parent) {}

void SubmittedChangesModel::setChanges(std::vector<revision::Changelist> changes)
{
    m_changes = std::move(changes);
    applyFilter();
}

void SubmittedChangesModel::setFilter(const QString& user, const QString& text)
{
    m_user = user;
    m_text = text.trimmed();
    applyFilter();
}

void SubmittedChangesModel::applyFilter()
{
    beginResetModel();
    m_shown.clear();
    const std::string user = m_user.toStdString();
    for (std::size_t i = 0; i < m_changes.size(); ++i) {
        const revision::Changelist& change = m_changes[i];
        if (!user.empty() && change.user != user)
            continue;
        if (!m_text.isEmpty()) {
            const QString haystack = QString::fromStdString(change.id + '\n' + change.user + '\n' + change.description);
            if (!haystack.contains(m_text, Qt::CaseInsensitive))
                continue;
        }
        m_shown.push_back(i);
    }
    endResetModel();
}

QStringList SubmittedChangesModel::users() const
{
    std::set<std::string> users;
    for (const revision::Changelist& change : m_changes)
        users.insert(change.user);
    QStringList names;
    for (const std::string& user : users)
        names << QString::fromStdString(user);
    return names;
}

int SubmittedChangesModel::rowOf(const revision::ChangelistId& change) const
{
    for (std::size_t row = 0; row < m_shown.size(); ++row)
        if (m_changes[m_shown[row]].id == change)
            return int(row);
    return -1;
}

int SubmittedChangesModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_shown.size());
}

int SubmittedChangesModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant SubmittedChangesModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const revision::Changelist& change = changeAt(index.row());
    if (role == Qt::ToolTipRole && index.column() == DescriptionColumn)
        return QString::fromStdString(change.description);
    if (role == Qt::TextAlignmentRole && index.column() == ChangeColumn)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case ChangeColumn: return QString::fromStdString(change.id);
    case UserColumn: return QString::fromStdString(change.user);
    case DateColumn: return timeText(change.time);
    case DescriptionColumn: return QString::fromStdString(change.description).simplified();
    default: return {};
    }
}

QVariant SubmittedChangesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case ChangeColumn: return tr("Change");
    case UserColumn: return tr("User");
    case DateColumn: return tr("Date");
    case DescriptionColumn: return tr("Description");
    default: return {};
    }
}

QString SubmittedChangesModel::timeText(std::int64_t time)
{
    return time ? QLocale().toString(QDateTime::fromSecsSinceEpoch(time), QLocale::ShortFormat) : QString();
}

}  // namespace hbrc::studio
