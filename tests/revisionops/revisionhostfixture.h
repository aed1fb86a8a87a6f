#pragma once

// Alice's host on the embedded depot (ServerHostFixture: Rock, Tree and Sky submitted and read-only,
// bob on the same depot) with revision control switched on, a window that makes the session
// interactive (a batch run resets it), one dialog driver checked at the end of every test, the
// revision-control settings as preferences, and the user's side of the plug-in's dialogs. Dialogs
// are found by title, object name and button text only: the save-hook suites load the plug-in as a
// library, the revision-operation suites link it.

#include <serverhostfixture.h>
#include <dialogdriver.h>

#include <kel4/revisionstatus.h>

#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTextEdit>
#include <QTreeWidget>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace hbrc::test {

// --- the user's side of the dialogs -------------------------------------------------------------------

inline QPushButton* visibleButton(QWidget* dialog, const QString& text)
{
    for (QPushButton* button : dialog->findChildren<QPushButton*>()) {
        if (button->text() == text && button->isVisible())
            return button;
    }
    return nullptr;
}

inline void press(QWidget* dialog, const QString& text)
{
    QPushButton* button = visibleButton(dialog, text);
    ASSERT_NE(button, nullptr) << "no button " << text.toStdString() << " in " << dialog->windowTitle().toStdString();
    QTest::mouseClick(button, Qt::LeftButton);
}

inline QString infoText(QWidget* dialog)
{
    auto* label = dialog->findChild<QLabel*>(QStringLiteral("infoLabel"));
    return label ? label->text() : QString();
}

inline QString assetsText(QWidget* dialog)
{
    auto* edit = dialog->findChild<QTextEdit*>(QStringLiteral("assetsEdit"));
    return edit ? edit->toPlainText() : QString();
}

// The paths the dialog lists (shown or hidden).
inline QStringList listedFiles(QWidget* dialog)
{
    QStringList files;
    if (auto* list = dialog->findChild<QTreeWidget*>(QStringLiteral("fileList"))) {
        for (int i = 0; i < list->topLevelItemCount(); ++i)
            files << list->topLevelItem(i)->text(0);
    }
    return files;
}

// What the user does in a changelist dialog: the button pressed, the changelist ("" keeps the one
// selected, otherwise a new one with this description) and whether "don't show again" is ticked.
struct ChangelistAnswer {
    QString button;
    QString newChangelist = {};
    bool tick = false;
};

// Checks the title, lets inspect look at the dialog, then answers.
inline DialogDriver::Handler answerChangelistDialog(const QString& title, ChangelistAnswer answer,
                                                    std::function<void(QWidget*)> inspect = {})
{
    return [=](QWidget* dialog) {
        EXPECT_EQ(dialog->windowTitle(), title);
        if (inspect)
            inspect(dialog);
        if (!answer.newChangelist.isEmpty()) {
            auto* combo = dialog->findChild<QComboBox*>(QStringLiteral("changeListCombo"));
            ASSERT_NE(combo, nullptr);
            combo->setCurrentIndex(0);
            QTest::keyClicks(dialog->findChild<QTextEdit*>(QStringLiteral("descriptionEdit")), answer.newChangelist);
        }
        dialog->findChild<QCheckBox*>(QStringLiteral("dontShowAgain"))->setChecked(answer.tick);
        press(dialog, answer.button);
    };
}

inline const QString kSessionExpired = QStringLiteral("Source control session expired. Password required to re-connect.");

// Types password into the password dialog and presses Ok; an empty password presses Cancel.
// reason is the text the dialog must show above the field.
inline DialogDriver::Handler answerPassword(const QString& password, const QString& reason = kSessionExpired)
{
    return [=](QWidget* dialog) {
        EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Data Source Password Required"));
        QStringList labels;
        for (QLabel* label : dialog->findChildren<QLabel*>())
            labels << label->text();
        EXPECT_TRUE(labels.contains(reason)) << labels.join(QLatin1Char('|')).toStdString();
        if (password.isEmpty())
            return press(dialog, QStringLiteral("Cancel"));
        QTest::keyClicks(dialog->findChild<QLineEdit*>(), password);
        press(dialog, QStringLiteral("Ok"));
    };
}

