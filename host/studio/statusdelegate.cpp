#include "statusdelegate.h"

#include "assetbrowsermodel.h"

#include <kel4/revisionstatus.h>
#include <qtextention/guards.h>

#include <QApplication>
#include <QPainter>

namespace hbrc::studio {

namespace {

QColor badgeColour(unsigned word, bool known)
{
    using namespace kel4;
    if (!known)
        return QColor(0x55, 0x55, 0x55);
    if (word & (eStatusIOError | eStatusCheckedOutByOthers | eStatusLockedByOthers | eStatusMarkedForAddByOthers |
                eStatusMarkedForDeleteByOthers))
        return QColor(0xa8, 0x3a, 0x32);
    if (word & (eStatusCheckedOut | eStatusMarkedForAdd | eStatusMarkedForDelete))
        return QColor(0x2e, 0x6d, 0xa4);
    if (word & (eStatusNotHeadRevision | eStatusNotInDatabase))
        return QColor(0x9a, 0x74, 0x1c);
    return QColor(0x3c, 0x7a, 0x3c);
}

}  // namespace

void StatusDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyleOptionViewItem plain = option;
    initStyleOption(&plain, index);
    plain.text.clear();
    QStyle* style = plain.widget ? plain.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &plain, painter, plain.widget);

    const CachedTextDrawer::Look look{option.font, Qt::white,
                                      badgeColour(index.data(AssetBrowserModel::StatusWordRole).toUInt(),
                                                  index.data(AssetBrowserModel::StatusKnownRole).toBool())};
    const QRect text = style->subElementRect(QStyle::SE_ItemViewItemText, &plain, plain.widget);
    ClipGuard clip(painter, option.rect);
    QPoint at(text.left() + 2, 0);
    for (const QString& word : index.data(AssetBrowserModel::StatusWordsRole).toStringList()) {
        const QSize size = m_drawer.size(word, look);
        at.setY(text.top() + (text.height() - size.height()) / 2);
        at.rx() += m_drawer.draw(*painter, at, word, look).width() + 3;
    }
}

QSize StatusDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QSize hint = QStyledItemDelegate::sizeHint(option, index);
    return {hint.width() + 24, qMax(hint.height(), option.fontMetrics.height() + 4)};
}

}  // namespace hbrc::studio
