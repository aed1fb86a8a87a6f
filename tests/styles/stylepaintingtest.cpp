// What the dark styles paint themselves: checked tool buttons, focus, sort arrows from the pixmap
// cache, marked menu-bar items, dock-widget titles, tree branches and brightened active icons.
#include "stylesupport.h"

#include <qtextention/qtlomdarkstyle.h>
#include <qtextention/qtlomdarkstylesimple.h>
#include <qtextention/qtlomdarkstyletarn.h>

#include <QCommonStyle>
#include <QPainter>
#include <QPixmapCache>
#include <QStyleOption>
#include <QWidget>

#include <gtest/gtest.h>

namespace {

const QColor kSentinel(255, 0, 255);

class DarkStylePainting : public ::testing::TestWithParam<StyleCase>
{
protected:
    void SetUp() override
    {
        QPixmapCache::clear();
        m_style = GetParam().create();
    }
    void TearDown() override { QPixmapCache::clear(); }

    QImage draw(QStyle::PrimitiveElement element, const QStyleOption& option, const QStyle* style = nullptr) const
    {
        return paintedImage(QSize(40, 30), kSentinel, [&](QPainter& p) {
            (style ? style : m_style.get())->drawPrimitive(element, &option, &p);
        });
    }

    std::unique_ptr<QStyle> m_style;
};

TEST_P(DarkStylePainting, CheckedEnabledToolButtonIsTheBasePanelInTheSelectedColour)
{
    const auto base = GetParam().createBase();
    const struct {
        QStyle::State state;
        bool selectedColour;
    } rows[] = {
        {QStyle::State_Enabled | QStyle::State_On, true},
        {QStyle::State_Enabled | QStyle::State_On | QStyle::State_Raised, true},
        {QStyle::State_On, false},  // checked but disabled
        {QStyle::State_Enabled, false},
    };
    for (const auto& row : rows) {
        QStyleOption panel;
        panel.rect = QRect(0, 0, 40, 30);
        panel.palette = m_style->standardPalette();
        panel.state = row.state;
        QStyleOption expected = panel;
        if (row.selectedColour) {
            expected.palette.setColor(QPalette::Active, QPalette::Button, QColor(175, 175, 175));
            expected.palette.setColor(QPalette::Inactive, QPalette::Button, QColor(175, 175, 175));
        }
        EXPECT_EQ(draw(QStyle::PE_PanelButtonTool, panel), draw(QStyle::PE_PanelButtonTool, expected, base.get()))
            << "state " << int(row.state);
    }
    EXPECT_EQ(QtlomDarkStyle::fSelectedToolButtonColor, QColor(175, 175, 175));
}

TEST_P(DarkStylePainting, FocusFrameIsAOnePixelRectangleInTheFocusColour)
{
    QStyleOption frame;
    frame.rect = QRect(2, 2, 20, 10);
    const QImage image = paintedImage(QSize(40, 30), kSentinel, [&](QPainter& p) {
        m_style->drawControl(QStyle::CE_FocusFrame, &frame, &p);
    });
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
    const QColor outline = grey(38);  // Window 68 darkened by 178
    const struct {
        QStyle::State state;
        QColor edge;
        QColor inside;
    } rows[] = {
        {QStyle::State_Enabled | QStyle::State_Selected, outline, grey(53)},  // fill: halves of 68 and 38
        {QStyle::State_Enabled, background, background},
        {QStyle::State_Selected, background, background},
    };
    for (const auto& row : rows) {
        QStyleOptionMenuItem item;
        item.rect = QRect(0, 0, 40, 30);
        item.palette = menuBar.palette();
        item.state = row.state;
        const QImage image = paintedImage(QSize(40, 30), kSentinel, [&](QPainter& p) {
            m_style->drawControl(QStyle::CE_MenuBarItem, &item, &p, &menuBar);
        });
        EXPECT_EQ(pixelColor(image, 10, 0), row.edge) << "state " << int(row.state);
        EXPECT_EQ(pixelColor(image, 5, 25), row.inside) << "state " << int(row.state);
    }
}

TEST_P(DarkStylePainting, DockWidgetTitleHasALightAndADarkLineAlongTheBar)
{
    QStyleOptionDockWidget title;
    title.rect = QRect(0, 0, 40, 20);
    title.palette = m_style->standardPalette();
    title.state = QStyle::State_Enabled;
    title.movable = true;
    const QImage horizontal = paintedImage(QSize(40, 30), kSentinel, [&](QPainter& p) {
        m_style->drawControl(QStyle::CE_DockWidgetTitle, &title, &p);
    });
    EXPECT_EQ(pixelColor(horizontal, 20, 0), grey(97));
    EXPECT_EQ(pixelColor(horizontal, 20, 19), grey(37));
    EXPECT_EQ(pixelColor(horizontal, 20, 25), kSentinel);

    title.verticalTitleBar = true;
    const QImage vertical = paintedImage(QSize(40, 30), kSentinel, [&](QPainter& p) {
        m_style->drawControl(QStyle::CE_DockWidgetTitle, &title, &p);
    });
    EXPECT_EQ(pixelColor(vertical, 0, 10), grey(97));
    EXPECT_EQ(pixelColor(vertical, 39, 10), grey(37));
}

struct BrightenRow {
    QRgb pixel;
    QRgb expected;
};

TEST_P(DarkStylePainting, ActiveIconsAreBrightenedAboveValueThirty)
{
    const BrightenRow rows[] = {
        {qRgb(30, 30, 30), qRgb(30, 30, 30)},      // at the threshold: kept
        {qRgb(31, 31, 31), qRgb(81, 81, 81)},      // just above: +50
        {qRgb(220, 220, 220), qRgb(255, 255, 255)},  // capped at 205 + 50
        {qRgb(0, 0, 0), qRgb(0, 0, 0)},
        {qRgb(100, 50, 50), qRgb(150, 75, 75)},    // hue and saturation kept
    };
    for (const BrightenRow& row : rows) {
        QImage image(2, 1, QImage::Format_ARGB32);
        image.fill(row.pixel);
        const QImage result =
            m_style->generatedIconPixmap(QIcon::Active, QPixmap::fromImage(image), nullptr).toImage();
        EXPECT_EQ(pixelColor(result, 1, 0), QColor::fromRgba(row.expected))
            << "from " << QColor::fromRgba(row.pixel).name().toStdString();
    }
}

TEST_P(DarkStylePainting, ActiveIconBrighteningKeepsEachPixelsAlpha)
{
    QImage image(1, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(100, 100, 100, 128));
    const QImage result = m_style->generatedIconPixmap(QIcon::Active, QPixmap::fromImage(image), nullptr)
                              .toImage()
                              .convertToFormat(QImage::Format_ARGB32);
    EXPECT_EQ(qAlpha(result.pixel(0, 0)), 128);
    EXPECT_NEAR(qRed(result.pixel(0, 0)), 150, 1);
}

TEST_P(DarkStylePainting, OtherIconModesAreTheCommonStylesPixmaps)
{
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
    QtlomDarkStyleSimple style;
    QStyleOptionFocusRect focus;
    focus.rect = QRect(0, 0, 40, 30);
    focus.state = QStyle::State_Enabled | QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange;
    focus.backgroundColor = Qt::white;
    const auto paint = [&](const QStyle& s) {
        return paintedImage(QSize(40, 30), kSentinel, [&](QPainter& p) {
            s.drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &p);
        });
    };
    const QImage untouched = paintedImage(QSize(40, 30), kSentinel, [](QPainter&) {});
    EXPECT_EQ(paint(style), untouched);
    EXPECT_NE(paint(*simpleStyleCase().createBase()), untouched);  // the wrapped style would draw one
}

