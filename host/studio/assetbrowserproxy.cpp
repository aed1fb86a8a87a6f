#include "assetbrowserproxy.h"

#include "assetbrowsermodel.h"

namespace hbrc::studio {

void AssetBrowserProxy::sort(int column, Qt::SortOrder order)
{
    const bool inModelOrder = column == AssetBrowserModel::NameColumn && order == Qt::AscendingOrder;
    QSortFilterProxyModel::sort(inModelOrder ? -1 : column, order);
}

}  // namespace hbrc::studio
