// What the dark styles paint themselves, one named row per element and state where a wrong colour
// role or a state taken for another would show: checked tool buttons, the focus frame, dock-widget
// titles, marked menu-bar items, brightened active icons, and the tarn style's sort arrows and check
// box (marks, hover frames, the item-view border), painted alike whatever the pixmap cache holds and
// at the device's pixel ratio.
#include "toolkittest.h"

namespace {

const QSize kCanvas(40, 30);

// What style paints of element with option on an image of kSentinel.
QImage primitive(const QStyle& style, QStyle::PrimitiveElement element, const QStyleOption& option,
                 const QSize& size = kCanvas)
{
    return paintedImage(size, kSentinel, [&](QPainter& p) { style.drawPrimitive(element, &option, &p); });
}

QImage control(const QStyle& style, QStyle::ControlElement element, const QStyleOption& option,
               const QWidget* widget = nullptr)
{
    return paintedImage(kCanvas, kSentinel, [&](QPainter& p) { style.drawControl(element, &option, &p, widget); });
}

template <typename Option = QStyleOption>
Option makeOption(const QRect& rect, QStyle::State state, const QPalette& palette = QPalette())
{
    Option option;
    option.rect = rect;
    option.state = state;
    option.palette = palette;
    return option;
}

// A pixel of a painted image against the colour expected there.
struct PixelRow {
    const char* name;
    QImage image;
    QPoint at;
    QColor expected;
};

void expectPixels(std::initializer_list<PixelRow> rows)
{
    for (const PixelRow& row : rows)
        EXPECT_EQ(row.image.pixelColor(row.at), row.expected) << row.name;
}

// The pixmap cache is empty before and after each test that paints through it.
struct EmptyPixmapCache {
    EmptyPixmapCache() { QPixmapCache::clear(); }
    ~EmptyPixmapCache() { QPixmapCache::clear(); }
};

TEST_P(DarkStyle, PaintsEachElementInTheColourOfItsRoleAndState)
{
    const QPalette palette = style->standardPalette();
    const QRect canvas(QPoint(0, 0), kCanvas);
    // A checked tool button is the wrapped style's panel with Button in the selected colour, when enabled.
    QPalette selected = palette;
    for (const auto group : {QPalette::Active, QPalette::Inactive})
        selected.setColor(group, QPalette::Button, grey(175));
    const std::tuple<const char*, QStyle::State, QPalette> toolButtons[] = {
        {"checked", QStyle::State_Enabled | QStyle::State_On, selected},
        {"checked but disabled", QStyle::State_On, palette},
        {"unchecked", QStyle::State_Enabled, palette},
    };
    for (const auto& [name, state, expected] : toolButtons) {
        EXPECT_EQ(primitive(*style, QStyle::PE_PanelButtonTool, makeOption(canvas, state, palette)),
                  primitive(*base, QStyle::PE_PanelButtonTool, makeOption(canvas, state, expected)))
            << "tool button " << name;
    }

    auto title = makeOption<QStyleOptionDockWidget>(QRect(0, 0, 40, 20), QStyle::State_Enabled, palette);
    title.movable = true;
    const QImage horizontal = control(*style, QStyle::CE_DockWidgetTitle, title);
    title.verticalTitleBar = true;
    const QImage vertical = control(*style, QStyle::CE_DockWidgetTitle, title);
    QWidget menuBar;
    menuBar.setProperty("isQtarnZelmarMenuBar", false);
    menuBar.setPalette(palette);
    const QColor bar = menuBar.palette().color(menuBar.backgroundRole());
    const auto menuItem = [&](QStyle::State state) {
        return control(*style, QStyle::CE_MenuBarItem, makeOption<QStyleOptionMenuItem>(canvas, state, palette), &menuBar);
    };
    const QImage focus = control(*style, QStyle::CE_FocusFrame, makeOption(QRect(2, 2, 20, 10), QStyle::State_None));
    expectPixels({
        {"focus frame: in the focus colour", focus, {21, 11}, grey(130)},
        {"focus frame: a frame only", focus, {10, 6}, kSentinel},
        {"dock title: Light along the top", horizontal, {20, 0}, grey(97)},
        {"dock title: Dark along the bottom", horizontal, {20, 19}, grey(37)},
        {"vertical dock title: Dark along the right", vertical, {39, 10}, grey(37)},
        {"selected menu item: outlined in Window darkened", menuItem(QStyle::State_Enabled | QStyle::State_Selected),
         {10, 0}, grey(38)},
        {"unselected menu item: plain", menuItem(QStyle::State_Enabled), {10, 0}, bar},
        {"disabled menu item: plain", menuItem(QStyle::State_Selected), {10, 0}, bar},
    });

    const std::tuple<const char*, QRgb, QRgb> activeIcons[] = {
        {"dark kept", qRgb(30, 30, 30), qRgb(30, 30, 30)},
        {"brighter by fifty", qRgb(31, 31, 31), qRgb(81, 81, 81)},
        {"capped at white", qRgb(220, 220, 220), qRgb(255, 255, 255)},
        {"hue and saturation kept", qRgb(100, 50, 50), qRgb(150, 75, 75)},
    };
    for (const auto& [name, from, expected] : activeIcons) {
        const QPixmap icon = QPixmap::fromImage(paintedImage(QSize(2, 1), QColor(from), [](QPainter&) {}));
        EXPECT_EQ(style->generatedIconPixmap(QIcon::Active, icon, nullptr).toImage().pixelColor(1, 0), QColor(expected))
            << "active icon: " << name;
    }
    QStyleOption option;
    option.palette = palette;
    const QPixmap icon = QPixmap::fromImage(paintedImage(QSize(4, 4), QColor(90, 160, 40), [](QPainter&) {}));
    for (const auto mode : {QIcon::Normal, QIcon::Disabled, QIcon::Selected}) {
        EXPECT_EQ(style->generatedIconPixmap(mode, icon, &option).toImage(),
                  QCommonStyle().generatedIconPixmap(mode, icon, &option).toImage())
            << "icon mode " << mode;
    }
}

TEST(DarkStyleSimplePainting, NeverDrawsAFocusRectangle)
{
    auto focus = makeOption<QStyleOptionFocusRect>(
        QRect(QPoint(0, 0), kCanvas), QStyle::State_Enabled | QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange);
    focus.backgroundColor = Qt::white;
    const QImage untouched = paintedImage(kCanvas, kSentinel, [](QPainter&) {});
    EXPECT_EQ(primitive(QtlomDarkStyleSimple(), QStyle::PE_FrameFocusRect, focus), untouched);
    EXPECT_NE(primitive(*kSimpleStyle.createBase(), QStyle::PE_FrameFocusRect, focus), untouched)
        << "the wrapped style would draw one";
}

// The sense is inverted on purpose: SortUp shows the cached downward image, SortDown the upward one.
TEST(TarnHeaderArrow, ShowsTheCachedImageOfTheOtherDirectionAtItsOwnSize)
{
    const EmptyPixmapCache emptyCache;
    const auto drawArrow = [](QStyleOptionHeader::SortIndicator indicator) {
        QStyleOptionHeader header;
        header.rect = QRect(5, 3, 20, 20);
        header.sortIndicator = indicator;
        return primitive(QtlomDarkStyleTarn(), QStyle::PE_IndicatorHeaderArrow, header);
    };
    expectPixels({{"nothing cached: no arrow", drawArrow(QStyleOptionHeader::SortUp), {5, 3}, kSentinel}});
    for (const auto& [key, colour] : {std::pair("arrowDown.png", Qt::red), std::pair("arrowUp.png", Qt::blue)}) {
        QPixmap image(6, 4);
        image.fill(colour);
        QPixmapCache::insert(QString::fromLatin1(key), image);
    }
    const QImage up = drawArrow(QStyleOptionHeader::SortUp);
    expectPixels({{"up: the downward image", up, {5, 3}, Qt::red},
                  {"up: unscaled", up, {11, 3}, kSentinel},
                  {"down: the upward image", drawArrow(QStyleOptionHeader::SortDown), {5, 3}, Qt::blue}});
}

const QSize kIndicator(13, 13);

class TarnCheckBox : public ::testing::Test
{
protected:
    TarnCheckBox() { m_palette.setColor(QPalette::Highlight, QColor(0, 0, 200)); }

