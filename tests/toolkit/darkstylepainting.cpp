// What the dark styles paint themselves, read back pixel by pixel: checked tool buttons, focus,
// marked menu-bar items, dock-widget titles, brightened active icons, sort arrows from the pixmap
// cache, and the tarn check box: frame, hover lines, marks, one cached pixmap per distinct state,
// palette, size and pixel ratio, and the item-view variant on Base.
#include "toolkittest.h"

namespace {

const QSize kCanvas(40, 30);

// What style paints of element with option on a kCanvas image of kSentinel.
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

QImage untouched()
{
    return paintedImage(kCanvas, kSentinel, [](QPainter&) {});
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

// Pixels of painted images against the colours expected there, each named.
using Pixel = std::tuple<const char*, const QImage&, QPoint, QColor>;

void expectPixels(std::initializer_list<Pixel> pixels)
{
    for (const auto& [name, image, pixel, expected] : pixels)
        EXPECT_EQ(pixelColor(image, pixel.x(), pixel.y()), expected) << name;
}

// The pixmap cache is empty before and after each test that paints through it.
struct EmptyPixmapCache {
    EmptyPixmapCache() { QPixmapCache::clear(); }
    ~EmptyPixmapCache() { QPixmapCache::clear(); }
};

TEST_P(DarkStyle, CheckedEnabledToolButtonIsTheBasePanelInTheSelectedColour)
{
    const std::pair<QStyle::State, bool> rows[] = {  // state, whether the panel takes the selected colour
        {QStyle::State_Enabled | QStyle::State_On, true},
        {QStyle::State_Enabled | QStyle::State_On | QStyle::State_Raised, true},
        {QStyle::State_On, false},  // checked but disabled
        {QStyle::State_Enabled, false},
    };
    for (const auto& [state, selectedColour] : rows) {
        const QStyleOption panel = makeOption(QRect(QPoint(0, 0), kCanvas), state, style->standardPalette());
        QStyleOption expected = panel;
        for (const auto group : {QPalette::Active, QPalette::Inactive}) {
            if (selectedColour)
                expected.palette.setColor(group, QPalette::Button, grey(175));
        }
        EXPECT_EQ(primitive(*style, QStyle::PE_PanelButtonTool, panel),
                  primitive(*base, QStyle::PE_PanelButtonTool, expected))
            << "state " << int(state);
    }
}

// The focus frame is a one-pixel rectangle in the focus colour; a dock-widget title has a light and
// a dark line along its bar, horizontal or vertical; an item of the marked menu bar is outlined only
// when selected and enabled.
TEST_P(DarkStyle, FocusFrameDockWidgetTitleAndMarkedMenuBarItemAreDrawnInTheirColours)
{
    const QImage focus = control(*style, QStyle::CE_FocusFrame, makeOption(QRect(2, 2, 20, 10), QStyle::State_None));
    auto title = makeOption<QStyleOptionDockWidget>(QRect(0, 0, 40, 20), QStyle::State_Enabled, style->standardPalette());
    title.movable = true;
    const QImage horizontal = control(*style, QStyle::CE_DockWidgetTitle, title);
    title.verticalTitleBar = true;
    const QImage vertical = control(*style, QStyle::CE_DockWidgetTitle, title);
    QWidget menuBar;
    menuBar.setProperty("isQtarnZelmarMenuBar", false);
    menuBar.setPalette(style->standardPalette());
    const QColor background = menuBar.palette().color(menuBar.backgroundRole());
    const auto menuItem = [&](QStyle::State state) {
        const auto item = makeOption<QStyleOptionMenuItem>(QRect(QPoint(0, 0), kCanvas), state, menuBar.palette());
        return control(*style, QStyle::CE_MenuBarItem, item, &menuBar);
    };
    const QImage selected = menuItem(QStyle::State_Enabled | QStyle::State_Selected);
    const QImage unselected = menuItem(QStyle::State_Enabled), disabled = menuItem(QStyle::State_Selected);
    expectPixels({
        {"focus: top left", focus, {2, 2}, grey(130)},
        {"focus: bottom right", focus, {21, 11}, grey(130)},
        {"focus: inside untouched", focus, {10, 6}, kSentinel},
        {"focus: outside untouched", focus, {1, 1}, kSentinel},
        {"dock title: light top", horizontal, {20, 0}, grey(97)},
        {"dock title: dark bottom", horizontal, {20, 19}, grey(37)},
        {"dock title: nothing below the bar", horizontal, {20, 25}, kSentinel},
        {"vertical dock title: light left", vertical, {0, 10}, grey(97)},
        {"vertical dock title: dark right", vertical, {39, 10}, grey(37)},
        {"menu item: outline of Window 68 darkened by 178", selected, {10, 0}, grey(38)},
        {"menu item: inside the halves", selected, {5, 25}, grey(53)},
        {"unselected menu item: no outline", unselected, {10, 0}, background},
        {"unselected menu item: plain inside", unselected, {5, 25}, background},
        {"disabled menu item: no outline", disabled, {10, 0}, background},
        {"disabled menu item: plain inside", disabled, {5, 25}, background},
    });
}

TEST_P(DarkStyle, ActiveIconsAreBrightenedAboveValueThirtyAndOtherModesAreTheCommonStyles)
{
    const std::pair<QRgb, QRgb> rows[] = {
        {qRgb(30, 30, 30), qRgb(30, 30, 30)},                    // at the threshold: kept
        {qRgb(31, 31, 31), qRgb(81, 81, 81)},                    // just above: +50
        {qRgb(220, 220, 220), qRgb(255, 255, 255)},              // capped at 205 + 50
        {qRgb(0, 0, 0), qRgb(0, 0, 0)},
        {qRgb(100, 50, 50), qRgb(150, 75, 75)},                  // hue and saturation kept
        {qRgba(100, 100, 100, 128), qRgba(150, 150, 150, 128)},  // alpha kept
    };
    for (const auto& [from, expected] : rows) {
        QImage image(2, 1, QImage::Format_ARGB32);
        image.fill(from);
        const QRgb got = style->generatedIconPixmap(QIcon::Active, QPixmap::fromImage(image), nullptr)
                             .toImage()
                             .convertToFormat(QImage::Format_ARGB32)
                             .pixel(1, 0);
        const int slack = qAlpha(from) == 255 ? 0 : 1;  // premultiplied storage may round a translucent pixel
        EXPECT_EQ(qAlpha(got), qAlpha(expected)) << "from " << std::hex << from;
        for (const auto channel : std::initializer_list<int (*)(QRgb)>{qRed, qGreen, qBlue})
            EXPECT_NEAR(channel(got), channel(expected), slack) << "from " << std::hex << from;
    }

    QImage image(4, 4, QImage::Format_ARGB32);
    image.fill(qRgb(90, 160, 40));
    const QPixmap icon = QPixmap::fromImage(image);
    QStyleOption option;
    option.palette = style->standardPalette();
    for (const auto mode : {QIcon::Normal, QIcon::Disabled, QIcon::Selected}) {
        EXPECT_EQ(style->generatedIconPixmap(mode, icon, &option).toImage(),
                  QCommonStyle().generatedIconPixmap(mode, icon, &option).toImage())
            << "mode " << mode;
    }
}

TEST(DarkStyleSimplePainting, NeverDrawsAFocusRectangle)
{
    auto focus = makeOption<QStyleOptionFocusRect>(
        QRect(QPoint(0, 0), kCanvas), QStyle::State_Enabled | QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange);
    focus.backgroundColor = Qt::white;
    EXPECT_EQ(primitive(QtlomDarkStyleSimple(), QStyle::PE_FrameFocusRect, focus), untouched());
    EXPECT_NE(primitive(*kSimpleStyle.createBase(), QStyle::PE_FrameFocusRect, focus), untouched())
        << "the wrapped style would draw one";
}

TEST(TarnHeaderArrow, SortUpShowsTheDownwardImageAndSortDownTheUpwardOneWhenCachedAndNothingOtherwise)
{
    const EmptyPixmapCache emptyCache;
    const auto drawArrow = [](QStyleOptionHeader::SortIndicator indicator) {
        QStyleOptionHeader header;
        header.rect = QRect(5, 3, 20, 20);
        header.sortIndicator = indicator;
        return primitive(QtlomDarkStyleTarn(), QStyle::PE_IndicatorHeaderArrow, header);
    };
    EXPECT_EQ(drawArrow(QStyleOptionHeader::SortUp), untouched());
    EXPECT_EQ(drawArrow(QStyleOptionHeader::SortDown), untouched());

    for (const auto& [key, colour] : {std::pair("arrowDown.png", Qt::red), std::pair("arrowUp.png", Qt::blue)}) {
        QPixmap image(6, 4);
        image.fill(colour);
        QPixmapCache::insert(QString::fromLatin1(key), image);
    }
    const QImage up = drawArrow(QStyleOptionHeader::SortUp), down = drawArrow(QStyleOptionHeader::SortDown);
    expectPixels({{"up: top left", up, {5, 3}, Qt::red},
                  {"up: bottom right", up, {10, 6}, Qt::red},
                  {"up: whole and unscaled", up, {11, 3}, kSentinel},
                  {"up: nothing before", up, {4, 3}, kSentinel},
                  {"down", down, {5, 3}, Qt::blue}});
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
    static QString cacheKey(const QStyleOptionButton& button)
    {
        return QStringLiteral("checkbox-%1-0-%2-%3x%4")
            .arg(int(button.state))
            .arg(button.palette.cacheKey())
            .arg(button.rect.width())
            .arg(button.rect.height());
    }

    const EmptyPixmapCache m_emptyCache;
    QtlomDarkStyleTarn m_style;
    QPalette m_palette = m_style.standardPalette();
};

// The mark's top-right pixel (image column 8, row 0) lands at (10, 2); (2, 2) is transparent in it.
// The frame has dark sides and soft corners, and two highlight frames on hover when enabled.
TEST_F(TarnCheckBox, MarkAndFrameAreDrawnInTheColoursOfTheStateAndStandOutFromBaseInAnItemView)
{
    const QColor text = grey(200);
    const QColor sunkenMark = grey(147);  // halves of base 42 darkened by 105 and text lightened by 250
    const std::tuple<const char*, QStyle::State, std::optional<QColor>> rows[] = {  // nullopt: no mark
        {"checked", QStyle::State_Enabled | QStyle::State_On, text},
        {"partial", QStyle::State_Enabled | QStyle::State_NoChange, sunkenMark},
        {"pressed", QStyle::State_Enabled | QStyle::State_Sunken, sunkenMark},
        {"pressedChecked", QStyle::State_Enabled | QStyle::State_Sunken | QStyle::State_On, sunkenMark},
        {"disabledChecked", QStyle::State_On, text},
        {"unchecked", QStyle::State_Enabled | QStyle::State_Off, std::nullopt},
    };
    for (const auto& [name, state, mark] : rows) {
        const QImage image = draw(option(state));
        const QColor inside = pixelColor(image, 2, 2);
        EXPECT_NE(inside, text) << name;
        EXPECT_NE(inside, sunkenMark) << name;
        EXPECT_EQ(pixelColor(image, 10, 2), mark.value_or(inside)) << name;
        EXPECT_EQ(pixelColor(image, 2, 6), mark.value_or(inside)) << name;  // row 4, column 0
    }

    const QImage plain = draw(option(QStyle::State_Enabled));
    // Button 100 merged with highlight (0, 0, 200): 35 % for the outer frame, 58 % for the inner;
    // the right and bottom sides darkened by 110.
    const QImage hover = draw(option(QStyle::State_Enabled | QStyle::State_MouseOver));
    // In an item view the box sits on Base (42), where the button's border (38) would vanish: its
    // border is a grey between Text and Base that stands out at better than 3:1.
    const auto viewItem = makeOption<QStyleOptionViewItem>(QRect(QPoint(0, 0), kIndicator), QStyle::State_Enabled, m_palette);
    const QImage inView = paintedImage(kIndicator, grey(42), [&](QPainter& p) {
        m_style.drawPrimitive(QStyle::PE_IndicatorItemViewItemCheck, &viewItem, &p);
    });
    expectPixels({
        {"top side", plain, {6, 0}, grey(38)},  // window 68 darker by 178
        {"left side", plain, {0, 6}, grey(38)},
        {"right side", plain, {12, 6}, grey(38)},
        {"bottom side", plain, {6, 12}, grey(38)},
        {"corner: halves of window and border", plain, {0, 0}, grey(53)},
        {"other corner", plain, {12, 12}, grey(53)},
        {"hover: outer left", hover, {1, 6}, QColor(35, 35, 165)},
        {"hover: inner left", hover, {2, 6}, QColor(58, 58, 142)},
        {"hover: outer right", hover, {11, 6}, QColor(32, 32, 150)},
        {"hover: inner right", hover, {10, 6}, QColor(53, 53, 129)},
        {"hover: outer bottom", hover, {6, 11}, QColor(32, 32, 150)},
        {"item view: top side", inView, {6, 0}, grey(128)},
        {"item view: left side", inView, {0, 6}, grey(128)},
        {"item view: right side", inView, {12, 6}, grey(128)},
        {"item view: bottom side", inView, {6, 12}, grey(128)},
    });
    EXPECT_EQ(draw(option(QStyle::State_MouseOver)), draw(option(QStyle::State_None))) << "disabled: no hover frames";
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

// On a screen of pixel ratio 2 the box is painted at twice the pixels, not scaled up: the one-pixel
// border is two device pixels wide and the cache holds one entry per ratio.
TEST_F(TarnCheckBox, IsPaintedAtTheDevicePixelRatio)
{
    const QStyleOptionButton unchecked = option(QStyle::State_Enabled);
    QImage image(kIndicator * 2, QImage::Format_ARGB32);
    image.setDevicePixelRatio(2);
    image.fill(kSentinel);
    {
        QPainter painter(&image);
        m_style.drawPrimitive(QStyle::PE_IndicatorCheckBox, &unchecked, &painter);
    }
    expectPixels({{"border, first device row", image, {12, 0}, grey(38)}, {"border, second row", image, {12, 1}, grey(38)}});
    EXPECT_NE(pixelColor(image, 12, 2), grey(38));
    QPixmap cached;
    ASSERT_TRUE(QPixmapCache::find(cacheKey(unchecked) + QStringLiteral("@2x"), &cached));
    EXPECT_EQ(cached.size(), kIndicator * 2);
    EXPECT_FALSE(QPixmapCache::find(cacheKey(unchecked), &cached)) << "ratio 1 is painted only when asked for";
}

}  // namespace
