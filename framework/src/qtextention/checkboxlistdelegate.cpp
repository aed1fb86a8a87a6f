#include "checkboxlistdelegate.h"

#include <QCheckBox>

QWidget* CheckBoxListDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                            const QModelIndex& /*index*/) const
{
    auto* box = new QCheckBox(parent);
    box->setTristate(true);
    connect(box, &QCheckBox::clicked, this, &CheckBoxListDelegate::OnCheckBoxToggled);
    return box;
}

void CheckBoxListDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    auto* box = qobject_cast<QCheckBox*>(editor);
    if (!box)
        return;
    box->setText(index.data(Qt::DisplayRole).toString());
    // A stored state outside 0..2 reads as checked, like everywhere else a non-zero state does.
    const int state = index.data(Qt::CheckStateRole).toInt();
    box->setCheckState(state == Qt::Unchecked ? Qt::Unchecked
                       : state == Qt::PartiallyChecked ? Qt::PartiallyChecked
                                                       : Qt::Checked);
}

void CheckBoxListDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
    auto* box = qobject_cast<QCheckBox*>(editor);
    if (!box)
        return;
    const Qt::CheckState state = box->checkState() == Qt::Unchecked ? Qt::Unchecked : Qt::Checked;
    model->setData(index, state, Qt::CheckStateRole);
    // setModelData is const by its base class; announcing the row changes nothing of the delegate.
    emit const_cast<CheckBoxListDelegate*>(this)->dataChanged(index.row());
}

void CheckBoxListDelegate::OnCheckBoxToggled(bool /*checked*/)
{
    if (auto* box = qobject_cast<QWidget*>(sender()))
        emit commitData(box);
}
