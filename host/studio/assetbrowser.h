#pragma once

#include "assetbrowsermodel.h"

#include <kel4/kelhandle.h>

#include <QWidget>

class LMRQLiveSearchWidget;
class QSortFilterProxyModel;
class QTreeView;

namespace hbrc::studio {

// The asset browser pane: the live search field (all columns unless the user picks one) over a
// sorted, filtered view of its model of the assets.
// The current row is the selected asset that the other panes follow.
class AssetBrowser : public QWidget
{
    Q_OBJECT
public:
    explicit AssetBrowser(QWidget* parent = nullptr);

    KELHandle<kel4::IDbObject> currentAsset() const;
    void selectAsset(const KELHandleBase& asset);

    AssetBrowserModel& model() { return m_model; }
    QTreeView* view() const { return m_view; }
    LMRQLiveSearchWidget* searchField() const { return m_search; }
    // Puts the keyboard in the search field, its text selected.
    void focusSearch();

signals:
    void currentAssetChanged();

private:
    void widenStatusColumn();

    AssetBrowserModel m_model;
    QSortFilterProxyModel* m_proxy = nullptr;
    LMRQLiveSearchWidget* m_search = nullptr;
    QTreeView* m_view = nullptr;
};

}  // namespace hbrc::studio
