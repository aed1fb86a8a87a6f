#pragma once

// Walking and remembering QTreeWidget trees:
// - QTreeWidgetItemIt iterates over an item's subtree, the item itself first;
// - SaveTreeState / RestoreTreeState keep expansion, selection and the current item across a
//   refill of the tree, matching items by their texts;
// - DrawTreeBranch paints the branch lines and the expand indicator of PE_IndicatorBranch for
//   styles that draw their own.

#include <qtextention/qtextentionglobal.h>

#include <QColor>
#include <QSet>
#include <QStringList>

#include <deque>

class QPainter;
class QRect;
class QStyleOption;
class QTreeWidget;
class QTreeWidgetItem;

/// Iterates over root and its descendants; root comes first, null marks the end.
///
///   for (QTreeWidgetItemIt it(item); *it; ++it)
///       visit(*it);
///
/// Children of an item are read when the iterator steps past that item, so the current item's
/// children may be changed before the next increment; items not yet visited must stay alive.
/// To walk a whole tree, start on tree->invisibleRootItem() and skip the first (hidden) item.
class QTEXTENTION_EXPORT QTreeWidgetItemIt final
{
public:
    enum Strategy {
        DepthFirst = 0,    // pre-order: an item, then its first child's whole subtree, then the next child
        BreadthFirst = 1,  // level by level: root, its children, their children, ...
    };

    explicit QTreeWidgetItemIt(QTreeWidgetItem* root, Strategy strategy = DepthFirst);

    QTreeWidgetItem* operator*() const { return m_current; }
    QTreeWidgetItemIt& operator++();

private:
    Strategy m_strategy = DepthFirst;
    QTreeWidgetItem* m_current = nullptr;
    std::deque<QTreeWidgetItem*> m_pending;
};

/// An item is known by the texts of keyColumn along its path from the top level; items with the
/// same path share their state.
struct QTEXTENTION_EXPORT QTreeWidgetState {
    int keyColumn = 0;
    QSet<QStringList> expanded;
    QSet<QStringList> selected;
    QStringList current;  // empty when there was no current item
};

QTEXTENTION_EXPORT QTreeWidgetState SaveTreeState(const QTreeWidget* tree, int keyColumn = 0);
/// Expands, selects and makes current exactly the items whose paths the state holds; every other
/// item ends collapsed and unselected. Items of the state that no longer exist are ignored.
QTEXTENTION_EXPORT void RestoreTreeState(QTreeWidget* tree, const QTreeWidgetState& state);

/// The square in which DrawTreeBranch paints the expand indicator: centred in rect, at most 9
/// pixels wide, odd-sized so that the indicator has a middle pixel.
QTEXTENTION_EXPORT QRect BranchIndicatorRect(const QRect& rect);

/// Paints PE_IndicatorBranch for option->rect and option->state: one-pixel lines in lineColor
/// towards the item (State_Item), down to the next sibling (State_Sibling) and up to the previous
/// one, then, for State_Children, a solid triangle in indicatorColor pointing right (collapsed) or
/// down (State_Open). An invalid lineColor draws no lines. The painter's state is kept.
QTEXTENTION_EXPORT void DrawTreeBranch(QPainter* painter, const QStyleOption* option, const QColor& lineColor,
                                       const QColor& indicatorColor);
