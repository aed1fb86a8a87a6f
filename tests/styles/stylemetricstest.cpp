// Pixel metrics (the marked menu bar), style hints and the push-button size of the dark styles.
#include "stylesupport.h"

#include <qtextention/qtlomdarkstyletarn.h>

#include <QCommonStyle>
#include <QProxyStyle>
#include <QStyleOption>
#include <QVariant>
#include <QWidget>

#include <gtest/gtest.h>

#include <optional>

namespace {

enum class MenuBar { NoWidget, Unmarked, MarkedTrue, MarkedFalse, MarkedText };

struct MetricRow {
    const char* name;
    QStyle::PixelMetric metric;
    MenuBar menuBar;
    int simple;
    int tarn;
};

// The property marks the host's menu bar by being present at all: false and text count too.
const MetricRow kMetricTable[] = {
    {"PanelWidthMarked", QStyle::PM_MenuBarPanelWidth, MenuBar::MarkedTrue, 0, 0},
    {"PanelWidthUnmarked", QStyle::PM_MenuBarPanelWidth, MenuBar::Unmarked, 0, 0},
    {"VMarginNoWidget", QStyle::PM_MenuBarVMargin, MenuBar::NoWidget, 1, 1},
    {"VMarginUnmarked", QStyle::PM_MenuBarVMargin, MenuBar::Unmarked, 1, 1},
    {"VMarginMarkedTrue", QStyle::PM_MenuBarVMargin, MenuBar::MarkedTrue, 4, 4},
    {"VMarginMarkedFalse", QStyle::PM_MenuBarVMargin, MenuBar::MarkedFalse, 4, 4},
    {"VMarginMarkedText", QStyle::PM_MenuBarVMargin, MenuBar::MarkedText, 4, 4},
    {"HMarginNoWidget", QStyle::PM_MenuBarHMargin, MenuBar::NoWidget, 0, 0},
    {"HMarginUnmarked", QStyle::PM_MenuBarHMargin, MenuBar::Unmarked, 0, 0},
    {"HMarginMarkedTrue", QStyle::PM_MenuBarHMargin, MenuBar::MarkedTrue, 3, 3},
    {"HMarginMarkedFalse", QStyle::PM_MenuBarHMargin, MenuBar::MarkedFalse, 3, 3},
    {"FocusFrameVMargin", QStyle::PM_FocusFrameVMargin, MenuBar::NoWidget, 0, 0},
    {"FocusFrameHMargin", QStyle::PM_FocusFrameHMargin, MenuBar::NoWidget, 0, 2},
};

class DarkStyleMetric : public ::testing::TestWithParam<MetricRow>
{
};

TEST_P(DarkStyleMetric, MatchesTheTableInBothStyles)
{
    const MetricRow& row = GetParam();
    QWidget widget;
    if (row.menuBar == MenuBar::MarkedTrue)
        widget.setProperty("isQtarnZelmarMenuBar", true);
    if (row.menuBar == MenuBar::MarkedFalse)
        widget.setProperty("isQtarnZelmarMenuBar", false);
    if (row.menuBar == MenuBar::MarkedText)
        widget.setProperty("isQtarnZelmarMenuBar", QStringLiteral("no"));
    const QWidget* target = row.menuBar == MenuBar::NoWidget ? nullptr : &widget;
    EXPECT_EQ(simpleStyleCase().create()->pixelMetric(row.metric, nullptr, target), row.simple);
    EXPECT_EQ(tarnStyleCase().create()->pixelMetric(row.metric, nullptr, target), row.tarn);
}

INSTANTIATE_TEST_SUITE_P(Table, DarkStyleMetric, ::testing::ValuesIn(kMetricTable),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(DarkStyleMetric, OtherMetricsComeFromTheWrappedStyle)
{
    for (const StyleCase* style : {&simpleStyleCase(), &tarnStyleCase()}) {
        for (const auto metric : {QStyle::PM_IndicatorWidth, QStyle::PM_ScrollBarExtent, QStyle::PM_TabBarTabHSpace})
            EXPECT_EQ(style->create()->pixelMetric(metric), style->createBase()->pixelMetric(metric)) << *style;
    }
}

struct HintRow {
    const char* name;
    QStyle::StyleHint hint;
    std::optional<int> simple;  // nullopt: the wrapped style's answer
    std::optional<int> tarn;
};

const HintRow kHintTable[] = {
    {"EtchDisabledText", QStyle::SH_EtchDisabledText, 0, 0},
    {"ButtonFocusPolicy", QStyle::SH_Button_FocusPolicy, 0, 0},
    {"TableGridLineColor", QStyle::SH_Table_GridLineColor, int(qRgb(68, 68, 68)), int(qRgb(68, 68, 68))},
    {"SliderAbsoluteSetButtons", QStyle::SH_Slider_AbsoluteSetButtons, std::nullopt, int(Qt::LeftButton)},
    {"DialogButtonLayout", QStyle::SH_DialogButtonLayout, std::nullopt, std::nullopt},
    {"ComboBoxPopup", QStyle::SH_ComboBox_Popup, std::nullopt, std::nullopt},
};

class DarkStyleHint : public ::testing::TestWithParam<HintRow>
{
};

TEST_P(DarkStyleHint, MatchesTheTableInBothStyles)
{
    const HintRow& row = GetParam();
    const std::pair<const StyleCase*, std::optional<int>> cases[] = {{&simpleStyleCase(), row.simple},
                                                                      {&tarnStyleCase(), row.tarn}};
    for (const auto& [style, answer] : cases) {
        const int expected = answer ? *answer : style->createBase()->styleHint(row.hint);
        EXPECT_EQ(style->create()->styleHint(row.hint), expected) << *style;
    }
}

INSTANTIATE_TEST_SUITE_P(Table, DarkStyleHint, ::testing::ValuesIn(kHintTable),
                         [](const auto& info) { return std::string(info.param.name); });

// A base style that draws a default-button indicator, which Fusion does not.
class DefaultIndicatorStyle final : public QProxyStyle
{
public:
    DefaultIndicatorStyle()
        : QProxyStyle(QStringLiteral("Fusion"))
    {
    }
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override
    {
        return metric == PM_ButtonDefaultIndicator ? 3 : QProxyStyle::pixelMetric(metric, option, widget);
    }
};

TEST(DarkStyleTarnSize, PushButtonSizeIsTheCommonSizeAndGrowsOnceMoreForAutoDefaultButtons)
{
    QtlomDarkStyleTarn style;
    const QSize contents(40, 16);
    EXPECT_EQ(style.sizeFromContents(QStyle::CT_PushButton, nullptr, contents), contents);
    QStyleOption notAButton;
    EXPECT_EQ(style.sizeFromContents(QStyle::CT_PushButton, &notAButton, contents), contents);

    QStyleOptionButton button;
    button.text = QStringLiteral("OK");
    const QSize plain = style.sizeFromContents(QStyle::CT_PushButton, &button, contents);
    EXPECT_EQ(plain, style.QCommonStyle::sizeFromContents(QStyle::CT_PushButton, &button, contents));
    EXPECT_NE(plain, tarnStyleCase().createBase()->sizeFromContents(QStyle::CT_PushButton, &button, contents));

    // The common size already holds the indicator on both sides (2 x 3); the style adds it once more.
    style.setBaseStyle(new DefaultIndicatorStyle);
    const QSize withIndicatorMetric = style.sizeFromContents(QStyle::CT_PushButton, &button, contents);
    button.features = QStyleOptionButton::AutoDefaultButton;
    EXPECT_EQ(style.sizeFromContents(QStyle::CT_PushButton, &button, contents) - withIndicatorMetric, QSize(9, 9));
}

}  // namespace
