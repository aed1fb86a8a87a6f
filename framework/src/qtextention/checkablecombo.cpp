#include "checkablecombo.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QEvent>
#include <QStyleOptionComboBox>
#include <QStylePainter>

namespace qtextention::internal {

void paintComboWithLabel(QComboBox* combo, QStyleOptionComboBox option, const QString& label)
{
    QStylePainter painter(combo);
    painter.setPen(combo->palette().color(QPalette::Text));
    option.currentText = label;
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

bool isPopupViewportRelease(const QComboBox* combo, const QObject* watched, const QEvent* event)
{
    return event->type() == QEvent::MouseButtonRelease && watched == combo->view()->viewport();
}

}  // namespace qtextention::internal
