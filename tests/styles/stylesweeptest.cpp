// Every primitive, control element, pixel metric and style hint with a default option, in both
// styles: nothing may crash or make Qt complain.
#include "stylesupport.h"

#include <QMetaEnum>
#include <QPainter>
#include <QStyleOption>

#include <gtest/gtest.h>

namespace {

QStringList gWarnings;

void recordWarning(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type != QtDebugMsg && type != QtInfoMsg)
        gWarnings << message;
}

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
protected:
    void SetUp() override
    {
        gWarnings.clear();
        m_previousHandler = qInstallMessageHandler(recordWarning);
        m_style = GetParam().create();
        m_option.rect = QRect(2, 2, 40, 24);
        m_option.palette = m_style->standardPalette();
        m_option.state = QStyle::State_Enabled;
    }
    void TearDown() override
    {
        qInstallMessageHandler(m_previousHandler);
        EXPECT_TRUE(gWarnings.isEmpty()) << gWarnings.join(QLatin1Char('\n')).toStdString();
    }

    template <typename Paint>
    void paint(Paint paintElement)
    {
        QImage image(48, 32, QImage::Format_ARGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        paintElement(painter);
    }

    QtMessageHandler m_previousHandler = nullptr;
    std::unique_ptr<QStyle> m_style;
    QStyleOption m_option;
};

TEST_P(StyleSweep, PrimitiveElements)
{
    const auto elements = namedValues<QStyle::PrimitiveElement>();
    ASSERT_GT(elements.size(), 40);
    for (const auto element : elements)
        paint([&](QPainter& p) { m_style->drawPrimitive(element, &m_option, &p); });
}

TEST_P(StyleSweep, ControlElements)
{
    const auto elements = namedValues<QStyle::ControlElement>();
    ASSERT_GT(elements.size(), 40);
    for (const auto element : elements)
        paint([&](QPainter& p) { m_style->drawControl(element, &m_option, &p); });
}

TEST_P(StyleSweep, PixelMetricsWithAndWithoutOption)
{
    const auto metrics = namedValues<QStyle::PixelMetric>();
    ASSERT_GT(metrics.size(), 80);
    for (const auto metric : metrics) {
        m_style->pixelMetric(metric);
        m_style->pixelMetric(metric, &m_option);
    }
}

TEST_P(StyleSweep, StyleHintsWithAndWithoutOption)
{
    const auto hints = namedValues<QStyle::StyleHint>();
    ASSERT_GT(hints.size(), 100);
    for (const auto hint : hints) {
        m_style->styleHint(hint);
        m_style->styleHint(hint, &m_option);
    }
}

INSTANTIATE_TEST_SUITE_P(DarkStyles, StyleSweep, ::testing::Values(simpleStyleCase(), tarnStyleCase()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
