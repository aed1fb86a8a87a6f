// LMRQLiveSearchWidget over a real QSortFilterProxyModel: typing filters with the chosen syntax
// and column, the options menu follows the model's columns, the cancel button follows the text.
#include "toolkittest.h"

#include <qtextention/lmrqlivesearchwidget.h>

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
    const QString regExp = "Using Regular Expressions", wildcard = "Using Wildcards";
    const QString invalid = "Invalid regular expression";
    // name, syntax (empty: the default), typed, shown, how the tool tip starts (empty: no tool tip)
    const std::tuple<const char*, QString, const char*, QStringList, QString> rows[] = {
        {"fixed is default and case-insensitive", {}, "ALPHA", {"Alpha.kel", "alphabet", "gamma_ALPHA"}, {}},
        {"fixed takes a dot literally", {}, "a.k", {"Alpha.kel"}, {}},
        {"fixed does not search other columns", {}, "texture", {}, {}},
        {"regular expression anchors", regExp, "^al", {"Alpha.kel", "alphabet"}, {}},
        {"half-typed regular expression shows nothing and says why", regExp, "al(", {}, invalid},
        {"finished regular expression takes the complaint back", regExp, "al()", {"Alpha.kel", "alphabet", "gamma_ALPHA"}, {}},
        {"wildcard star", wildcard, "a*t", {"alphabet"}, {}},
        {"wildcard dot is literal", wildcard, "a.k", {"Alpha.kel"}, {}},
        {"wildcard negated set", wildcard, "[!a]eta", {"Beta"}, {}},
        {"wildcard backslash is literal", wildcard, "s\\t", {"notes\\todo"}, {}},
    };
    for (const auto& [name, syntax, typed, expected, tip] : rows) {
        SearchFixture f;
        if (!syntax.isEmpty())
            f.choose(syntax);
        f.type(typed);
        EXPECT_EQ(f.visibleNames(), expected) << name;
        EXPECT_EQ(f.search.toolTip().left(tip.size()), tip) << name;
        EXPECT_EQ(f.search.toolTip().isEmpty(), tip.isEmpty()) << name;
    }
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
    EXPECT_EQ(f.visibleNames(), QStringList({"alphabet", "gamma_ALPHA"}));

    QStandardItemModel oneColumn(2, 1);
    f.proxy.setSourceModel(&oneColumn);  // a reset: the menu follows, offering no column choice
    EXPECT_EQ(f.menuTexts(), syntaxes);
    f.proxy.setSourceModel(&f.model);
    EXPECT_FALSE(f.menuAction("&All")->isChecked()) << "a rebuild never checks All, even while all are searched";
    EXPECT_EQ(f.search.columnSearched(), -1);

    f.choose("Type");
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
