// Tree walking, tree state and branch painting on real QTreeWidget items and QImages, and the
// check-box tree: one checkedStateChanged per user action carrying every item set, ancestors kept in
// step with their descendants, colours following the state (clicks: in the combo's tree).
#include "toolkittest.h"

#include <qtextention/qcheckboxtree.h>
#include <qtextention/qtreewidgetitemit.h>

namespace {

using Names = std::vector<std::string>;

using Emission = std::pair<bool, Names>;  // checked, the items carried

// A
// └ B
//   ├ C
//   │ ├ C1
//   │ └ C2
//   └ D
// E
struct CheckTree {
    CheckTree()
    {
        const std::pair<const char*, const char*> itemAndParent[] = {
            {"A", nullptr}, {"B", "A"}, {"C", "B"}, {"C1", "C"}, {"C2", "C"}, {"D", "B"}, {"E", nullptr}};
        for (const auto& [name, parent] : itemAndParent)
            items[name] = tree.addItem(name, false, parent ? items.at(parent) : nullptr);
        QObject::connect(&tree, &QCheckBoxTree::checkedStateChanged, [this](bool checked, const auto& changed) {
            Emission e{checked, {}};
            for (const QTreeWidgetItem* item : changed)
                e.second.push_back(item->text(0).toStdString());
            emissions.push_back(e);
        });
    }
    // Sets states as a starting point; blocked, since any data change in column 0 acts like a click.
    void preset(const Names& names, Qt::CheckState state = Qt::Checked)
    {
        const QSignalBlocker blocker(tree);
        for (const std::string& name : names)
            tree.setCheckedState(items.at(name), state);
    }
    Names checkedNames()
    {
        Names names;
        for (const auto& [name, item] : items)
            names.insert(names.end(), tree.isChecked(item) ? 1 : 0, name);
        return names;
    }
    QColor textColour(const std::string& name) { return items.at(name)->foreground(0).color(); }

