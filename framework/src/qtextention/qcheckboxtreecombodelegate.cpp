#include "qcheckboxtreecombodelegate.h"

#include <qtextention/qcheckboxtree.h>

#include <QAbstractItemView>
#include <QHeaderView>

QWidget* QCheckBoxTreeComboDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                                  const QModelIndex& /*index*/) const
{
    auto* tree = new QCheckBoxTree(parent);
    tree->header()->hide();
    return tree;
}

QSize QCheckBoxTreeComboDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QSize base = QStyledItemDelegate::sizeHint(option, index);
    const auto* view = qobject_cast<const QAbstractItemView*>(option.widget);
    const QWidget* tree = view ? view->indexWidget(index) : nullptr;
    return tree ? base.expandedTo(tree->sizeHint()) : base;
}
