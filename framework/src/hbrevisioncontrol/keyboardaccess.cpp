#include "keyboardaccess.h"

#include <QAbstractButton>
#include <QWidget>

HBRC_INTERNAL_NAMESPACE_BEGIN

void MakeButtonsReachableByKeyboard(QWidget& root)
{
    for (QAbstractButton* button : root.findChildren<QAbstractButton*>())
        button->setFocusPolicy(Qt::StrongFocus);
}

HBRC_INTERNAL_NAMESPACE_END
