// What the dark styles paint themselves: checked tool buttons, focus, sort arrows from the pixmap
// cache, marked menu-bar items, dock-widget titles, tree branches and brightened active icons.
#include "stylesupport.h"

#include <QCommonStyle>
#include <QPainter>
#include <QPixmapCache>
#include <QStyleOption>
#include <QWidget>

#include <gtest/gtest.h>

#include <tuple>

namespace {

const QColor kSentinel(255, 0, 255);
const QSize kCanvas(40, 30);

// A kCanvas image of kSentinel after paint.
QImage painted(const std::function<void(QPainter&)>& paint)
{
    return paintedImage(kCanvas, kSentinel, paint);
}

class DarkStylePainting : public ::testing::TestWithParam<StyleCase>
{
protected:
    void SetUp() override { QPixmapCache::clear(); }
    void TearDown() override { QPixmapCache::clear(); }

    const std::unique_ptr<QStyle> m_style = GetParam().create();
};

TEST_P(DarkStylePainting, CheckedEnabledToolButtonIsTheBasePanelInTheSelectedColour)
{
    const auto base = GetParam().createBase();
    const auto draw = [](const QStyle& style, const QStyleOption& option) {
        return painted([&](QPainter& p) { style.drawPrimitive(QStyle::PE_PanelButtonTool, &option, &p); });
    };
    const std::pair<QStyle::State, bool> rows[] = {  // state, whether the panel takes the selected colour
        {QStyle::State_Enabled | QStyle::State_On, true},
        {QStyle::State_Enabled | QStyle::State_On | QStyle::State_Raised, true},
        {QStyle::State_On, false},  // checked but disabled
        {QStyle::State_Enabled, false},
    };
    for (const auto& [state, selectedColour] : rows) {
        QStyleOption panel;
        panel.rect = QRect(QPoint(0, 0), kCanvas);
        panel.palette = m_style->standardPalette();
        panel.state = state;
        QStyleOption expected = panel;
        for (const auto group : {QPalette::Active, QPalette::Inactive}) {
            if (selectedColour)
                expected.palette.setColor(group, QPalette::Button, grey(175));
        }
        EXPECT_EQ(draw(*m_style, panel), draw(*base, expected)) << "state " << int(state);
    }
}

TEST_P(DarkStylePainting, FocusFrameIsAOnePixelRectangleInTheFocusColour)
{
    QStyleOption frame;
    frame.rect = QRect(2, 2, 20, 10);
    const QImage image = painted([&](QPainter& p) { m_style->drawControl(QStyle::CE_FocusFrame, &frame, &p); });
    EXPECT_EQ(pixelColor(image, 2, 2), grey(130));
    EXPECT_EQ(pixelColor(image, 21, 11), grey(130));
    EXPECT_EQ(pixelColor(image, 10, 6), kSentinel);
    EXPECT_EQ(pixelColor(image, 1, 1), kSentinel);
}

TEST_P(DarkStylePainting, MarkedMenuBarItemIsOutlinedOnlyWhenSelectedAndEnabled)
{
    QWidget menuBar;
    menuBar.setProperty("isQtarnZelmarMenuBar", false);
    menuBar.setPalette(m_style->standardPalette());
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
        const QImage image =
            painted([&](QPainter& p) { m_style->drawControl(QStyle::CE_MenuBarItem, &item, &p, &menuBar); });
        EXPECT_EQ(pixelColor(image, 10, 0), edge) << "state " << int(state);
        EXPECT_EQ(pixelColor(image, 5, 25), inside) << "state " << int(state);
    }
}

TEST_P(DarkStylePainting, DockWidgetTitleHasALightAndADarkLineAlongTheBar)
{
    QStyleOptionDockWidget title;
    title.rect = QRect(0, 0, 40, 20);
    title.palette = m_style->standardPalette();
    title.state = QStyle::State_Enabled;
    title.movable = true;
    const auto draw = [&] {
        return painted([&](QPainter& p) { m_style->drawControl(QStyle::CE_DockWidgetTitle, &title, &p); });
    };
    const QImage horizontal = draw();
    EXPECT_EQ(pixelColor(horizontal, 20, 0), grey(97));
    EXPECT_EQ(pixelColor(horizontal, 20, 19), grey(37));
    EXPECT_EQ(pixelColor(horizontal, 20, 25), kSentinel);
    title.verticalTitleBar = true;
    const QImage vertical = draw();
    EXPECT_EQ(pixelColor(vertical, 0, 10), grey(97));
    EXPECT_EQ(pixelColor(vertical, 39, 10), grey(37));
}

