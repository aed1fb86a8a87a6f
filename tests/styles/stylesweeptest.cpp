// Every primitive, control element, pixel metric and style hint with a default option, in both
// styles: nothing may crash or make Qt complain.
#include "stylesupport.h"

#include <QMetaEnum>
#include <QPainter>
#include <QStyleOption>

#include <gtest/gtest.h>

namespace {

QStringList gWarnings;

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

class StyleSweep : public ::testing::TestWithParam<StyleCase>
{
};

TEST_P(StyleSweep, EveryElementMetricAndHintWithADefaultOptionIsQuiet)
{
    const auto primitives = namedValues<QStyle::PrimitiveElement>();
    const auto controls = namedValues<QStyle::ControlElement>();
    const auto metrics = namedValues<QStyle::PixelMetric>();
    const auto hints = namedValues<QStyle::StyleHint>();
    ASSERT_TRUE(primitives.size() > 40 && controls.size() > 40 && metrics.size() > 80 && hints.size() > 100);

    gWarnings.clear();
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& message) {
            if (type != QtDebugMsg && type != QtInfoMsg)
                gWarnings << message;
        });
    const auto style = GetParam().create();
    QStyleOption option;
    option.rect = QRect(2, 2, 40, 24);
    option.palette = style->standardPalette();
    option.state = QStyle::State_Enabled;
    const auto paint = [](const std::function<void(QPainter&)>& draw) { paintedImage(QSize(48, 32), Qt::black, draw); };
    for (const auto element : primitives)
        paint([&](QPainter& p) { style->drawPrimitive(element, &option, &p); });
    for (const auto element : controls)
        paint([&](QPainter& p) { style->drawControl(element, &option, &p); });
    for (const auto metric : metrics) {
        style->pixelMetric(metric);
        style->pixelMetric(metric, &option);
    }
    for (const auto hint : hints) {
        style->styleHint(hint);
        style->styleHint(hint, &option);
    }
    qInstallMessageHandler(previous);
    EXPECT_TRUE(gWarnings.isEmpty()) << gWarnings.join(QLatin1Char('\n')).toStdString();
}

INSTANTIATE_TEST_SUITE_P(DarkStyles, StyleSweep, ::testing::Values(simpleStyleCase(), tarnStyleCase()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
