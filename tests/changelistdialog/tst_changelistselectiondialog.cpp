// The changelist selection dialog, driven as a user drives it, over a scripted data control; and
// the plug-in's dialogs driven from the keyboard alone under both dark styles (which give buttons
// and check boxes no focus of their own): Tab reaches every control, Return presses a button that
// can act, Escape cancels. Creating changelists through "New" is exercised over the real servers
// by the edit flows and the save hooks, a creation that fails in tst_changelistdialoginhost.
#include "changelistdialogui.h"
#include "hbpasswordrequireddialog.h"
#include "plugintranslation.h"

#include <hostmocks.h>

#include <qtextention/fileexplorer.h>
#include <qtextention/qfilelistwidget.h>
#include <qtextention/qtlomdarkstylesimple.h>
#include <qtextention/qtlomdarkstyletarn.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>
#include <QTranslator>

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <utility>
#include <vector>

using namespace hbrc::test;
using ::testing::_;
using ::testing::DoAll;
using ::testing::NiceMock;
using ::testing::Return;
using ::testing::SetArgReferee;

namespace {

using Dialog = hbChangeListSelectionDialog;

struct ChangeList {
    std::string id;
    std::string description;
    bool describable = true;
};

QCheckBox* optionBox(const Dialog& d) { return d.findChild<QCheckBox*>(QStringLiteral("dontShowAgain")); }

std::function<void(Dialog&)> clicking(const char* text)
{
    return [text](Dialog& d) { click(d, QString::fromLatin1(text)); };
}

class ChangeListDialogTest : public ::testing::Test
{
protected:
    // The session's pending changelists, in the order the data control lists them.
    void offer(const std::vector<ChangeList>& changeLists, int listingResult = 0)
    {
        kel4::List<std::string> ids;
        for (const ChangeList& c : changeLists) {
            ids.push_back(c.id);
            ON_CALL(*dataControl, GetChangeListDescription(c.id, _, _))
                .WillByDefault(DoAll(SetArgReferee<1>(c.description),
                                     Return(kelResult(c.describable ? 0 : kel4::kResultFailed))));
        }
        ON_CALL(*dataControl, GetPendingChangeLists(_, _))
            .WillByDefault(DoAll(SetArgReferee<0>(ids), Return(kelResult(listingResult))));
    }

    std::unique_ptr<Dialog> changeListDialog(const std::set<std::string>& files = {}, bool filesVisible = false,
                                             const QString& assets = {}, bool selectChangeList = true)
    {
        return std::make_unique<Dialog>(KELPtr<kel4::IDataControl>(dataControl.Get()), assets, files,
                                        filesVisible, selectChangeList, nullptr);
    }

