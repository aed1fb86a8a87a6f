#include <qtextention/qcheckboxtreecombo.h>

#include "checkablecombo.h"
#include "qcheckboxtreecombodelegate.h"

#include <qtextention/guards.h>

#include <QAbstractItemView>
#include <QStyleOptionComboBox>

QCheckBoxTreeCombo::QCheckBoxTreeCombo(QWidget* parent)
    : QComboBox(parent)
{
    setItemDelegate(new QCheckBoxTreeComboDelegate(this));
    // Installed after the pop-up container's own filter, so it sees the viewport's events first.
    view()->viewport()->installEventFilter(this);
}

QCheckBoxTree* QCheckBoxTreeCombo::tree() const
{
    if (count() == 0)
        return nullptr;
    return qobject_cast<QCheckBoxTree*>(view()->indexWidget(model()->index(0, 0)));
}

QCheckBoxTree* QCheckBoxTreeCombo::getRoot(const QString& name)
{
    if (count() > 0)
        return tree();
    QComboBox::addItem(name);
    const QModelIndex index = model()->index(0, 0);
    view()->openPersistentEditor(index);
    QCheckBoxTree* created = tree();
    // The row is as tall as the tree's size hint; give the tree that height before the hidden
    // view lays its row out, so that showPopup finds it.
    created->resize(created->sizeHint());
    ConnectAssert(created, SIGNAL(checkedStateChanged(bool, const QCheckBoxTree::ItemList&)), this,
                  SIGNAL(checkedStateChanged(bool, const QCheckBoxTree::ItemList&)));
    return created;
}

QTreeWidgetItem* QCheckBoxTreeCombo::addItem(const QString& text, bool checked, QTreeWidgetItem* parent)
{
    return getRoot(parent ? QStringLiteral("root") : text)->addItem(text, checked, parent);
}

void QCheckBoxTreeCombo::setChecked(QTreeWidgetItem* item, bool checked)
{
    getRoot(QStringLiteral("root"))->setChecked(item, checked);
}

bool QCheckBoxTreeCombo::isChecked(QTreeWidgetItem* item) const
{
    const QCheckBoxTree* root = tree();
    return root && root->isChecked(item);
}

void QCheckBoxTreeCombo::showPopup()
{
    if (const QCheckBoxTree* root = tree())
        view()->setFixedHeight(root->height());
    QComboBox::showPopup();
}

bool QCheckBoxTreeCombo::eventFilter(QObject* watched, QEvent* event)
{
    const bool handled = QComboBox::eventFilter(watched, event);
    return qtextention::internal::isPopupViewportRelease(this, watched, event) || handled;
}

void QCheckBoxTreeCombo::paintEvent(QPaintEvent* /*event*/)
{
    QStyleOptionComboBox option;
    initStyleOption(&option);
    qtextention::internal::paintComboWithLabel(this, option, m_displayText);
}

void QCheckBoxTreeCombo::print(std::ostream& out)
{
    if (QCheckBoxTree* root = tree())
        root->print(out);
}
