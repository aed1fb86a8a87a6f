// The file list family on real files in a temporary folder: rows, clipboard, the right-button
// menu, revealing through a recording launcher, the dialog and the main-window lookup.
#include "toolkittest.h"

#include <qtextention/fileexplorer.h>
#include <qtextention/mainappwindow.h>
#include <qtextention/programlauncher.h>
#include <qtextention/qfilelistdialog.h>
#include <qtextention/qfilelistwidget.h>

#include <dialogdriver.h>

#include <unistd.h>

namespace {

// Records what would be started instead of starting it, for its lifetime.
class RecordingLauncher
{
public:
    RecordingLauncher() : m_previous(SetProgramLauncher([this](const ProgramStart& start) { starts << start; })) {}
    ~RecordingLauncher() { SetProgramLauncher(m_previous); }

    // Exactly one start so far, the one that reveals file; then forgets it.
    void expectOneStartRevealing(const QString& file)
    {
        const ProgramStart expected = RevealFileCommand(file, CurrentFileBrowserPlatform());
        ASSERT_EQ(starts.size(), 1);
        EXPECT_EQ(starts.front().program, expected.program);
        EXPECT_EQ(starts.takeFirst().arguments, expected.arguments);
    }

    QList<ProgramStart> starts;

private:
    ProgramLauncher m_previous;
};

// Runs open(), which shows a popup menu and waits in it; from the menu's own event loop notes its
// entries and chooses the one named choice (or closes the menu when there is none).
QStringList chooseInMenu(const QString& choice, const std::function<void()>& open)
{
    QStringList entries;
    const QObject context;  // drops the pending choice when no menu ran
    QTimer::singleShot(0, &context, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu)
            return;
        QAction* chosen = nullptr;
        for (QAction* action : menu->actions()) {
            entries << action->text();
            chosen = action->text() == choice ? action : chosen;
        }
        if (!chosen) {
            menu->close();
            return;
        }
        menu->setActiveAction(chosen);
        QTest::keyClick(menu, Qt::Key_Return);
    });
    open();
    return entries;
}

const QString kUntouched = QStringLiteral("untouched");

class FileListTest : public ::testing::Test
{
protected:
    QTemporaryDir temp;
    const QString writable = temp.filePath(QStringLiteral(u"\u00e9crit.txt"));
    const QString missing = temp.filePath(QStringLiteral("missing.txt"));

    void SetUp() override
    {
        ASSERT_TRUE(temp.isValid());
        ASSERT_TRUE(QFile(writable).open(QIODevice::WriteOnly));
        QApplication::clipboard()->setText(kUntouched);
    }

