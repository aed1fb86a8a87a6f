#include <qtextention/mainappwindow.h>

#include <QApplication>
#include <QWidget>

QWidget* GetMainAppWindow()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (window->isVisible() && window->objectName() == QLatin1String("TarnWindow"))
            return window;
    }
    return nullptr;
}
