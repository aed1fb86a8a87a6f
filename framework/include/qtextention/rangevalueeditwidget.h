#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QWidget>

class QDoubleSpinBox;
class QSlider;

/// A number within a range, edited with a slider and a spin box that follow each other.
/// valueEdited is emitted once per finished user edit (a slider released or moved by keys, a
/// spin box value confirmed with Return or left), never by setValue.
class QTEXTENTION_EXPORT RangeValueEditWidget : public QWidget
{
    Q_OBJECT
public:
    explicit RangeValueEditWidget(QWidget* parent = nullptr);

    void setRange(double minimum, double maximum, int decimals = 2);
    double minimum() const;
    double maximum() const;
    double value() const;
    /// Clamps value into the range; emits nothing.
    void setValue(double value);

    QDoubleSpinBox* spinBox() const { return m_spin; }
    QSlider* slider() const { return m_slider; }

signals:
    void valueEdited(double value);

private:
    void showOnSlider(double value);
    void finishEdit();

    QSlider* m_slider = nullptr;
    QDoubleSpinBox* m_spin = nullptr;
    double m_lastEmitted = 0.0;
};
