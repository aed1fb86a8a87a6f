#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QList>
#include <QObject>
#include <QPersistentModelIndex>
#include <QPoint>
#include <QPointer>

#include <functional>

class QAbstractItemView;
class QMimeData;

/// Drag and drop of items between list and tree views (or within one), where the application and
/// not the model decides what a drop does: moving files between changelists, say. The views keep
/// their models; a drop calls the decider, which changes whatever it likes and answers whether the
/// drop was taken.
///
/// Dragging starts on the selected items of a view added here once the left button moved the
/// start-drag distance. The drag carries mimeType() and is understood only by views of the same
/// helper.
class QTEXTENTION_EXPORT QListViewDragDrop : public QObject
{
    Q_OBJECT
public:
    struct Drop
    {
        QAbstractItemView* source = nullptr;
        QList<QPersistentModelIndex> items;  // the dragged items, first column, in view order
        QAbstractItemView* target = nullptr;
        QModelIndex targetIndex;  // the item under the cursor; invalid over empty space
        bool hovering = false;    // true while the drag moves: may it drop here? false: drop now
    };
    using Decider = std::function<bool(const Drop& drop)>;

    explicit QListViewDragDrop(Decider decide, QObject* parent = nullptr);
    ~QListViewDragDrop() override;

    /// Makes view a place to drag from and to drop on; the view's own drag and drop is switched off.
    void addView(QAbstractItemView* view);

    static QString mimeType();
    /// What a drag of source's selected items carries; null when nothing is selected. Remembers the
    /// items for the drop.
    QMimeData* mimeData(QAbstractItemView* source);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QAbstractItemView* viewOf(QObject* viewport) const;
    void startDrag(QAbstractItemView* source);
    bool handleDrag(QAbstractItemView* target, QEvent* event);

    Decider m_decide;
    QList<QPointer<QAbstractItemView>> m_views;
    QPointer<QAbstractItemView> m_dragSource;
    QList<QPersistentModelIndex> m_dragged;
    QPoint m_pressPosition;
    bool m_pressed = false;
};
