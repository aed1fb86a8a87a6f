#pragma once

// Finding and pressing the changelist dialog's parts, and running it modally, as a user would.
#include "hbchangelistselectiondialog.h"

#include <dialogdriver.h>

#include <QComboBox>
#include <QPushButton>
#include <QTest>
#include <QTextEdit>

#include <gtest/gtest.h>

#include <functional>

namespace hbrc::test {

inline QComboBox* combo(const QWidget& d) { return d.findChild<QComboBox*>(QStringLiteral("changeListCombo")); }
inline QTextEdit* descriptionEdit(const QWidget& d)
{
    return d.findChild<QTextEdit*>(QStringLiteral("descriptionEdit"));
}

inline QStringList comboTexts(const QWidget& d)
{
    QStringList texts;
    for (int i = 0; i < combo(d)->count(); ++i)
        texts << combo(d)->itemText(i);
    return texts;
}

inline QPushButton* button(const QWidget& d, const QString& text)
{
    for (QPushButton* b : d.findChildren<QPushButton*>())
        if (b->text() == text)
            return b;
    return nullptr;
}

inline void click(QWidget& d, const QString& text)
{
    QPushButton* b = button(d, text);
    ASSERT_NE(b, nullptr) << text.toStdString();
    QTest::mouseClick(b, Qt::LeftButton);
}

// Runs the dialog modally; act does what the user does inside it. Returns exec()'s result.
inline int runDialog(hbChangeListSelectionDialog& dialog, const std::function<void()>& act)
{
    DialogDriver driver;
    driver.expect(QStringLiteral("changelist dialog"), [&](QWidget* modal) {
        ASSERT_EQ(modal, &dialog);
        act();
    });
    const int result = dialog.exec();
    EXPECT_TRUE(driver.finished()) << driver.failures().join(QLatin1Char('\n')).toStdString();
    return result;
}

}  // namespace hbrc::test
