// The password dialog on its own: layout, texts, tab order, and when OK may be pressed. Showing it
// again empty, and what OK and Cancel answer, are driven through the reconnect loop.
#include "hbpasswordrequireddialog.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

class PasswordDialogTest : public ::testing::Test
{
protected:
    QString labelAt(int index) const
    {
        auto* label = qobject_cast<QLabel*>(dialog.layout()->itemAt(index)->widget());
        return label ? label->text() : QString();
    }

    PasswordRequiredDialog dialog{nullptr};
    QLineEdit* field = dialog.findChild<QLineEdit*>();
    QList<QPushButton*> buttons = dialog.findChildren<QPushButton*>();
};

TEST_F(PasswordDialogTest, MasksThePasswordUnderItsReasonsWithOkThenCancel)
{
    ASSERT_NE(field, nullptr);
    ASSERT_EQ(buttons.size(), 2);
    QPushButton* ok = buttons[0];
    QPushButton* cancel = buttons[1];
    EXPECT_EQ(ok->text(), "Ok");
    EXPECT_EQ(cancel->text(), "Cancel");
    EXPECT_EQ(dialog.windowTitle(), "Data Source Password Required");
    EXPECT_EQ(field->echoMode(), QLineEdit::Password);
    EXPECT_FALSE(ok->isEnabled());

    dialog.SetReason("Source control session expired. Password required to re-connect.");
    dialog.SetReason("second");
    EXPECT_EQ(labelAt(0), "second");
    EXPECT_EQ(labelAt(1), "Source control session expired. Password required to re-connect.");
    EXPECT_EQ(labelAt(2), "Please enter the password");
    EXPECT_EQ(dialog.layout()->itemAt(3)->widget(), field);
    auto* row = dialog.layout()->itemAt(4)->layout();
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->itemAt(0)->widget(), ok);
    EXPECT_EQ(row->itemAt(1)->widget(), cancel);
    EXPECT_EQ(field->nextInFocusChain(), ok);
    EXPECT_EQ(ok->nextInFocusChain(), cancel);
}

TEST_F(PasswordDialogTest, OkFollowsWhatTheUserTypesAndBecomesTheDefault)
{
    QPushButton* ok = buttons.value(0);
    ASSERT_TRUE(field && ok);
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

}  // namespace
