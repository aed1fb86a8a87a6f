// The shared dark palette, and tab bars and tab-widget frames with Window and Button exchanged.
#include "stylesupport.h"

#include <QCommonStyle>
#include <QPainter>
#include <QStyleOption>
#include <QTabBar>

#include <gtest/gtest.h>

namespace {

constexpr int kUnchanged = -1;

struct PaletteRow {
    QPalette::ColorRole role;
    int active;
    int inactive;
    int disabled;
};

// Greys of the dark palette per group; kUnchanged keeps the plain QStyle palette's colour.
const PaletteRow kPaletteTable[] = {
    {QPalette::WindowText, 200, 200, kUnchanged},
    {QPalette::Button, 100, 100, 80},
    {QPalette::Light, 97, 97, 97},
    {QPalette::Midlight, 59, 59, 59},
    {QPalette::Dark, 37, 37, 37},
    {QPalette::Mid, 45, 45, 45},
    {QPalette::Text, 200, 200, 105},  // disabled: the disabled base 42 lightened by 250
    {QPalette::BrightText, 37, 37, kUnchanged},
    {QPalette::ButtonText, 200, 200, kUnchanged},
    {QPalette::Base, 42, 42, 42},
    {QPalette::AlternateBase, 46, 46, 46},  // base 42 lightened by 110
    {QPalette::Window, 68, 68, 68},
    {QPalette::Shadow, 0, 0, 0},
    {QPalette::Highlight, kUnchanged, kUnchanged, kUnchanged},
    {QPalette::Link, kUnchanged, kUnchanged, kUnchanged},
};

class DarkPalette : public ::testing::TestWithParam<StyleCase>
{
};

TEST_P(DarkPalette, EveryRoleInEveryGroupFollowsTheTable)
{
    const QPalette palette = GetParam().create()->standardPalette();
    const QPalette plain = QCommonStyle().standardPalette();
    for (const PaletteRow& row : kPaletteTable) {
        const std::pair<QPalette::ColorGroup, int> groups[] = {
            {QPalette::Active, row.active}, {QPalette::Inactive, row.inactive}, {QPalette::Disabled, row.disabled}};
        for (const auto& [group, value] : groups) {
            const QColor expected = value == kUnchanged ? plain.color(group, row.role) : grey(value);
            EXPECT_EQ(palette.color(group, row.role).rgba(), expected.rgba())
                << "role " << row.role << " group " << group << ": got "
                << palette.color(group, row.role).name().toStdString();
        }
    }
}

TEST_P(DarkPalette, PolishedTabBarHasWindowAndButtonExchangedInEveryGroup)
{
    const auto style = GetParam().create();
    QTabBar tabBar;
    tabBar.setStyle(style.get());
    tabBar.ensurePolished();
    const QPalette palette = tabBar.palette();
    EXPECT_EQ(palette.color(QPalette::Active, QPalette::Button), grey(68));
    EXPECT_EQ(palette.color(QPalette::Active, QPalette::Window), grey(100));
    EXPECT_EQ(palette.color(QPalette::Inactive, QPalette::Button), grey(68));
    EXPECT_EQ(palette.color(QPalette::Inactive, QPalette::Window), grey(100));
    EXPECT_EQ(palette.color(QPalette::Disabled, QPalette::Button), grey(68));
    EXPECT_EQ(palette.color(QPalette::Disabled, QPalette::Window), grey(80));
    tabBar.setStyle(nullptr);
}

// The frame must look exactly as the wrapped style draws it with the two roles exchanged.
TEST_P(DarkPalette, TabWidgetFrameIsTheBaseFrameWithWindowAndButtonExchanged)
{
    const auto style = GetParam().create();
    const auto base = GetParam().createBase();
    QStyleOptionTabWidgetFrame frame;
    frame.rect = QRect(0, 0, 60, 40);
    frame.state = QStyle::State_Enabled;
    frame.palette = style->standardPalette();
    frame.tabBarSize = QSize(30, 20);
    frame.tabBarRect = QRect(4, 0, 30, 20);

    QStyleOptionTabWidgetFrame exchanged = frame;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        exchanged.palette.setColor(group, QPalette::Window, frame.palette.color(group, QPalette::Button));
        exchanged.palette.setColor(group, QPalette::Button, frame.palette.color(group, QPalette::Window));
    }
    const QImage drawn = paintedImage(QSize(60, 40), Qt::black, [&](QPainter& p) {
        style->drawPrimitive(QStyle::PE_FrameTabWidget, &frame, &p);
    });
    const QImage expected = paintedImage(QSize(60, 40), Qt::black, [&](QPainter& p) {
        base->drawPrimitive(QStyle::PE_FrameTabWidget, &exchanged, &p);
    });
    const QImage unswapped = paintedImage(QSize(60, 40), Qt::black, [&](QPainter& p) {
        base->drawPrimitive(QStyle::PE_FrameTabWidget, &frame, &p);
    });
    EXPECT_EQ(drawn, expected);
    EXPECT_NE(drawn, unswapped);
}

INSTANTIATE_TEST_SUITE_P(DarkStyles, DarkPalette, ::testing::Values(simpleStyleCase(), tarnStyleCase()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
