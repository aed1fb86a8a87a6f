#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QEasingCurve>
#include <QObject>

#include <memory>

/// Moves a number smoothly from where it is to a target and reports every step, for values that
/// widgets apply themselves (a splitter pane's size, an opacity). A new target while moving starts
/// from the value reached, so that a reversal mid-way does not jump.
class QTEXTENTION_EXPORT QValueAnimator : public QObject
{
    Q_OBJECT
public:
    explicit QValueAnimator(QObject* parent = nullptr);
    ~QValueAnimator() override;

    /// Milliseconds from the value to a target; 0 sets targets at once. 150 at construction.
    void setDuration(int milliseconds);
    int duration() const;
    /// The course of each move; QEasingCurve::OutCubic at construction.
    void setEasingCurve(const QEasingCurve& curve);

    /// The value last reported (0 at construction).
    qreal value() const { return m_value; }
    /// The value being moved to; value() when nothing moves.
    qreal target() const { return m_target; }
    bool isRunning() const;

    /// Moves to target over the duration; reports valueChanged for each step and finished at the end.
    void animateTo(qreal target);
    /// Stops any move and reports value at once (valueChanged only; no finished).
    void setValue(qreal value);
    /// Ends a running move at its target now: valueChanged with the target, then finished.
    void finish();

signals:
    void valueChanged(qreal value);
    void finished();

private:
    void report(qreal value);

    struct Private;
    std::unique_ptr<Private> d;
    qreal m_value = 0;
    qreal m_target = 0;
};
