// QSplitterWithButton: real clicks on the handle buttons collapse panes and restore their share;
// collapsing the last visible pane expands the neighbour on the clicked side.
#include "toolkittest.h"

#include <qtextention/qsplitterhandlewithbutton.h>
#include <qtextention/qsplitterwithbutton.h>

namespace {

// A shown splitter with panes of 100 and 400 pixels that have no size hint.
struct TwoPanes {
    explicit TwoPanes(bool onlyLeftButton = true)
    {
        splitter->setShowOnlyLeftButton(onlyLeftButton);
        splitter->addWidget(new QWidget);
        splitter->addWidget(new QWidget);
        splitter->resize(500 + splitter->handleWidth(), 300);
        splitter->show();
        splitter->setSizes({100, 400});
    }
    QSplitterHandleWithButton* handle() const { return qobject_cast<QSplitterHandleWithButton*>(splitter->handle(1)); }
    void clickLeft() const { QTest::mouseClick(handle()->leftButton(), Qt::LeftButton); }
    void clickRight() const { QTest::mouseClick(handle()->rightButton(), Qt::LeftButton); }
    QList<int> sizes() const { return splitter->sizes(); }

    std::unique_ptr<QSplitterWithButton> splitter = std::make_unique<QSplitterWithButton>(nullptr);
};

bool showsArrow(const QPushButton* button, QStyle::StandardPixmap arrow)
{
    return button->icon().pixmap(16).toImage() == button->style()->standardIcon(arrow).pixmap(16).toImage();
}

}  // namespace

TEST(QSplitterWithButton, ButtonsCollapseTheirPaneAndRestoreItsShareAfterAResize)
{
    TwoPanes panes(false);
    panes.clickLeft();
    EXPECT_EQ(panes.sizes(), QList<int>({0, 500}));
    EXPECT_TRUE(showsArrow(panes.handle()->leftButton(), QStyle::SP_ArrowRight)) << "the pane comes back rightwards";
    panes.clickLeft();
    EXPECT_EQ(panes.sizes(), QList<int>({100, 400}));
    EXPECT_TRUE(showsArrow(panes.handle()->leftButton(), QStyle::SP_ArrowLeft));

    panes.clickRight();
    EXPECT_EQ(panes.sizes(), QList<int>({500, 0}));
    panes.splitter->resize(1000 + panes.splitter->handleWidth(), 300);
    panes.clickRight();
    EXPECT_EQ(panes.sizes(), QList<int>({200, 800}));
}

TEST(QSplitterWithButton, CollapsingTheLastVisiblePaneExpandsTheNeighbourOnTheClickedSideANewPaneTakesTheWidthAndLateHandlesGetBothButtons)
{
    TwoPanes leftLast(false);
    leftLast.clickRight();
    leftLast.clickLeft();
    EXPECT_EQ(leftLast.sizes(), QList<int>({0, 500}));

    TwoPanes rightLast(false);
    rightLast.clickLeft();
    rightLast.clickRight();  // pane 1 is stored with an infinite ratio: nothing else had space
    EXPECT_EQ(rightLast.sizes(), QList<int>({500, 0}));
    rightLast.clickRight();
    EXPECT_GT(rightLast.sizes().at(1), 0);

    TwoPanes fresh;  // a pane never collapsed, without a size hint, expands to the splitter's width
    QList<int> sizes{0, 600};
    fresh.splitter->Expand(sizes, 0);
    EXPECT_EQ(sizes, QList<int>({fresh.splitter->width(), 600}));

    // Only handles made while both buttons are asked for have a right one.
    EXPECT_EQ(fresh.handle()->rightButton(), nullptr);
    fresh.splitter->setShowOnlyLeftButton(false);
    fresh.splitter->addWidget(new QWidget);
    EXPECT_NE(qobject_cast<QSplitterHandleWithButton*>(fresh.splitter->handle(2))->rightButton(), nullptr);
}

// Opt-in animation: the panes pass through sizes between the old and the new ones and end where
// the instant toggle puts them; a second click mid-way starts from where the first was going.
TEST(QSplitterWithButton, AnimatedCollapseMovesThroughAndEndsWhereTheInstantOneDoes)
{
    TwoPanes panes;
    panes.splitter->setAnimated(true);
    QList<QList<int>> seen;
    panes.clickLeft();
    while (panes.sizes() != QList<int>({0, 500})) {
        seen.append(panes.sizes());
        QTest::qWait(5);
        ASSERT_LT(seen.size(), 1000) << "the collapse never ends";
    }
    EXPECT_TRUE(std::any_of(seen.begin(), seen.end(), [](const QList<int>& s) { return s[0] > 0 && s[0] < 100; }))
        << "no step between 100 and 0";

    panes.clickLeft();
    panes.clickLeft();  // mid-way: the expansion lands first, then the pane collapses again
    ASSERT_TRUE(QTest::qWaitFor([&] { return panes.sizes() == QList<int>({0, 500}); }));
    panes.clickLeft();
    EXPECT_TRUE(QTest::qWaitFor([&] { return panes.sizes() == QList<int>({100, 400}); })) << "the pane's share comes back";
}
