// Tree walking, tree state and branch painting on real QTreeWidget items and QImages.
#include <qtextention/qtreewidgetitemit.h>

#include <QImage>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace {

struct SmallTree {
    QTreeWidgetItem *a, *b, *c, *d, *e, *f;
};

// A
// +- B
// |  +- C
// |  +- D
// +- E
//    +- (the last leaf: F unless named otherwise)
SmallTree addSmallTree(QTreeWidget& tree, const QString& lastLeaf = QStringLiteral("F"))
{
    auto* a = new QTreeWidgetItem(&tree, {QStringLiteral("A")});
    auto* b = new QTreeWidgetItem(a, {QStringLiteral("B")});
    auto* e = new QTreeWidgetItem(a, {QStringLiteral("E")});
    return {a, b, new QTreeWidgetItem(b, {QStringLiteral("C")}), new QTreeWidgetItem(b, {QStringLiteral("D")}), e,
            new QTreeWidgetItem(e, {lastLeaf})};
}

QString walk(QTreeWidgetItem* root, QTreeWidgetItemIt::Strategy strategy)
{
    QString order;
    for (QTreeWidgetItemIt it(root, strategy); *it; ++it)
        order += (*it)->text(0);
    return order;
}

TEST(QTreeWidgetItemIt, VisitsTheRootFirstThenItsSubtreeInTheChosenOrderWithChildrenAddedOnTheWay)
{
    QTreeWidget tree;
    const SmallTree t = addSmallTree(tree);
    EXPECT_EQ(walk(t.a, QTreeWidgetItemIt::DepthFirst), QStringLiteral("ABCDEF"));
    EXPECT_EQ(walk(t.a, QTreeWidgetItemIt::BreadthFirst), QStringLiteral("ABECDF"));
    EXPECT_EQ(walk(t.b, QTreeWidgetItemIt::BreadthFirst), QStringLiteral("BCD"));
    EXPECT_EQ(walk(t.f, QTreeWidgetItemIt::DepthFirst), QStringLiteral("F"));
    EXPECT_EQ(walk(nullptr, QTreeWidgetItemIt::DepthFirst), QString());
    QTreeWidgetItemIt end(t.f);  // depth-first by default; the end stays the end
    ++end;
    ++end;
    EXPECT_EQ(*end, nullptr);

    QString order;  // children added to the current item before stepping are visited
    for (QTreeWidgetItemIt it(t.e); *it; ++it) {
        order += (*it)->text(0);
        if (*it == t.f)
            new QTreeWidgetItem(t.f, {QStringLiteral("G")});
    }
    EXPECT_EQ(order, QStringLiteral("EFG"));
}

TEST(QTreeWidgetState, SurvivesARebuildOfTheSameTree)
{
    QTreeWidget tree;
    const SmallTree before = addSmallTree(tree);
    before.a->setExpanded(true);
    before.e->setExpanded(true);
    before.d->setSelected(true);
    before.f->setSelected(true);
    tree.setCurrentItem(before.c, 0, QItemSelectionModel::NoUpdate);
    const QTreeWidgetState state = SaveTreeState(&tree);

    tree.clear();
    const SmallTree after = addSmallTree(tree, QStringLiteral("new"));
    after.b->setExpanded(true);  // not expanded when saved: restoring collapses it
    RestoreTreeState(&tree, state);
    EXPECT_TRUE(after.a->isExpanded());
    EXPECT_TRUE(after.e->isExpanded());
    EXPECT_FALSE(after.b->isExpanded());
    EXPECT_EQ(tree.selectedItems(), QList<QTreeWidgetItem*>{after.d});  // F is gone, "new" was never selected
    EXPECT_EQ(tree.currentItem(), after.c);
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
