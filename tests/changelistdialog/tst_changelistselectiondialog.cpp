// The changelist selection dialog, driven as a user drives it, over a scripted data control.
// Creating changelists through "New" is exercised over the real depot (tst_changelistdialoginhost).
#include "hbchangelistselectiondialog.h"

#include <dialogdriver.h>
#include <hostmocks.h>

#include <qtextention/fileexplorer.h>
#include <qtextention/qfilelistwidget.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTextEdit>

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

using hbrc::test::DialogDriver;
using hbrc::test::MockDataControl;
using ::testing::_;
using ::testing::DoAll;
using ::testing::NiceMock;
using ::testing::Return;
using ::testing::SetArgReferee;
using ::testing::StrictMock;

namespace {

using Dialog = hbChangeListSelectionDialog;

struct ChangeList {
    std::string id;
    std::string description;
    bool describable = true;
};

class ChangeListDialogTest : public ::testing::Test
{
protected:
    // The session's pending changelists, in the order the data control lists them.
    void offer(const std::vector<ChangeList>& changeLists)
    {
        kel4::List<std::string> ids;
        for (const ChangeList& c : changeLists) {
            ids.push_back(c.id);
            ON_CALL(*dataControl, GetChangeListDescription(c.id, _, _))
                .WillByDefault(DoAll(SetArgReferee<1>(c.description),
                                     Return(kelResult(c.describable ? 0 : kel4::kResultFailed))));
        }
        ON_CALL(*dataControl, GetPendingChangeLists(_, _)).WillByDefault(DoAll(SetArgReferee<0>(ids), Return(0)));
    }

    std::unique_ptr<Dialog> changeListDialog(const std::set<std::string>& files = {}, bool filesVisible = false)
    {
        return std::make_unique<Dialog>(KELPtr<kel4::IDataControl>(dataControl.Get()), QString(), files,
                                        filesVisible, true, nullptr);
    }

