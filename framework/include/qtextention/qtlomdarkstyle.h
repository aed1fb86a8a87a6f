#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QColor>
#include <QProxyStyle>

/// What the two dark styles share: the dark palette, tab bars and tab-widget frames with Window
/// and Button exchanged, checked tool buttons in a light grey, a plain focus frame, the menu-bar
/// metrics and marked items of menu bars that carry the property "isQtarnZelmarMenuBar" (any
/// value, false included), dock-widget titles, and brightened icons in the active mode.
/// Use QtlomDarkStyleSimple or QtlomDarkStyleTarn; set the application palette from
/// standardPalette() when installing one, since platform themes take precedence over a style's.
class QTEXTENTION_EXPORT QtlomDarkStyle : public QProxyStyle
{
    Q_OBJECT

public:
    static const QColor fSelectedToolButtonColor;  // panel of a checked, enabled tool button
    static const QColor fPanelFocusRectColor;      // CE_FocusFrame outline

    QPalette standardPalette() const override;
    void polish(QWidget* widget) override;
    using QProxyStyle::polish;

    int styleHint(StyleHint hint, const QStyleOption* option = nullptr, const QWidget* widget = nullptr,
                  QStyleHintReturn* returnData = nullptr) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option = nullptr,
                    const QWidget* widget = nullptr) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget = nullptr) const override;
    QPixmap generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap, const QStyleOption* option) const override;

protected:
    /// Takes ownership of baseStyle (a style made by QStyleFactory).
    explicit QtlomDarkStyle(QStyle* baseStyle);
};
