// QCheckBoxTreeCombo and QCheckBoxList: the tree combo's single row is its tree and relays its
// changes, the list's rows are check boxes reporting clicks, and neither pop-up closes on ticking.
#include "toolkittest.h"

#include <qtextention/qcheckboxlist.h>
#include <qtextention/qcheckboxtree.h>
#include <qtextention/qcheckboxtreecombo.h>

namespace {

// Opens the pop-up for the lifetime of the object, as the user sees the rows when ticking them.
struct OpenPopup {
    explicit OpenPopup(QComboBox& combo) : combo(combo)
    {
        combo.show();
        combo.showPopup();
    }
    ~OpenPopup() { combo.hidePopup(); }
    QComboBox& combo;
};

using Relayed = std::vector<std::pair<bool, QCheckBoxTree::ItemList>>;  // checked, the items carried

struct TreeComboFixture {
    TreeComboFixture()
    {
        QObject::connect(&combo, &QCheckBoxTreeCombo::checkedStateChanged,
                         [this](bool checked, const QCheckBoxTree::ItemList& items) { relayed.push_back({checked, items}); });
    }

    QCheckBoxTreeCombo combo;
    QTreeWidgetItem* assets = combo.addItem("Assets", true);
    QTreeWidgetItem* models = combo.addItem("Models", false, assets);
    QTreeWidgetItem* textures = combo.addItem("Textures", true, assets);
    Relayed relayed;
};

// The first top-level item names the combo's only row, whose editor is the tree; its changes are
// relayed once each, and a tick in the open pop-up propagates like setChecked and keeps it open.
TEST(QCheckBoxTreeCombo, TheOnlyRowIsTheTreeWhoseChangesAreRelayedOnceAndTickingKeepsThePopupOpen)
{
    TreeComboFixture f;
    f.combo.addItem("Scenes", false);
    EXPECT_EQ(f.combo.count(), 1);
    EXPECT_EQ(f.combo.itemText(0), QStringLiteral("Assets"));
    QCheckBoxTree* tree = f.combo.getRoot("ignored");
    ASSERT_NE(tree, nullptr);
    EXPECT_EQ(f.combo.view()->indexWidget(f.combo.model()->index(0, 0)), tree);
    std::ostringstream dump;
    f.combo.print(dump);
    EXPECT_EQ(dump.str(), "[x] Assets\n  [ ] Models\n  [x] Textures\n[ ] Scenes\n");

    f.combo.setChecked(f.textures, false);
    f.combo.setChecked(f.models, true);
    EXPECT_EQ(f.relayed, (Relayed{{false, {f.textures, f.assets}}, {true, {f.models, f.assets}}}));

    f.relayed.clear();
    const OpenPopup popup(f.combo);
    ASSERT_TRUE(f.combo.view()->isVisible());
    EXPECT_EQ(f.combo.view()->height(), tree->height());
    EXPECT_GT(tree->height(), 3 * tree->visualItemRect(f.assets).height())
        << "the row is tall enough for the tree, not one line of it";
    tree->expandAll();
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, checkIndicatorRect(tree, f.models).center());
    EXPECT_EQ(f.relayed, (Relayed{{false, {f.models, f.assets}}})) << "a click propagates like setChecked";
    EXPECT_TRUE(f.combo.view()->isVisible());
}

TEST(QCheckBoxTreeCombo, ClosedComboShowsTheDisplayText)
{
    TreeComboFixture f;
    f.combo.resize(160, 30);
    const auto paintedWith = [&](const QString& text) {
        f.combo.setDisplayText(text);
        return f.combo.grab().toImage();
    };
    const QImage filter = paintedWith("Filter");
    EXPECT_NE(filter, paintedWith("Everything"));
    EXPECT_EQ(paintedWith("Filter"), filter);
    f.combo.setItemText(0, "Renamed");
    EXPECT_EQ(paintedWith("Filter"), filter) << "the row's own text is not shown";
}

struct ListFixture {
    ListFixture()
    {
        list.addItems({"Models", "Textures", "Scenes"});
        QObject::connect(&list, &QCheckBoxList::checked, [this](int row, bool checked) { reported.push_back({row, checked}); });
    }
    QCheckBox* box(int row) const
    {
        return qobject_cast<QCheckBox*>(list.view()->indexWidget(list.model()->index(row, 0)));
    }

    QCheckBoxList list;
    std::vector<std::pair<int, bool>> reported;
};

// Every row, also one added later, is a tristate check box with the row's text; a click on one in
// the open pop-up stores checked or unchecked (a partial state becomes checked) and reports the row,
// and neither it nor a click into a row's place in the view closes the pop-up.
TEST(QCheckBoxList, ClickingARowStoresCheckedOrUncheckedReportsTheRowAndLeavesThePopupOpen)
{
    const std::tuple<const char*, Qt::CheckState, Qt::CheckState, bool> rows[] = {  // before, after one click, reported
        {"unchecked becomes checked", Qt::Unchecked, Qt::Checked, true},
        {"checked becomes unchecked", Qt::Checked, Qt::Unchecked, false},
        {"partial is stored as checked", Qt::PartiallyChecked, Qt::Checked, true},
    };
    for (const auto& [name, before, stored, reported] : rows) {
        ListFixture f;
        f.list.addItem("Added later");
        for (int row = 0; row < f.list.count(); ++row) {
            ASSERT_NE(f.box(row), nullptr) << row;
            EXPECT_EQ(f.box(row)->text(), f.list.itemText(row));
            EXPECT_TRUE(f.box(row)->isTristate());
        }
        f.list.setChecked(3, before);
        ASSERT_EQ(f.box(3)->checkState(), before) << name << ": the box shows the stored state";
        ASSERT_TRUE(f.reported.empty()) << name << ": setting a state is not reported";

        const OpenPopup popup(f.list);
        QTest::mouseClick(f.box(3), Qt::LeftButton);
        EXPECT_EQ(f.list.checkState(3), stored) << name;
        EXPECT_EQ(f.box(3)->checkState(), stored) << name;
        EXPECT_EQ(f.reported, (std::vector<std::pair<int, bool>>{{3, reported}})) << name;
        EXPECT_EQ(f.list.checkState(0), Qt::Unchecked) << name;
        const QRect first = f.list.view()->visualRect(f.list.model()->index(0, f.list.modelColumn()));
        QTest::mouseClick(f.list.view()->viewport(), Qt::LeftButton, {}, QPoint(first.right() - 1, first.center().y()));
        EXPECT_TRUE(f.list.view()->isVisible()) << name;
    }
}

}  // namespace
