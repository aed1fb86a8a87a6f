// The check-box indicator of QtlomDarkStyleTarn: its frame, hover lines, check marks, one cached
// pixmap per distinct state, palette, size and pixel ratio, and the item-view variant on Base.
#include "stylesupport.h"

#include <QPainter>
#include <QPixmapCache>
#include <QStyleOption>

#include <gtest/gtest.h>

#include <optional>
#include <tuple>

namespace {

const QColor kSentinel(255, 0, 255);
const QSize kIndicator(13, 13);

class TarnCheckBox : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QPixmapCache::clear();
        m_palette = m_style.standardPalette();
        m_palette.setColor(QPalette::Highlight, QColor(0, 0, 200));
    }
    void TearDown() override { QPixmapCache::clear(); }

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
        return paintedImage(kIndicator, kSentinel,
                            [&](QPainter& p) { m_style.drawPrimitive(QStyle::PE_IndicatorCheckBox, &button, &p); });
    }
    static QString cacheKey(const QStyleOptionButton& button)
    {
        return QStringLiteral("checkbox-%1-0-%2-%3x%4")
            .arg(int(button.state))
            .arg(button.palette.cacheKey())
            .arg(button.rect.width())
            .arg(button.rect.height());
    }

    QtlomDarkStyleTarn m_style;
    QPalette m_palette;
};

// The mark's top-right pixel (image column 8, row 0) lands at (10, 2); (2, 2) is transparent in it.
TEST_F(TarnCheckBox, CheckMarkIsDrawnAtTwoTwoInTheColourOfTheState)
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
}

TEST_F(TarnCheckBox, FrameHasDarkSidesSoftCornersAndTwoHighlightFramesOnHoverWhenEnabled)
{
    const QImage image = draw(option(QStyle::State_Enabled));
    for (const QPoint side : {QPoint(6, 0), QPoint(0, 6), QPoint(12, 6), QPoint(6, 12)})
        EXPECT_EQ(pixelColor(image, side.x(), side.y()), grey(38)) << side.x() << "," << side.y();  // 68 darker by 178
    EXPECT_EQ(pixelColor(image, 0, 0), grey(53));  // corners: halves of window and border
    EXPECT_EQ(pixelColor(image, 12, 12), grey(53));

    // Button 100 merged with highlight (0, 0, 200): 35 % for the outer frame, 58 % for the inner;
    // the right and bottom sides darkened by 110.
    const QImage hover = draw(option(QStyle::State_Enabled | QStyle::State_MouseOver));
    EXPECT_EQ(pixelColor(hover, 1, 6), QColor(35, 35, 165));
    EXPECT_EQ(pixelColor(hover, 2, 6), QColor(58, 58, 142));
    EXPECT_EQ(pixelColor(hover, 11, 6), QColor(32, 32, 150));
    EXPECT_EQ(pixelColor(hover, 10, 6), QColor(53, 53, 129));
    EXPECT_EQ(pixelColor(hover, 6, 11), QColor(32, 32, 150));
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
    const QStyle::State states[] = {QStyle::State_Enabled | QStyle::State_On, QStyle::State_Enabled,
                                    QStyle::State_Enabled | QStyle::State_MouseOver | QStyle::State_Sunken};
    const int limit = QPixmapCache::cacheLimit();
    for (const QStyle::State state : states) {
        QStyleOptionButton button = option(state);
        button.rect.translate(3, 2);  // away from the device's origin
        const auto paint = [&] {
            return paintedImage(kIndicator + QSize(5, 4), kSentinel,
                                [&](QPainter& p) { m_style.drawPrimitive(QStyle::PE_IndicatorCheckBox, &button, &p); });
        };
        QPixmapCache::clear();
        const QImage cached = paint();
        QPixmapCache::setCacheLimit(0);
        const QImage direct = paint();
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
    EXPECT_EQ(pixelColor(draw(option(QStyle::State_Enabled)), 6, 0), grey(38)) << "a button's box keeps its border";
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
