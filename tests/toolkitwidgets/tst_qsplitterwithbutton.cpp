// QSplitterWithButton: the handle buttons collapse and restore panes in proportion, the all-collapsed
// rule expands the neighbour on the clicked side, and the buttons sit where the handle shows them.
#include <qtextention/qsplitterhandlewithbutton.h>
#include <qtextention/qsplitterwithbutton.h>

#include <QPushButton>
#include <QStyle>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

namespace {

class HintWidget : public QWidget
{
public:
    explicit HintWidget(QSize hint) : m_hint(hint) {}
    QSize sizeHint() const override { return m_hint; }
    QSize minimumSizeHint() const override { return {0, 0}; }

private:
    QSize m_hint;
};

// A shown splitter with two panes of 100 and 400 pixels.
struct TwoPanes {
    explicit TwoPanes(bool onlyLeftButton = true, QSize hint = {0, 0})
    {
        splitter->setShowOnlyLeftButton(onlyLeftButton);
        splitter->addWidget(new HintWidget(hint));
        splitter->addWidget(new HintWidget(hint));
        splitter->resize(500 + splitter->handleWidth(), 300);
        splitter->show();
        splitter->setSizes({100, 400});
    }
    QSplitterHandleWithButton* handle() const { return qobject_cast<QSplitterHandleWithButton*>(splitter->handle(1)); }
    void clickLeft() const { click(handle()->leftButton()); }
    void clickRight() const { click(handle()->rightButton()); }
    static void click(QPushButton* button)
    {
        ASSERT_NE(button, nullptr);
        // Inside the strip of the button that the handle shows.
        const QPoint visible = button->mapFrom(button->parentWidget(), QPoint(1, button->y() + button->height() / 2));
        QTest::mouseClick(button, Qt::LeftButton, {}, visible);
    }

    std::unique_ptr<QSplitterWithButton> splitter = std::make_unique<QSplitterWithButton>(nullptr);
};

QImage arrowImage(const QWidget* w, QStyle::StandardPixmap arrow)
{
    return w->style()->standardIcon(arrow).pixmap(16).toImage();
}

}  // namespace

TEST(QSplitterWithButton, LeftButtonCollapsesThePaneBeforeTheHandleAndRestoresItsShare)
{
    TwoPanes panes;
    ASSERT_EQ(panes.splitter->sizes(), QList<int>({100, 400}));

    panes.clickLeft();
    EXPECT_EQ(panes.splitter->sizes(), QList<int>({0, 500}));
    EXPECT_FLOAT_EQ(panes.splitter->collapsedRatios().value(0), 0.25f);

    panes.clickLeft();
    EXPECT_EQ(panes.splitter->sizes(), QList<int>({100, 400}));
    EXPECT_TRUE(panes.splitter->collapsedRatios().contains(0)) << "the ratio stays after expanding";
}

TEST(QSplitterWithButton, RestoredShareFollowsAResizeWhileCollapsed)
{
    TwoPanes panes;
    panes.clickLeft();
    panes.splitter->resize(1000 + panes.splitter->handleWidth(), 300);
    panes.clickLeft();
    EXPECT_EQ(panes.splitter->sizes(), QList<int>({200, 800}));
}

TEST(QSplitterWithButton, RightButtonCollapsesThePaneAfterTheHandle)
{
    TwoPanes panes(false);
    panes.clickRight();
    EXPECT_EQ(panes.splitter->sizes(), QList<int>({500, 0}));
    EXPECT_FLOAT_EQ(panes.splitter->collapsedRatios().value(1), 4.0f);
    panes.clickRight();
    EXPECT_EQ(panes.splitter->sizes(), QList<int>({100, 400}));
}

struct LastPaneCase {
    const char* name;
    bool firstLeft;          // the button that collapses the first pane
    QList<int> expected;     // after the second button collapses the last visible pane
};

class CollapsingTheLastVisiblePane : public ::testing::TestWithParam<LastPaneCase>
{
};

