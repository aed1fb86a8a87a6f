#pragma once

#include <qtextention/qtlomdarkstyle.h>

/// The dark look over Qt's "Fusion" style, with its own check boxes (cached per state, palette and
/// size), tree branches, and header sort arrows taken from the pixmap cache: "arrowDown.png" for the
/// indicator QStyleOptionHeader::SortUp and "arrowUp.png" otherwise (see QtarnQtHelper); without those
/// images no arrow is drawn. Sliders jump to the clicked position on a left click.
class QTEXTENTION_EXPORT QtlomDarkStyleTarn final : public QtlomDarkStyle
{
    Q_OBJECT

public:
    QtlomDarkStyleTarn();

    int styleHint(StyleHint hint, const QStyleOption* option = nullptr, const QWidget* widget = nullptr,
                  QStyleHintReturn* returnData = nullptr) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option = nullptr,
                    const QWidget* widget = nullptr) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget = nullptr) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contentsSize,
                           const QWidget* widget = nullptr) const override;
};
