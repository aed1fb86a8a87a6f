#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QColor>
#include <QFrame>

/// A swatch that shows one colour in a sunken frame (a checkerboard shows through a translucent
/// colour); an invalid colour shows as a diagonal cross.
class QTEXTENTION_EXPORT QColorFrame : public QFrame
{
    Q_OBJECT
public:
    explicit QColorFrame(QWidget* parent = nullptr);

    QColor color() const { return m_color; }
    void setColor(const QColor& color);
    QSize sizeHint() const override { return {32, 18}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor m_color;
};
