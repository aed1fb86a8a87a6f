#include "qtlomdarkstylepainting.h"

#include <QLinearGradient>
#include <QStyleOption>

namespace tlomdark {

QString uniqueName(const QString& key, const QStyleOption* option, const QSize& size)
{
    const int activeSubControls = option->type >= QStyleOption::SO_Complex
        ? int(static_cast<const QStyleOptionComplex*>(option)->activeSubControls)
        : 0;
    return QString::asprintf("%s-%d-%d-%lld-%dx%d", key.toLatin1().constData(), int(option->state),
                             activeSubControls, static_cast<long long>(option->palette.cacheKey()), size.width(),
                             size.height());
}

QColor mergedColors(const QColor& a, const QColor& b, int factor)
{
    const auto channel = [factor](int ca, int cb) { return ca * factor / 100 + cb * (100 - factor) / 100; };
    QColor merged(channel(a.red(), b.red()), channel(a.green(), b.green()), channel(a.blue(), b.blue()));
    merged.setAlpha(a.alpha());
    return merged;
}

void tlomDarkStyleDrawGradient(QPainter* painter, const QRect& rect, const QColor& top, const QColor& bottom, bool)
{
    const QString key = QString::asprintf("%dx%d-%x-%x", rect.width(), rect.height(), top.rgba(), bottom.rgba());
    drawCachedPixmap(painter, key, rect, [&](QPainter& p, const QRect& area) {
        QLinearGradient gradient(area.topLeft(), area.bottomLeft());
        gradient.setColorAt(0.0, top);
        gradient.setColorAt(1.0, bottom);
        p.fillRect(area, gradient);
    });
}

}  // namespace tlomdark
