#pragma once

#include <qtextention/cachedtextdrawer.h>

#include <QStyledItemDelegate>

namespace hbrc::studio {

// Paints the status column as coloured badges (one per status word: "checked out", "held by
// bob", ...); the badges repeat across thousands of rows, so they come from a CachedTextDrawer.
class StatusDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    const CachedTextDrawer& drawer() const { return m_drawer; }

private:
    mutable CachedTextDrawer m_drawer;
};

}  // namespace hbrc::studio
