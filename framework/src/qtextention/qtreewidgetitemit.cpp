#include <qtextention/qtreewidgetitemit.h>

#include <qtextention/guards.h>

#include <QItemSelectionModel>
#include <QPainter>
#include <QPolygon>
#include <QStyle>
#include <QStyleOption>
#include <QTreeWidget>

#include <algorithm>

QTreeWidgetItemIt::QTreeWidgetItemIt(QTreeWidgetItem* root, Strategy strategy)
    : m_strategy(strategy), m_current(root)
{
}

QTreeWidgetItemIt& QTreeWidgetItemIt::operator++()
{
    if (!m_current)
        return *this;
    const int count = m_current->childCount();
    if (m_strategy == DepthFirst) {
        for (int i = count - 1; i >= 0; --i)
            m_pending.push_front(m_current->child(i));
    } else {
        for (int i = 0; i < count; ++i)
            m_pending.push_back(m_current->child(i));
    }
    if (m_pending.empty()) {
        m_current = nullptr;
    } else {
        m_current = m_pending.front();
        m_pending.pop_front();
    }
    return *this;
}

namespace {

QStringList itemPath(const QTreeWidgetItem* item, int keyColumn)
{
    QStringList path;
    for (; item; item = item->parent())
        path.prepend(item->text(keyColumn));
    return path;
}

}  // namespace

QTreeWidgetState SaveTreeState(const QTreeWidget* tree, int keyColumn)
{
    QTreeWidgetState state;
    state.keyColumn = keyColumn;
    QTreeWidgetItemIt it(tree->invisibleRootItem());
    for (++it; *it; ++it) {
        if ((*it)->isExpanded())
            state.expanded.insert(itemPath(*it, keyColumn));
        if ((*it)->isSelected())
            state.selected.insert(itemPath(*it, keyColumn));
    }
    if (const QTreeWidgetItem* current = tree->currentItem())
        state.current = itemPath(current, keyColumn);
    return state;
}

void RestoreTreeState(QTreeWidget* tree, const QTreeWidgetState& state)
{
    QTreeWidgetItem* current = nullptr;
    QTreeWidgetItemIt it(tree->invisibleRootItem());
    for (++it; *it; ++it) {
        const QStringList path = itemPath(*it, state.keyColumn);
        (*it)->setExpanded(state.expanded.contains(path));
        (*it)->setSelected(state.selected.contains(path));
        if (!current && !state.current.isEmpty() && path == state.current)
            current = *it;
    }
    if (current)
        tree->setCurrentItem(current, 0, QItemSelectionModel::NoUpdate);
}

QRect BranchIndicatorRect(const QRect& rect)
{
    int side = std::min({9, rect.width(), rect.height()});
    if (side % 2 == 0)
        --side;
    side = std::max(side, 0);
    QRect square(0, 0, side, side);
    square.moveCenter(rect.center());
    return square;
}

void DrawTreeBranch(QPainter* painter, const QStyleOption* option, const QColor& lineColor,
                    const QColor& indicatorColor)
{
    const QRect& rect = option->rect;
    const QStyle::State state = option->state;
    const QPoint mid = rect.center();
    const bool hasIndicator = state & QStyle::State_Children;
    const QRect indicator = BranchIndicatorRect(rect);

    PainterStateGuard saved(painter);
    painter->setRenderHint(QPainter::Antialiasing, false);
    if (lineColor.isValid()) {
        painter->setPen(lineColor);
        const int gapLeft = hasIndicator ? indicator.right() + 2 : mid.x();
        const int gapTop = hasIndicator ? indicator.top() - 2 : mid.y();
        const int gapBottom = hasIndicator ? indicator.bottom() + 2 : mid.y();
        if (state & QStyle::State_Item)
            painter->drawLine(gapLeft, mid.y(), rect.right(), mid.y());
        if (state & (QStyle::State_Item | QStyle::State_Sibling))
            painter->drawLine(mid.x(), rect.top(), mid.x(), gapTop);
        if (state & QStyle::State_Sibling)
            painter->drawLine(mid.x(), gapBottom, mid.x(), rect.bottom());
    }
    if (!hasIndicator || indicator.isEmpty())
        return;

    const int half = indicator.width() / 2;
    QPolygon triangle;
    if (state & QStyle::State_Open) {
        const int top = mid.y() - half / 2;
        triangle << QPoint(indicator.left(), top) << QPoint(indicator.right(), top)
                 << QPoint(mid.x(), top + half);
    } else {
        const int left = mid.x() - half / 2;
        triangle << QPoint(left, indicator.top()) << QPoint(left, indicator.bottom())
                 << QPoint(left + half, mid.y());
    }
    painter->setPen(indicatorColor);
    painter->setBrush(indicatorColor);
    painter->drawPolygon(triangle);
}
