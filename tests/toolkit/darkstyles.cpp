// What the dark styles answer rather than paint, in both styles: every element, metric and hint is
// quiet with a default option, tab bars take the dark palette with Window and Button exchanged,
// pixel metrics (the marked menu bar) and style hints.
#include "toolkittest.h"

namespace {

// The named values of a QStyle enum, without the CustomBase marker.
template <typename Enum>
QList<Enum> namedValues()
{
    const QMetaEnum meta = QMetaEnum::fromType<Enum>();
    QList<Enum> values;
    for (int i = 0; i < meta.keyCount(); ++i) {
        if (!QByteArray(meta.key(i)).endsWith("CustomBase"))
            values << static_cast<Enum>(meta.value(i));
    }
    return values;
}

TEST_P(DarkStyle, EveryElementMetricAndHintWithADefaultOptionIsQuiet)
{
    const auto primitives = namedValues<QStyle::PrimitiveElement>();
    const auto controls = namedValues<QStyle::ControlElement>();
    const auto metrics = namedValues<QStyle::PixelMetric>();
    const auto hints = namedValues<QStyle::StyleHint>();
    ASSERT_TRUE(primitives.size() > 40 && controls.size() > 40 && metrics.size() > 80 && hints.size() > 100);

    const QtWarnings warnings;
    QStyleOption option;
    option.rect = QRect(2, 2, 40, 24);
    option.palette = style->standardPalette();
    option.state = QStyle::State_Enabled;
    for (const auto element : primitives)
        paintedImage(QSize(48, 32), Qt::black, [&](QPainter& p) { style->drawPrimitive(element, &option, &p); });
    for (const auto element : controls)
        paintedImage(QSize(48, 32), Qt::black, [&](QPainter& p) { style->drawControl(element, &option, &p); });
    for (const auto metric : metrics) {
        style->pixelMetric(metric);
        style->pixelMetric(metric, &option);
    }
    for (const auto hint : hints) {
        style->styleHint(hint);
        style->styleHint(hint, &option);
    }
    EXPECT_TRUE(warnings.texts.isEmpty()) << warnings.texts.join(QLatin1Char('\n')).toStdString();
}

constexpr QPalette::ColorGroup kGroups[] = {QPalette::Active, QPalette::Inactive, QPalette::Disabled};

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

// A polished tab bar, and the tab-widget frame exactly as the wrapped style draws it, have Window
// and Button exchanged.
TEST_P(DarkStyle, TabBarsAndTabWidgetFramesHaveWindowAndButtonExchanged)
{
    QTabBar tabBar;
    tabBar.setStyle(style.get());
    tabBar.ensurePolished();
    const QPalette expected = exchanged(style->standardPalette());
    for (const auto group : kGroups) {
        for (const auto role : {QPalette::Button, QPalette::Window})
            EXPECT_EQ(tabBar.palette().color(group, role), expected.color(group, role)) << group << " " << role;
    }
    tabBar.setStyle(nullptr);

    QStyleOptionTabWidgetFrame frame;
    frame.rect = QRect(0, 0, 60, 40);
    frame.state = QStyle::State_Enabled;
    frame.palette = style->standardPalette();
    frame.tabBarSize = QSize(30, 20);
    frame.tabBarRect = QRect(4, 0, 30, 20);
    QStyleOptionTabWidgetFrame swapped = frame;
    swapped.palette = expected;
    const auto draw = [&](const QStyle& by, const QStyleOption& option) {
        return paintedImage(QSize(60, 40), Qt::black,
                            [&](QPainter& p) { by.drawPrimitive(QStyle::PE_FrameTabWidget, &option, &p); });
    };
    EXPECT_EQ(draw(*style, frame), draw(*base, swapped));
    EXPECT_NE(draw(*style, frame), draw(*base, frame));
}

INSTANTIATE_TEST_SUITE_P(DarkStyles, DarkStyle, ::testing::Values(kSimpleStyle, kTarnStyle),
                         [](const auto& info) { return std::string(info.param.name); });

using Answer = std::optional<int>;  // nullopt: the wrapped style's answer

// Asks both styles; each must give its expected answer.
void expectInBothStyles(const char* name, Answer simple, Answer tarn, const std::function<int(const QStyle&)>& ask)
{
    const std::pair<const StyleCase*, Answer> cases[] = {{&kSimpleStyle, simple}, {&kTarnStyle, tarn}};
    for (const auto& [style, answer] : cases)
        EXPECT_EQ(ask(*style->create()), answer ? *answer : ask(*style->createBase())) << name << " in " << *style;
}

// Rows: name, what is asked (and of which widget), the simple style's answer, the tarn style's.
TEST(DarkStyleMetric, MenuBarMarginsFollowThePropertysPresenceHintsFollowTheTableAndTheRestComeFromTheWrappedStyle)
{
    // The property marks the host's menu bar by being present at all: false counts too.
    QWidget unmarked, marked;
    marked.setProperty("isQtarnZelmarMenuBar", false);
    const std::tuple<const char*, QStyle::PixelMetric, const QWidget*, Answer, Answer> rows[] = {
        {"VMarginNoWidget", QStyle::PM_MenuBarVMargin, nullptr, 1, 1},
        {"VMarginUnmarked", QStyle::PM_MenuBarVMargin, &unmarked, 1, 1},
        {"VMarginMarked", QStyle::PM_MenuBarVMargin, &marked, 4, 4},
        {"HMarginUnmarked", QStyle::PM_MenuBarHMargin, &unmarked, 0, 0},
        {"HMarginMarked", QStyle::PM_MenuBarHMargin, &marked, 3, 3},
        {"FocusFrameHMargin", QStyle::PM_FocusFrameHMargin, nullptr, 0, 2},
        {"IndicatorWidth", QStyle::PM_IndicatorWidth, nullptr, std::nullopt, std::nullopt},
    };
    for (const auto& [name, metric, widget, simple, tarn] : rows)
        expectInBothStyles(name, simple, tarn, [&](const QStyle& s) { return s.pixelMetric(metric, nullptr, widget); });

    const std::tuple<const char*, QStyle::StyleHint, Answer, Answer> hints[] = {
        {"ButtonFocusPolicy", QStyle::SH_Button_FocusPolicy, 0, 0},
        {"TableGridLineColor", QStyle::SH_Table_GridLineColor, int(qRgb(68, 68, 68)), int(qRgb(68, 68, 68))},
        {"SliderAbsoluteSetButtons", QStyle::SH_Slider_AbsoluteSetButtons, std::nullopt, int(Qt::LeftButton)},
        {"DialogButtonLayout", QStyle::SH_DialogButtonLayout, std::nullopt, std::nullopt},
    };
    for (const auto& [name, hint, simple, tarn] : hints)
        expectInBothStyles(name, simple, tarn, [&](const QStyle& style) { return style.styleHint(hint); });
}

}  // namespace
