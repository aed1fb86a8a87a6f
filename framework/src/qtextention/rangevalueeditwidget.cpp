#include <qtextention/guards.h>
#include <qtextention/rangevalueeditwidget.h>

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QSlider>

#include <cmath>

namespace {
constexpr int kSliderSteps = 1000;
}

RangeValueEditWidget::RangeValueEditWidget(QWidget* parent) : QWidget(parent)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_slider = new QSlider(Qt::Horizontal, this);
    m_slider->setRange(0, kSliderSteps);
    m_slider->setFocusPolicy(Qt::StrongFocus);
    m_spin = new QDoubleSpinBox(this);
    m_spin->setKeyboardTracking(false);
    layout->addWidget(m_slider, 1);
    layout->addWidget(m_spin);
    setFocusProxy(m_spin);

    connect(m_slider, &QSlider::valueChanged, this, [this](int step) {
        BlockSignalGuard quiet(m_spin);
        m_spin->setValue(minimum() + (maximum() - minimum()) * step / kSliderSteps);
        if (!m_slider->isSliderDown())  // keys and clicks on the groove finish at once
            finishEdit();
    });
    connect(m_slider, &QSlider::sliderReleased, this, &RangeValueEditWidget::finishEdit);
    connect(m_spin, &QDoubleSpinBox::valueChanged, this, [this](double value) {
        showOnSlider(value);
        finishEdit();
    });
    setRange(0.0, 1.0);
}

void RangeValueEditWidget::setRange(double minimum, double maximum, int decimals)
{
    BlockSignalGuard quiet(m_spin);
    m_spin->setDecimals(decimals);
    m_spin->setRange(minimum, maximum);
    m_spin->setSingleStep(std::pow(10.0, -decimals) * 10);
    m_lastEmitted = m_spin->value();
    showOnSlider(m_lastEmitted);
}

double RangeValueEditWidget::minimum() const
{
    return m_spin->minimum();
}

double RangeValueEditWidget::maximum() const
{
    return m_spin->maximum();
}

double RangeValueEditWidget::value() const
{
    return m_spin->value();
}

void RangeValueEditWidget::setValue(double value)
{
    BlockSignalGuard quiet(m_spin);
    m_spin->setValue(value);
    m_lastEmitted = m_spin->value();
    showOnSlider(m_lastEmitted);
}

void RangeValueEditWidget::showOnSlider(double value)
{
    const double span = maximum() - minimum();
    BlockSignalGuard quiet(m_slider);
    m_slider->setValue(span > 0 ? int(std::lround((value - minimum()) / span * kSliderSteps)) : 0);
}

void RangeValueEditWidget::finishEdit()
{
    if (m_spin->value() == m_lastEmitted)
        return;
    m_lastEmitted = m_spin->value();
    emit valueEdited(m_lastEmitted);
}
