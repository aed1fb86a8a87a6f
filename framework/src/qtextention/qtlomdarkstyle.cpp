#include <qtextention/qtlomdarkstyle.h>

#include "qtlomdarkstylepainting.h"

#include <QImage>
#include <QPainter>
#include <QStyleOption>
#include <QTabBar>
#include <QWidget>
#include <qdrawutil.h>

#include <algorithm>

using tlomdark::drawCachedPixmap;
using tlomdark::mergedColors;
using tlomdark::uniqueName;

const QColor QtlomDarkStyle::fSelectedToolButtonColor(175, 175, 175);
const QColor QtlomDarkStyle::fPanelFocusRectColor(130, 130, 130);

namespace {

const char kMarkedMenuBarProperty[] = "isQtarnZelmarMenuBar";

// Any value counts, false included: the host marks its menu bar by setting the property at all.
bool isMarkedMenuBar(const QWidget* widget)
{
    return widget && widget->property(kMarkedMenuBarProperty).isValid();
}

QColor grey(int value)
{
    return QColor(value, value, value);
}

void setDarkGroup(QPalette& palette, QPalette::ColorGroup group)
{
    const bool disabled = group == QPalette::Disabled;
    const auto set = [&](QPalette::ColorRole role, const QColor& color) { palette.setBrush(group, role, color); };
    if (!disabled)
        set(QPalette::WindowText, grey(200));
    set(QPalette::Button, grey(disabled ? 80 : 100));
    set(QPalette::Light, grey(97));
    set(QPalette::Midlight, grey(59));
    set(QPalette::Dark, grey(37));
    set(QPalette::Mid, grey(45));
    set(QPalette::Base, grey(42));
    set(QPalette::AlternateBase, palette.color(group, QPalette::Base).lighter(110));
    // Disabled text is derived from the dark base set just above.
    set(QPalette::Text, disabled ? palette.color(group, QPalette::Base).lighter(250) : grey(200));
    if (!disabled) {
        set(QPalette::BrightText, grey(37));
        set(QPalette::ButtonText, grey(200));
    }
    set(QPalette::Window, grey(68));
    set(QPalette::Shadow, grey(0));
}

QPalette withWindowAndButtonSwapped(QPalette palette)
{
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        const QBrush window = palette.brush(group, QPalette::Window);
        palette.setBrush(group, QPalette::Window, palette.brush(group, QPalette::Button));
        palette.setBrush(group, QPalette::Button, window);
    }
    return palette;
}

// Copies option as its concrete type when it is one the base styles read beyond QStyleOption.
template <typename Option>
bool drawCopyWithPalette(const QStyle* style, QStyle::PrimitiveElement element, const QStyleOption* option,
                         const QPalette& palette, QPainter* painter, const QWidget* widget)
{
    const auto* typed = qstyleoption_cast<const Option*>(option);
    if (!typed)
        return false;
    Option copy(*typed);
    copy.palette = palette;
    style->drawPrimitive(element, &copy, painter, widget);
    return true;
}

void drawWithPalette(const QStyle* style, QStyle::PrimitiveElement element, const QStyleOption* option,
                     const QPalette& palette, QPainter* painter, const QWidget* widget)
{
    drawCopyWithPalette<QStyleOptionTabWidgetFrame>(style, element, option, palette, painter, widget)
        || drawCopyWithPalette<QStyleOptionToolButton>(style, element, option, palette, painter, widget)
        || drawCopyWithPalette<QStyleOption>(style, element, option, palette, painter, widget);
}

// The background of an item of a marked menu bar: the bar's own colour, and for a selected,
// enabled item a cached frame with cut corners, inner lines when the item is pressed.
void drawMarkedMenuBarItemPanel(const QStyleOptionMenuItem* item, QPainter* painter, const QWidget* widget)
{
    QColor outline = item->palette.color(QPalette::Window).darker(178);
    outline.setAlpha(std::max(outline.alpha(), 100));
    const QColor background = widget->palette().color(widget->backgroundRole());
    const QColor fill(background.red() / 2 + outline.red() / 2, background.green() / 2 + outline.green() / 2,
                      background.blue() / 2 + outline.blue() / 2);

    painter->fillRect(item->rect, background);
    if (!(item->state & QStyle::State_Selected) || !(item->state & QStyle::State_Enabled))
        return;
    const bool pressed = item->state & (QStyle::State_Sunken | QStyle::State_On);
    const QColor pressedLine = item->palette.color(QPalette::Button).darker(118);
    drawCachedPixmap(painter, uniqueName(QStringLiteral("menubaritem"), item, item->rect.size()), item->rect,
                     [&](QPainter& p, const QRect& r) {
                         p.fillRect(r.adjusted(1, 1, -1, -1), fill);
                         p.setPen(outline);
                         p.drawRect(r.adjusted(0, 0, -1, -1));
                         p.setPen(fill);
                         const QPoint corners[4] = {r.topLeft(), r.topRight(), r.bottomLeft(), r.bottomRight()};
                         p.drawPoints(corners, 4);
                         if (pressed) {
                             p.setPen(pressedLine);
                             p.drawLine(r.left() + 1, r.top() + 1, r.right() - 1, r.top() + 1);
                             p.drawLine(r.left() + 1, r.top() + 2, r.left() + 1, r.bottom() - 1);
                         }
                     });
}