    KELPtr<NiceMock<MockDataControl>> dataControl{new NiceMock<MockDataControl>};
};

struct ListingCase {
    const char* name;
    std::vector<ChangeList> offered;
    int listingResult;
    QStringList expected;  // after "New" and "Default"
};

class ComboListing : public ChangeListDialogTest, public ::testing::WithParamInterface<ListingCase>
{
};

TEST_P(ComboListing, OffersNewAndDefaultThenEachDescribedChangeListWithDefaultSelected)
{
    offer(GetParam().offered, GetParam().listingResult);
    auto dialog = changeListDialog();
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Select Pending ChangeList"));
    EXPECT_EQ(comboTexts(*dialog), QStringList({"New", "Default"}) + GetParam().expected);
    EXPECT_EQ(combo(*dialog)->currentIndex(), 1);
}

const std::string kLong(120, 'd');
const std::string kSplitCharacter = std::string(77, 'a') + "\xC3\xA9tail";  // "é" straddles byte 80

INSTANTIATE_TEST_SUITE_P(
    Rows, ComboListing,
    ::testing::Values(
        ListingCase{"NoPendingChangeLists", {}, 0, {}},
        ListingCase{"AFailedListingAddsNothing", {{"12", "first"}}, kel4::kResultSessionUnusable, {}},
        ListingCase{"StopsAtTheFirstChangeListWhoseDescriptionFails",
                    {{"12", "first"}, {"13", "second", false}, {"14", "third"}}, 0, {"12 first"}},
        ListingCase{"ALongDescriptionIsCutTo80Bytes", {{"4711", kLong}}, 0,
                    {QString::fromStdString(("4711 " + kLong).substr(0, 80))}},
        ListingCase{"ACutNeverSplitsACharacter", {{"7", kSplitCharacter}}, 0,
                    {QString::fromStdString("7 " + std::string(77, 'a'))}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(ChangeListDialogTest, RefreshListsNewChangeListsAndTheEditorFollowsTheSelection)
{
    auto dialog = changeListDialog();
    offer({{"4711", kLong}});
    click(*dialog, QStringLiteral("Refresh"));
    EXPECT_EQ(comboTexts(*dialog).size(), 3);
    EXPECT_EQ(combo(*dialog)->currentIndex(), 1);

    QTextEdit* editor = descriptionEdit(*dialog);
    EXPECT_FALSE(editor->isEnabled());
    combo(*dialog)->setCurrentIndex(2);
    EXPECT_EQ(editor->toPlainText().toStdString(), kLong);
    EXPECT_TRUE(editor->isEnabled());
    EXPECT_TRUE(editor->isReadOnly());
    combo(*dialog)->setCurrentIndex(0);
    EXPECT_TRUE(editor->isEnabled());
    EXPECT_FALSE(editor->isReadOnly());
    EXPECT_TRUE(editor->toPlainText().isEmpty());
    QTest::keyClicks(editor, QStringLiteral("typed"));
    combo(*dialog)->setCurrentIndex(1);
    EXPECT_FALSE(editor->isEnabled());
    EXPECT_TRUE(editor->toPlainText().isEmpty());
}

struct WayOutCase {
    const char* name;
    std::vector<ChangeList> offered;
    int index;
    std::function<void(Dialog&)> press;
    int expectedCode;
    std::string expectedChangeList;
};

class WayOut : public ChangeListDialogTest, public ::testing::WithParamInterface<WayOutCase>
{
};

TEST_P(WayOut, ReturnsItsCodeAndChangeListUnderAnArrowCursor)
{
    const WayOutCase& c = GetParam();
    offer(c.offered);
    auto dialog = changeListDialog();
    dialog->includeContinueButton(true);
    dialog->includeMakeWritableButton(true);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    Qt::CursorShape shapeInside = Qt::WaitCursor;
    const int result = runDialog(*dialog, [&] {
        shapeInside = QApplication::overrideCursor()->shape();
        combo(*dialog)->setCurrentIndex(c.index);
        c.press(*dialog);
    });
    const Qt::CursorShape shapeAfter = QApplication::overrideCursor()->shape();
    QApplication::restoreOverrideCursor();
    EXPECT_EQ(result, c.expectedCode);
    EXPECT_EQ(dialog->getChangeList(), c.expectedChangeList);
    EXPECT_EQ(shapeInside, Qt::ArrowCursor);
    EXPECT_EQ(shapeAfter, Qt::WaitCursor);
}

const std::vector<ChangeList> kTwo{{"12", "first"}, {"345", "second"}};

// Check Out takes the identifier up to the first blank or control byte.
INSTANTIATE_TEST_SUITE_P(
    Rows, WayOut,
    ::testing::Values(WayOutCase{"DefaultIsTheEmptyChangeList", kTwo, 1, clicking("Check Out"), 0, ""},
                      WayOutCase{"PendingChangeList", kTwo, 3, clicking("Check Out"), 0, "345"},
                      WayOutCase{"IdentifierFollowedByATab", {{"77\tshelved", "x"}}, 2, clicking("Check Out"), 0, "77"},
                      WayOutCase{"IdentifierFollowedByAControlByte", {{"78\x01y", "x"}}, 2, clicking("Check Out"), 0,
                                 "78"},
                      WayOutCase{"EmptyIdentifier", {{"", "nameless"}}, 2, clicking("Check Out"), 0, ""},
                      WayOutCase{"Continue", kTwo, 2, clicking("Continue"), 1, ""},
                      WayOutCase{"Cancel", kTwo, 2, clicking("Cancel"), 2, ""},
                      WayOutCase{"MakeWritable", kTwo, 2, clicking("Make Writable"), 3, ""},
                      WayOutCase{"ClosingTheWindow", kTwo, 2, [](Dialog& d) { d.close(); }, 2, ""}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ReadOnlyAssetsDialog, ShowsTheAssetsAndAsksTheDataControlNothing)
{
    KELPtr<::testing::StrictMock<MockDataControl>> strict{new ::testing::StrictMock<MockDataControl>};
    Dialog dialog(KELPtr<kel4::IDataControl>(strict.Get()), QStringLiteral("Rock\nTree\n"), {"/w/rock.kel"}, false,
                  false, nullptr);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Read-Only Assets"));
    auto* assets = dialog.findChild<QTextEdit*>(QStringLiteral("assetsEdit"));
    ASSERT_NE(assets, nullptr);
    EXPECT_EQ(assets->toPlainText(), QStringLiteral("Rock\nTree\n"));
    EXPECT_TRUE(assets->isReadOnly());

    kel4::DisableErrorReportingGuard quiet;  // only the changelist mode needs a data control
    EXPECT_NO_THROW(Dialog(KELPtr<kel4::IDataControl>(), QString(), {}, false, false, nullptr));
    EXPECT_THROW(Dialog(KELPtr<kel4::IDataControl>(), QString(), {}, false, true, nullptr), kel4::ExBase::NullPtr);
}

// The check box names the changelist until the last include call shows a button, in either order.
// (What ticking it does is checked by the edit flows and the save hooks.)
TEST_F(ChangeListDialogTest, TheCheckBoxNamesWhatItKeepsAndTheInfoLineShowsOnlyWithAText)
{
    auto dialog = changeListDialog();
    const auto label = [&] { return optionBox(*dialog)->text().toStdString(); };
    const std::string thisChangeList = "Don't show this dialog again (always use this changelist)";
    const std::string thisOption = "Don't show this dialog again (always use this option)";
    EXPECT_EQ(label(), thisChangeList);
    dialog->includeMakeWritableButton(true);
    EXPECT_EQ(label(), thisOption);
    dialog->includeContinueButton(true);
    dialog->includeMakeWritableButton(false);
    EXPECT_EQ(label(), thisChangeList);
    dialog->includeContinueButton(true);
    EXPECT_EQ(label(), thisOption);
    dialog->includeContinueButton(false);
    EXPECT_EQ(label(), thisChangeList);

    // The info line shows only when there is something to say.
    auto* info = dialog->findChild<QLabel*>(QStringLiteral("infoLabel"));
    EXPECT_TRUE(info->isHidden());
    dialog->setInfo(QStringLiteral("3 assets are read-only"));
    EXPECT_FALSE(info->isHidden());
    dialog->setInfo(QString());
    EXPECT_TRUE(info->isHidden());
}

TEST_F(ChangeListDialogTest, TheFilesAreListedToggledAndTheFirstRevealedInTheFileBrowser)
{
    auto dialog = changeListDialog({"/w/trees/oak.kel", "/w/rocks/granite.kel", "/w/r\xC3\xB6" "ck.bin"}, true);
    auto* files = dialog->findChild<QFileListWidget*>(QStringLiteral("fileList"));
    EXPECT_EQ(files->topLevelItemCount(), 3);
    EXPECT_EQ(files->findItems(QStringLiteral("/w/r\u00f6ck.bin"), Qt::MatchExactly).size(), 1);
    for (const bool hidden : {false, true, false}) {  // the button names what it does next
        EXPECT_EQ(files->isHidden(), hidden);
        click(*dialog, hidden ? QStringLiteral("Show Files") : QStringLiteral("Hide Files"));
    }

    std::vector<ProgramStart> started;
    ProgramLauncher previous = SetProgramLauncher([&](const ProgramStart& s) { started.push_back(s); });
    dialog->showFilesInExplorer();
    SetProgramLauncher(previous);
    const ProgramStart expected =  // the first file of the byte-sorted set
        RevealFileCommand(QStringLiteral("/w/rocks/granite.kel"), CurrentFileBrowserPlatform());
    ASSERT_EQ(started.size(), 1u);
    EXPECT_EQ(started.front().program, expected.program);
    EXPECT_EQ(started.front().arguments, expected.arguments);
}

// A German host sees the dialog in German (the combo's "New" and "Default" stay as they are, as
// the hooks compare them); the other tests see the dialog's own words once it is removed.
TEST_F(ChangeListDialogTest, SpeaksGermanWithThePluginsTranslation)
{
    std::unique_ptr<QTranslator> german = hbrc::internal::LoadPluginTranslator(QLocale(QLocale::German));
    ASSERT_NE(german, nullptr) << "the plug-in carries a German translation";
    EXPECT_EQ(hbrc::internal::LoadPluginTranslator(QLocale(QLocale::Japanese)), nullptr);
    QCoreApplication::installTranslator(german.get());
    auto translated = changeListDialog();
    QCoreApplication::removeTranslator(german.get());
    EXPECT_EQ(translated->windowTitle(), QStringLiteral("Ausstehende \u00c4nderungsliste ausw\u00e4hlen"));
    EXPECT_NE(button(*translated, QStringLiteral("Auschecken")), nullptr);
    EXPECT_EQ(comboTexts(*translated).mid(0, 2), (QStringList{QStringLiteral("New"), QStringLiteral("Default")}));
}

enum class DarkStyle { Simple, Tarn };

class DialogKeyboard : public ChangeListDialogTest, public ::testing::WithParamInterface<DarkStyle>
{
protected:
    void SetUp() override
    {
        m_previousStyle = QApplication::style()->name();
        QApplication::setStyle(GetParam() == DarkStyle::Simple ? static_cast<QStyle*>(new QtlomDarkStyleSimple)
                                                               : new QtlomDarkStyleTarn);
    }
    void TearDown() override { QApplication::setStyle(m_previousStyle); }

private:
    QString m_previousStyle;
};

// A control as the keyboard tests name it: its object name, else a button's text, else its class.
QString controlName(const QWidget* widget)
{
    if (!widget->objectName().isEmpty())
        return widget->objectName();
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    return button ? button->text() : QString::fromLatin1(widget->metaObject()->className());
}

// One way a dialog is shown: what it offers, what is typed into the control that has the focus,
// what Tab reaches from there (one full round back to it), and what the key pressed there gives.
struct KeyboardCase {
    const char* name;
    std::function<std::unique_ptr<QDialog>()> open;
    QString typed;
    std::set<QString> tabReaches;
    Qt::Key key;
    int result;
};

// Buttons and check boxes are in the Tab chain although the dark styles leave them out; a disabled
// or hidden control is not. Return presses the first offered choice; Escape cancels.
TEST_P(DialogKeyboard, TabReachesEveryOfferedControlAndReturnPressesTheFirstChoice)
{
    const auto changeList = [this](const QString& assets, bool selectChangeList, bool continueOffered,
                                   bool makeWritableOffered) {
        return [=]() -> std::unique_ptr<QDialog> {
            auto dialog = changeListDialog({"/ws/rock.kel"}, false, assets, selectChangeList);
            dialog->includeContinueButton(continueOffered);
            dialog->includeMakeWritableButton(makeWritableOffered);
            return dialog;
        };
    };
    const QString rock = QStringLiteral("Rock\nSky");
    const KeyboardCase cases[] = {
        {"changelist (the description is disabled while Default is selected)", changeList({}, true, false, false), {},
         {"changeListCombo", "showFilesButton", "refreshButton", "checkOutButton", "cancelButton", "dontShowAgain"},
         Qt::Key_Return, Dialog::UseChangeList},
        {"changelist with assets, Escape", changeList(rock, true, false, false), {},
         {"changeListCombo", "assetsEdit", "showFilesButton", "refreshButton", "checkOutButton", "cancelButton",
          "dontShowAgain"},
         Qt::Key_Escape, Dialog::Cancelled},
        {"read-only with both choices", changeList(rock, false, true, true), {},
         {"assetsEdit", "showFilesButton", "continueButton", "makeWritableButton", "cancelButton", "dontShowAgain"},
         Qt::Key_Return, Dialog::ContinueWithoutAction},
        {"read-only, make writable only", changeList(rock, false, false, true), {},
         {"assetsEdit", "showFilesButton", "makeWritableButton", "cancelButton", "dontShowAgain"}, Qt::Key_Return,
         Dialog::MakeWritable},
        {"read-only, nothing offered", changeList(rock, false, false, false), {},
         {"assetsEdit", "showFilesButton", "cancelButton", "dontShowAgain"}, Qt::Key_Return, Dialog::Cancelled},
        {"password, once typed", [] { return std::make_unique<PasswordRequiredDialog>(nullptr); }, "secret",
         {"QLineEdit", "Ok", "Cancel"}, Qt::Key_Return, QDialog::Accepted},
    };
    for (const KeyboardCase& c : cases) {
        const std::unique_ptr<QDialog> dialog = c.open();
        std::set<QString> visited;
        DialogDriver driver;
        driver.expect(QString::fromLatin1(c.name), [&](QWidget*) {
            ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
            QWidget* const start = QApplication::focusWidget();
            QTest::keyClicks(start, c.typed);
            QWidget* focus = start;
            while (focus && visited.insert(controlName(focus)).second) {
                QTest::keyClick(focus, Qt::Key_Tab);
                focus = QApplication::focusWidget();
            }
            ASSERT_EQ(focus, start) << c.name << ": Tab comes round to where it started";
            QTest::keyClick(focus, c.key);
        });
        EXPECT_EQ(dialog->exec(), c.result) << c.name;
        EXPECT_TRUE(driver.finished()) << driver.failures().join(QLatin1Char('\n')).toStdString();
        EXPECT_EQ(visited, c.tabReaches) << c.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Styles, DialogKeyboard, ::testing::Values(DarkStyle::Simple, DarkStyle::Tarn),
                         [](const auto& info) { return info.param == DarkStyle::Simple ? "Simple" : "Tarn"; });

}  // namespace
