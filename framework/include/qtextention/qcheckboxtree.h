#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QTreeWidget>

#include <iosfwd>
#include <vector>

class QColor;

/// A tree whose items carry check boxes (column 0). Ticking an item ticks its whole subtree; with
/// the parent hierarchy kept up to date (the default) an ancestor is checked exactly while one of
/// its descendants is. Parents are never shown partially checked.
///
/// One user action (a click or a setChecked call) emits one checkedStateChanged carrying every item
/// whose state was set: the item itself (even when it already had that state), the descendants that
/// changed and the ancestors that changed. Adding items emits nothing.
///
/// Checked items are drawn in their custom colour (setItemCustomColor) or the palette's text colour,
/// unchecked ones in dark grey.
class QTEXTENTION_EXPORT QCheckBoxTree : public QTreeWidget
{
    Q_OBJECT
public:
    using ItemList = std::vector<QTreeWidgetItem*>;
    static constexpr int CustomColorRole = 102;

    explicit QCheckBoxTree(QWidget* parent = nullptr);

    QTreeWidgetItem* addItem(const QString& text, bool checked, QTreeWidgetItem* parent = nullptr);
    /// Takes ownership of item; adds it under parent, or at the top level without one.
    QTreeWidgetItem* addItem(QTreeWidgetItem* item, bool checked, QTreeWidgetItem* parent = nullptr);

    /// The user-level change: the item, its subtree and (when kept up to date) its ancestors, then
    /// one checkedStateChanged.
    void setChecked(QTreeWidgetItem* item, bool checked);
    /// Any non-zero check state, partially checked included, counts as checked.
    bool isChecked(QTreeWidgetItem* item) const;

    /// The building blocks of setChecked; they emit nothing of their own.
    void setCheckedState(QTreeWidgetItem* item, Qt::CheckState state);
    /// Sets item (always when force, else only when its state differs) and then every descendant
    /// whose state differs, appending each item set to changed when given.
    void setCheckedStateRecursive(QTreeWidgetItem* item, bool checked, bool force, ItemList* changed);
    /// True when a descendant of item (not item itself) is checked.
    bool hasChildEnabled(QTreeWidgetItem* item);

    /// Draws item in colour while it is checked; the colour shows at once, whatever the state.
    void setItemCustomColor(QTreeWidgetItem* item, const QColor& colour);

    void SetKeepParentHierarchyUpdated(bool keep) { m_keepParentHierarchyUpdated = keep; }
    bool keepParentHierarchyUpdated() const { return m_keepParentHierarchyUpdated; }

    /// One line per item, indented by depth: "[x] text" or "[ ] text", plus the custom colour if any.
    void print(std::ostream& out);

signals:
    void checkedStateChanged(bool checked, const QCheckBoxTree::ItemList& items);

public slots:
    /// A check box ticked in the view propagates like setChecked.
    void onItemDataChanged(QTreeWidgetItem* item, int column);

private:
    void updateAncestors(QTreeWidgetItem* item, bool checked, ItemList& changed);

    bool m_keepParentHierarchyUpdated = true;
};
