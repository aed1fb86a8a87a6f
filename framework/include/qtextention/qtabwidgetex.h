#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QTabWidget>

/// A QTabWidget whose tabs are found by the object name of their page and may show a count
/// beside their title ("Files (3)"): the title given to addTab stays the tab's base title.
class QTEXTENTION_EXPORT QTabWidgetEx : public QTabWidget
{
    Q_OBJECT
public:
    using QTabWidget::QTabWidget;

    /// The index of the page with that object name, or -1.
    int indexOfPage(const QString& objectName) const;
    /// Makes the page with that object name current; false when there is none.
    bool setCurrentPage(const QString& objectName);
    /// Shows count after the tab's base title; a negative count shows the base title alone.
    void setTabCount(int index, int count);

protected:
    void tabInserted(int index) override;

private:
    static constexpr const char* kBaseTitle = "qtabwidgetex_baseTitle";
};
