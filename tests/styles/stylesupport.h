#pragma once

// What the dark-style tests share: the two styles with the Qt style each one wraps, and painting
// into an image of a known background so that a test can read back exactly what a style drew.

#include <qtextention/qtlomdarkstylesimple.h>
#include <qtextention/qtlomdarkstyletarn.h>

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QStyleFactory>

#include <functional>
#include <memory>
#include <ostream>

struct StyleCase {
    const char* name;
    const char* baseKey;  // the QStyleFactory key of the wrapped style
    std::function<std::unique_ptr<QStyle>()> create;

    std::unique_ptr<QStyle> createBase() const { return std::unique_ptr<QStyle>(QStyleFactory::create(baseKey)); }
};

inline const StyleCase& simpleStyleCase()
{
    static const StyleCase style{"Simple", "Windows", [] { return std::make_unique<QtlomDarkStyleSimple>(); }};
    return style;
}

inline const StyleCase& tarnStyleCase()
{
    static const StyleCase style{"Tarn", "Fusion", [] { return std::make_unique<QtlomDarkStyleTarn>(); }};
    return style;
}

inline std::ostream& operator<<(std::ostream& out, const StyleCase& style)
{
    return out << style.name;
}

// An image of size filled with background and then handed to paint.
inline QImage paintedImage(const QSize& size, const QColor& background, const std::function<void(QPainter&)>& paint)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(background);
    QPainter painter(&image);
    paint(painter);
    return image;
}

// The pixel as an opaque-or-not QColor, for readable comparisons.
inline QColor pixelColor(const QImage& image, int x, int y)
{
    return QColor::fromRgba(image.pixel(x, y));
}

// The same role in every group is the same grey.
inline QColor grey(int value)
{
    return QColor(value, value, value);
}
