// Tree walking, tree state and branch painting on real QTreeWidget items and QImages.
#include <qtextention/qtreewidgetitemit.h>

#include <QImage>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace {

// A
// +- B
// |  +- C
// |  +- D
// +- E
//    +- F
class SmallTree : public ::testing::Test
{
protected:
    QTreeWidget tree;
    QTreeWidgetItem* a = new QTreeWidgetItem(&tree, {QStringLiteral("A")});
    QTreeWidgetItem* b = new QTreeWidgetItem(a, {QStringLiteral("B")});
    QTreeWidgetItem* c = new QTreeWidgetItem(b, {QStringLiteral("C")});
    QTreeWidgetItem* d = new QTreeWidgetItem(b, {QStringLiteral("D")});
    QTreeWidgetItem* e = new QTreeWidgetItem(a, {QStringLiteral("E")});
    QTreeWidgetItem* f = new QTreeWidgetItem(e, {QStringLiteral("F")});

    static QString walk(QTreeWidgetItem* root, QTreeWidgetItemIt::Strategy strategy)
    {
        QString order;
        for (QTreeWidgetItemIt it(root, strategy); *it; ++it)
            order += (*it)->text(0);
        return order;
    }
};

TEST_F(SmallTree, VisitsTheRootFirstThenItsSubtreeInTheChosenOrderWithChildrenAddedOnTheWay)
{
    EXPECT_EQ(walk(a, QTreeWidgetItemIt::DepthFirst), QStringLiteral("ABCDEF"));
    EXPECT_EQ(walk(a, QTreeWidgetItemIt::BreadthFirst), QStringLiteral("ABECDF"));
    EXPECT_EQ(walk(b, QTreeWidgetItemIt::BreadthFirst), QStringLiteral("BCD"));
    EXPECT_EQ(walk(f, QTreeWidgetItemIt::DepthFirst), QStringLiteral("F"));
    EXPECT_EQ(walk(nullptr, QTreeWidgetItemIt::DepthFirst), QString());
    QTreeWidgetItemIt it(f);  // depth-first by default; the end stays the end
    ++it;
    ++it;
    EXPECT_EQ(*it, nullptr);

    QString order;  // children added to the current item before stepping are visited
    for (QTreeWidgetItemIt it(e); *it; ++it) {
        order += (*it)->text(0);
        if (*it == f)
            new QTreeWidgetItem(f, {QStringLiteral("G")});
    }
    EXPECT_EQ(order, QStringLiteral("EFG"));
}

TEST_F(SmallTree, StateSurvivesARebuildOfTheSameTree)
{
    a->setExpanded(true);
    e->setExpanded(true);
    d->setSelected(true);
    f->setSelected(true);
    tree.setCurrentItem(c, 0, QItemSelectionModel::NoUpdate);
    const QTreeWidgetState state = SaveTreeState(&tree);

    tree.clear();
    auto* a2 = new QTreeWidgetItem(&tree, {QStringLiteral("A")});
    auto* b2 = new QTreeWidgetItem(a2, {QStringLiteral("B")});
    auto* c2 = new QTreeWidgetItem(b2, {QStringLiteral("C")});
    auto* d2 = new QTreeWidgetItem(b2, {QStringLiteral("D")});
    auto* e2 = new QTreeWidgetItem(a2, {QStringLiteral("E")});
    auto* added = new QTreeWidgetItem(e2, {QStringLiteral("new")});
    b2->setExpanded(true);  // not expanded when saved: restoring collapses it
    RestoreTreeState(&tree, state);

    EXPECT_TRUE(a2->isExpanded());
    EXPECT_TRUE(e2->isExpanded());
    EXPECT_FALSE(b2->isExpanded());
    EXPECT_EQ(tree.selectedItems(), QList<QTreeWidgetItem*>{d2});  // F is gone, "new" was never selected
    EXPECT_FALSE(added->isSelected());
    EXPECT_EQ(tree.currentItem(), c2);
}

// Paints one 20x20 branch cell (indicator at 5..13, middle 9,9) on white.
QImage paintBranch(QStyle::State state, const QColor& lineColor)
{
    QImage image(20, 20, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QStyleOption option;
    option.rect = image.rect();
    option.state = state;
    painter.setPen(Qt::green);
    DrawTreeBranch(&painter, &option, lineColor, Qt::red);
    EXPECT_EQ(painter.pen().color(), QColor(Qt::green)) << "painter state changed";
    return image;
}

TEST(DrawTreeBranch, DrawsLinesAndAnIndicatorPointingTheWayTheBranchIsOpen)
{
    using S = QStyle;
    struct Row {
        const char* name;
        QStyle::State state;
        QPoint pixel;
        QColor expected;
    };
    const QColor white(Qt::white), line(Qt::blue), red(Qt::red);
    const Row rows[] = {
        {"closed: left edge of the right-pointing triangle", S::State_Children, {7, 12}, red},
        {"closed: no top edge", S::State_Children, {5, 7}, white},
        {"open: top edge of the down-pointing triangle", S::State_Children | S::State_Open, {5, 7}, red},
        {"open: no left edge", S::State_Children | S::State_Open, {7, 12}, white},
        {"item: line up to the previous sibling", S::State_Item, {9, 0}, line},
        {"item: line towards the item", S::State_Item, {19, 9}, line},
        {"last item: no line below", S::State_Item, {9, 19}, white},
        {"sibling: line down to the next one", S::State_Sibling, {9, 19}, line},
        {"sibling only: no line towards an item", S::State_Sibling, {19, 9}, white},
        {"indicator breaks the vertical line", S::State_Sibling | S::State_Children, {9, 14}, white},
        {"line resumes below the indicator", S::State_Sibling | S::State_Children, {9, 16}, line},
    };
    for (const Row& row : rows)
        EXPECT_EQ(paintBranch(row.state, line).pixelColor(row.pixel), row.expected) << row.name;

    const QImage noLines = paintBranch(S::State_Item | S::State_Sibling | S::State_Children, QColor());
    EXPECT_EQ(noLines.pixelColor(9, 0), white);
    EXPECT_EQ(noLines.pixelColor(9, 9), red);
}

}  // namespace
