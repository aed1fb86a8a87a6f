// LMRQLiveSearchWidget over a real QSortFilterProxyModel: typing filters with the chosen syntax
// and column, the options menu follows the model's columns, the cancel button follows the text.
#include "qtprinters.h"

#include <qtextention/lmrqlivesearchwidget.h>

#include <QActionGroup>
#include <QMenu>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

namespace {

struct SearchFixture {
    SearchFixture()
    {
        model.setHorizontalHeaderLabels({"Name", "Type"});
        const QList<QStringList> rows{{"Alpha.kel", "model"},
                                      {"alphabet", "texture"},
                                      {"Beta", "model"},
                                      {"gamma_ALPHA", "texture"},
                                      {"notes\\todo", "text"}};
        for (const QStringList& row : rows)
            model.appendRow({new QStandardItem(row.at(0)), new QStandardItem(row.at(1))});
        proxy.setSourceModel(&model);
        search.setSourceModel(&proxy);
        search.setAutoFilter();
    }

    QStringList visibleNames() const
    {
        QStringList names;
        for (int row = 0; row < proxy.rowCount(); ++row)
            names << proxy.index(row, 0).data().toString();
        return names;
    }
    QStringList menuTexts() const
    {
        QStringList texts;
        for (const QAction* action : search.optionsMenu()->actions())
            texts << (action->isSeparator() ? QStringLiteral("--") : action->text());
        return texts;
    }
    QAction* menuAction(const QString& text) const
    {
        for (QAction* action : search.optionsMenu()->actions()) {
            if (action->text() == text)
                return action;
        }
        return nullptr;
    }
    void choose(const QString& text) const
    {
        QAction* action = menuAction(text);
        ASSERT_NE(action, nullptr) << text.toStdString();
        action->trigger();
    }
    void type(const QString& text) { QTest::keyClicks(&search, text); }

    QStandardItemModel model;
    QSortFilterProxyModel proxy;
    LMRQLiveSearchWidget search{nullptr};
};

struct FilterCase {
    const char* name;
    const char* syntaxChoice;  // null: the default
    const char* typed;
    QStringList expected;
};

class TypingFilters : public ::testing::TestWithParam<FilterCase>
{
};

TEST_P(TypingFilters, ShowsTheMatchingRowsOfTheSearchedColumn)
{
    SearchFixture f;
    if (GetParam().syntaxChoice)
        f.choose(GetParam().syntaxChoice);
    f.type(GetParam().typed);
    EXPECT_EQ(f.visibleNames(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    LMRQLiveSearchWidget, TypingFilters,
    ::testing::Values(
        FilterCase{"FixedIsDefaultAndCaseInsensitive", nullptr, "ALPHA", {"Alpha.kel", "alphabet", "gamma_ALPHA"}},
        FilterCase{"FixedTakesDotLiterally", nullptr, "a.k", {"Alpha.kel"}},
        FilterCase{"FixedDoesNotSearchOtherColumns", nullptr, "texture", {}},
        FilterCase{"RegExpAnchors", "Using Regular Expressions", "^al", {"Alpha.kel", "alphabet"}},
        FilterCase{"WildcardStar", "Using Wildcards", "a*t", {"alphabet"}},
        FilterCase{"WildcardDotIsLiteral", "Using Wildcards", "a.k", {"Alpha.kel"}},
        FilterCase{"WildcardNegatedSet", "Using Wildcards", "[!a]eta", {"Beta"}},
        FilterCase{"WildcardBackslashIsLiteral", "Using Wildcards", "s\\t", {"notes\\todo"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(LMRQLiveSearchWidget, HalfTypedRegularExpressionShowsNothingAndSaysWhy)
{
    SearchFixture f;
    f.choose("Using Regular Expressions");
    f.type("al(");
    EXPECT_TRUE(f.visibleNames().isEmpty());
    EXPECT_TRUE(f.search.toolTip().startsWith("Invalid regular expression")) << f.search.toolTip().toStdString();
    f.type(")");
    EXPECT_EQ(f.visibleNames(), QStringList({"Alpha.kel", "alphabet", "gamma_ALPHA"}));
    EXPECT_TRUE(f.search.toolTip().isEmpty());
}

TEST(LMRQLiveSearchWidget, AllColumnsSetsTheKeyColumnToMinusOneAndSearchesEveryColumn)
{
    SearchFixture f;
    f.type("texture");
    ASSERT_TRUE(f.visibleNames().isEmpty());
    f.choose("&All");
    EXPECT_EQ(f.search.columnSearched(), -1);
    EXPECT_EQ(f.proxy.filterKeyColumn(), -1);
    EXPECT_EQ(f.visibleNames(), QStringList({"alphabet", "gamma_ALPHA"}));

    f.choose("Type");
    EXPECT_EQ(f.search.columnSearched(), 1);
    EXPECT_EQ(f.proxy.filterKeyColumn(), 1);
}

TEST(LMRQLiveSearchWidget, MenuOffersAllAndEachColumnOnlyForSeveralColumns)
{
    SearchFixture f;
    const QStringList syntaxes{"--", "Using Fixed String", "Using Regular Expressions", "Using Wildcards"};
    EXPECT_EQ(f.menuTexts(), QStringList({"&All", "Name", "Type"}) + syntaxes);
    EXPECT_TRUE(f.menuAction("Name")->isChecked());
    EXPECT_TRUE(f.menuAction("Using Fixed String")->isChecked());

    f.choose("&All");
    QStandardItemModel oneColumn(2, 1);
    f.proxy.setSourceModel(&oneColumn);  // a reset: the menu follows
    EXPECT_EQ(f.menuTexts(), syntaxes);
    f.proxy.setSourceModel(&f.model);
    EXPECT_FALSE(f.menuAction("&All")->isChecked()) << "a rebuild never checks All, even while all are searched";
    EXPECT_EQ(f.search.columnSearched(), -1);
}

TEST(LMRQLiveSearchWidget, ModelShrinkingBelowTheSearchedColumnResetsItToTheFirst)
{
    SearchFixture f;
    f.choose("Type");
    ASSERT_EQ(f.search.columnSearched(), 1);
    f.model.removeColumn(1);
    EXPECT_EQ(f.search.columnSearched(), 0);
    EXPECT_EQ(f.menuTexts().first(), QStringLiteral("--"));
}

TEST(LMRQLiveSearchWidget, CancelButtonFollowsTheTextAndClearsIt)
{
    SearchFixture f;
    QToolButton* cancel = f.search.cancelButton();
    EXPECT_FALSE(cancel->isEnabled());
    EXPECT_TRUE(cancel->icon().isNull());
    EXPECT_FALSE(f.search.searchButton()->icon().pixmap(16).isNull()) << "the magnifying glass is a resource";

    f.type("beta");
    EXPECT_TRUE(cancel->isEnabled());
    EXPECT_FALSE(cancel->icon().isNull());
    EXPECT_EQ(f.visibleNames(), QStringList({"Beta"}));

    QTest::mouseClick(cancel, Qt::LeftButton);
    EXPECT_TRUE(f.search.text().isEmpty());
    EXPECT_FALSE(cancel->isEnabled());
    EXPECT_TRUE(cancel->icon().isNull());
    EXPECT_EQ(f.visibleNames().size(), f.model.rowCount());
}

}  // namespace