    KELPtr<NiceMock<MockDataControl>> dataControl{new NiceMock<MockDataControl>};
};

QComboBox* combo(const Dialog& d) { return d.findChild<QComboBox*>(QStringLiteral("changeListCombo")); }
QTextEdit* descriptionEdit(const Dialog& d) { return d.findChild<QTextEdit*>(QStringLiteral("descriptionEdit")); }
QCheckBox* optionBox(const Dialog& d) { return d.findChild<QCheckBox*>(QStringLiteral("dontShowAgain")); }

QStringList comboTexts(const Dialog& d)
{
    QStringList texts;
    for (int i = 0; i < combo(d)->count(); ++i)
        texts << combo(d)->itemText(i);
    return texts;
}

QPushButton* button(const QWidget* d, const QString& text)
{
    for (QPushButton* b : d->findChildren<QPushButton*>())
        if (b->text() == text)
            return b;
    return nullptr;
}

// Runs the dialog modally; act does what the user does inside it. Returns exec()'s result.
int runDialog(Dialog& dialog, const std::function<void(Dialog&)>& act)
{
    DialogDriver driver;
    driver.expect(QStringLiteral("changelist dialog"), [&](QWidget* modal) {
        ASSERT_EQ(modal, &dialog);
        act(dialog);
    });
    const int result = dialog.exec();
    EXPECT_TRUE(driver.finished()) << driver.failures().join(QLatin1Char('\n')).toStdString();
    return result;
}

TEST_F(ChangeListDialogTest, WithoutPendingChangeListsOffersNewAndDefaultWithDefaultSelected)
{
    auto dialog = changeListDialog();
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Select Pending ChangeList"));
    EXPECT_EQ(comboTexts(*dialog), (QStringList{QStringLiteral("New"), QStringLiteral("Default")}));
    EXPECT_EQ(combo(*dialog)->currentIndex(), 1);
    EXPECT_FALSE(combo(*dialog)->itemData(0).isValid());
    EXPECT_FALSE(combo(*dialog)->itemData(1).isValid());
    EXPECT_FALSE(descriptionEdit(*dialog)->isEnabled());
    EXPECT_FALSE(descriptionEdit(*dialog)->isReadOnly());
}

TEST_F(ChangeListDialogTest, AFailedListingAddsNothing)
{
    kel4::List<std::string> ids{"12"};
    ON_CALL(*dataControl, GetPendingChangeLists(_, _))
        .WillByDefault(DoAll(SetArgReferee<0>(ids), Return(kelResult(kel4::kResultSessionUnusable))));
    EXPECT_CALL(*dataControl, GetChangeListDescription(_, _, _)).Times(0);
    auto dialog = changeListDialog();
    EXPECT_EQ(comboTexts(*dialog), (QStringList{QStringLiteral("New"), QStringLiteral("Default")}));
}

TEST_F(ChangeListDialogTest, StopsAtTheFirstChangeListWhoseDescriptionFails)
{
    offer({{"12", "first"}, {"13", "second", false}, {"14", "third"}});
    EXPECT_CALL(*dataControl, GetChangeListDescription(_, _, _)).Times(2);  // "12" and "13", never "14"
    auto dialog = changeListDialog();
    EXPECT_EQ(comboTexts(*dialog), (QStringList{"New", "Default", "12 first"}));
    EXPECT_EQ(combo(*dialog)->currentIndex(), 1);
}

TEST_F(ChangeListDialogTest, ALongDescriptionIsCutInTheComboAndWholeInTheEditor)
{
    const std::string description(120, 'd');
    offer({{"4711", description}});
    auto dialog = changeListDialog();
    const QString label = combo(*dialog)->itemText(2);
    EXPECT_EQ(label.toStdString(), ("4711 " + description).substr(0, 80));

    combo(*dialog)->setCurrentIndex(2);
    QTextEdit* editor = descriptionEdit(*dialog);
    EXPECT_EQ(editor->toPlainText().toStdString(), description);
    EXPECT_TRUE(editor->isEnabled());
    EXPECT_TRUE(editor->isReadOnly());
}

TEST_F(ChangeListDialogTest, ACutNeverSplitsACharacter)
{
    // "7 " and 77 ASCII bytes reach byte 79; the two-byte "é" would straddle the cut.
    offer({{"7", std::string(77, 'a') + "\xC3\xA9tail"}});
    auto dialog = changeListDialog();
    EXPECT_EQ(combo(*dialog)->itemText(2).toStdString(), "7 " + std::string(77, 'a'));
}

TEST_F(ChangeListDialogTest, SelectingNewAndDefaultPreparesTheEditor)
{
    offer({{"12", "first"}});
    auto dialog = changeListDialog();
    QTextEdit* editor = descriptionEdit(*dialog);
    combo(*dialog)->setCurrentIndex(2);
    combo(*dialog)->setCurrentIndex(0);
    EXPECT_TRUE(editor->isEnabled());
    EXPECT_FALSE(editor->isReadOnly());
    EXPECT_TRUE(editor->toPlainText().isEmpty());

    QTest::keyClicks(editor, QStringLiteral("typed"));
    combo(*dialog)->setCurrentIndex(1);
    EXPECT_FALSE(editor->isEnabled());
    EXPECT_TRUE(editor->toPlainText().isEmpty());
}

TEST_F(ChangeListDialogTest, RefreshListsChangeListsCreatedMeanwhile)
{
    auto dialog = changeListDialog();
    offer({{"20", "made elsewhere"}});
    QTest::mouseClick(button(dialog.get(), QStringLiteral("Refresh")), Qt::LeftButton);
    EXPECT_EQ(comboTexts(*dialog), (QStringList{"New", "Default", "20 made elsewhere"}));
    EXPECT_EQ(combo(*dialog)->currentIndex(), 1);
}

struct ChoiceCase {
    const char* name;
    std::vector<ChangeList> offered;
    int index;
    std::string expected;
};

class ChangeListChoice : public ChangeListDialogTest, public ::testing::WithParamInterface<ChoiceCase>
{
};

TEST_P(ChangeListChoice, CheckOutReturnsZeroWithTheIdentifierBeforeTheFirstBlankOrControlByte)
{
    offer(GetParam().offered);
    auto dialog = changeListDialog();
    const int result = runDialog(*dialog, [&](Dialog& d) {
        combo(d)->setCurrentIndex(GetParam().index);
        QTest::mouseClick(button(&d, QStringLiteral("Check Out")), Qt::LeftButton);
    });
    EXPECT_EQ(result, Dialog::UseChangeList);
    EXPECT_EQ(dialog->getChangeList(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ChangeListChoice,
    ::testing::Values(ChoiceCase{"DefaultIsTheEmptyChangeList", {{"12", "first"}}, 1, ""},
                      ChoiceCase{"PendingChangeList", {{"12", "first"}, {"345", "second"}}, 3, "345"},
                      ChoiceCase{"IdentifierFollowedByATab", {{"77\tshelved", "x"}}, 2, "77"},
                      ChoiceCase{"IdentifierFollowedByAControlByte", {{"78\x01y", "x"}}, 2, "78"},
                      ChoiceCase{"EmptyIdentifier", {{"", "nameless"}}, 2, ""}),
    [](const auto& info) { return std::string(info.param.name); });

struct ButtonCase {
    const char* name;
    std::function<void(Dialog&)> press;
    int expected;
};

class ResultCode : public ChangeListDialogTest, public ::testing::WithParamInterface<ButtonCase>
{
};

TEST_P(ResultCode, EachWayOutReturnsItsCodeUnderAnArrowCursor)
{
    auto dialog = changeListDialog();
    dialog->includeContinueButton(true);
    dialog->includeMakeWritableButton(true);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    Qt::CursorShape shapeInside = Qt::WaitCursor;
    const int result = runDialog(*dialog, [&](Dialog& d) {
        shapeInside = QApplication::overrideCursor()->shape();
        GetParam().press(d);
    });
    const Qt::CursorShape shapeAfter = QApplication::overrideCursor()->shape();
    QApplication::restoreOverrideCursor();
    EXPECT_EQ(result, GetParam().expected);
    EXPECT_EQ(shapeInside, Qt::ArrowCursor);
    EXPECT_EQ(shapeAfter, Qt::WaitCursor);
}

void click(Dialog& d, const char* text)
{
    QPushButton* b = button(&d, QString::fromLatin1(text));
    ASSERT_NE(b, nullptr) << text;
    QTest::mouseClick(b, Qt::LeftButton);
}

INSTANTIATE_TEST_SUITE_P(
    Buttons, ResultCode,
    ::testing::Values(ButtonCase{"CheckOut", [](Dialog& d) { click(d, "Check Out"); }, 0},
                      ButtonCase{"Continue", [](Dialog& d) { click(d, "Continue"); }, 1},
                      ButtonCase{"Cancel", [](Dialog& d) { click(d, "Cancel"); }, 2},
                      ButtonCase{"MakeWritable", [](Dialog& d) { click(d, "Make Writable"); }, 3},
                      ButtonCase{"ClosingTheWindow", [](Dialog& d) { d.close(); }, 2},
                      ButtonCase{"Escape", [](Dialog& d) { QTest::keyClick(&d, Qt::Key_Escape); }, 2}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(ChangeListDialogTest, ReadOnlyModeAsksTheDataControlNothing)
{
    KELPtr<StrictMock<MockDataControl>> strict{new StrictMock<MockDataControl>};
    Dialog dialog(KELPtr<kel4::IDataControl>(strict.Get()), QStringLiteral("Rock\nTree\n"), {"/w/rock.kel"}, false,
                  false, nullptr);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Read-Only Assets"));
    EXPECT_EQ(combo(dialog), nullptr);
    EXPECT_EQ(descriptionEdit(dialog), nullptr);
    EXPECT_EQ(button(&dialog, QStringLiteral("Refresh")), nullptr);
    EXPECT_FALSE(button(&dialog, QStringLiteral("Check Out"))->isEnabled());
    EXPECT_TRUE(button(&dialog, QStringLiteral("Continue"))->isHidden());
    EXPECT_TRUE(button(&dialog, QStringLiteral("Make Writable"))->isHidden());
    auto* assets = dialog.findChild<QTextEdit*>(QStringLiteral("assetsEdit"));
    ASSERT_NE(assets, nullptr);
    EXPECT_EQ(assets->toPlainText(), QStringLiteral("Rock\nTree\n"));
    EXPECT_TRUE(assets->isReadOnly());
    EXPECT_EQ(assets->lineWrapMode(), QTextEdit::NoWrap);
}

TEST_F(ChangeListDialogTest, AnEmptyAssetsTextLeavesOutTheAssetsLabelAndEditor)
{
    auto dialog = changeListDialog();
    EXPECT_EQ(dialog->findChild<QTextEdit*>(QStringLiteral("assetsEdit")), nullptr);
    for (QLabel* label : dialog->findChildren<QLabel*>())
        EXPECT_NE(label->text(), QStringLiteral("Assets:"));
}

TEST_F(ChangeListDialogTest, WithoutADataControlChangeListModeRaisesAndReadOnlyModeDoesNot)
{
    kel4::DisableErrorReportingGuard quiet;
    EXPECT_THROW(Dialog(KELPtr<kel4::IDataControl>(), QString(), {}, false, true, nullptr), kel4::ExBase::NullPtr);
    EXPECT_NO_THROW(Dialog(KELPtr<kel4::IDataControl>(), QString(), {}, false, false, nullptr));
}

struct OptionCase {
    const char* name;
    std::vector<std::pair<bool, bool>> calls;  // (continue button?, include?)
    const char* expected;
};

class OptionLabel : public ChangeListDialogTest, public ::testing::WithParamInterface<OptionCase>
{
};

TEST_P(OptionLabel, TheLastIncludeCallDecidesTheCheckBoxText)
{
    auto dialog = changeListDialog();
    for (const auto& [isContinue, include] : GetParam().calls) {
        if (isContinue)
            dialog->includeContinueButton(include);
        else
            dialog->includeMakeWritableButton(include);
    }
    EXPECT_EQ(optionBox(*dialog)->text().toStdString(), GetParam().expected);
}

constexpr const char* kThisChangeList = "Don't show this dialog again (always use this changelist)";
constexpr const char* kThisOption = "Don't show this dialog again (always use this option)";

INSTANTIATE_TEST_SUITE_P(
    Rows, OptionLabel,
    ::testing::Values(OptionCase{"Initially", {}, kThisChangeList},
                      OptionCase{"ContinueShown", {{true, true}}, kThisOption},
                      OptionCase{"MakeWritableShown", {{false, true}}, kThisOption},
                      OptionCase{"ContinueThenMakeWritableHidden", {{true, true}, {false, false}}, kThisChangeList},
                      OptionCase{"MakeWritableHiddenThenContinueShown", {{false, false}, {true, true}}, kThisOption}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(ChangeListDialogTest, TheCheckBoxAndTheCheckOutTextAreReadBack)
{
    auto dialog = changeListDialog();
    EXPECT_FALSE(dialog->getDontShowThisDialogAgainCheckBox());
    QTest::mouseClick(optionBox(*dialog), Qt::LeftButton, {}, QPoint(4, optionBox(*dialog)->height() / 2));
    EXPECT_TRUE(dialog->getDontShowThisDialogAgainCheckBox());
    dialog->setCheckOutText(QStringLiteral("Mark for Add"));
    EXPECT_NE(button(dialog.get(), QStringLiteral("Mark for Add")), nullptr);
}

TEST_F(ChangeListDialogTest, SetInfoShowsTheLabelOnlyWithText)
{
    auto dialog = changeListDialog();
    auto* info = dialog->findChild<QLabel*>(QStringLiteral("infoLabel"));
    EXPECT_TRUE(info->isHidden());
    dialog->setInfo(QStringLiteral("3 assets are read-only"));
    EXPECT_FALSE(info->isHidden());
    EXPECT_EQ(info->text(), QStringLiteral("3 assets are read-only"));
    dialog->setInfo(QString());
    EXPECT_TRUE(info->isHidden());
}

TEST_F(ChangeListDialogTest, TheFilesButtonTogglesTheFileList)
{
    auto dialog = changeListDialog({"/w/tree.kel", "/w/rock.kel", "/w/r\xC3\xB6" "ck.bin"}, true);
    auto* files = dialog->findChild<QFileListWidget*>(QStringLiteral("fileList"));
    ASSERT_EQ(files->topLevelItemCount(), 3);
    QStringList paths;
    for (int i = 0; i < files->topLevelItemCount(); ++i)
        paths << files->topLevelItem(i)->text(0);
    EXPECT_TRUE(paths.contains(QStringLiteral("/w/r\u00f6ck.bin")));
    EXPECT_FALSE(files->isHidden());

    QTest::mouseClick(button(dialog.get(), QStringLiteral("Hide Files")), Qt::LeftButton);
    EXPECT_TRUE(files->isHidden());
    QTest::mouseClick(button(dialog.get(), QStringLiteral("Show Files")), Qt::LeftButton);
    EXPECT_FALSE(files->isHidden());
    EXPECT_NE(button(dialog.get(), QStringLiteral("Hide Files")), nullptr);
}

TEST_F(ChangeListDialogTest, ShowFilesInExplorerRevealsTheFirstFileOfTheSortedSet)
{
    std::vector<ProgramStart> started;
    ProgramLauncher previous = SetProgramLauncher([&](const ProgramStart& s) { started.push_back(s); });
    auto dialog = changeListDialog({"/w/trees/oak.kel", "/w/rocks/granite.kel"});
    dialog->showFilesInExplorer();
    SetProgramLauncher(previous);
    const ProgramStart expected =
        RevealFileCommand(QStringLiteral("/w/rocks/granite.kel"), CurrentFileBrowserPlatform());
    ASSERT_EQ(started.size(), 1u);
    EXPECT_EQ(started.front().program, expected.program);
    EXPECT_EQ(started.front().arguments, expected.arguments);
}

}  // namespace