    // A file this process cannot write. Permission bits do not stop root, so when running as
    // root a read-only kernel entry stands in; empty when there is none.
    QString unwritableFile() const
    {
        const QString locked = temp.filePath(QStringLiteral("locked.txt"));
        QFile file(locked);
        if (file.open(QIODevice::WriteOnly)) {
            file.close();
            file.setPermissions(QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
        }
        for (const QString& candidate : {locked, QStringLiteral("/proc/sys/kernel/osrelease")}) {
            const QByteArray name = QFile::encodeName(candidate);
            if (::access(name.constData(), R_OK) == 0 && ::access(name.constData(), W_OK) != 0)
                return candidate;
        }
        return {};
    }
};

// Rows go in sorted by path, also those added later, each with its absolute path, grey and explained
// when the file is missing, and a read-only state nobody can toggle that a refresh reads again.
TEST_F(FileListTest, RowsShowTheSortedAbsolutePathsGreyForMissingFilesAndAReadOnlyStateNobodyCanToggle)
{
    // path, read-only state, missing
    std::vector<std::tuple<QString, Qt::CheckState, bool>> rows{{writable, Qt::Unchecked, false},
                                                                {missing, Qt::Checked, true}};
    QStringList given{QDir::current().relativeFilePath(writable)};  // given relative
    // A user who may write everything (root) has no unwritable file to show.
    if (const QString locked = unwritableFile(); !locked.isEmpty()) {
        rows.push_back({locked, Qt::Checked, false});
        given.append(locked);
    }
    QFileListWidget list(given);
    list.AddFiles({missing});
    QStringList headers, shown;
    for (int column = 0; column < list.columnCount(); ++column)
        headers << list.headerItem()->text(column);
    EXPECT_EQ(headers, QStringList({"File", "Read Only", ""}));
    for (int row = 0; row < list.topLevelItemCount(); ++row)
        shown << list.topLevelItem(row)->text(0);
    QStringList sorted;
    for (const auto& row : rows)
        sorted << std::get<0>(row);
    sorted.sort();
    EXPECT_EQ(shown, sorted);
    for (const auto& [path, readOnly, gone] : rows) {
        const QTreeWidgetItem* item = list.findItems(path, Qt::MatchExactly, 0).value(0);
        ASSERT_NE(item, nullptr) << path.toStdString();
        EXPECT_EQ(item->checkState(1), readOnly) << path.toStdString();
        EXPECT_FALSE(item->flags() & Qt::ItemIsUserCheckable);
        EXPECT_EQ(item->data(0, Qt::ForegroundRole), gone ? QVariant(QBrush(Qt::darkGray)) : QVariant()) << path.toStdString();
        EXPECT_EQ(item->toolTip(0), gone ? path + QStringLiteral("\nThis file does not exist.") : path);
    }
    ASSERT_TRUE(QFile::remove(writable));
    list.RefreshFileStates();
    const QTreeWidgetItem* gone = list.findItems(writable, Qt::MatchExactly, 0).value(0);
    EXPECT_EQ(gone->data(0, Qt::ForegroundRole), QVariant(QBrush(Qt::darkGray)));
    EXPECT_EQ(gone->checkState(1), Qt::Checked) << "a missing file is not writable";
}

TEST_F(FileListTest, OnlyControlCOrTheMenuCopiesTheSelectedPathsAndTheMenuRevealsTheRowUnderThePointer)
{
    RecordingLauncher launcher;
    QFileListWidget list({writable, temp.filePath(QStringLiteral("other.txt"))});
    list.resize(400, 300);
    list.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&list));
    const QString both = list.topLevelItem(0)->text(0) + '\n' + list.topLevelItem(1)->text(0) + '\n';
    const std::tuple<const char*, bool, Qt::KeyboardModifiers, QString> rows[] = {  // name, both selected, keys, copied
        {"Ctrl+C, two rows", true, Qt::ControlModifier, both},
        {"Ctrl+C, nothing selected", false, Qt::ControlModifier, ""},
        {"Ctrl+Shift+C", true, Qt::ControlModifier | Qt::ShiftModifier, kUntouched},
        {"C alone", true, Qt::NoModifier, kUntouched},
    };
    for (const auto& [name, selected, modifiers, copied] : rows) {
        list.topLevelItem(0)->setSelected(selected);
        list.topLevelItem(1)->setSelected(selected);
        QApplication::clipboard()->setText(kUntouched);
        QTest::keyClick(&list, Qt::Key_C, modifiers);
        EXPECT_EQ(QApplication::clipboard()->text(), copied) << name;
    }

    list.clearSelection();
    const QStringList entries = chooseInMenu(QStringLiteral("Copy to clipboard"), [&] {
        QTest::mouseClick(list.viewport(), Qt::RightButton, {}, QPoint(50, 250));
    });
    EXPECT_EQ(entries, QStringList({QStringLiteral("Show in Explorer"), QStringLiteral("Copy to clipboard")}));
    EXPECT_EQ(QApplication::clipboard()->text(), QString());  // nothing was selected

    const QPoint onWritable = list.visualItemRect(list.findItems(writable, Qt::MatchExactly).value(0)).center();
    chooseInMenu(QStringLiteral("Show in Explorer"), [&] { QTest::mouseClick(list.viewport(), Qt::RightButton, {}, onWritable); });
    launcher.expectOneStartRevealing(writable);  // the row under the pointer was selected by the click

    // Several files start the browser once, on the first; none start nothing.
    ShowFilesInExplorer({temp.filePath("a/./one.txt"), temp.filePath("two.txt"), temp.filePath("three.txt")});
    ShowFilesInExplorer({});
    launcher.expectOneStartRevealing(temp.filePath("a/one.txt"));
}

TEST_F(FileListTest, DialogShowsTheFilesUnderItsTitleUntilOk)
{
    for (const QStringList& files : {QStringList{writable, missing}, QStringList{}}) {
        hbrc::test::DialogDriver driver;
        int rowsShown = -1;
        driver.expect("file list", [&](QWidget* widget) {
            auto* dialog = qobject_cast<QFileListDialog*>(widget);
            ASSERT_NE(dialog, nullptr);
            EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Files of the asset"));
            rowsShown = dialog->FileListWidget()->topLevelItemCount();
            const QList<QPushButton*> buttons = dialog->findChildren<QPushButton*>();
            ASSERT_EQ(buttons.size(), 1);
            EXPECT_EQ(buttons.first()->text(), QStringLiteral("OK"));
            QTest::mouseClick(buttons.first(), Qt::LeftButton);
            EXPECT_FALSE(dialog->isVisible());
        });
        QFileListDialog::ShowFiles(QStringLiteral("Files of the asset"), files);
        EXPECT_TRUE(driver.finished()) << driver.failures().join('\n').toStdString();
        EXPECT_EQ(rowsShown, files.size());
    }
}

TEST(GetMainAppWindow, FindsOnlyAVisibleWindowNamedTarnWindow)
{
    EXPECT_EQ(GetMainAppWindow(), nullptr);
    QWidget hiddenTarn, visibleOther, visibleTarn;
    hiddenTarn.setObjectName(QStringLiteral("TarnWindow"));
    visibleOther.setObjectName(QStringLiteral("TarnWindow2"));
    visibleOther.show();
    EXPECT_EQ(GetMainAppWindow(), nullptr);
    visibleTarn.setObjectName(QStringLiteral("TarnWindow"));
    visibleTarn.show();
    EXPECT_EQ(GetMainAppWindow(), &visibleTarn);
}

}  // namespace