TEST_P(CollapsingTheLastVisiblePane, ExpandsTheNeighbourOnTheClickedSide)
{
    TwoPanes panes(false);
    if (GetParam().firstLeft) {
        panes.clickLeft();
        panes.clickRight();
    } else {
        panes.clickRight();
        panes.clickLeft();
    }
    EXPECT_EQ(panes.splitter->sizes(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(QSplitterWithButton, CollapsingTheLastVisiblePane,
                         ::testing::Values(LastPaneCase{"RightButtonExpandsPaneBefore", true, {500, 0}},
                                           LastPaneCase{"LeftButtonExpandsPaneAfter", false, {0, 500}}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(QSplitterWithButton, PaneCollapsedWhileAloneExpandsAgainWithoutOverflow)
{
    // Pane 1 is collapsed while pane 0 already is: its stored ratio is infinite.
    TwoPanes panes(false);
    panes.clickLeft();
    panes.clickRight();
    panes.clickRight();
    const QList<int> sizes = panes.splitter->sizes();
    EXPECT_GT(sizes.at(0), 0);
    EXPECT_GT(sizes.at(1), 0);
}

struct ExpandCase {
    const char* name;
    int hintWidth;
    bool collapsedBefore;
    int expected;  // -1: the splitter's width
};

class ExpandSize : public ::testing::TestWithParam<ExpandCase>
{
};

TEST_P(ExpandSize, ComesFromTheStoredRatioElseTheSizeHintElseTheSplitterWidth)
{
    TwoPanes panes(true, QSize(GetParam().hintWidth, 0));
    QList<int> sizes{100, 400};
    if (GetParam().collapsedBefore)
        panes.splitter->Collapse(sizes, 0);
    sizes = {0, 600};
    panes.splitter->Expand(sizes, 0);
    const int expected = GetParam().expected < 0 ? panes.splitter->width() : GetParam().expected;
    EXPECT_EQ(sizes, QList<int>({expected, 600}));
}

INSTANTIATE_TEST_SUITE_P(QSplitterWithButton, ExpandSize,
                         ::testing::Values(ExpandCase{"StoredRatio", 0, true, 150},
                                           ExpandCase{"HintWidth", 120, false, 120},
                                           ExpandCase{"ZeroHintGivesSplitterWidth", 0, false, -1}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(QSplitterWithButton, NeverCollapsedPaneWithZeroHintExpandsToTheSplitterWidthOnClick)
{
    TwoPanes panes;
    panes.splitter->setSizes({0, 500});
    panes.clickLeft();
    const QList<int> sizes = panes.splitter->sizes();
    // The pane asked for the splitter's whole width beside 500: the splitter shares the space half and half.
    EXPECT_NEAR(sizes.at(0), sizes.at(1), 3);
    EXPECT_FALSE(panes.splitter->collapsedRatios().contains(0));
}

TEST(QSplitterWithButton, RightButtonExistsOnlyOnHandlesCreatedWhileItWasAskedFor)
{
    QSplitterWithButton splitter(nullptr);
    splitter.addWidget(new QWidget);
    splitter.addWidget(new QWidget);
    splitter.setShowOnlyLeftButton(false);
    splitter.addWidget(new QWidget);

    auto* early = qobject_cast<QSplitterHandleWithButton*>(splitter.handle(1));
    auto* late = qobject_cast<QSplitterHandleWithButton*>(splitter.handle(2));
    ASSERT_TRUE(early && late);
    EXPECT_NE(early->leftButton(), nullptr);
    EXPECT_EQ(early->rightButton(), nullptr);
    EXPECT_NE(late->rightButton(), nullptr);
    EXPECT_EQ(early->leftButton()->cursor().shape(), Qt::ArrowCursor);
    EXPECT_EQ(late->rightButton()->cursor().shape(), Qt::ArrowCursor);
}

TEST(QSplitterWithButton, ButtonsOverhangTheHandleAtTheirFixedHeights)
{
    TwoPanes panes(false);
    QSplitterHandleWithButton* handle = panes.handle();
    const int w = handle->width();
    const int h = handle->height();
    ASSERT_EQ(h, 300);
    EXPECT_EQ(handle->leftButton()->geometry(), QRect(-20, 33, w + 20, 60));
    EXPECT_EQ(handle->rightButton()->geometry(), QRect(0, 207, w + 20, 60));
}

TEST(QSplitterWithButton, HandleIndexOfForeignOrNullHandleIsMinusOne)
{
    TwoPanes panes;
    TwoPanes other;
    EXPECT_EQ(panes.splitter->getHandleIndex(panes.splitter->handle(1)), 1);
    EXPECT_EQ(panes.splitter->getHandleIndex(other.splitter->handle(1)), -1);
    EXPECT_EQ(panes.splitter->getHandleIndex(nullptr), -1);
}

TEST(QSplitterWithButton, ArrowsPointTheWayThePaneWillMove)
{
    TwoPanes panes(false);
    QSplitterHandleWithButton* handle = panes.handle();
    const QWidget* w = panes.splitter.get();
    EXPECT_EQ(handle->leftButton()->icon().pixmap(16).toImage(), arrowImage(w, QStyle::SP_ArrowLeft));
    EXPECT_EQ(handle->rightButton()->icon().pixmap(16).toImage(), arrowImage(w, QStyle::SP_ArrowRight));

    panes.clickLeft();
    EXPECT_EQ(handle->leftButton()->icon().pixmap(16).toImage(), arrowImage(w, QStyle::SP_ArrowRight));
    EXPECT_EQ(handle->rightButton()->icon().pixmap(16).toImage(), arrowImage(w, QStyle::SP_ArrowRight));
}
