#pragma once

// Widgets that show states a picture taken offscreen cannot reach with real input: every check-box
// indicator state (hover and pressed included) and menu-bar items selected and pressed.

#include <QStringList>
#include <QWidget>

// A grid of check-box indicators: columns off, on, partial; rows normal, hover, pressed, disabled.
class CheckBoxStateGrid final : public QWidget
{
public:
    explicit CheckBoxStateGrid(QWidget* parent = nullptr);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

// A menu bar drawn by the style: the second item selected, the third selected and pressed. With
// marked set, the widget carries the property that marks the host's main menu bar.
class MenuBarPreview final : public QWidget
{
public:
    MenuBarPreview(const QStringList& items, bool marked, QWidget* parent = nullptr);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QList<QRect> itemRects() const;

    QStringList m_items;
};
