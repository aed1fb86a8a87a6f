#include <qtextention/qtlomdarkstyletarn.h>

#include "qtlomdarkstylepainting.h"

#include <qtextention/qtarnqthelper.h>
#include <qtextention/qtreewidgetitemit.h>

#include <QImage>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

using tlomdark::drawCachedPixmap;
using tlomdark::mergedColors;
using tlomdark::uniqueName;

namespace {

// The check mark, drawn at (2, 2) of the indicator. Its colour slots are replaced when drawn.
const char* const sTlomDarkStyleCheck[] = {
    "9 9 4 1",
    ".      c #525252",
    "+      c #000000",
    "@      c #A7A7A7",
    "       c None",
    "        .",
    "       ..",
    "      ...",
    "     ... ",
    ".   ...  ",
    ".. ...   ",
    ".....    ",
    " ...     ",
    "  .      ",
};
// The mark of a pressed or partially checked box has the same rows; only its colours differ.
const auto& sTlomDarkStyleCheckSunken = sTlomDarkStyleCheck;

// One-pixel lines and points as filled rectangles: a pen line is centred on the pixel edge and
// loses half its width when the painter scales to a pixel ratio of 2; a rectangle covers exactly
// the device pixels of its logical pixels at any ratio.
void horizontalLine(QPainter& p, int x1, int x2, int y, const QColor& color)
{
    p.fillRect(QRect(QPoint(x1, y), QPoint(x2, y)), color);
}

void verticalLine(QPainter& p, int x, int y1, int y2, const QColor& color)
{
    p.fillRect(QRect(QPoint(x, y1), QPoint(x, y2)), color);
}

// Draws the frame inset pixels in from r: top and left in color, bottom and right darker.
void drawInsetFrame(QPainter& p, const QRect& r, int inset, const QColor& color)
{
    const QRect f = r.adjusted(inset, inset, -inset, -inset);
    horizontalLine(p, f.left(), f.right(), f.top(), color);
    verticalLine(p, f.left(), f.top() + 1, f.bottom(), color);
    horizontalLine(p, f.left() + 1, f.right(), f.bottom(), color.darker(110));
    verticalLine(p, f.right(), f.top() + 1, f.bottom() - 1, color.darker(110));
}

QImage checkMark(const QStyleOptionButton* button)
{
    const QPalette& palette = button->palette;
    const QColor text = palette.color(QPalette::Text);
    if (button->state & (QStyle::State_Sunken | QStyle::State_NoChange)) {
        const QColor sunkenCheck =
            mergedColors(palette.color(QPalette::Base).darker(105), text.lighter(250), 50);
        QImage image(sTlomDarkStyleCheckSunken);
        image.setColor(0, sunkenCheck.rgba());
        image.setColor(1, sunkenCheck.lighter(130).rgba());
        image.setColor(2, sunkenCheck.lighter(110).rgba());
        return image;
    }
    QImage image(sTlomDarkStyleCheck);
    image.setColor(0, text.rgba());
    image.setColor(1, mergedColors(palette.color(QPalette::Window), text, 50).rgba());
    return image;
}

// The border of a button's check box: dark against the Window behind it.
QColor buttonCheckBorder(const QPalette& palette)
{
    return palette.color(QPalette::Window).darker(178);
}

// The border of a check box in an item view, which sits on Base: the button's dark border would
// vanish there, so it is drawn in a grey between Text and Base that stands out from both.
QColor itemViewCheckBorder(const QPalette& palette)
{
    return mergedColors(palette.color(QPalette::Text), palette.color(QPalette::Base), 55);
}

void paintCheckBox(QPainter& p, const QRect& r, const QStyleOptionButton* button, const QColor& border)
{
    const QPalette& palette = button->palette;
    const QColor window = palette.color(QPalette::Window);
    const QColor base = palette.color(QPalette::Base);
    const QColor buttonColor = palette.color(QPalette::Button);
    const QColor highlight = palette.color(QPalette::Highlight);
    const bool hover = (button->state & QStyle::State_Enabled) && (button->state & QStyle::State_MouseOver);

    horizontalLine(p, r.left() + 1, r.right() - 1, r.top(), border);
    horizontalLine(p, r.left() + 1, r.right() - 1, r.bottom(), border);
    verticalLine(p, r.left(), r.top() + 1, r.bottom() - 1, border);
    verticalLine(p, r.right(), r.top() + 1, r.bottom() - 1, border);
    for (const QPoint corner : {r.topLeft(), r.topRight(), r.bottomLeft(), r.bottomRight()})
        p.fillRect(QRect(corner, QSize(1, 1)), mergedColors(window, border, 50));

    const QRect inner = r.adjusted(1, 1, -1, -1);
    if (hover) {
        tlomdark::tlomDarkStyleDrawGradient(&p, inner, base, mergedColors(base, highlight, 70), false);
        drawInsetFrame(p, r, 1, mergedColors(buttonColor, highlight, 35));
        drawInsetFrame(p, r, 2, mergedColors(buttonColor, highlight, 58));
    } else {
        tlomdark::tlomDarkStyleDrawGradient(&p, inner, base.darker(101), base.darker(106), false);
    }

    if (button->state & (QStyle::State_On | QStyle::State_NoChange | QStyle::State_Sunken)) {
        // Above a pixel ratio of 1 the nine-pixel mark is scaled up smoothly rather than in blocks.
        p.setRenderHint(QPainter::SmoothPixmapTransform);
        p.drawImage(QPoint(2, 2), checkMark(button));
    }
}

void drawCheckBoxIndicator(const QStyleOptionButton* button, QPainter* painter)
{
    drawCachedPixmap(painter, uniqueName(QStringLiteral("checkbox"), button, button->rect.size()), button->rect,
                     [button](QPainter& p, const QRect& r) {
                         paintCheckBox(p, r, button, buttonCheckBorder(button->palette));
                     });
}

void drawItemViewCheckIndicator(const QStyleOption* option, QPainter* painter)
{
    QStyleOptionButton button;
    button.QStyleOption::operator=(*option);
    button.state &= ~QStyle::State_MouseOver;
    drawCachedPixmap(painter, uniqueName(QStringLiteral("itemcheckbox"), &button, button.rect.size()), button.rect,
                     [&button](QPainter& p, const QRect& r) {
                         paintCheckBox(p, r, &button, itemViewCheckBorder(button.palette));
                     });
}

void drawBranchIndicator(const QStyleOption* option, QPainter* painter)
{
    const QPalette& palette = option->palette;
    const QColor text = palette.color(QPalette::Text);
    const QColor lines = mergedColors(palette.color(QPalette::Base), text, 70);
    const QColor indicator = mergedColors(palette.color(QPalette::Window), text, 50);
    drawCachedPixmap(painter, uniqueName(QStringLiteral("branch"), option, option->rect.size()), option->rect,
                     [&](QPainter& p, const QRect& r) {
                         QStyleOption atOrigin(*option);
                         atOrigin.rect = r;
                         DrawTreeBranch(&p, &atOrigin, lines, indicator);
                     });
}

// The indicator's sense is inverted on purpose: SortUp shows the downward image, SortDown the upward
// one. (QHeaderView passes SortDown for an ascending sort, so an ascending column shows "arrowUp.png".)
void drawHeaderArrow(const QStyleOption* option, QPainter* painter)
{
    const auto* header = qstyleoption_cast<const QStyleOptionHeader*>(option);
    if (!header)
        return;
    const QPixmap arrow = QtarnQtHelper::getCachedPixmap(
        header->sortIndicator == QStyleOptionHeader::SortUp ? "arrowDown.png" : "arrowUp.png");
    if (!arrow.isNull())
        painter->drawPixmap(header->rect.topLeft(), arrow);
}

}  // namespace

