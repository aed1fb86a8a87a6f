// The shared dark palette, and tab bars and tab-widget frames with Window and Button exchanged.
#include "stylesupport.h"

#include <QCommonStyle>
#include <QPainter>
#include <QStyleOption>
#include <QTabBar>

#include <gtest/gtest.h>

namespace {

constexpr int kUnchanged = -1;
constexpr QPalette::ColorGroup kGroups[] = {QPalette::Active, QPalette::Inactive, QPalette::Disabled};

struct PaletteRow {
    QPalette::ColorRole role;
    int grey[3];  // per group of kGroups; kUnchanged keeps the plain QStyle palette's colour
};

const PaletteRow kPaletteTable[] = {
    {QPalette::WindowText, {200, 200, kUnchanged}},
    {QPalette::Button, {100, 100, 80}},
    {QPalette::Light, {97, 97, 97}},
    {QPalette::Midlight, {59, 59, 59}},
    {QPalette::Dark, {37, 37, 37}},
    {QPalette::Mid, {45, 45, 45}},
    {QPalette::Text, {200, 200, 105}},  // disabled: the disabled base 42 lightened by 250
    {QPalette::BrightText, {37, 37, kUnchanged}},
    {QPalette::ButtonText, {200, 200, kUnchanged}},
    {QPalette::Base, {42, 42, 42}},
    {QPalette::AlternateBase, {46, 46, 46}},  // base 42 lightened by 110
    {QPalette::Window, {68, 68, 68}},
    {QPalette::Shadow, {0, 0, 0}},
    {QPalette::Highlight, {kUnchanged, kUnchanged, kUnchanged}},
    {QPalette::Link, {kUnchanged, kUnchanged, kUnchanged}},
};

// The palette with Window and Button exchanged in every group.
QPalette exchanged(QPalette palette)
{
    const QPalette original = palette;
    for (const auto group : kGroups) {
        palette.setColor(group, QPalette::Window, original.color(group, QPalette::Button));
        palette.setColor(group, QPalette::Button, original.color(group, QPalette::Window));
    }
    return palette;
}

class DarkPalette : public ::testing::TestWithParam<StyleCase>
{
};

TEST_P(DarkPalette, EveryRoleInEveryGroupFollowsTheTable)
{
    const QPalette palette = GetParam().create()->standardPalette();
    const QPalette plain = QCommonStyle().standardPalette();
    for (const PaletteRow& row : kPaletteTable) {
        for (int g = 0; g < 3; ++g) {
            const QColor expected = row.grey[g] == kUnchanged ? plain.color(kGroups[g], row.role) : grey(row.grey[g]);
            EXPECT_EQ(palette.color(kGroups[g], row.role).rgba(), expected.rgba())
                << "role " << row.role << " group " << kGroups[g] << ": got "
                << palette.color(kGroups[g], row.role).name().toStdString();
        }
    }
}

TEST_P(DarkPalette, PolishedTabBarHasWindowAndButtonExchangedInEveryGroup)
{
    const auto style = GetParam().create();
    QTabBar tabBar;
    tabBar.setStyle(style.get());
    tabBar.ensurePolished();
    const QPalette expected = exchanged(style->standardPalette());
    for (const auto group : kGroups) {
        for (const auto role : {QPalette::Button, QPalette::Window})
            EXPECT_EQ(tabBar.palette().color(group, role), expected.color(group, role)) << group << " " << role;
    }
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
    QStyleOptionTabWidgetFrame swapped = frame;
    swapped.palette = exchanged(frame.palette);
    const auto draw = [&](const QStyle& by, const QStyleOption& option) {
        return paintedImage(QSize(60, 40), Qt::black,
                            [&](QPainter& p) { by.drawPrimitive(QStyle::PE_FrameTabWidget, &option, &p); });
    };
    EXPECT_EQ(draw(*style, frame), draw(*base, swapped));
    EXPECT_NE(draw(*style, frame), draw(*base, frame));
}

INSTANTIATE_TEST_SUITE_P(DarkStyles, DarkPalette, ::testing::Values(simpleStyleCase(), tarnStyleCase()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
