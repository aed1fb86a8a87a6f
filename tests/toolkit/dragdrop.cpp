// QListViewDragDrop: files dragged from a list onto changelists in a tree, where the application's
// decider moves them; drops it refuses and drags from elsewhere change nothing.
#include "toolkittest.h"

#include <qtextention/qlistviewdragdrop.h>

namespace {

QStringList Texts(const QStandardItemModel& model, const QModelIndex& parent = {})
{
    QStringList texts;
    for (int row = 0; row < model.rowCount(parent); ++row)
        texts << model.index(row, 0, parent).data().toString();
    return texts;
}

// Sends a drag's enter, move and drop to a view's viewport at an item; true when the drop was accepted.
bool DropOn(QAbstractItemView& view, const QModelIndex& at, const QMimeData& mime, bool* hoverAccepted = nullptr)
{
    const QPointF position = at.isValid() ? QPointF(view.visualRect(at).center()) : QPointF(5, view.viewport()->height() - 5);
    QDragEnterEvent enter(position.toPoint(), Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view.viewport(), &enter);
    QDragMoveEvent move(position.toPoint(), Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view.viewport(), &move);
    if (hoverAccepted)
        *hoverAccepted = move.isAccepted();
    QDropEvent drop(position, Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view.viewport(), &drop);
    return drop.isAccepted();
}

}  // namespace

TEST(QListViewDragDrop, TheDeciderMovesDroppedFilesOntoAChangelistAndRefusesOtherPlaces)
{
    QStandardItemModel opened;
    for (const char* file : {"rock.kel", "rock.bin", "sky.kel"})
        opened.appendRow(new QStandardItem(QString::fromLatin1(file)));
    QStandardItemModel changelists;
    auto* moss = new QStandardItem(QStringLiteral("Moss"));
    moss->appendRow(new QStandardItem(QStringLiteral("tree.kel")));
    changelists.appendRow(moss);

    QWidget window;
    auto* list = new QListView(&window);
    auto* tree = new QTreeView(&window);
    list->setModel(&opened);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    tree->setModel(&changelists);
    tree->expandAll();
    list->setGeometry(0, 0, 200, 300);
    tree->setGeometry(200, 0, 200, 300);
    window.resize(400, 300);
    window.show();

    QList<QListViewDragDrop::Drop> asked;
    QListViewDragDrop dragDrop([&](const QListViewDragDrop::Drop& drop) {
        asked << drop;
        // Files go onto a changelist, never onto a file.
        const bool onChangelist = drop.targetIndex.isValid() && !drop.targetIndex.parent().isValid();
        if (!onChangelist || drop.hovering)
            return onChangelist;
        for (const QPersistentModelIndex& item : drop.items)
            changelists.itemFromIndex(drop.targetIndex)->appendRow(new QStandardItem(item.data().toString()));
        for (auto item = drop.items.crbegin(); item != drop.items.crend(); ++item)
            opened.removeRow(item->row());
        return true;
    });
    dragDrop.addView(list);
    dragDrop.addView(tree);

    EXPECT_EQ(dragDrop.mimeData(list), nullptr) << "nothing selected, nothing to drag";
    list->selectionModel()->select(opened.index(2, 0), QItemSelectionModel::Select);
    list->selectionModel()->select(opened.index(0, 0), QItemSelectionModel::Select);
    std::unique_ptr<QMimeData> mime(dragDrop.mimeData(list));
    ASSERT_NE(mime, nullptr);
    ASSERT_TRUE(mime->hasFormat(QListViewDragDrop::mimeType()));

    bool hoverAccepted = true;
    EXPECT_FALSE(DropOn(*tree, changelists.index(0, 0, changelists.index(0, 0)), *mime, &hoverAccepted))
        << "onto a file";
    EXPECT_FALSE(hoverAccepted);
    EXPECT_FALSE(DropOn(*tree, {}, *mime)) << "onto empty space";
    EXPECT_EQ(Texts(opened), (QStringList{"rock.kel", "rock.bin", "sky.kel"}));

    mime.reset(dragDrop.mimeData(list));
    EXPECT_TRUE(DropOn(*tree, changelists.index(0, 0), *mime, &hoverAccepted));
    EXPECT_TRUE(hoverAccepted);
    EXPECT_EQ(Texts(changelists, changelists.index(0, 0)), (QStringList{"tree.kel", "rock.kel", "sky.kel"}))
        << "in view order, whatever the order of selection";
    EXPECT_EQ(Texts(opened), QStringList{"rock.bin"});
    ASSERT_FALSE(asked.isEmpty());
    EXPECT_EQ(asked.last().source, list);
    EXPECT_EQ(asked.last().target, tree);

    // Data from anywhere else is not the helper's: the decider is not asked.
    const qsizetype questions = asked.size();
    QMimeData text;
    text.setText(QStringLiteral("rock.bin"));
    EXPECT_FALSE(DropOn(*tree, changelists.index(0, 0), text));
    EXPECT_EQ(asked.size(), questions);
}
