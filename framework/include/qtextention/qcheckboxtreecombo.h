#pragma once

#include <qtextention/qcheckboxtree.h>
#include <qtextention/qtextentionglobal.h>

#include <QComboBox>

#include <iosfwd>

class QPaintEvent;

/// A combo box whose drop-down shows one QCheckBoxTree: the combo has a single row whose editor is
/// the tree. Ticking in the pop-up does not close it. The closed combo shows the display text.
///
///   auto* combo = new QCheckBoxTreeCombo(panel);
///   QTreeWidgetItem* all = combo->addItem("Assets", true);   // names the combo's row
///   combo->addItem("Models", true, all);
///   combo->setDisplayText("Filter");
class QTEXTENTION_EXPORT QCheckBoxTreeCombo : public QComboBox
{
    Q_OBJECT
public:
    explicit QCheckBoxTreeCombo(QWidget* parent = nullptr);

    QTreeWidgetItem* addItem(const QString& text, bool checked, QTreeWidgetItem* parent = nullptr);
    void setChecked(QTreeWidgetItem* item, bool checked);
    /// False for any item while the combo has no tree yet.
    bool isChecked(QTreeWidgetItem* item) const;

    /// The tree; created on first use, with name as the combo's only row.
    QCheckBoxTree* getRoot(const QString& name);

    void setDisplayText(const QString& text) { m_displayText = text; update(); }
    QString getDisplayText() const { return m_displayText; }

    void showPopup() override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void print(std::ostream& out);

signals:
    void checkedStateChanged(bool checked, const QCheckBoxTree::ItemList& items);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QCheckBoxTree* tree() const;

    QString m_displayText;
};
