#pragma once

// What the dark-style tests share: the two styles with the Qt style each one wraps, and painting
// into an image of a known background so that a test can read back exactly what a style drew.

#include <QColor>
#include <QImage>
#include <QStyle>

#include <functional>
#include <memory>
#include <ostream>

struct StyleCase {
    const char* name;
    const char* baseKey;  // the QStyleFactory key of the wrapped style
    std::function<std::unique_ptr<QStyle>()> create;

    std::unique_ptr<QStyle> createBase() const;
};

const StyleCase& simpleStyleCase();
const StyleCase& tarnStyleCase();

inline std::ostream& operator<<(std::ostream& out, const StyleCase& style)
{
    return out << style.name;
}

// A size x size ARGB image filled with background and then handed to paint.
QImage paintedImage(const QSize& size, const QColor& background, const std::function<void(QPainter&)>& paint);

// The pixel as an opaque-or-not QColor, for readable comparisons.
QColor pixelColor(const QImage& image, int x, int y);

// The same role in every group is the same grey.
QColor grey(int value);
