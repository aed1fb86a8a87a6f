// What the dark styles paint themselves, read back pixel by pixel: checked tool buttons, focus,
// marked menu-bar items, dock-widget titles, brightened active icons, sort arrows from the pixmap
// cache, and the tarn check box: frame, hover lines, marks, one cached pixmap per distinct state,
// palette, size and pixel ratio, and the item-view variant on Base.
#include "toolkittest.h"

#include <QCommonStyle>
#include <QPixmapCache>
#include <QStyleOption>
#include <QWidget>

#include <optional>
#include <tuple>

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
        QStyleOption panel;
        panel.rect = QRect(QPoint(0, 0), kCanvas);
        panel.palette = style->standardPalette();
        panel.state = state;
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
// a dark line along its bar, horizontal or vertical.
TEST_P(DarkStyle, FocusFrameAndDockWidgetTitleLinesAreInTheirColours)
{
    QStyleOption frame;
    frame.rect = QRect(2, 2, 20, 10);
    const QImage focus = control(*style, QStyle::CE_FocusFrame, frame);
    QStyleOptionDockWidget title;
    title.rect = QRect(0, 0, 40, 20);
    title.palette = style->standardPalette();
    title.state = QStyle::State_Enabled;
    title.movable = true;
    const QImage horizontal = control(*style, QStyle::CE_DockWidgetTitle, title);
    title.verticalTitleBar = true;
    const QImage vertical = control(*style, QStyle::CE_DockWidgetTitle, title);
    const std::tuple<const char*, const QImage&, QPoint, QColor> rows[] = {
        {"focus: top left", focus, {2, 2}, grey(130)},
        {"focus: bottom right", focus, {21, 11}, grey(130)},
        {"focus: inside untouched", focus, {10, 6}, kSentinel},
        {"focus: outside untouched", focus, {1, 1}, kSentinel},
        {"dock title: light top", horizontal, {20, 0}, grey(97)},
        {"dock title: dark bottom", horizontal, {20, 19}, grey(37)},
        {"dock title: nothing below the bar", horizontal, {20, 25}, kSentinel},
        {"vertical dock title: light left", vertical, {0, 10}, grey(97)},
        {"vertical dock title: dark right", vertical, {39, 10}, grey(37)},
    };
    for (const auto& [name, image, pixel, expected] : rows)
        EXPECT_EQ(pixelColor(image, pixel.x(), pixel.y()), expected) << name;
}

TEST_P(DarkStyle, MarkedMenuBarItemIsOutlinedOnlyWhenSelectedAndEnabled)
{
    QWidget menuBar;
    menuBar.setProperty("isQtarnZelmarMenuBar", false);
    menuBar.setPalette(style->standardPalette());
    const QColor background = menuBar.palette().color(menuBar.backgroundRole());
    const std::tuple<QStyle::State, QColor, QColor> rows[] = {  // state, top edge, inside
        {QStyle::State_Enabled | QStyle::State_Selected, grey(38), grey(53)},  // Window 68 darkened by 178; halves
        {QStyle::State_Enabled, background, background},
        {QStyle::State_Selected, background, background},
    };
    for (const auto& [state, edge, inside] : rows) {
        QStyleOptionMenuItem item;
        item.rect = QRect(QPoint(0, 0), kCanvas);
        item.palette = menuBar.palette();
        item.state = state;
        const QImage image = control(*style, QStyle::CE_MenuBarItem, item, &menuBar);
        EXPECT_EQ(pixelColor(image, 10, 0), edge) << "state " << int(state);
        EXPECT_EQ(pixelColor(image, 5, 25), inside) << "state " << int(state);
    }
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
    QStyleOptionFocusRect focus;
    focus.rect = QRect(QPoint(0, 0), kCanvas);
    focus.state = QStyle::State_Enabled | QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange;
    focus.backgroundColor = Qt::white;
    EXPECT_EQ(primitive(QtlomDarkStyleSimple(), QStyle::PE_FrameFocusRect, focus), untouched());
    EXPECT_NE(primitive(*simpleStyleCase().createBase(), QStyle::PE_FrameFocusRect, focus), untouched())
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
    const QImage up = drawArrow(QStyleOptionHeader::SortUp);
    EXPECT_EQ(pixelColor(up, 5, 3), QColor(Qt::red));
    EXPECT_EQ(pixelColor(up, 10, 6), QColor(Qt::red));
    EXPECT_EQ(pixelColor(up, 11, 3), kSentinel);  // the image is drawn whole and unscaled
    EXPECT_EQ(pixelColor(up, 4, 3), kSentinel);
    EXPECT_EQ(pixelColor(drawArrow(QStyleOptionHeader::SortDown), 5, 3), QColor(Qt::blue));
}

const QSize kIndicator(13, 13);

class TarnCheckBox : public ::testing::Test
{
protected:
    TarnCheckBox() { m_palette.setColor(QPalette::Highlight, QColor(0, 0, 200)); }

