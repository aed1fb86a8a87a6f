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

CachedTextDrawer::Look lookOf(const QStyleOptionViewItem& option, const QModelIndex& index)
{
    return {option.font, Qt::white,
            badgeColour(index.data(AssetBrowserModel::StatusWordRole).toUInt(),
                        index.data(AssetBrowserModel::StatusKnownRole).toBool())};
}

constexpr int kBadgeIndent = 2;
constexpr int kBadgeGap = 3;

}  // namespace

void StatusDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyleOptionViewItem plain = option;
    initStyleOption(&plain, index);
    plain.text.clear();
    QStyle* style = plain.widget ? plain.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &plain, painter, plain.widget);

    const CachedTextDrawer::Look look = lookOf(option, index);
    const QRect text = style->subElementRect(QStyle::SE_ItemViewItemText, &plain, plain.widget);
    ClipGuard clip(painter, option.rect);
    QPoint at(text.left() + kBadgeIndent, 0);
    for (const QString& word : index.data(AssetBrowserModel::StatusWordsRole).toStringList()) {
        const QSize size = m_drawer.size(word, look);
        at.setY(text.top() + (text.height() - size.height()) / 2);
        at.rx() += m_drawer.draw(*painter, at, word, look).width() + kBadgeGap;
    }
}

// As wide as the badges that paint draws, with the margins the style gives an item's text.
QSize StatusDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const CachedTextDrawer::Look look = lookOf(option, index);
    int width = kBadgeIndent;
    int height = option.fontMetrics.height() + 4;
    for (const QString& word : index.data(AssetBrowserModel::StatusWordsRole).toStringList()) {
        const QSize size = m_drawer.size(word, look);
        width += size.width() + kBadgeGap;
        height = qMax(height, size.height() + 2);
    }
    const QStyle* style = option.widget ? option.widget->style() : QApplication::style();
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, &option, option.widget) + 1;
    return {width + 2 * margin, height};
}

}  // namespace hbrc::studio
