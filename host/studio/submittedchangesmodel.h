#pragma once

#include <hbrcservices/revisiontypes.h>

#include <QAbstractTableModel>
#include <QStringList>

#include <cstdint>
#include <vector>

namespace hbrc::studio {

// The submitted changes as the server listed them (newest first), showing those that pass the
// filter: one user's, and those whose change, user or description contains a text.
class SubmittedChangesModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column { ChangeColumn, UserColumn, DateColumn, DescriptionColumn, ColumnCount };

    explicit SubmittedChangesModel(QObject* parent = nullptr);

    void setChanges(std::vector<revision::Changelist> changes);
    // user empty: everybody's; text empty: any text (case-insensitive).
    void setFilter(const QString& user, const QString& text);
    // The users of the listed changes, sorted, once each.
    QStringList users() const;
    const revision::Changelist& changeAt(int row) const { return m_changes[m_shown[std::size_t(row)]]; }
    // The row of a change, -1 when it is not shown.
    int rowOf(const revision::ChangelistId& change) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    // A time of the server (seconds since the epoch) as the user's locale writes it briefly.
    static QString timeText(std::int64_t time);

private:
    void applyFilter();

    std::vector<revision::Changelist> m_changes;
    std::vector<std::size_t> m_shown;
    QString m_user;
    QString m_text;
};

}  // namespace hbrc::studio
