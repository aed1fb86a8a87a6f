#include <qtextention/qcheckboxtree.h>

#include <qtextention/guards.h>
#include <qtextention/qtreewidgetitemit.h>

#include <QColor>

#include <ostream>

namespace {

int depthOf(const QTreeWidgetItem* item)
{
    int depth = 0;
    for (const QTreeWidgetItem* p = item->parent(); p; p = p->parent())
        ++depth;
    return depth;
}

}  // namespace

QCheckBoxTree::QCheckBoxTree(QWidget* parent)
    : QTreeWidget(parent)
{
    ConnectAssert(this, SIGNAL(itemChanged(QTreeWidgetItem*, int)), this,
                  SLOT(onItemDataChanged(QTreeWidgetItem*, int)));
    setAlternatingRowColors(true);
}

QTreeWidgetItem* QCheckBoxTree::addItem(const QString& text, bool checked, QTreeWidgetItem* parent)
{
    return addItem(new QTreeWidgetItem(QStringList{text}), checked, parent);
}

QTreeWidgetItem* QCheckBoxTree::addItem(QTreeWidgetItem* item, bool checked, QTreeWidgetItem* parent)
{
    if (parent)
        parent->addChild(item);
    else
        addTopLevelItem(item);
    BlockSignalGuard blocked(this);
    setCheckedStateRecursive(item, checked, true, nullptr);
    return item;
}

bool QCheckBoxTree::isChecked(QTreeWidgetItem* item) const
{
    return item->data(0, Qt::CheckStateRole).toInt() != 0;
}

void QCheckBoxTree::setCheckedState(QTreeWidgetItem* item, Qt::CheckState state)
{
    item->setData(0, Qt::CheckStateRole, state);
    if (state == Qt::Unchecked) {
        item->setForeground(0, QBrush(Qt::darkGray));
        return;
    }
    const QVariant custom = item->data(0, CustomColorRole);
    item->setForeground(0, QBrush(custom.isValid() ? custom.value<QColor>()
                                                   : palette().color(QPalette::Active, QPalette::Text)));
}

void QCheckBoxTree::setItemCustomColor(QTreeWidgetItem* item, const QColor& colour)
{
    // A colour is no user action: it must not come back through onItemDataChanged as one.
    BlockSignalGuard blocked(this);
    item->setData(0, CustomColorRole, colour);
    item->setForeground(0, QBrush(colour));
}

void QCheckBoxTree::setCheckedStateRecursive(QTreeWidgetItem* item, bool checked, bool force, ItemList* changed)
{
    if (force || isChecked(item) != checked) {
        setCheckedState(item, checked ? Qt::Checked : Qt::Unchecked);
        if (changed)
            changed->push_back(item);
    }
    for (int i = 0; i < item->childCount(); ++i)
        setCheckedStateRecursive(item->child(i), checked, false, changed);
}

bool QCheckBoxTree::hasChildEnabled(QTreeWidgetItem* item)
{
    if (!item || item->childCount() == 0)
        return false;
    QTreeWidgetItemIt it(item);
    for (++it; *it; ++it) {
        if (isChecked(*it))
            return true;
    }
    return false;
}

void QCheckBoxTree::setChecked(QTreeWidgetItem* item, bool checked)
{
    ItemList changed;
    {
        BlockSignalGuard blocked(this);
        setCheckedStateRecursive(item, checked, true, &changed);
        if (m_keepParentHierarchyUpdated)
            updateAncestors(item, checked, changed);
    }
    if (!changed.empty())
        emit checkedStateChanged(checked, changed);
}

void QCheckBoxTree::updateAncestors(QTreeWidgetItem* item, bool checked, ItemList& changed)
{
    // Once one ancestor has a checked descendant, every ancestor above it has one too.
    bool descendantChecked = checked;
    for (QTreeWidgetItem* ancestor = item->parent(); ancestor; ancestor = ancestor->parent()) {
        descendantChecked = descendantChecked || hasChildEnabled(ancestor);
        if (isChecked(ancestor) != descendantChecked) {
            setCheckedState(ancestor, descendantChecked ? Qt::Checked : Qt::Unchecked);
            changed.push_back(ancestor);
        }
    }
}

void QCheckBoxTree::onItemDataChanged(QTreeWidgetItem* item, int column)
{
    if (column == 0)
        setChecked(item, isChecked(item));
}

void QCheckBoxTree::print(std::ostream& out)
{
    QTreeWidgetItemIt it(invisibleRootItem());
    for (++it; *it; ++it) {
        QTreeWidgetItem* item = *it;
        out << std::string(std::size_t(2 * depthOf(item)), ' ') << (isChecked(item) ? "[x] " : "[ ] ")
            << item->text(0).toStdString();
        const QVariant custom = item->data(0, CustomColorRole);
        if (custom.isValid())
            out << " (" << custom.value<QColor>().name().toStdString() << ')';
        out << '\n';
    }
}
