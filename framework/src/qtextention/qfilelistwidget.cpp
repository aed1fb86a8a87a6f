#include <qtextention/qfilelistwidget.h>

#include <qtextention/fileexplorer.h>
#include <qtextention/guards.h>

#include <QApplication>
#include <QBrush>
#include <QClipboard>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>

namespace {

enum Column { PathColumn = 0, ReadOnlyColumn = 1, ColumnCount = 3 };

constexpr int RowHeight = 18;

QTreeWidgetItem* createFileItem(const QString& path)
{
    const QFileInfo info(path);
    auto* item = new QTreeWidgetItem;
    // Selectable but not user-checkable: the read-only box is shown, never edited.
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    item->setText(PathColumn, info.absoluteFilePath());
    item->setSizeHint(PathColumn, QSize(0, RowHeight));
    // The view elides long paths in the middle; the tooltip keeps the whole path and says why a
    // row is grey.
    if (!info.exists()) {
        item->setForeground(PathColumn, QBrush(Qt::darkGray, Qt::SolidPattern));
        item->setToolTip(PathColumn,
                         QFileListWidget::tr("%1\nThis file does not exist.").arg(info.absoluteFilePath()));
    } else {
        item->setToolTip(PathColumn, info.absoluteFilePath());
    }
    item->setCheckState(ReadOnlyColumn, info.isWritable() ? Qt::Unchecked : Qt::Checked);
    return item;
}

}  // namespace

QFileListWidget::QFileListWidget(const QStringList& files, QWidget* parent) : QTreeWidget(parent)
{
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setAlternatingRowColors(true);
    setSortingEnabled(true);
    setColumnCount(ColumnCount);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    // Deep paths in one folder differ at their ends: keep both ends and cut the middle.
    setTextElideMode(Qt::ElideMiddle);
    // A flat list: no branch lines, files in ascending order until the user clicks a header
    // (Qt's own default indicator would sort them descending).
    setRootIsDecorated(false);
    sortByColumn(PathColumn, Qt::AscendingOrder);
    // Every row is RowHeight high, so the view may skip measuring rows one by one.
    setUniformRowHeights(true);

    setStyleSheet(QStringLiteral("QTreeView {selection-background-color: qlineargradient(x1: 0.5, y1: 0.25 x2: "
                                 "0.5, y2: 0.75, stop: 0 #444444, stop: 0.7 #555555 );}"));

    // The third column is kept without a title (Qt would number it "3").
    setHeaderLabels({tr("File"), tr("Read Only"), QString()});

    QHeaderView* columns = header();
    columns->setDefaultAlignment(Qt::AlignLeft);
    columns->setSectionResizeMode(PathColumn, QHeaderView::Stretch);
    columns->setSectionResizeMode(ReadOnlyColumn, QHeaderView::ResizeToContents);
    columns->setStretchLastSection(false);

    AddFiles(files);
}

void QFileListWidget::AddFiles(const QStringList& files)
{
    if (files.isEmpty())
        return;
    QList<QTreeWidgetItem*> items;
    items.reserve(files.size());
    for (const QString& path : files)
        items.append(createFileItem(path));
    addTopLevelItems(items);
}

void QFileListWidget::AddFile(const QString& path)
{
    addTopLevelItem(createFileItem(path));
}

QStringList QFileListWidget::selectedPaths() const
{
    QStringList paths;
    const QList<QTreeWidgetItem*> items = selectedItems();
    for (const QTreeWidgetItem* item : items)
        paths.append(item->text(PathColumn));
    return paths;
}

void QFileListWidget::ShowFiles()
{
    ShowFilesInExplorer(selectedPaths());
}

void QFileListWidget::CopyToClipboard()
{
    QString text;
    const QStringList paths = selectedPaths();
    for (const QString& path : paths)
        text += path + QLatin1Char('\n');
    QApplication::clipboard()->setText(text, QClipboard::Clipboard);
}

void QFileListWidget::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_C && event->modifiers() == Qt::ControlModifier) {
        event->accept();
        CopyToClipboard();
        return;
    }
    QTreeWidget::keyPressEvent(event);
}

void QFileListWidget::mousePressEvent(QMouseEvent* event)
{
    QTreeWidget::mousePressEvent(event);
    if (event->button() != Qt::RightButton)
        return;
    QMenu menu(this);
    ConnectAssert(menu.addAction(tr("Show in Explorer")), SIGNAL(triggered()), this, SLOT(ShowFiles()));
    ConnectAssert(menu.addAction(tr("Copy to clipboard")), SIGNAL(triggered()), this,
                  SLOT(CopyToClipboard()));
    menu.exec(event->globalPosition().toPoint());
}
