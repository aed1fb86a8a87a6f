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

#include <optional>
#include <utility>

namespace {

enum Column { PathColumn = 0, ReadOnlyColumn = 1, ColumnCount = 3 };

constexpr int RowHeight = 18;

// One file's row. Only the path is kept up front; whether the file exists and can be written is
// asked of the file system when the view (or a caller) first needs it, so that listing many files
// costs no disk work for rows nobody looks at.
class FileRow final : public QTreeWidgetItem
{
public:
    static constexpr int Type = QTreeWidgetItem::UserType + 1;

    explicit FileRow(QString absolutePath) : QTreeWidgetItem(Type), m_path(std::move(absolutePath))
    {
        // Selectable but not user-checkable: the read-only box is shown, never edited.
        setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    }

    QVariant data(int column, int role) const override
    {
        if (column == PathColumn) {
            switch (role) {
            case Qt::DisplayRole:
            case Qt::EditRole:
                return m_path;
            case Qt::SizeHintRole:
                return QSize(0, RowHeight);
            case Qt::ForegroundRole:
                return fileState().exists ? QVariant() : QVariant(QBrush(Qt::darkGray, Qt::SolidPattern));
            case Qt::ToolTipRole:
                // The view elides long paths in the middle; the tooltip keeps the whole path and says
                // why a row is grey.
                return fileState().exists ? m_path : QFileListWidget::tr("%1\nThis file does not exist.").arg(m_path);
            default:
                break;
            }
        } else if (column == ReadOnlyColumn && role == Qt::CheckStateRole) {
            return fileState().writable ? Qt::Unchecked : Qt::Checked;
        }
        return QTreeWidgetItem::data(column, role);
    }

    bool operator<(const QTreeWidgetItem& other) const override
    {
        const int column = treeWidget() ? treeWidget()->sortColumn() : PathColumn;
        if (column == PathColumn && other.type() == Type)
            return m_path < static_cast<const FileRow&>(other).m_path;
        return QTreeWidgetItem::operator<(other);
    }

    // The next question asks the file system again.
    void forgetFileState() { m_state.reset(); }

private:
    struct FileState
    {
        bool exists = false;
        bool writable = false;
    };

    const FileState& fileState() const
    {
        if (!m_state) {
            const QFileInfo info(m_path);
            m_state = FileState{info.exists(), info.isWritable()};
        }
        return *m_state;
    }

    QString m_path;
    mutable std::optional<FileState> m_state;
};

QTreeWidgetItem* createFileItem(const QString& path)
{
    return new FileRow(QFileInfo(path).absoluteFilePath());  // no disk access: the path is only made absolute
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
    // The read-only box has one width for every row: measure only the rows on screen, which
    // leaves the files of the others unasked.
    columns->setResizeContentsPrecision(0);
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
    // With sorting on, the view would place the rows one by one; off during the batch, it sorts
    // them once when it is switched back on.
    const bool sorted = isSortingEnabled();
    setSortingEnabled(false);
    addTopLevelItems(items);
    setSortingEnabled(sorted);
}

void QFileListWidget::RefreshFileStates()
{
    const int rows = topLevelItemCount();
    for (int row = 0; row < rows; ++row) {
        if (QTreeWidgetItem* item = topLevelItem(row); item->type() == FileRow::Type)
            static_cast<FileRow*>(item)->forgetFileState();
    }
    if (rows > 0)
        emit model()->dataChanged(model()->index(0, PathColumn), model()->index(rows - 1, ReadOnlyColumn));
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
