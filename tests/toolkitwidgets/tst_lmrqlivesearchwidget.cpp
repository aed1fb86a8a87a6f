// LMRQLiveSearchWidget over a real QSortFilterProxyModel: typing filters with the chosen syntax
// and column, the options menu follows the model's columns, the cancel button follows the text.
#include "qtprinters.h"

#include <qtextention/lmrqlivesearchwidget.h>

#include <QMenu>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include <tuple>

namespace {

struct SearchFixture {
    SearchFixture()
    {
        model.setHorizontalHeaderLabels({"Name", "Type"});
        const std::pair<const char*, const char*> rows[] = {
            {"Alpha.kel", "model"}, {"alphabet", "texture"}, {"Beta", "model"}, {"gamma_ALPHA", "texture"},
            {"notes\\todo", "text"}};
        for (const auto& [name, type] : rows)
            model.appendRow({new QStandardItem(name), new QStandardItem(type)});
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
    // The menu entry named text; a failure (and a null action) when there is none.
    QAction* menuAction(const QString& text) const
    {
        for (QAction* action : search.optionsMenu()->actions()) {
            if (action->text() == text)
                return action;
        }
        ADD_FAILURE() << "no menu entry " << text.toStdString();
        return nullptr;
    }
    void choose(const QString& text) const
    {
        if (QAction* action = menuAction(text))
            action->trigger();
    }
    void type(const QString& text) { QTest::keyClicks(&search, text); }

    QStandardItemModel model;
    QSortFilterProxyModel proxy;
    LMRQLiveSearchWidget search{nullptr};
};

TEST(LMRQLiveSearchWidget, TypingShowsTheMatchingRowsOfTheSearchedColumnInTheChosenSyntax)
{
    const std::tuple<const char*, const char*, const char*, QStringList> rows[] = {  // syntax null: the default
        {"fixed is default and case-insensitive", nullptr, "ALPHA", {"Alpha.kel", "alphabet", "gamma_ALPHA"}},
        {"fixed takes a dot literally", nullptr, "a.k", {"Alpha.kel"}},
        {"fixed does not search other columns", nullptr, "texture", {}},
        {"regular expression anchors", "Using Regular Expressions", "^al", {"Alpha.kel", "alphabet"}},
        {"wildcard star", "Using Wildcards", "a*t", {"alphabet"}},
        {"wildcard dot is literal", "Using Wildcards", "a.k", {"Alpha.kel"}},
        {"wildcard negated set", "Using Wildcards", "[!a]eta", {"Beta"}},
        {"wildcard backslash is literal", "Using Wildcards", "s\\t", {"notes\\todo"}},
    };
    for (const auto& [name, syntax, typed, expected] : rows) {
        SearchFixture f;
        if (syntax)
            f.choose(syntax);
        f.type(typed);
        EXPECT_EQ(f.visibleNames(), expected) << name;
    }
}

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

TEST(LMRQLiveSearchWidget, MenuFollowsTheModelsColumnsAndAllSetsTheKeyColumnToMinusOne)
{
    SearchFixture f;
    const QStringList syntaxes{"--", "Using Fixed String", "Using Regular Expressions", "Using Wildcards"};
    EXPECT_EQ(f.menuTexts(), QStringList({"&All", "Name", "Type"}) + syntaxes);
    EXPECT_TRUE(f.menuAction("Name")->isChecked());
    EXPECT_TRUE(f.menuAction("Using Fixed String")->isChecked());

    f.type("texture");
    ASSERT_TRUE(f.visibleNames().isEmpty());
    f.choose("&All");
    EXPECT_EQ(f.search.columnSearched(), -1);
    EXPECT_EQ(f.proxy.filterKeyColumn(), -1);
    EXPECT_EQ(f.visibleNames(), QStringList({"alphabet", "gamma_ALPHA"}));

    QStandardItemModel oneColumn(2, 1);
    f.proxy.setSourceModel(&oneColumn);  // a reset: the menu follows, offering no column choice
    EXPECT_EQ(f.menuTexts(), syntaxes);
    f.proxy.setSourceModel(&f.model);
    EXPECT_FALSE(f.menuAction("&All")->isChecked()) << "a rebuild never checks All, even while all are searched";
    EXPECT_EQ(f.search.columnSearched(), -1);

    f.choose("Type");
    EXPECT_EQ(f.search.columnSearched(), 1);
    EXPECT_EQ(f.proxy.filterKeyColumn(), 1);
    f.model.removeColumn(1);  // shrinking below the searched column resets it to the first
    EXPECT_EQ(f.search.columnSearched(), 0);
    EXPECT_EQ(f.menuTexts(), syntaxes);
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
