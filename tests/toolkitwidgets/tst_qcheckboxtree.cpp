// QCheckBoxTree: one checkedStateChanged per user action carrying every item set, ancestors kept in
// step with their descendants, clicks propagating like setChecked, colours following the state.
#include "checkindicator.h"

#include <qtextention/qcheckboxtree.h>

#include <QTest>

#include <gtest/gtest.h>

#include <map>
#include <sstream>

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
struct TreeFixture {
    TreeFixture()
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
    void preset(const Names& checked)
    {
        const QSignalBlocker blocker(tree);
        for (const std::string& name : checked)
            tree.setCheckedState(items.at(name), Qt::Checked);
    }
    Names checkedNames()
    {
        Names names;
        for (const auto& [name, item] : items) {
            if (tree.isChecked(item))
                names.push_back(name);
        }
        return names;
    }
    QColor textColour(const std::string& name) { return items.at(name)->foreground(0).color(); }

    QCheckBoxTree tree;
    std::map<std::string, QTreeWidgetItem*> items;
    std::vector<Emission> emissions;
};

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
        TreeFixture f;
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
    TreeFixture f;
    {
        const QSignalBlocker blocker(f.tree);
        f.tree.setCheckedState(f.items["C1"], Qt::PartiallyChecked);
    }
    ASSERT_EQ(f.items["C1"]->checkState(0), Qt::PartiallyChecked);
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

TEST(QCheckBoxTree, ClickOnTheCheckBoxPropagatesLikeSetChecked)
{
    TreeFixture f;
    f.tree.expandAll();
    f.tree.resize(300, 300);
    f.tree.show();
    const QPoint box = checkIndicatorRect(&f.tree, f.items["C1"]).center();
    for (const bool checked : {true, false}) {
        f.emissions.clear();
        QTest::mouseClick(f.tree.viewport(), Qt::LeftButton, {}, box);
        EXPECT_EQ(f.emissions, (std::vector<Emission>{{checked, {"C1", "C", "B", "A"}}})) << checked;
    }
    EXPECT_TRUE(f.checkedNames().empty());
}

TEST(QCheckBoxTree, TextColourFollowsTheCheckStateAndPrintShowsEachItemIndentedWithItsState)
{
    TreeFixture f;
    const QColor text = f.tree.palette().color(QPalette::Active, QPalette::Text);
    EXPECT_EQ(f.textColour("E"), QColor(Qt::darkGray));
    f.tree.setChecked(f.items["E"], true);
    EXPECT_EQ(f.textColour("E"), text);

    f.tree.setItemCustomColor(f.items["D"], QColor(255, 0, 0));
    EXPECT_EQ(f.textColour("D"), QColor(Qt::red)) << "the colour shows at once, even unchecked";
    EXPECT_EQ(f.emissions.size(), 1u) << "only ticking E was reported: a colour is no check change";
    f.tree.setChecked(f.items["D"], true);
    EXPECT_EQ(f.textColour("D"), QColor(Qt::red));
    f.tree.setChecked(f.items["D"], false);
    EXPECT_EQ(f.textColour("D"), QColor(Qt::darkGray));
    f.tree.setChecked(f.items["D"], true);
    EXPECT_EQ(f.textColour("D"), QColor(Qt::red));
    EXPECT_EQ(f.textColour("B"), text) << "ancestors checked on the way take the text colour";

    std::ostringstream out;
    f.tree.print(out);
    EXPECT_EQ(out.str(), "[x] A\n  [x] B\n    [ ] C\n      [ ] C1\n      [ ] C2\n    [x] D (#ff0000)\n[x] E\n");
}

}  // namespace
