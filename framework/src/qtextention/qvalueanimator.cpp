#include <qtextention/qvalueanimator.h>

#include <QVariantAnimation>

struct QValueAnimator::Private
{
    QVariantAnimation animation;
};

QValueAnimator::QValueAnimator(QObject* parent) : QObject(parent), d(std::make_unique<Private>())
{
    d->animation.setDuration(150);
    d->animation.setEasingCurve(QEasingCurve::OutCubic);
    connect(&d->animation, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        if (d->animation.state() == QAbstractAnimation::Running)
            report(value.toReal());
    });
    connect(&d->animation, &QVariantAnimation::finished, this, [this] {
        report(m_target);
        emit finished();
    });
}

QValueAnimator::~QValueAnimator() = default;

void QValueAnimator::setDuration(int milliseconds)
{
    d->animation.setDuration(qMax(0, milliseconds));
}

int QValueAnimator::duration() const
{
    return d->animation.duration();
}

void QValueAnimator::setEasingCurve(const QEasingCurve& curve)
{
    d->animation.setEasingCurve(curve);
}

bool QValueAnimator::isRunning() const
{
    return d->animation.state() == QAbstractAnimation::Running;
}

void QValueAnimator::animateTo(qreal target)
{
    d->animation.stop();
    m_target = target;
    if (d->animation.duration() == 0 || qFuzzyCompare(m_value + 1, target + 1)) {
        report(target);
        emit finished();
        return;
    }
    d->animation.setStartValue(m_value);
    d->animation.setEndValue(target);
    d->animation.start();
}

void QValueAnimator::setValue(qreal value)
{
    d->animation.stop();
    m_target = value;
    report(value);
}

void QValueAnimator::finish()
{
    if (!isRunning())
        return;
    d->animation.stop();
    report(m_target);
    emit finished();
}

void QValueAnimator::report(qreal value)
{
    m_value = value;
    emit valueChanged(value);
}
