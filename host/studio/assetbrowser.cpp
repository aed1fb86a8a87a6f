#include "assetbrowser.h"

#include "assetbrowserproxy.h"
#include "statusdelegate.h"

#include <qtextention/lmrqlivesearchwidget.h>

#include <QHeaderView>
#include <QMenu>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace hbrc::studio {

AssetBrowser::AssetBrowser(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("assetBrowser"));
    m_proxy = new AssetBrowserProxy(this);
    m_proxy->setSourceModel(&m_model);
    m_proxy->setSortCaseSensitivity(Qt::CaseInsensitive);
    m_search = new LMRQLiveSearchWidget(this);
    m_search->setObjectName(QStringLiteral("assetSearch"));
    m_search->setPlaceholderText(tr("Search assets"));
    m_search->setSourceModel(m_proxy);
    m_search->setAutoFilter();
    // Every column is searched unless the user picks one: "All" is the first choice of the field's menu.
    if (auto* choices = m_search->findChild<QToolButton*>(QStringLiteral("searchButton"))->menu();
        choices && !choices->isEmpty())
        choices->actions().constFirst()->trigger();
    m_view = new QTreeView(this);
    m_view->setObjectName(QStringLiteral("assetView"));
    m_view->setModel(m_proxy);
    m_view->setRootIsDecorated(false);
    m_view->setUniformRowHeights(true);  // no per-row layout at 10,000 assets
    m_view->setSortingEnabled(true);
    m_view->sortByColumn(AssetBrowserModel::NameColumn, Qt::AscendingOrder);
    m_view->setSelectionMode(QAbstractItemView::SingleSelection);
    m_view->setAlternatingRowColors(true);
    m_view->setItemDelegateForColumn(AssetBrowserModel::StatusColumn, new StatusDelegate(m_view));
    static const std::pair<int, int> widths[] = {{AssetBrowserModel::NameColumn, 120}, {AssetBrowserModel::TypeColumn, 80},
                                                 {AssetBrowserModel::StatusColumn, 175}, {AssetBrowserModel::HolderColumn, 70},
                                                 {AssetBrowserModel::ChangelistColumn, 80}, {AssetBrowserModel::RevisionColumn, 70},
                                                 {AssetBrowserModel::FilesColumn, 40}};
    for (const auto& [column, width] : widths)
        m_view->header()->resizeSection(column, width);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_search);
    layout->addWidget(m_view, 1);
    connect(m_view->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &AssetBrowser::currentAssetChanged);
    connect(m_proxy, &QAbstractItemModel::modelReset, this, &AssetBrowser::currentAssetChanged);
    connect(&m_model, &AssetBrowserModel::statusRefreshed, this, &AssetBrowser::widenStatusColumn);
}

void AssetBrowser::focusSearch()
{
    m_search->setFocus(Qt::ShortcutFocusReason);
    m_search->selectAll();
}

// The badges of the rows in view fit; a column the user made wider stays so.
void AssetBrowser::widenStatusColumn()
{
    QHeaderView* header = m_view->header();
    // QTreeView keeps its override protected; through the base it is public: the rows in view.
    const auto* view = static_cast<const QAbstractItemView*>(m_view);
    const int wanted = view->sizeHintForColumn(AssetBrowserModel::StatusColumn);
    if (wanted > header->sectionSize(AssetBrowserModel::StatusColumn))
        header->resizeSection(AssetBrowserModel::StatusColumn, wanted);
}

KELHandle<kel4::IDbObject> AssetBrowser::currentAsset() const
{
    const QModelIndex current = m_view->currentIndex();
    return current.isValid() ? m_model.assetAt(m_proxy->mapToSource(current).row()) : KELHandle<kel4::IDbObject>();
}

void AssetBrowser::selectAsset(const KELHandleBase& asset)
{
    const int row = m_model.rowOf(asset);
    if (row < 0)
        return;
    const QModelIndex index = m_proxy->mapFromSource(m_model.index(row, AssetBrowserModel::NameColumn));
    m_view->setCurrentIndex(index);
    m_view->scrollTo(index);
}

}  // namespace hbrc::studio
