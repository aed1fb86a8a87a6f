#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QIcon>
#include <QLineEdit>
#include <QPointer>

class QAction;
class QActionGroup;
class QMenu;
class QResizeEvent;
class QSortFilterProxyModel;
class QToolButton;

/// A search field that filters a QSortFilterProxyModel as the user types. A magnifying-glass button
/// inside the frame opens a menu that chooses the column searched (all columns or one) and how the
/// text is read; a cancel button on the right clears the text. The menu follows the model's columns.
///
///   auto* search = new LMRQLiveSearchWidget(panel);
///   search->setSourceModel(proxy);   // required before use
///   search->setAutoFilter();         // re-filter on every edit
///
/// The pattern syntax keeps the numbers of the classic regular-expression API: FixedString (2, the
/// default), RegExp (3) and Wildcard (1). Matching is case-insensitive and finds the text anywhere.
class QTEXTENTION_EXPORT LMRQLiveSearchWidget : public QLineEdit
{
    Q_OBJECT
public:
    enum PatternSyntax { Wildcard = 1, FixedString = 2, RegExp = 3 };

    explicit LMRQLiveSearchWidget(QWidget* parent = nullptr);

    /// Connects the model's column changes to the menu again on every call, even with the same model,
    /// and rebuilds the menu once.
    void setSourceModel(QSortFilterProxyModel* model);
    void setAutoFilter();

    /// -1 for all columns, else the column index.
    int columnSearched() const { return m_columnSearched; }
    int patternSyntax() const { return m_patternSyntax; }

    QToolButton* searchButton() const { return m_searchButton; }
    QToolButton* cancelButton() const { return m_cancelButton; }
    QMenu* optionsMenu() const { return m_menu; }

public slots:
    void CancelSearch(bool checked = false);
    void UpdateCancelIcon();
    void MenuOptionChanged(QAction* action);
    void PatternSyntaxMenuOptionChanged(QAction* action);
    void ModelNbColumnsChanged();
    void applyFilter();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void addColumnChoices(int columnCount);
    void addSyntaxChoices();

    QIcon m_cancelIcon;
    QToolButton* m_searchButton = nullptr;
    QToolButton* m_cancelButton = nullptr;
    QPointer<QSortFilterProxyModel> m_sourceModel;
    QMenu* m_menu = nullptr;
    QActionGroup* m_columnGroup = nullptr;
    int m_columnSearched = 0;
    int m_patternSyntax = FixedString;
    QActionGroup* m_patternGroup = nullptr;
};
