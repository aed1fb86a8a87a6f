#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QColor>
#include <QWidget>

class QColorFrame;
class QLineEdit;
class QToolButton;

/// A colour field: a swatch, the colour's name ("#rrggbb") to type, and a button that opens the
/// colour dialog. colorEdited is emitted for each colour the user confirms (a valid name entered,
/// or a colour picked); an invalid name puts the current one back. setColor emits nothing.
class QTEXTENTION_EXPORT QColorControl : public QWidget
{
    Q_OBJECT
public:
    explicit QColorControl(QWidget* parent = nullptr);

    QColor color() const { return m_color; }
    void setColor(const QColor& color);
    QLineEdit* nameEdit() const { return m_name; }

signals:
    void colorEdited(const QColor& color);

private:
    void nameEntered();
    void pick();
    void edit(const QColor& color);

    QColor m_color;
    QColorFrame* m_swatch = nullptr;
    QLineEdit* m_name = nullptr;
    QToolButton* m_pick = nullptr;
};
