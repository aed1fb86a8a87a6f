#include "differencemodel.h"

#include <QColor>
#include <QFont>

namespace hbrc::studio {

DifferenceModel::DifferenceModel(QObject* parent) : QAbstractTableModel(parent) {}

void DifferenceModel::setRows(std::vector<FieldDifference> rows, const QString& before, const QString& after)
{
    beginResetModel();
    m_rows = std::move(rows);
    m_before = before;
    m_after = after;
    endResetModel();
    emit headerDataChanged(Qt::Horizontal, BeforeColumn, AfterColumn);
}

int DifferenceModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int DifferenceModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant DifferenceModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const FieldDifference& row = m_rows[std::size_t(index.row())];
    const bool value = index.column() == BeforeColumn || index.column() == AfterColumn;
    const QString& text = index.column() == BeforeColumn ? row.before : row.after;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        switch (index.column()) {
        case FieldColumn: return row.field;
        case KindColumn: return AssetDiff::kindName(row.kind);
        default: return text;
        }
    case Qt::DecorationRole:
        if (value && row.value == FieldDifference::Value::Colour && !text.isEmpty())
            return QColor::fromString(text);
        return {};
    case Qt::TextAlignmentRole:
        if (value && row.value == FieldDifference::Value::Number)
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        return {};
    case Qt::FontRole:
        if (value && (row.value == FieldDifference::Value::Number || row.value == FieldDifference::Value::ExternalFile)) {
            QFont fixed(QStringLiteral("monospace"));
            fixed.setStyleHint(QFont::TypeWriter);
            return fixed;
        }
        return {};
    default: return {};
    }
}

QVariant DifferenceModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case FieldColumn: return tr("Field");
    case BeforeColumn: return m_before.isEmpty() ? tr("Before") : m_before;
    case AfterColumn: return m_after.isEmpty() ? tr("After") : m_after;
    case KindColumn: return tr("Change");
    default: return {};
    }
}

}  // namespace hbrc::studio
