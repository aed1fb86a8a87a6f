#pragma once

// Scope guards: each changes one piece of Qt state for the lifetime of the guard object and puts
// it back when the guard is destroyed. Create them on the stack; none can be copied or moved.
//
//   {
//       BlockSignalGuard blocked(tree, model);   // no signals from either while filling
//       CursorGuard busy;                        // wait cursor while windows exist
//       fill(tree);
//   }

#include <qtextention/qtextentionglobal.h>

#include <QRegion>
#include <Qt>

#include <utility>
#include <vector>

class QObject;
class QPainter;
class QRect;
class QRectF;

/// Connects a string-encoded signal to a slot or signal (the SIGNAL()/SLOT() texts) with an
/// automatic connection. A connection Qt refuses is reported by a Qt warning naming both ends.
QTEXTENTION_EXPORT void ConnectAssert(const QObject* sender, const char* signal, const QObject* receiver,
                                      const char* method);

/// Blocks the signals of up to ten objects; null arguments are skipped wherever they stand. Each
/// object gets back the blocked state it had before, so nested guards unblock only at the outermost.
class QTEXTENTION_EXPORT BlockSignalGuard final
{
public:
    explicit BlockSignalGuard(QObject* o1, QObject* o2 = nullptr, QObject* o3 = nullptr, QObject* o4 = nullptr,
                              QObject* o5 = nullptr, QObject* o6 = nullptr, QObject* o7 = nullptr,
                              QObject* o8 = nullptr, QObject* o9 = nullptr, QObject* o10 = nullptr);
    ~BlockSignalGuard();
    Q_DISABLE_COPY_MOVE(BlockSignalGuard)

private:
    std::vector<std::pair<QObject*, bool>> m_objects;  // object, blocked state before the guard
};

/// Breaks one signal-slot connection for its lifetime and makes it again (through ConnectAssert)
/// at the end. Other receivers of the signal are not affected. The signal and method texts are
/// not copied: they must outlive the guard (string literals from SIGNAL()/SLOT() do).
class QTEXTENTION_EXPORT BlockLocalSignalGuard final
{
public:
    BlockLocalSignalGuard(const QObject* sender, const char* signal, const QObject* receiver, const char* method);
    ~BlockLocalSignalGuard();
    Q_DISABLE_COPY_MOVE(BlockLocalSignalGuard)

private:
    const QObject* m_receiver = nullptr;
    const QObject* m_sender = nullptr;
    const char* m_signal = nullptr;
    const char* m_method = nullptr;
};

/// Shows an override cursor while the application has top-level widgets. Whether there are any is
/// asked again at destruction: a guard created before the first window and destroyed after it pops
/// a cursor it did not push, and one outliving every window leaves its cursor in place. Headless
/// (batch) runs therefore never touch the cursor.
class QTEXTENTION_EXPORT CursorGuard final
{
public:
    CursorGuard();  // Qt::WaitCursor
    explicit CursorGuard(Qt::CursorShape shape);
    ~CursorGuard();
    Q_DISABLE_COPY_MOVE(CursorGuard)
};

/// Sets the painter's antialiasing hint and restores the hint found; other hints are untouched.
class QTEXTENTION_EXPORT AntialiasGuard final
{
public:
    AntialiasGuard(QPainter* painter, bool antialias);
    ~AntialiasGuard();
    Q_DISABLE_COPY_MOVE(AntialiasGuard)

private:
    QPainter* m_painter = nullptr;
    bool m_antialiasing = false;
};

/// save() at construction, restore() at destruction.
class QTEXTENTION_EXPORT PainterStateGuard final
{
public:
    explicit PainterStateGuard(QPainter* painter);
    ~PainterStateGuard();
    Q_DISABLE_COPY_MOVE(PainterStateGuard)

private:
    QPainter* m_painter = nullptr;
};

/// Replaces the painter's clip for its lifetime. The pointer form with null turns clipping off.
/// At destruction the clipping flag found is set first, then the clip region found (replacing).
/// Note that QPainter enables clipping when a region is set, so a painter that had no clipping
/// ends with clipping on over an empty region, which Qt paints as unclipped.
class QTEXTENTION_EXPORT ClipGuard final
{
public:
    ClipGuard(QPainter* painter, const QRectF* rect);
    ClipGuard(QPainter* painter, const QRegion& region);
    ClipGuard(QPainter* painter, const QRect& rect);
    ClipGuard(QPainter* painter, const QRectF& rect);
    ~ClipGuard();
    Q_DISABLE_COPY_MOVE(ClipGuard)

private:
    explicit ClipGuard(QPainter* painter);

    QPainter* m_painter = nullptr;
    QRegion m_region;
    bool m_clipping = false;
};
