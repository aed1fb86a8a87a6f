#pragma once

// Where a tree draws an item's check box, so that tests can click it as a user would.

#include <QStyle>
#include <QStyleOptionViewItem>
#include <QTreeWidget>

inline QRect checkIndicatorRect(QTreeWidget* tree, QTreeWidgetItem* item)
{
    QStyleOptionViewItem option;
    option.initFrom(tree->viewport());
    option.rect = tree->visualItemRect(item);
    option.features = QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
    option.text = item->text(0);
    return tree->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, tree);
}
