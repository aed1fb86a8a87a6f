#include <qtextention/qtabwidgetex.h>

#include <QVariant>

int QTabWidgetEx::indexOfPage(const QString& objectName) const
{
    for (int i = 0; i < count(); ++i)
        if (widget(i)->objectName() == objectName)
            return i;
    return -1;
}

bool QTabWidgetEx::setCurrentPage(const QString& objectName)
{
    const int index = indexOfPage(objectName);
    if (index >= 0)
        setCurrentIndex(index);
    return index >= 0;
}

void QTabWidgetEx::setTabCount(int index, int count)
{
    QWidget* page = widget(index);
    if (!page)
        return;
    const QString base = page->property(kBaseTitle).toString();
    setTabText(index, count < 0 ? base : tr("%1 (%2)").arg(base).arg(count));
}

void QTabWidgetEx::tabInserted(int index)
{
    QTabWidget::tabInserted(index);
    widget(index)->setProperty(kBaseTitle, tabText(index));
}