    QCheckBoxTree tree;
    std::map<std::string, QTreeWidgetItem*> items;
    std::vector<Emission> emissions;
};

// The names met walking from root, space-separated.
QString walk(QTreeWidgetItem* root, QTreeWidgetItemIt::Strategy strategy = QTreeWidgetItemIt::DepthFirst)
{
    QStringList order;
    for (QTreeWidgetItemIt it(root, strategy); *it; ++it)
        order << (*it)->text(0);
    return order.join(' ');
}

TEST(QTreeWidgetItemIt, VisitsTheRootFirstThenItsSubtreeInTheChosenOrderWithChildrenAddedOnTheWay)
{
    CheckTree f;
    EXPECT_EQ(walk(f.items["A"]), "A B C C1 C2 D");
    EXPECT_EQ(walk(f.items["A"], QTreeWidgetItemIt::BreadthFirst), "A B C D C1 C2");
    EXPECT_EQ(walk(f.items["C"], QTreeWidgetItemIt::BreadthFirst), "C C1 C2");
    EXPECT_EQ(walk(f.items["D"]), "D");
    EXPECT_EQ(walk(nullptr), "");
    QTreeWidgetItemIt end(f.items["D"]);  // the end stays the end
    ++end;
    ++end;
    EXPECT_EQ(*end, nullptr);

    QString order;  // children added to the current item before stepping are visited
    for (QTreeWidgetItemIt it(f.items["C"]); *it; ++it) {
        order += (*it)->text(0);
        if (*it == f.items["C2"])
            new QTreeWidgetItem(f.items["C2"], {QStringLiteral("G")});
    }
    EXPECT_EQ(order, "CC1C2G");
}

TEST(QTreeWidgetState, SurvivesARebuildOfTheSameTree)
{
    CheckTree before, after;
    before.items["A"]->setExpanded(true);
    before.items["C"]->setExpanded(true);
    before.items["D"]->setSelected(true);
    before.items["C2"]->setSelected(true);
    before.tree.setCurrentItem(before.items["C1"], 0, QItemSelectionModel::NoUpdate);
    after.items["C2"]->setText(0, QStringLiteral("new"));
    after.items["B"]->setExpanded(true);  // not expanded when saved: restoring collapses it
    RestoreTreeState(&after.tree, SaveTreeState(&before.tree));
    EXPECT_TRUE(after.items["A"]->isExpanded());
    EXPECT_TRUE(after.items["C"]->isExpanded());
    EXPECT_FALSE(after.items["B"]->isExpanded());
    EXPECT_EQ(after.tree.selectedItems(), QList<QTreeWidgetItem*>{after.items["D"]});  // C2 is gone, "new" never selected
    EXPECT_EQ(after.tree.currentItem(), after.items["C1"]);
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
    const QColor white(Qt::white), line(Qt::blue), red(Qt::red);
    const std::tuple<const char*, QStyle::State, QPoint, QColor> rows[] = {  // name, state, pixel, colour
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
    for (const auto& [name, state, pixel, expected] : rows)
        EXPECT_EQ(paintBranch(state, line).pixelColor(pixel), expected) << name;

    const QImage noLines = paintBranch(S::State_Item | S::State_Sibling | S::State_Children, QColor());
    EXPECT_EQ(noLines.pixelColor(9, 0), white);
    EXPECT_EQ(noLines.pixelColor(9, 9), red);
}

TEST(QCheckBoxTree, SetCheckedEmitsOnceWithEveryItemItSet)
{
    const struct {
        const char* name;
        Names before;
        const char* target;
        bool checked;
        bool keepParents;
        Names reported;  // the one emission's items, in order
        Names after;     // every checked item afterwards, by name
    } rows[] = {
        {"tick under two unchecked ancestors", {}, "C", true, true, {"C", "C1", "C2", "B", "A"},
         {"A", "B", "C", "C1", "C2"}},
        {"untick last checked child unchecks ancestors", {"A", "B", "C", "C1", "C2"}, "C", false, true,
         {"C", "C1", "C2", "B", "A"}, {}},
        {"checked sibling keeps parent", {"A", "B", "C", "C1", "C2", "D"}, "C", false, true, {"C", "C1", "C2"},
         {"A", "B", "D"}},
        {"already checked item is re-applied and reported", {"A", "B", "C", "C1", "C2"}, "C2", true, true, {"C2"},
         {"A", "B", "C", "C1", "C2"}},
        {"only changed descendants are reported", {"C1"}, "C", true, true, {"C", "C2", "B", "A"},
         {"A", "B", "C", "C1", "C2"}},
        {"keep-parents off leaves ancestors alone", {}, "C", true, false, {"C", "C1", "C2"}, {"C", "C1", "C2"}},
        {"keep-parents off untick leaves ancestors checked", {"A", "B", "C", "C1", "C2"}, "C", false, false,
         {"C", "C1", "C2"}, {"A", "B"}},
    };
    for (const auto& c : rows) {
        CheckTree f;
        f.preset(c.before);
        f.tree.SetKeepParentHierarchyUpdated(c.keepParents);
        f.tree.setChecked(f.items.at(c.target), c.checked);
        EXPECT_EQ(f.emissions, (std::vector<Emission>{{c.checked, c.reported}})) << c.name;
        EXPECT_EQ(f.checkedNames(), c.after) << c.name;
        for (const std::string& name : c.after)
            EXPECT_EQ(f.items.at(name)->checkState(0), Qt::Checked) << c.name << ": " << name << " partially checked";
    }
}

TEST(QCheckBoxTree, PartiallyCheckedReadsAsCheckedAndAddingItemsChecksTheSubtreeSilently)
{
    CheckTree f;
    f.preset({"C1"}, Qt::PartiallyChecked);
    EXPECT_TRUE(f.tree.isChecked(f.items["C1"]));
    EXPECT_TRUE(f.tree.hasChildEnabled(f.items["A"]));
    EXPECT_FALSE(f.tree.hasChildEnabled(f.items["C1"])) << "a leaf has no children to be checked";
    EXPECT_FALSE(f.tree.hasChildEnabled(nullptr));

    QTreeWidgetItem* branch = new QTreeWidgetItem(QStringList{"F"});
    branch->addChild(new QTreeWidgetItem(QStringList{"F1"}));
    f.tree.addItem(branch, true, f.items["E"]);
    EXPECT_TRUE(f.emissions.empty());
    EXPECT_TRUE(f.tree.isChecked(branch));
    EXPECT_TRUE(f.tree.isChecked(branch->child(0)));
    EXPECT_FALSE(f.tree.isChecked(f.items["E"])) << "adding does not update ancestors";
}

TEST(QCheckBoxTree, TextColourFollowsTheCheckStateAndPrintShowsEachItemIndentedWithItsState)
{
    CheckTree f;
    const QColor text = f.tree.palette().color(QPalette::Active, QPalette::Text);
    EXPECT_EQ(f.textColour("E"), QColor(Qt::darkGray));
    f.tree.setChecked(f.items["E"], true);
    EXPECT_EQ(f.textColour("E"), text);

    f.tree.setItemCustomColor(f.items["D"], QColor(255, 0, 0));
    EXPECT_EQ(f.textColour("D"), QColor(Qt::red)) << "the colour shows at once, even unchecked";
    EXPECT_EQ(f.emissions.size(), 1u) << "only ticking E was reported: a colour is no check change";
    f.tree.setChecked(f.items["D"], false);
    EXPECT_EQ(f.textColour("D"), QColor(Qt::darkGray));
    f.tree.setChecked(f.items["D"], true);
    EXPECT_EQ(f.textColour("D"), QColor(Qt::red)) << "the colour comes back with the tick";
    EXPECT_EQ(f.textColour("B"), text) << "ancestors checked on the way take the text colour";

    std::ostringstream out;
    f.tree.print(out);
    EXPECT_EQ(out.str(), "[x] A\n  [x] B\n    [ ] C\n      [ ] C1\n      [ ] C2\n    [x] D (#ff0000)\n[x] E\n");
}

}  // namespace
