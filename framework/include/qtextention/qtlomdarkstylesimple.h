#pragma once

#include <qtextention/qtlomdarkstyle.h>

/// The dark look over Qt's "Windows" style. Focus rectangles are never drawn.
class QTEXTENTION_EXPORT QtlomDarkStyleSimple final : public QtlomDarkStyle
{
    Q_OBJECT

public:
    QtlomDarkStyleSimple();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget = nullptr) const override;
};
