#include "interactivemode.h"

#include <QApplication>
#include <QWidget>

HBRC_INTERNAL_NAMESPACE_BEGIN

bool InteractiveMode()
{
    const QWidgetList topLevels = QApplication::topLevelWidgets();
    for (const QWidget* widget : topLevels) {
        if (!widget->property(kNotCountedAsInteractive).toBool())
            return true;
    }
    return false;
}

HBRC_INTERNAL_NAMESPACE_END