QtlomDarkStyleTarn::QtlomDarkStyleTarn()
    : QtlomDarkStyle(QStyleFactory::create(QStringLiteral("Fusion")))
{
}

int QtlomDarkStyleTarn::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                                  QStyleHintReturn* returnData) const
{
    const int answer = QtlomDarkStyle::styleHint(hint, option, widget, returnData);
    return hint == SH_Slider_AbsoluteSetButtons ? int(Qt::LeftButton) : answer;
}

int QtlomDarkStyleTarn::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    if (metric == PM_FocusFrameHMargin)
        return 2;
    return QtlomDarkStyle::pixelMetric(metric, option, widget);
}

void QtlomDarkStyleTarn::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                       const QWidget* widget) const
{
    switch (element) {
    case PE_IndicatorHeaderArrow:
        drawHeaderArrow(option, painter);
        return;
    case PE_IndicatorCheckBox:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option)) {
            drawCheckBoxIndicator(button, painter);
            return;
        }
        break;
    case PE_IndicatorItemViewItemCheck:
        drawItemViewCheckIndicator(option, painter);
        return;
    case PE_IndicatorBranch:
        drawBranchIndicator(option, painter);
        return;
    default:
        break;
    }
    QtlomDarkStyle::drawPrimitive(element, option, painter, widget);
}

QSize QtlomDarkStyleTarn::sizeFromContents(ContentsType type, const QStyleOption* option,
                                           const QSize& contentsSize, const QWidget* widget) const
{
    if (type != CT_PushButton)
        return QtlomDarkStyle::sizeFromContents(type, option, contentsSize, widget);
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    if (!button)
        return contentsSize;
    QSize size = QCommonStyle::sizeFromContents(type, option, contentsSize, widget);
    if (button->features & QStyleOptionButton::AutoDefaultButton) {
        const int indicator = pixelMetric(PM_ButtonDefaultIndicator, option, widget);
        size += QSize(indicator, indicator);
    }
    return size;
}
