#include "stylesupport.h"

#include <qtextention/qtlomdarkstylesimple.h>
#include <qtextention/qtlomdarkstyletarn.h>

#include <QPainter>
#include <QStyleFactory>

std::unique_ptr<QStyle> StyleCase::createBase() const
{
    return std::unique_ptr<QStyle>(QStyleFactory::create(QString::fromLatin1(baseKey)));
}

const StyleCase& simpleStyleCase()
{
    static const StyleCase style{"Simple", "Windows", [] { return std::make_unique<QtlomDarkStyleSimple>(); }};
    return style;
}

const StyleCase& tarnStyleCase()
{
    static const StyleCase style{"Tarn", "Fusion", [] { return std::make_unique<QtlomDarkStyleTarn>(); }};
    return style;
}

QImage paintedImage(const QSize& size, const QColor& background, const std::function<void(QPainter&)>& paint)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(background);
    QPainter painter(&image);
    paint(painter);
    painter.end();
    return image;
}

QColor pixelColor(const QImage& image, int x, int y)
{
    return QColor::fromRgba(image.pixel(x, y));
}

QColor grey(int value)
{
    return QColor(value, value, value);
}