TEST_P(DarkStylePainting, ActiveIconsAreBrightenedAboveValueThirtyAndOtherModesAreTheCommonStyles)
{
    const std::pair<QRgb, QRgb> rows[] = {
        {qRgb(30, 30, 30), qRgb(30, 30, 30)},                  // at the threshold: kept
        {qRgb(31, 31, 31), qRgb(81, 81, 81)},                  // just above: +50
        {qRgb(220, 220, 220), qRgb(255, 255, 255)},            // capped at 205 + 50
        {qRgb(0, 0, 0), qRgb(0, 0, 0)},
        {qRgb(100, 50, 50), qRgb(150, 75, 75)},                // hue and saturation kept
        {qRgba(100, 100, 100, 128), qRgba(150, 150, 150, 128)},  // alpha kept
    };
    for (const auto& [from, expected] : rows) {
        QImage image(2, 1, QImage::Format_ARGB32);
        image.fill(from);
        const QImage result = m_style->generatedIconPixmap(QIcon::Active, QPixmap::fromImage(image), nullptr)
                                  .toImage()
                                  .convertToFormat(QImage::Format_ARGB32);
        const QRgb got = result.pixel(1, 0);
        const int slack = qAlpha(from) == 255 ? 0 : 1;  // premultiplied storage may round a translucent pixel
        EXPECT_EQ(qAlpha(got), qAlpha(expected)) << "from " << std::hex << from;
        EXPECT_NEAR(qRed(got), qRed(expected), slack) << "from " << std::hex << from;
        EXPECT_NEAR(qGreen(got), qGreen(expected), slack) << "from " << std::hex << from;
        EXPECT_NEAR(qBlue(got), qBlue(expected), slack) << "from " << std::hex << from;
    }

    QImage image(4, 4, QImage::Format_ARGB32);
    image.fill(qRgb(90, 160, 40));
    const QPixmap icon = QPixmap::fromImage(image);
    QStyleOption option;
    option.palette = m_style->standardPalette();
    for (const auto mode : {QIcon::Normal, QIcon::Disabled, QIcon::Selected}) {
        EXPECT_EQ(m_style->generatedIconPixmap(mode, icon, &option).toImage(),
                  QCommonStyle().generatedIconPixmap(mode, icon, &option).toImage())
            << "mode " << mode;
    }
}

INSTANTIATE_TEST_SUITE_P(DarkStyles, DarkStylePainting, ::testing::Values(simpleStyleCase(), tarnStyleCase()),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(DarkStyleSimplePainting, NeverDrawsAFocusRectangle)
{
    QStyleOptionFocusRect focus;
    focus.rect = QRect(QPoint(0, 0), kCanvas);
    focus.state = QStyle::State_Enabled | QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange;
    focus.backgroundColor = Qt::white;
    const auto draw = [&](const QStyle& style) {
        return painted([&](QPainter& p) { style.drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &p); });
    };
    const QImage untouched = painted([](QPainter&) {});
    EXPECT_EQ(draw(QtlomDarkStyleSimple()), untouched);
    EXPECT_NE(draw(*simpleStyleCase().createBase()), untouched);  // the wrapped style would draw one
}

TEST(TarnHeaderArrow, SortUpShowsTheDownwardImageAndSortDownTheUpwardOneWhenCachedAndNothingOtherwise)
{
    QPixmapCache::clear();
    const QtlomDarkStyleTarn style;
    const auto drawArrow = [&](QStyleOptionHeader::SortIndicator indicator) {
        QStyleOptionHeader header;
        header.rect = QRect(5, 3, 20, 20);
        header.sortIndicator = indicator;
        return painted([&](QPainter& p) { style.drawPrimitive(QStyle::PE_IndicatorHeaderArrow, &header, &p); });
    };
    const QImage untouched = painted([](QPainter&) {});
    EXPECT_EQ(drawArrow(QStyleOptionHeader::SortUp), untouched);
    EXPECT_EQ(drawArrow(QStyleOptionHeader::SortDown), untouched);

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
    QPixmapCache::clear();
}

TEST(TarnBranch, IsPaintedOncePerStateIntoTheCache)
{
    QPixmapCache::clear();
    const QtlomDarkStyleTarn style;
    QStyleOption branch;
    branch.rect = QRect(0, 0, 20, 18);
    branch.palette = style.standardPalette();
    branch.state = QStyle::State_Enabled | QStyle::State_Item | QStyle::State_Sibling | QStyle::State_Children;
    const auto draw = [&] {
        return painted([&](QPainter& p) { style.drawPrimitive(QStyle::PE_IndicatorBranch, &branch, &p); });
    };
    const QImage first = draw();
    EXPECT_NE(first, painted([](QPainter&) {}));
    const QString key = QStringLiteral("branch-%1-0-%2-20x18").arg(int(branch.state)).arg(branch.palette.cacheKey());
    QPixmap cached;
    ASSERT_TRUE(QPixmapCache::find(key, &cached));
    EXPECT_EQ(draw(), first);
    QPixmapCache::clear();
}

}  // namespace