    QStyleOptionButton option(QStyle::State state) const
    {
        return makeOption<QStyleOptionButton>(QRect(QPoint(0, 0), kIndicator), state, m_palette);
    }
    QImage draw(const QStyleOptionButton& button, const QSize& size = kIndicator) const
    {
        return primitive(m_style, QStyle::PE_IndicatorCheckBox, button, size);
    }
    QImage box(QStyle::State state) const { return draw(option(state)); }

    const EmptyPixmapCache m_emptyCache;
    QtlomDarkStyleTarn m_style;
    QPalette m_palette = m_style.standardPalette();
};

// The mark's top-right pixel lands at (10, 2); (2, 2) is inside the box but outside the mark.
TEST_F(TarnCheckBox, MarkAndFrameFollowTheStateAndTheBorderStandsOutFromBaseInAnItemView)
{
    const QColor sunkenMark = grey(147);  // halves of Base 42 darkened by 105 and Text lightened by 250
    const QImage unchecked = box(QStyle::State_Enabled | QStyle::State_Off);
    // In an item view the box sits on Base (42), where the button's border (38) would vanish.
    const auto viewItem = makeOption<QStyleOptionViewItem>(QRect(QPoint(0, 0), kIndicator), QStyle::State_Enabled, m_palette);
    const QImage inView = paintedImage(kIndicator, grey(42), [&](QPainter& p) {
        m_style.drawPrimitive(QStyle::PE_IndicatorItemViewItemCheck, &viewItem, &p);
    });
    expectPixels({
        {"checked: mark in Text", box(QStyle::State_Enabled | QStyle::State_On), {10, 2}, grey(200)},
        {"partial: sunken mark", box(QStyle::State_Enabled | QStyle::State_NoChange), {10, 2}, sunkenMark},
        {"pressed: sunken mark", box(QStyle::State_Enabled | QStyle::State_Sunken), {10, 2}, sunkenMark},
        {"unchecked: no mark", unchecked, {10, 2}, unchecked.pixelColor(2, 2)},
        {"border: Window darkened by 178", unchecked, {6, 0}, grey(38)},
        // Button 100 merged with the highlight at 35 %.
        {"hover: outer highlight frame", box(QStyle::State_Enabled | QStyle::State_MouseOver), {1, 6}, QColor(35, 35, 165)},
        {"item view: border between Text and Base", inView, {6, 0}, grey(128)},
    });
    EXPECT_EQ(box(QStyle::State_MouseOver), box(QStyle::State_None)) << "disabled: no hover frames";
}

// A box painted after one of another state, palette or size looks as it does when painted first;
// with the pixmap cache switched off it is painted alike, straight onto the device, wherever it is.
TEST_F(TarnCheckBox, LooksTheSameWhateverWasPaintedBeforeAndWithoutAPixmapCache)
{
    const QStyleOptionButton checked = option(QStyle::State_Enabled | QStyle::State_On);
    QStyleOptionButton otherPalette = checked;
    otherPalette.palette.setColor(QPalette::Base, grey(30));
    QStyleOptionButton larger = checked;
    larger.rect = QRect(0, 0, 15, 15);
    for (const QStyleOptionButton& other : {option(checked.state | QStyle::State_MouseOver), otherPalette, larger}) {
        QPixmapCache::clear();
        const QImage first = draw(other);
        QPixmapCache::clear();
        draw(checked);
        EXPECT_EQ(draw(other), first) << int(other.state) << " " << other.rect.width();
    }
    for (QStyleOptionButton button : {checked, option(QStyle::State_Enabled | QStyle::State_MouseOver | QStyle::State_Sunken)}) {
        button.rect.translate(3, 2);
        QPixmapCache::clear();
        const QImage viaCache = draw(button, kIndicator + QSize(5, 4));
        const int limit = QPixmapCache::cacheLimit();
        QPixmapCache::setCacheLimit(0);
        EXPECT_EQ(draw(button, kIndicator + QSize(5, 4)), viaCache) << int(button.state);
        QPixmapCache::setCacheLimit(limit);
    }
}

// On a screen of pixel ratio 2 the box is painted at twice the pixels, not scaled up from the box
// cached at ratio 1: the one-pixel border is two device pixels wide, and the cached box is the one
// painted straight onto the device.
TEST_F(TarnCheckBox, IsPaintedAtTheDevicePixelRatio)
{
    const QStyleOptionButton checked = option(QStyle::State_Enabled | QStyle::State_On);
    draw(checked);
    const auto atRatioTwo = [&] {
        QImage image(kIndicator * 2, QImage::Format_ARGB32);
        image.setDevicePixelRatio(2);
        image.fill(kSentinel);
        QPainter painter(&image);
        m_style.drawPrimitive(QStyle::PE_IndicatorCheckBox, &checked, &painter);
        painter.end();
        return image;
    };
    const QImage cached = atRatioTwo();
    expectPixels({{"border, first device row", cached, {12, 0}, grey(38)}, {"border, second row", cached, {12, 1}, grey(38)}});
    EXPECT_NE(cached.pixelColor(12, 2), grey(38));
    const int limit = QPixmapCache::cacheLimit();
    QPixmapCache::setCacheLimit(0);
    const QImage straight = atRatioTwo();
    int largestDifference = 0;  // blitting the cached pixmap rounds a little
    for (int y = 0; y < straight.height(); ++y) {
        for (int x = 0; x < straight.width(); ++x)
            largestDifference = std::max(largestDifference, std::abs(qGray(cached.pixel(x, y)) - qGray(straight.pixel(x, y))));
    }
    EXPECT_LE(largestDifference, 3) << "the cached box is the box painted at ratio 2, its mark smoothly scaled";
    QPixmapCache::setCacheLimit(limit);
}

}  // namespace
