#include <qtextention/qlistviewdragdrop.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QDrag>
#include <QDropEvent>
#include <QItemSelectionModel>
#include <QMimeData>
#include <QMouseEvent>

#include <algorithm>

QListViewDragDrop::QListViewDragDrop(Decider decide, QObject* parent) : QObject(parent), m_decide(std::move(decide))
{
}

QListViewDragDrop::~QListViewDragDrop() = default;

QString QListViewDragDrop::mimeType()
{
    return QStringLiteral("application/x-qtextention-listviewdragdrop");
}

void QListViewDragDrop::addView(QAbstractItemView* view)
{
    if (!view || m_views.contains(view))
        return;
    m_views.append(view);
    view->setDragDropMode(QAbstractItemView::NoDragDrop);
    view->viewport()->setAcceptDrops(true);
    view->viewport()->installEventFilter(this);
}

QAbstractItemView* QListViewDragDrop::viewOf(QObject* viewport) const
{
    for (const QPointer<QAbstractItemView>& view : m_views)
        if (view && view->viewport() == viewport)
            return view;
    return nullptr;
}

QMimeData* QListViewDragDrop::mimeData(QAbstractItemView* source)
{
    QModelIndexList selected = source && source->selectionModel() ? source->selectionModel()->selectedRows()
                                                                  : QModelIndexList();
    if (selected.isEmpty())
        return nullptr;
    std::sort(selected.begin(), selected.end(), [source](const QModelIndex& a, const QModelIndex& b) {
        return source->visualRect(a).top() < source->visualRect(b).top();
    });
    m_dragSource = source;
    m_dragged.clear();
    for (const QModelIndex& index : selected)
        m_dragged.append(QPersistentModelIndex(index));
    auto mime = std::make_unique<QMimeData>();
    mime->setData(mimeType(), QByteArray::number(quintptr(this)));
    return mime.release();
}

void QListViewDragDrop::startDrag(QAbstractItemView* source)
{
    QMimeData* mime = mimeData(source);
    if (!mime)
        return;
    QDrag drag(source);
    drag.setMimeData(mime);  // the drag owns it
    drag.exec(Qt::MoveAction);
}

bool QListViewDragDrop::handleDrag(QAbstractItemView* target, QEvent* event)
{
    auto* drop = static_cast<QDropEvent*>(event);
    const bool ours = drop->mimeData() && drop->mimeData()->data(mimeType()) == QByteArray::number(quintptr(this)) &&
                      m_dragSource;
    if (!ours) {
        drop->ignore();
        return true;
    }
    Drop request;
    request.source = m_dragSource;
    request.items = m_dragged;
    request.target = target;
    request.targetIndex = target->indexAt(drop->position().toPoint());
    request.hovering = event->type() != QEvent::Drop;
    if (m_decide && m_decide(request)) {
        drop->setDropAction(Qt::MoveAction);
        drop->accept();
    } else {
        drop->ignore();
    }
    if (event->type() == QEvent::Drop) {
        m_dragSource.clear();
        m_dragged.clear();
    }
    return true;
}

bool QListViewDragDrop::eventFilter(QObject* watched, QEvent* event)
{
    // Only the mouse and drag events look for their view: others also reach the viewport while its
    // view is being destroyed, when it is no item view any more.
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        break;
    default:
        return QObject::eventFilter(watched, event);
    }
    QAbstractItemView* view = viewOf(watched);
    if (!view)
        return QObject::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        m_pressed = mouse->button() == Qt::LeftButton && view->indexAt(mouse->position().toPoint()).isValid();
        m_pressPosition = mouse->position().toPoint();
        break;
    }
    case QEvent::MouseButtonRelease:
        m_pressed = false;
        break;
    case QEvent::MouseMove: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (m_pressed && (mouse->buttons() & Qt::LeftButton) &&
            (mouse->position().toPoint() - m_pressPosition).manhattanLength() >= QApplication::startDragDistance()) {
            m_pressed = false;
            startDrag(view);
            return true;
        }
        break;
    }
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return handleDrag(view, event);
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}
