#pragma once

#include <QWidget>

// One page with a representative set of widgets, laid out for a single screenshot in the current
// application style: buttons, check boxes (with every indicator state), tool buttons, line edit,
// combo box, menu bars marked and unmarked, a tab widget, a tree with branches and a sorted
// header, and a dock widget.
class GalleryPage final : public QWidget
{
public:
    explicit GalleryPage(const QString& styleName, QWidget* parent = nullptr);
};
