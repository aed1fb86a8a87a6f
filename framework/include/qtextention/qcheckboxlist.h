#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QComboBox>

class QPaintEvent;

/// A combo box whose rows are check boxes; ticking one leaves the pop-up open and emits
/// checked(row, state). The closed combo shows the display text.
///
///   auto* list = new QCheckBoxList(panel);
///   list->addItem("Models");
///   list->setChecked(0, Qt::Checked);
class QTEXTENTION_EXPORT QCheckBoxList : public QComboBox
{
    Q_OBJECT
public:
    explicit QCheckBoxList(QWidget* parent = nullptr);

    /// Sets the row's check state without emitting checked.
    void setChecked(int row, Qt::CheckState state);
    Qt::CheckState checkState(int row) const;

    void setDisplayText(const QString& text) { m_displayText = text; update(); }
    QString getDisplayText() const { return m_displayText; }

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void checked(int row, bool checked);

public slots:
    void OnItemDataChanged(int row);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void openEditors(const QModelIndex& parent, int first, int last);

    QString m_displayText;
};
