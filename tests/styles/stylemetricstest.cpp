// Pixel metrics (the marked menu bar), style hints and the push-button size of the dark styles.
#include "stylesupport.h"

#include <QCommonStyle>
#include <QProxyStyle>
#include <QStyleOption>
#include <QVariant>
#include <QWidget>

#include <gtest/gtest.h>

#include <optional>
#include <tuple>

namespace {

using Answer = std::optional<int>;  // nullopt: the wrapped style's answer

// Rows below: name, what is asked (and of which widget), the simple style's answer, the tarn style's.

// Asks both styles; each must give its expected answer.
void expectInBothStyles(const char* name, Answer simple, Answer tarn, const std::function<int(const QStyle&)>& ask)
{
    const std::pair<const StyleCase*, Answer> cases[] = {{&simpleStyleCase(), simple}, {&tarnStyleCase(), tarn}};
    for (const auto& [style, answer] : cases)
        EXPECT_EQ(ask(*style->create()), answer ? *answer : ask(*style->createBase())) << name << " in " << *style;
}

TEST(DarkStyleMetric, MenuBarMarginsFollowThePropertysPresenceAndTheRestComeFromTheWrappedStyle)
{
    // The property marks the host's menu bar by being present at all: false and text count too.
    QWidget unmarked, markedTrue, markedFalse, markedText;
    markedTrue.setProperty("isQtarnZelmarMenuBar", true);
    markedFalse.setProperty("isQtarnZelmarMenuBar", false);
    markedText.setProperty("isQtarnZelmarMenuBar", QStringLiteral("no"));
    const std::tuple<const char*, QStyle::PixelMetric, const QWidget*, Answer, Answer> rows[] = {
        {"PanelWidthMarked", QStyle::PM_MenuBarPanelWidth, &markedTrue, 0, 0},
        {"PanelWidthUnmarked", QStyle::PM_MenuBarPanelWidth, &unmarked, 0, 0},
        {"VMarginNoWidget", QStyle::PM_MenuBarVMargin, nullptr, 1, 1},
        {"VMarginUnmarked", QStyle::PM_MenuBarVMargin, &unmarked, 1, 1},
        {"VMarginMarkedTrue", QStyle::PM_MenuBarVMargin, &markedTrue, 4, 4},
        {"VMarginMarkedFalse", QStyle::PM_MenuBarVMargin, &markedFalse, 4, 4},
        {"VMarginMarkedText", QStyle::PM_MenuBarVMargin, &markedText, 4, 4},
        {"HMarginNoWidget", QStyle::PM_MenuBarHMargin, nullptr, 0, 0},
        {"HMarginUnmarked", QStyle::PM_MenuBarHMargin, &unmarked, 0, 0},
        {"HMarginMarkedTrue", QStyle::PM_MenuBarHMargin, &markedTrue, 3, 3},
        {"HMarginMarkedFalse", QStyle::PM_MenuBarHMargin, &markedFalse, 3, 3},
        {"FocusFrameVMargin", QStyle::PM_FocusFrameVMargin, nullptr, 0, 0},
        {"FocusFrameHMargin", QStyle::PM_FocusFrameHMargin, nullptr, 0, 2},
        {"IndicatorWidth", QStyle::PM_IndicatorWidth, nullptr, std::nullopt, std::nullopt},
        {"ScrollBarExtent", QStyle::PM_ScrollBarExtent, nullptr, std::nullopt, std::nullopt},
        {"TabBarTabHSpace", QStyle::PM_TabBarTabHSpace, nullptr, std::nullopt, std::nullopt},
    };
    for (const auto& [name, metric, widget, simple, tarn] : rows)
        expectInBothStyles(name, simple, tarn, [&](const QStyle& s) { return s.pixelMetric(metric, nullptr, widget); });
}

TEST(DarkStyleHint, HintsFollowTheTableInBothStyles)
{
    const std::tuple<const char*, QStyle::StyleHint, Answer, Answer> rows[] = {
        {"EtchDisabledText", QStyle::SH_EtchDisabledText, 0, 0},
        {"ButtonFocusPolicy", QStyle::SH_Button_FocusPolicy, 0, 0},
        {"TableGridLineColor", QStyle::SH_Table_GridLineColor, int(qRgb(68, 68, 68)), int(qRgb(68, 68, 68))},
        {"SliderAbsoluteSetButtons", QStyle::SH_Slider_AbsoluteSetButtons, std::nullopt, int(Qt::LeftButton)},
        {"DialogButtonLayout", QStyle::SH_DialogButtonLayout, std::nullopt, std::nullopt},
        {"ComboBoxPopup", QStyle::SH_ComboBox_Popup, std::nullopt, std::nullopt},
    };
    for (const auto& [name, hint, simple, tarn] : rows)
        expectInBothStyles(name, simple, tarn, [&](const QStyle& style) { return style.styleHint(hint); });
}

// A base style that draws a default-button indicator, which Fusion does not.
class DefaultIndicatorStyle final : public QProxyStyle
{
public:
    DefaultIndicatorStyle() : QProxyStyle(QStringLiteral("Fusion")) {}
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override
    {
        return metric == PM_ButtonDefaultIndicator ? 3 : QProxyStyle::pixelMetric(metric, option, widget);
    }
};

TEST(DarkStyleTarnSize, PushButtonSizeIsTheCommonSizeAndGrowsOnceMoreForAutoDefaultButtons)
{
    QtlomDarkStyleTarn style;
    const QSize contents(40, 16);
    const QStyleOption notAButton;
    EXPECT_EQ(style.sizeFromContents(QStyle::CT_PushButton, nullptr, contents), contents);
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
