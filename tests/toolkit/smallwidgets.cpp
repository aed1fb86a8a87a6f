// The small widgets the studio's window is built from, driven offscreen: what they emit for a
// user's edit, what they refuse, and what the text cache keeps.
#include "toolkittest.h"

#include <qtextention/cachedtextdrawer.h>
#include <qtextention/qcolorcontrol.h>
#include <qtextention/qhyperlink.h>
#include <qtextention/qtabwidgetex.h>
#include <qtextention/rangevalueeditwidget.h>

namespace {

TEST(QTabWidgetEx, PagesAreFoundByNameAndCountsFollowTheBaseTitle)
{
    QTabWidgetEx tabs;
    auto* files = new QWidget;
    files->setObjectName(QStringLiteral("files"));
    tabs.addTab(new QWidget, QStringLiteral("Properties"));
    tabs.addTab(files, QStringLiteral("Files"));
    const int index = tabs.indexOfPage(QStringLiteral("files"));
    ASSERT_EQ(index, 1);
    tabs.setTabCount(index, 3);
    tabs.setTabCount(index, 2);
    EXPECT_EQ(tabs.tabText(index), "Files (2)");
    tabs.setTabCount(index, -1);
    EXPECT_EQ(tabs.tabText(index), "Files");
    EXPECT_TRUE(tabs.setCurrentPage(QStringLiteral("files")));
    EXPECT_EQ(tabs.currentWidget(), files);
    EXPECT_FALSE(tabs.setCurrentPage(QStringLiteral("history")));
}

// One valueEdited per finished edit, from keys in the spin box or on the slider; none from setValue.
TEST(RangeValueEditWidget, EmitsOncePerFinishedEditWithinTheRange)
{
    RangeValueEditWidget edit;
    edit.setRange(0.0, 1.0, 2);
    edit.setValue(0.5);
    edit.setValue(3.0);  // clamped, silent
    EXPECT_EQ(edit.value(), 1.0);
    EXPECT_EQ(edit.slider()->value(), edit.slider()->maximum());
    QSignalSpy edited(&edit, &RangeValueEditWidget::valueEdited);

    edit.spinBox()->selectAll();
    QTest::keyClicks(edit.spinBox(), QStringLiteral("0.25"));
    EXPECT_EQ(edited.count(), 0) << "typing alone is not a finished edit";
    QTest::keyClick(edit.spinBox(), Qt::Key_Return);
    ASSERT_EQ(edited.count(), 1);
    EXPECT_DOUBLE_EQ(edited.takeFirst().at(0).toDouble(), 0.25);
    EXPECT_EQ(edit.slider()->value(), edit.slider()->maximum() / 4);

    QTest::keyClick(edit.slider(), Qt::Key_End);
    ASSERT_EQ(edited.count(), 1);
    EXPECT_DOUBLE_EQ(edited.takeFirst().at(0).toDouble(), 1.0);
    EXPECT_EQ(edit.value(), 1.0);
}

TEST(QColorControl, AValidNameIsAnEditAnInvalidOneIsPutBack)
{
    QColorControl control;
    control.setColor(QColor(0x7a, 0x74, 0x6c));
    QSignalSpy edited(&control, &QColorControl::colorEdited);
    const struct {
        const char* typed;
        const char* shownAfter;
        bool emitted;
    } rows[] = {
        {"#ff8c42", "#ff8c42", true},
        {"not a colour", "#ff8c42", false},
        {"red", "#ff0000", true},
        {"#ff0000", "#ff0000", false},  // the same colour again is no edit
    };
    for (const auto& row : rows) {
        edited.clear();
        control.nameEdit()->setText(QString::fromLatin1(row.typed));
        emit control.nameEdit()->editingFinished();
        EXPECT_EQ(control.nameEdit()->text(), row.shownAfter) << row.typed;
        EXPECT_EQ(control.color().name(), row.shownAfter) << row.typed;
        EXPECT_EQ(edited.count(), row.emitted ? 1 : 0) << row.typed;
    }
}

TEST(CachedTextDrawer, RendersEachTextOnceAndForgetsTheLeastRecentlyUsed)
{
    CachedTextDrawer drawer(2);
    QImage image(200, 40, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    QPainter painter(&image);
    const CachedTextDrawer::Look badge{QFont(), Qt::white, QColor(0x2e, 0x6d, 0xa4)};
    const QSize size = drawer.draw(painter, {0, 0}, QStringLiteral("checked out"), badge);
    EXPECT_EQ(size, drawer.size(QStringLiteral("checked out"), badge));
    drawer.draw(painter, {0, 20}, QStringLiteral("checked out"), badge);
    EXPECT_EQ(drawer.renderCount(), 1);
    EXPECT_EQ(image.pixelColor(1, size.height() / 2), QColor(0x2e, 0x6d, 0xa4)) << "the badge is painted";

    drawer.draw(painter, {0, 0}, QStringLiteral("held by bob"), badge);
    drawer.draw(painter, {0, 0}, QStringLiteral("checked out"), badge);  // now the most recent
    drawer.draw(painter, {0, 0}, QStringLiteral("up to date"), badge);   // evicts "held by bob"
    EXPECT_EQ(drawer.cachedCount(), 2);
    EXPECT_EQ(drawer.renderCount(), 3);
    drawer.draw(painter, {0, 0}, QStringLiteral("checked out"), badge);
    EXPECT_EQ(drawer.renderCount(), 3);
    drawer.draw(painter, {0, 0}, QStringLiteral("held by bob"), badge);
    EXPECT_EQ(drawer.renderCount(), 4);
}

TEST(QHyperlink, ClicksAndTheActivationKeysEmitClicked)
{
    QHyperlink link(QStringLiteral("Create a demo depot"));
    link.show();
    QSignalSpy clicked(&link, &QHyperlink::clicked);
    QTest::mouseClick(&link, Qt::LeftButton);
    QTest::keyClick(&link, Qt::Key_Return);
    QTest::keyClick(&link, Qt::Key_Space);
    QTest::keyClick(&link, Qt::Key_A);
    EXPECT_EQ(clicked.count(), 3);
    EXPECT_EQ(link.focusPolicy(), Qt::StrongFocus);
}

}  // namespace
