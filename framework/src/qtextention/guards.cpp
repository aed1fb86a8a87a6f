#include <qtextention/guards.h>

#include <QApplication>
#include <QCursor>
#include <QObject>
#include <QPainter>
#include <QRect>
#include <QRectF>
#include <QtDebug>

void ConnectAssert(const QObject* sender, const char* signal, const QObject* receiver, const char* method)
{
    if (!QObject::connect(sender, signal, receiver, method, Qt::AutoConnection)) {
        qWarning("ConnectAssert: cannot connect %s::%s to %s::%s",
                 sender ? sender->metaObject()->className() : "(null)", signal ? signal : "(null)",
                 receiver ? receiver->metaObject()->className() : "(null)", method ? method : "(null)");
    }
}

BlockSignalGuard::BlockSignalGuard(QObject* o1, QObject* o2, QObject* o3, QObject* o4, QObject* o5, QObject* o6,
                                   QObject* o7, QObject* o8, QObject* o9, QObject* o10)
{
    for (QObject* object : {o1, o2, o3, o4, o5, o6, o7, o8, o9, o10}) {
        if (object)
            m_objects.emplace_back(object, object->signalsBlocked());
    }
    for (auto& [object, previous] : m_objects)
        previous = object->blockSignals(true);
}

BlockSignalGuard::~BlockSignalGuard()
{
    for (const auto& [object, previous] : m_objects)
        object->blockSignals(previous);
}

BlockLocalSignalGuard::BlockLocalSignalGuard(const QObject* sender, const char* signal, const QObject* receiver,
                                             const char* method)
    : m_receiver(receiver), m_sender(sender), m_signal(signal), m_method(method)
{
    QObject::disconnect(m_sender, m_signal, m_receiver, m_method);
}

BlockLocalSignalGuard::~BlockLocalSignalGuard()
{
    ConnectAssert(m_sender, m_signal, m_receiver, m_method);
}

CursorGuard::CursorGuard() : CursorGuard(Qt::WaitCursor) {}

CursorGuard::CursorGuard(Qt::CursorShape shape)
{
    if (!QApplication::topLevelWidgets().isEmpty())
        QApplication::setOverrideCursor(QCursor(shape));
}

CursorGuard::~CursorGuard()
{
    if (!QApplication::topLevelWidgets().isEmpty())
        QApplication::restoreOverrideCursor();
}

AntialiasGuard::AntialiasGuard(QPainter* painter, bool antialias)
    : m_painter(painter), m_antialiasing(painter->testRenderHint(QPainter::Antialiasing))
{
    m_painter->setRenderHint(QPainter::Antialiasing, antialias);
}

AntialiasGuard::~AntialiasGuard()
{
    m_painter->setRenderHint(QPainter::Antialiasing, m_antialiasing);
}

PainterStateGuard::PainterStateGuard(QPainter* painter) : m_painter(painter)
{
    m_painter->save();
}

PainterStateGuard::~PainterStateGuard()
{
    m_painter->restore();
}

ClipGuard::ClipGuard(QPainter* painter)
    : m_painter(painter), m_region(painter->clipRegion()), m_clipping(painter->hasClipping())
{
}

ClipGuard::ClipGuard(QPainter* painter, const QRectF* rect) : ClipGuard(painter)
{
    if (rect) {
        m_painter->setClipping(true);
        m_painter->setClipRect(*rect, Qt::ReplaceClip);
    } else {
        m_painter->setClipping(false);
    }
}

ClipGuard::ClipGuard(QPainter* painter, const QRegion& region) : ClipGuard(painter)
{
    m_painter->setClipping(true);
    m_painter->setClipRegion(region, Qt::ReplaceClip);
}

ClipGuard::ClipGuard(QPainter* painter, const QRect& rect) : ClipGuard(painter)
{
    m_painter->setClipping(true);
    m_painter->setClipRect(rect, Qt::ReplaceClip);
}

ClipGuard::ClipGuard(QPainter* painter, const QRectF& rect) : ClipGuard(painter, &rect) {}

ClipGuard::~ClipGuard()
{
    // Setting a region turns clipping on: give the region back first, then the clipping state.
    m_painter->setClipRegion(m_region, Qt::ReplaceClip);
    m_painter->setClipping(m_clipping);
}