// A dock widget's title bar: a cached gradient between a light and a dark one-pixel line, along
// the bar (top and bottom, or left and right for a vertical title bar).
void drawDockWidgetTitlePanel(const QStyleOptionDockWidget* dock, QPainter* painter)
{
    const QPalette& palette = dock->palette;
    const bool vertical = dock->verticalTitleBar;
    const QString name = vertical ? QStringLiteral("dockwidgettitle-vertical") : QStringLiteral("dockwidgettitle");
    drawCachedPixmap(painter, uniqueName(name, dock, dock->rect.size()), dock->rect,
                     [&](QPainter& p, const QRect& r) {
                         tlomdark::tlomDarkStyleDrawGradient(
                             &p, r, mergedColors(palette.color(QPalette::Button), palette.color(QPalette::Window), 50),
                             palette.color(QPalette::Window), false);
                         p.setPen(palette.color(QPalette::Light));
                         p.drawLine(r.topLeft(), vertical ? r.bottomLeft() : r.topRight());
                         p.setPen(palette.color(QPalette::Dark));
                         p.drawLine(vertical ? r.topRight() : r.bottomLeft(), r.bottomRight());
                     });
}

QImage brightenedForActiveMode(const QPixmap& pixmap)
{
    QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            int hue = 0;
            int saturation = 0;
            int value = 0;
            QColor color = QColor::fromRgba(line[x]);
            color.getHsv(&hue, &saturation, &value);
            if (value <= 30)
                continue;
            color.setHsv(hue, saturation, std::min(value, 205) + 50, qAlpha(line[x]));
            line[x] = color.rgba();
        }
    }
    return image;
}

}  // namespace

QtlomDarkStyle::QtlomDarkStyle(QStyle* baseStyle)
    : QProxyStyle(baseStyle)
{
}

QPalette QtlomDarkStyle::standardPalette() const
{
    QPalette palette = QStyle::standardPalette();
    for (const auto group : {QPalette::Disabled, QPalette::Active, QPalette::Inactive})
        setDarkGroup(palette, group);
    return palette;
}

void QtlomDarkStyle::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    if (qobject_cast<QTabBar*>(widget))
        widget->setPalette(withWindowAndButtonSwapped(standardPalette()));
}

int QtlomDarkStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                              QStyleHintReturn* returnData) const
{
    const int baseAnswer = QProxyStyle::styleHint(hint, option, widget, returnData);
    switch (hint) {
    case SH_EtchDisabledText:
    case SH_Button_FocusPolicy:
        return 0;
    case SH_Table_GridLineColor:
        return int(standardPalette().color(QPalette::Active, QPalette::Window).rgb());
    default:
        return baseAnswer;
    }
}

int QtlomDarkStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    switch (metric) {
    case PM_MenuBarPanelWidth:
    case PM_FocusFrameVMargin:
    case PM_FocusFrameHMargin:
        return 0;
    case PM_MenuBarVMargin:
        return isMarkedMenuBar(widget) ? 4 : 1;
    case PM_MenuBarHMargin:
        return isMarkedMenuBar(widget) ? 3 : 0;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

void QtlomDarkStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                   const QWidget* widget) const
{
    switch (element) {
    case PE_FrameTabWidget:
        drawWithPalette(baseStyle(), element, option, withWindowAndButtonSwapped(option->palette), painter, widget);
        return;
    case PE_PanelButtonTool:
        if ((option->state & State_Enabled) && (option->state & State_On)) {
            QPalette palette = option->palette;
            palette.setBrush(QPalette::Active, QPalette::Button, fSelectedToolButtonColor);
            palette.setBrush(QPalette::Inactive, QPalette::Button, fSelectedToolButtonColor);
            drawWithPalette(baseStyle(), element, option, palette, painter, widget);
            return;
        }
        break;
    default:
        break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void QtlomDarkStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const
{
    switch (element) {
    case CE_FocusFrame:
        qDrawPlainRect(painter, option->rect, fPanelFocusRectColor, 1, nullptr);
        return;
    case CE_MenuBarItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option); item && isMarkedMenuBar(widget)) {
            drawMarkedMenuBarItemPanel(item, painter, widget);
            QCommonStyle::drawControl(element, item, painter, widget);  // the label alone
            return;
        }
        break;
    case CE_DockWidgetTitle:
        if (const auto* dock = qstyleoption_cast<const QStyleOptionDockWidget*>(option)) {
            drawDockWidgetTitlePanel(dock, painter);
            QStyleOptionDockWidget label(*dock);
            label.movable = false;  // the common style would frame a movable title; the panel has its lines
            QCommonStyle::drawControl(element, &label, painter, widget);
            return;
        }
        break;
    default:
        break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

QPixmap QtlomDarkStyle::generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap, const QStyleOption* option) const
{
    if (mode != QIcon::Active)
        return QCommonStyle::generatedIconPixmap(mode, pixmap, option);
    return QPixmap::fromImage(brightenedForActiveMode(pixmap));
}
