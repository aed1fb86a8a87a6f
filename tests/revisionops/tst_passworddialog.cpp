// The password dialog on its own: layout, texts, tab order, and when OK may be pressed.
#include "hbpasswordrequireddialog.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

QPushButton* buttonLabelled(const QDialog& dialog, const QString& text)
{
    for (QPushButton* button : dialog.findChildren<QPushButton*>()) {
        if (button->text() == text)
            return button;
    }
    return nullptr;
}

QString labelAt(const QDialog& dialog, int index)
{
    auto* label = qobject_cast<QLabel*>(dialog.layout()->itemAt(index)->widget());
    return label ? label->text() : QString();
}

class PasswordDialogTest : public ::testing::Test
{
protected:
    PasswordRequiredDialog dialog{nullptr};
    QLineEdit* field = dialog.findChild<QLineEdit*>();
    QPushButton* ok = buttonLabelled(dialog, "Ok");
    QPushButton* cancel = buttonLabelled(dialog, "Cancel");
};

TEST_F(PasswordDialogTest, MasksThePasswordUnderItsTitleWithOkThenCancel)
{
    ASSERT_NE(field, nullptr);
    ASSERT_NE(ok, nullptr);
    ASSERT_NE(cancel, nullptr);
    EXPECT_EQ(dialog.windowTitle(), "Data Source Password Required");
    EXPECT_EQ(field->echoMode(), QLineEdit::Password);
    EXPECT_FALSE(ok->isEnabled());
    EXPECT_EQ(labelAt(dialog, 0), "Please enter the password");
    EXPECT_EQ(dialog.layout()->itemAt(1)->widget(), field);
    auto* row = dialog.layout()->itemAt(2)->layout();
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->itemAt(0)->widget(), ok);
    EXPECT_EQ(row->itemAt(1)->widget(), cancel);
    EXPECT_EQ(field->nextInFocusChain(), ok);
    EXPECT_EQ(ok->nextInFocusChain(), cancel);
}

TEST_F(PasswordDialogTest, EachReasonStacksAboveEverythingElse)
{
    dialog.SetReason("Source control session expired. Password required to re-connect.");
    dialog.SetReason("second");
    EXPECT_EQ(labelAt(dialog, 0), "second");
    EXPECT_EQ(labelAt(dialog, 1), "Source control session expired. Password required to re-connect.");
    EXPECT_EQ(labelAt(dialog, 2), "Please enter the password");
}

TEST_F(PasswordDialogTest, OkFollowsWhetherSomethingIsTypedAndBecomesTheDefault)
{
    dialog.show();
    QTest::keyClicks(field, "pw");
    EXPECT_TRUE(ok->isEnabled());
    EXPECT_TRUE(ok->isDefault());
    QTest::keyClick(field, Qt::Key_Backspace);
    EXPECT_TRUE(ok->isEnabled());
    QTest::keyClick(field, Qt::Key_Backspace);
    EXPECT_FALSE(ok->isEnabled());
    field->setText("set by program");  // not an edit by the user
    EXPECT_FALSE(ok->isEnabled());
}

TEST_F(PasswordDialogTest, EveryShowingStartsEmptyWithOkDisabled)
{
    dialog.show();
    QTest::keyClicks(field, "secret");
    EXPECT_EQ(dialog.GetPassword(), "secret");
    dialog.hide();
    dialog.show();
    EXPECT_TRUE(dialog.GetPassword().isEmpty());
    EXPECT_FALSE(ok->isEnabled());
}

TEST_F(PasswordDialogTest, OkAcceptsAndCancelRejects)
{
    dialog.show();
    QTest::keyClicks(field, "x");
    QTest::mouseClick(ok, Qt::LeftButton);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    dialog.show();
    QTest::mouseClick(cancel, Qt::LeftButton);
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
}

}  // namespace
