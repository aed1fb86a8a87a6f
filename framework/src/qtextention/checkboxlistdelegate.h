#pragma once

#include <QStyledItemDelegate>

// The editor of each QCheckBoxList row: a tri-state QCheckBox showing the row's text and check
// state. A click writes the box's state back at once (partially checked is written as checked)
// and announces the row with dataChanged.
class CheckBoxListDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

signals:
    void dataChanged(int row);

public slots:
    void OnCheckBoxToggled(bool checked);
};
