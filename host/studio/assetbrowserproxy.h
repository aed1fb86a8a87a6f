#pragma once

#include <QSortFilterProxyModel>

namespace hbrc::studio {

// The asset browser's sorted and searched view of its model. The model keeps its rows in name
// order, so sorted by name the proxy keeps the model's order: it places inserted or changed rows
// without comparing them with all others, which a view of 100,000 rows cannot afford per slice.
class AssetBrowserProxy : public QSortFilterProxyModel
{
    Q_OBJECT
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
};

}  // namespace hbrc::studio