class TarnHeaderArrow : public ::testing::Test
{
protected:
    void SetUp() override { QPixmapCache::clear(); }
    void TearDown() override { QPixmapCache::clear(); }

    QImage drawArrow(QStyleOptionHeader::SortIndicator indicator) const
    {
        QStyleOptionHeader header;
        header.rect = QRect(5, 3, 20, 20);
        header.sortIndicator = indicator;
        return paintedImage(QSize(40, 30), kSentinel, [&](QPainter& p) {
            m_style.drawPrimitive(QStyle::PE_IndicatorHeaderArrow, &header, &p);
        });
    }

    static void supply(const char* name, const QColor& color)
    {
        QPixmap image(6, 4);
        image.fill(color);
        QPixmapCache::insert(QString::fromLatin1(name), image);
    }

    QtlomDarkStyleTarn m_style;
};

TEST_F(TarnHeaderArrow, SortUpShowsTheDownwardImageAndSortDownTheUpwardOneAtTheTopLeft)
{
    supply("arrowDown.png", Qt::red);
    supply("arrowUp.png", Qt::blue);
    const QImage up = drawArrow(QStyleOptionHeader::SortUp);
    EXPECT_EQ(pixelColor(up, 5, 3), QColor(Qt::red));
    EXPECT_EQ(pixelColor(up, 10, 6), QColor(Qt::red));
    EXPECT_EQ(pixelColor(up, 11, 3), kSentinel);  // the image is drawn whole and unscaled
    EXPECT_EQ(pixelColor(up, 4, 3), kSentinel);
    EXPECT_EQ(pixelColor(drawArrow(QStyleOptionHeader::SortDown), 5, 3), QColor(Qt::blue));
}

TEST_F(TarnHeaderArrow, NothingIsDrawnWithoutTheImagesInTheCache)
{
    const QImage untouched = paintedImage(QSize(40, 30), kSentinel, [](QPainter&) {});
    EXPECT_EQ(drawArrow(QStyleOptionHeader::SortUp), untouched);
    EXPECT_EQ(drawArrow(QStyleOptionHeader::SortDown), untouched);
}

TEST(TarnBranch, IsPaintedOncePerStateIntoTheCache)
{
    QPixmapCache::clear();
    QtlomDarkStyleTarn style;
    QStyleOption branch;
    branch.rect = QRect(0, 0, 20, 18);
    branch.palette = style.standardPalette();
    branch.state = QStyle::State_Enabled | QStyle::State_Item | QStyle::State_Sibling | QStyle::State_Children;
    const auto draw = [&] {
        return paintedImage(QSize(20, 18), kSentinel, [&](QPainter& p) {
            style.drawPrimitive(QStyle::PE_IndicatorBranch, &branch, &p);
        });
    };
    const QImage first = draw();
    EXPECT_NE(first, paintedImage(QSize(20, 18), kSentinel, [](QPainter&) {}));
    const QString key = QStringLiteral("branch-%1-0-%2-20x18").arg(int(branch.state)).arg(branch.palette.cacheKey());
    QPixmap cached;
    ASSERT_TRUE(QPixmapCache::find(key, &cached));
    EXPECT_EQ(draw(), first);
    QPixmapCache::clear();
}

}  // namespace
