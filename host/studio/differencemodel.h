#pragma once

#include "assetdiff.h"

#include <QAbstractTableModel>

#include <vector>

namespace hbrc::studio {

// The rows of a per-field difference for a view: field, before, after and what happened. A
// colour's cells carry its swatch (Qt::DecorationRole), a number's are aligned to the right so
// that its digits line up; the headers name the two versions.
class DifferenceModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column { FieldColumn, BeforeColumn, AfterColumn, KindColumn, ColumnCount };

    explicit DifferenceModel(QObject* parent = nullptr);

    void setRows(std::vector<FieldDifference> rows, const QString& before, const QString& after);
    const std::vector<FieldDifference>& rows() const { return m_rows; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    std::vector<FieldDifference> m_rows;
    QString m_before;
    QString m_after;
};

}  // namespace hbrc::studio
