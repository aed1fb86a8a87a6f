#pragma once

#include <QStringList>
#include <QWidget>

// One page with a representative set of widgets, laid out for a single screenshot in the current
// application style: buttons, check boxes (with every indicator state), tool buttons, line edit,
// combo box, menu bars marked and unmarked, a tab widget, a tree with branches and a sorted
// header, a dock widget, and the file list dialog showing files.
class GalleryPage final : public QWidget
{
public:
    GalleryPage(const QString& styleName, const QStringList& files, QWidget* parent = nullptr);
};
