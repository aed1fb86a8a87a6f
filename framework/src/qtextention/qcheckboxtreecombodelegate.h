#pragma once

#include <QStyledItemDelegate>

// The editor of QCheckBoxTreeCombo's only row: a QCheckBoxTree without header. The row is as tall
// as the tree would like to be, so that the tree, not one line of it, shows in the pop-up.
class QCheckBoxTreeComboDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};
