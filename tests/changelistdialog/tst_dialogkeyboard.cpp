// The plug-in's dialogs driven from the keyboard alone, under both dark styles (which give buttons
// and check boxes no focus of their own): Tab reaches every control, Return presses a button that
// can act, Escape cancels.
#include "changelistdialogui.h"
#include "hbpasswordrequireddialog.h"

#include <hostmocks.h>

#include <qtextention/qtlomdarkstylesimple.h>
#include <qtextention/qtlomdarkstyletarn.h>

#include <QApplication>
#include <QLineEdit>
#include <QStyle>

#include <gtest/gtest.h>

#include <memory>
#include <set>

using namespace hbrc::test;
using ::testing::NiceMock;

namespace {

enum class DarkStyle { Simple, Tarn };

class DialogKeyboard : public ::testing::TestWithParam<DarkStyle>
{
protected:
    void SetUp() override
    {
        m_previousStyle = QApplication::style()->name();
        std::unique_ptr<QStyle> style;
        if (GetParam() == DarkStyle::Simple)
            style = std::make_unique<QtlomDarkStyleSimple>();
        else
            style = std::make_unique<QtlomDarkStyleTarn>();
        QApplication::setStyle(style.release());
    }
    void TearDown() override { QApplication::setStyle(m_previousStyle); }

    // Object names of the widgets that Tab visits, starting from the focused one, for one round.
    static std::set<QString> tabRound(QWidget& dialog)
    {
        std::set<QString> visited;
        for (int i = 0; i < 20; ++i) {
            QWidget* focus = QApplication::focusWidget();
            if (!focus)
                break;
            visited.insert(focus->objectName());
            QTest::keyClick(focus, Qt::Key_Tab);
        }
        EXPECT_TRUE(dialog.isActiveWindow());
        return visited;
    }

    std::unique_ptr<hbChangeListSelectionDialog> dialog(bool selectChangeList)
    {
        return std::make_unique<hbChangeListSelectionDialog>(KELPtr<kel4::IDataControl>(dataControl.Get()),
                                                             QStringLiteral("Rock\nSky"),
                                                             std::set<std::string>{"/ws/rock.kel"}, false,
                                                             selectChangeList, nullptr);
    }

    KELPtr<NiceMock<MockDataControl>> dataControl{new NiceMock<MockDataControl>};

private:
    QString m_previousStyle;
};

TEST_P(DialogKeyboard, TabReachesEveryControlOfTheChangeListDialogAndReturnUsesTheDefaultChangeList)
{
    auto d = dialog(true);
    std::set<QString> visited;
    const int result = runDialog(*d, [&] {
        ASSERT_TRUE(QTest::qWaitForWindowActive(d.get()));
        visited = tabRound(*d);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    });
    EXPECT_EQ(result, hbChangeListSelectionDialog::Cancelled) << "Escape cancels";
    // The description editor is disabled while "Default" is selected, and then not in the round.
    for (const char* name : {"changeListCombo", "assetsEdit", "showFilesButton", "refreshButton",
                             "checkOutButton", "cancelButton", "dontShowAgain"})
        EXPECT_TRUE(visited.count(QString::fromLatin1(name))) << name << " is not reached by Tab";

    auto again = dialog(true);
    EXPECT_EQ(runDialog(*again, [&] { QTest::keyClick(combo(*again), Qt::Key_Return); }),
              hbChangeListSelectionDialog::UseChangeList);
    EXPECT_EQ(again->getChangeList(), "") << "the default changelist is preselected";
}

struct ReadOnlyCase {
    bool continueOffered;
    bool makeWritableOffered;
    int returnGives;
};

TEST_P(DialogKeyboard, ReturnInTheReadOnlyDialogPressesTheFirstOfferedChoice)
{
    const ReadOnlyCase cases[] = {
        {true, true, hbChangeListSelectionDialog::ContinueWithoutAction},
        {false, true, hbChangeListSelectionDialog::MakeWritable},
        {false, false, hbChangeListSelectionDialog::Cancelled},
    };
    for (const ReadOnlyCase& c : cases) {
        auto d = dialog(false);
        d->includeContinueButton(c.continueOffered);
        d->includeMakeWritableButton(c.makeWritableOffered);
        EXPECT_EQ(runDialog(*d,
                            [&] {
                                ASSERT_TRUE(QTest::qWaitForWindowActive(d.get()));
                                ASSERT_NE(d->focusWidget(), nullptr);
                                QTest::keyClick(d->focusWidget(), Qt::Key_Return);
                            }),
                  c.returnGives)
            << "continue " << c.continueOffered << ", make writable " << c.makeWritableOffered;
    }
}

TEST_P(DialogKeyboard, ThePasswordDialogTakesTypingReturnAndTab)
{
    PasswordRequiredDialog password(nullptr);
    DialogDriver driver;
    std::set<QString> visited;
    driver.expect(QStringLiteral("password"), [&](QWidget*) {
        ASSERT_TRUE(QTest::qWaitForWindowActive(&password));
        auto* field = password.findChild<QLineEdit*>();
        QTest::keyClicks(field, QStringLiteral("secret"));
        for (int i = 0; i < 4; ++i) {
            visited.insert(qobject_cast<QPushButton*>(QApplication::focusWidget())
                               ? qobject_cast<QPushButton*>(QApplication::focusWidget())->text()
                               : QStringLiteral("field"));
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        QTest::keyClick(field, Qt::Key_Return);
    });
    EXPECT_EQ(password.exec(), QDialog::Accepted);
    EXPECT_TRUE(driver.finished()) << driver.failures().join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(password.GetPassword(), QStringLiteral("secret"));
    EXPECT_EQ(visited, (std::set<QString>{QStringLiteral("field"), QStringLiteral("Ok"), QStringLiteral("Cancel")}));
}

INSTANTIATE_TEST_SUITE_P(Styles, DialogKeyboard, ::testing::Values(DarkStyle::Simple, DarkStyle::Tarn),
                         [](const auto& info) { return info.param == DarkStyle::Simple ? "Simple" : "Tarn"; });

}  // namespace
