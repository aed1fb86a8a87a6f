#include <qtextention/qcheckboxlist.h>

#include "checkablecombo.h"
#include "checkboxlistdelegate.h"

#include <qtextention/guards.h>

#include <QAbstractItemView>
#include <QStyleOptionComboBox>

QCheckBoxList::QCheckBoxList(QWidget* parent)
    : QComboBox(parent)
{
    auto* delegate = new CheckBoxListDelegate(this);
    setItemDelegate(delegate);
    // Installed after the pop-up container's own filter, so it sees the viewport's events first.
    view()->viewport()->installEventFilter(this);
    view()->setAlternatingRowColors(true);
    ConnectAssert(delegate, SIGNAL(dataChanged(int)), this, SLOT(OnItemDataChanged(int)));
    // Every row is its check box from the moment it exists.
    connect(model(), &QAbstractItemModel::rowsInserted, this, &QCheckBoxList::openEditors);
}

void QCheckBoxList::openEditors(const QModelIndex& parent, int first, int last)
{
    for (int row = first; row <= last; ++row)
        view()->openPersistentEditor(model()->index(row, modelColumn(), parent));
}

void QCheckBoxList::setChecked(int row, Qt::CheckState state)
{
    setItemData(row, state, Qt::CheckStateRole);
}

Qt::CheckState QCheckBoxList::checkState(int row) const
{
    return Qt::CheckState(itemData(row, Qt::CheckStateRole).toInt());
}

void QCheckBoxList::OnItemDataChanged(int row)
{
    emit checked(row, itemData(row, Qt::CheckStateRole).toInt() != 0);
}

bool QCheckBoxList::eventFilter(QObject* watched, QEvent* event)
{
    const bool handled = QComboBox::eventFilter(watched, event);
    return qtextention::internal::isPopupViewportRelease(this, watched, event) || handled;
}

void QCheckBoxList::paintEvent(QPaintEvent* /*event*/)
{
    QStyleOptionComboBox option;
    initStyleOption(&option);
    qtextention::internal::paintComboWithLabel(this, option, m_displayText);
}