// --- the fixture ------------------------------------------------------------------------------------

class RevisionHostFixture : public ServerHostFixture
{
public:
    // The stored action values: none, prompt, check out, make writable.
    enum StoredAction { kNone = 0, kPrompt = 1, kCheckOut = 2, kMakeWritable = 3 };

    void SetUp() override
    {
        ServerHostFixture::SetUp();
        // Straight into the preferences: the settings' own setter would hand the data control a
        // new account without alice's session.
        SetRevisionControl(true);
    }
    void TearDown() override
    {
        ExpectDriverFinished();
        ServerHostFixture::TearDown();
    }
    void ExpectDriverFinished() const
    {
        EXPECT_TRUE(driver.finished()) << driver.failures().join(QLatin1Char('\n')).toStdString()
                                       << " seen: " << driver.seenTitles().join(QLatin1Char(',')).toStdString();
    }

    // --- the settings, as the preferences keep them ---------------------------------------------------
    void SetRevisionControl(bool on) { host->Preferences().SetBoolPref("RevControl.UseSourceDataControl", on, 1); }
    void StoreAction(StoredAction action, const std::string& changelist = {})
    {
        host->Preferences().SetIntPref("RevControl.ActionWhenEditingReadOnlyAsset", action, 1);
        host->Preferences().SetStringPref("RevControl.ChangeListToUseWhenAutoCheckingOut", changelist, 1);
    }
    int StoredActionNow() const
    {
        int action = -1;
        host->Preferences().GetIntPref("RevControl.ActionWhenEditingReadOnlyAsset", -1, action, 0);
        return action;
    }
    std::string StoredChangelist() const
    {
        std::string changelist = "<none>";
        host->Preferences().GetStringPref("RevControl.ChangeListToUseWhenAutoCheckingOut", "<none>", changelist, 0);
        return changelist;
    }
    void SetPromptForChangelist(bool prompt)
    {
        host->Preferences().SetBoolPref("RevControl.PromptForChangeListWhenCheckingOut", prompt, 1);
    }
    bool PromptsForChangelist() const
    {
        bool prompt = false;
        host->Preferences().GetBoolPref("RevControl.PromptForChangeListWhenCheckingOut", true, prompt, 0);
        return prompt;
    }

    // --- revision state of alice's files -------------------------------------------------------------
    // Where alice has each file of the asset checked out: its changelist, or "-" when it is not.
    std::vector<std::string> OpenedIn(const std::string& asset) const
    {
        std::vector<std::string> where;
        for (const FileState& state : StatesOf(FilesOf(asset)))
            where.push_back(state.status & kel4::eStatusCheckedOut ? state.changelist : "-");
        return where;
    }
    bool AllWritable(const std::string& asset) const
    {
        const std::vector<bool> files = Writable(FilesOf(asset));
        return std::find(files.begin(), files.end(), false) == files.end();
    }
    std::string ChangelistDescription(const std::string& changelist) const
    {
        std::string description, error;
        DataControl()->GetChangeListDescription(changelist, description, error);
        return description;
    }
    // Turns alice's file into a read-only entry whose mode nobody may change, not even root;
    // false when the system has no such entry.
    bool MakeUnchangeable(const std::string& relativePath) const
    {
        const QString unchangeable = QStringLiteral("/proc/sys/kernel/osrelease");
        const QString file = QString::fromStdString(AlicePath(relativePath));
        return QFileInfo::exists(unchangeable) && QFile::remove(file) && QFile::link(unchangeable, file);
    }
    void BobEdits(const std::string& asset) { BobExpects(Bob().edit(BobTicket(), BobFilesOf(asset), "")); }
    void BobReverts(const std::string& asset) { BobExpects(Bob().revert(BobTicket(), BobFilesOf(asset))); }

    std::unique_ptr<QWidget> window = std::make_unique<QWidget>();  // makes the session interactive
    DialogDriver driver;
};

}  // namespace hbrc::test