    QStyleOptionButton option(QStyle::State state) const
    {
        QStyleOptionButton button;
        button.rect = QRect(QPoint(0, 0), kIndicator);
        button.palette = m_palette;
        button.state = state;
        return button;
    }
    QImage draw(const QStyleOptionButton& button) const
    {
        return primitive(m_style, QStyle::PE_IndicatorCheckBox, button, kIndicator);
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
TEST_F(TarnCheckBox, MarkAndFrameAreDrawnInTheColoursOfTheState)
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
    const std::tuple<const char*, const QImage&, QPoint, QColor> pixels[] = {
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
    };
    for (const auto& [name, image, pixel, expected] : pixels)
        EXPECT_EQ(pixelColor(image, pixel.x(), pixel.y()), expected) << name;
    EXPECT_EQ(draw(option(QStyle::State_MouseOver)), draw(option(QStyle::State_None))) << "disabled: no hover frames";
}

TEST_F(TarnCheckBox, IsPaintedOncePerKeyAndBlittedFromTheCacheAfterwards)
{
    const QStyleOptionButton checked = option(QStyle::State_Enabled | QStyle::State_On);
    const QImage first = draw(checked);
    QPixmap cached;
    ASSERT_TRUE(QPixmapCache::find(cacheKey(checked), &cached));
    EXPECT_EQ(cached.size(), kIndicator);

    // A second paint of the same key must come from the cache: replace the entry and see it.
    QPixmap marker(kIndicator);
    marker.fill(Qt::green);
    QPixmapCache::insert(cacheKey(checked), marker);
    EXPECT_EQ(pixelColor(draw(checked), 6, 6), QColor(Qt::green));

    // Any other state, palette or size is a key of its own, painted afresh.
    QStyleOptionButton hovered = option(checked.state | QStyle::State_MouseOver);
    QStyleOptionButton otherPalette = checked;
    otherPalette.palette.setColor(QPalette::Base, grey(30));
    QStyleOptionButton larger = checked;
    larger.rect = QRect(0, 0, 15, 15);
    for (const QStyleOptionButton* other : {&hovered, &otherPalette, &larger}) {
        EXPECT_NE(pixelColor(draw(*other), 6, 6), QColor(Qt::green));
        EXPECT_TRUE(QPixmapCache::find(cacheKey(*other), &cached));
    }
    EXPECT_NE(first, draw(hovered));
}

TEST_F(TarnCheckBox, WithThePixmapCacheSwitchedOffIsPaintedStraightOntoTheDeviceAlike)
{
    const int limit = QPixmapCache::cacheLimit();
    for (const QStyle::State state : {QStyle::State_Enabled | QStyle::State_On, QStyle::State(QStyle::State_Enabled),
                                      QStyle::State_Enabled | QStyle::State_MouseOver | QStyle::State_Sunken}) {
        QStyleOptionButton button = option(state);
        button.rect.translate(3, 2);  // away from the device's origin
        QPixmapCache::clear();
        const QImage cached = primitive(m_style, QStyle::PE_IndicatorCheckBox, button, kIndicator + QSize(5, 4));
        QPixmapCache::setCacheLimit(0);
        const QImage direct = primitive(m_style, QStyle::PE_IndicatorCheckBox, button, kIndicator + QSize(5, 4));
        QPixmapCache::setCacheLimit(limit);
        EXPECT_EQ(direct, cached) << int(state);
    }
}

// In an item view the box sits on Base (42), where the button's border (38) would vanish: its
// border is a grey between Text and Base that stands out at better than 3:1.
TEST_F(TarnCheckBox, InAnItemViewTheUncheckedBoxHasABorderThatStandsOutFromBase)
{
    QStyleOptionViewItem item;
    item.rect = QRect(QPoint(0, 0), kIndicator);
    item.palette = m_palette;
    item.state = QStyle::State_Enabled | QStyle::State_Off;
    const QImage image = paintedImage(kIndicator, grey(42), [&](QPainter& p) {
        m_style.drawPrimitive(QStyle::PE_IndicatorItemViewItemCheck, &item, &p);
    });
    for (const QPoint side : {QPoint(6, 0), QPoint(0, 6), QPoint(12, 6), QPoint(6, 12)})
        EXPECT_EQ(pixelColor(image, side.x(), side.y()), grey(128)) << side.x() << "," << side.y();
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
    EXPECT_EQ(pixelColor(image, 12, 0), grey(38));
    EXPECT_EQ(pixelColor(image, 12, 1), grey(38));
    EXPECT_NE(pixelColor(image, 12, 2), grey(38));
    QPixmap cached;
    ASSERT_TRUE(QPixmapCache::find(cacheKey(unchecked) + QStringLiteral("@2x"), &cached));
    EXPECT_EQ(cached.size(), kIndicator * 2);
    EXPECT_FALSE(QPixmapCache::find(cacheKey(unchecked), &cached)) << "ratio 1 is painted only when asked for";
}

}  // namespace
