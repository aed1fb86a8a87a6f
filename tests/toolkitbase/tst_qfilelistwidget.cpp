// The file list family on real files in a temporary folder: rows, clipboard, the right-button
// menu, revealing through a recording launcher, the dialog and the main-window lookup.
#include <qtextention/fileexplorer.h>
#include <qtextention/mainappwindow.h>
#include <qtextention/programlauncher.h>
#include <qtextention/qfilelistdialog.h>
#include <qtextention/qfilelistwidget.h>

#include <dialogdriver.h>

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <unistd.h>

#include <vector>

namespace {

// Records what would be started instead of starting it, for its lifetime.
class RecordingLauncher
{
public:
    RecordingLauncher()
        : m_previous(SetProgramLauncher([this](const ProgramStart& start) { starts.push_back(start); }))
    {
    }
    ~RecordingLauncher() { SetProgramLauncher(m_previous); }

    std::vector<ProgramStart> starts;

private:
    ProgramLauncher m_previous;
};

// Waits for the next popup menu, notes its entries and chooses the one named choice (or closes
// the menu when there is none), so that a menu opened by a click never blocks the test.
class MenuChooser : public QObject
{
public:
    explicit MenuChooser(const QString& choice) : m_choice(choice)
    {
        m_timer.setInterval(10);
        QObject::connect(&m_timer, &QTimer::timeout, this, &MenuChooser::poll);
        m_timer.start();
    }

    QStringList entries;

private:
    void poll()
    {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu)
            return;
        m_timer.stop();
        const QList<QAction*> actions = menu->actions();
        for (QAction* action : actions)
            entries << action->text();
        for (QAction* action : actions) {
            if (action->text() == m_choice) {
                menu->setActiveAction(action);
                QTest::keyClick(menu, Qt::Key_Return);
                return;
            }
        }
        menu->close();
    }

    QString m_choice;
    QTimer m_timer;
};

const QString kUntouched = QStringLiteral("untouched");

class FileListTest : public ::testing::Test
{
protected:
    QTemporaryDir temp;
    QString writable;
    QString missing;

    void SetUp() override
    {
        ASSERT_TRUE(temp.isValid());
        writable = temp.filePath(QStringLiteral(u"\u00e9crit.txt"));
        missing = temp.filePath(QStringLiteral("missing.txt"));
        QFile file(writable);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
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

    static QTreeWidgetItem* rowOf(const QFileListWidget& list, const QString& path)
    {
        const QList<QTreeWidgetItem*> found = list.findItems(path, Qt::MatchExactly, 0);
        return found.size() == 1 ? found.first() : nullptr;
    }
};

TEST_F(FileListTest, RowsShowTheAbsolutePathGreyForMissingFilesAndTheReadOnlyState)
{
    const QString locked = unwritableFile();
    if (locked.isEmpty())
        GTEST_SKIP() << "no file that this user cannot write";
    struct Row {
        const char* name;
        QString given;
        QString shown;
        Qt::CheckState readOnly;
        bool grey;
    };
    const Row rows[] = {
        {"writable, given relative", QDir::current().relativeFilePath(writable), writable, Qt::Unchecked, false},
        {"read-only", locked, locked, Qt::Checked, false},
        {"missing", missing, missing, Qt::Checked, true},
    };
    QStringList files;
    for (const Row& row : rows)
        files << row.given;
    QFileListWidget list(files);
    ASSERT_EQ(list.topLevelItemCount(), 3);

    for (const Row& row : rows) {
        const QTreeWidgetItem* item = rowOf(list, row.shown);
        ASSERT_NE(item, nullptr) << row.name;
        EXPECT_EQ(item->checkState(1), row.readOnly) << row.name;
        EXPECT_EQ(item->sizeHint(0).height(), 18) << row.name;
        EXPECT_FALSE(item->flags() & Qt::ItemIsUserCheckable) << row.name;
        const QVariant foreground = item->data(0, Qt::ForegroundRole);
        if (row.grey)
            EXPECT_EQ(foreground.value<QBrush>(), QBrush(Qt::darkGray, Qt::SolidPattern)) << row.name;
        else
            EXPECT_FALSE(foreground.isValid()) << row.name;
    }
}

TEST_F(FileListTest, HeaderTextsAndStyleSheet)
{
    QFileListWidget list;
    EXPECT_EQ(list.columnCount(), 3);
    EXPECT_EQ(list.headerItem()->text(0), QStringLiteral("File"));
    EXPECT_EQ(list.headerItem()->text(1), QStringLiteral("Read Only"));
    EXPECT_EQ(list.headerItem()->text(2), QString());
    EXPECT_EQ(list.styleSheet(), QStringLiteral("QTreeView {selection-background-color: qlineargradient(x1: 0.5, "
                                                "y1: 0.25 x2: 0.5, y2: 0.75, stop: 0 #444444, stop: 0.7 #555555 );}"));
}

TEST_F(FileListTest, FilesAreListedFlatInAscendingOrder)
{
    QFileListWidget list({QStringLiteral("/w/c.kel"), QStringLiteral("/w/a.kel"), QStringLiteral("/w/b.kel")});
    EXPECT_FALSE(list.rootIsDecorated());
    QStringList shown;
    for (int row = 0; row < list.topLevelItemCount(); ++row)
        shown << list.topLevelItem(row)->text(0);
    EXPECT_EQ(shown, QStringList({"/w/a.kel", "/w/b.kel", "/w/c.kel"}));
}

TEST_F(FileListTest, TheReadOnlyBoxCannotBeToggled)
{
    QFileListWidget list({writable});
    list.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&list));
    list.setCurrentIndex(list.model()->index(0, 1));
    QTest::keyClick(&list, Qt::Key_Space);
    EXPECT_EQ(list.topLevelItem(0)->checkState(1), Qt::Unchecked);
}

TEST_F(FileListTest, OnlyControlCCopiesTheSelectedPaths)
{
    struct Row {
        const char* name;
        int selectedRows;
        Qt::KeyboardModifiers modifiers;
        bool copies;
    };
    const Row rows[] = {
        {"Ctrl+C, two rows", 2, Qt::ControlModifier, true},
        {"Ctrl+C, nothing selected", 0, Qt::ControlModifier, true},
        {"Ctrl+Shift+C", 2, Qt::ControlModifier | Qt::ShiftModifier, false},
        {"C alone", 2, Qt::NoModifier, false},
    };
    const QString other = temp.filePath(QStringLiteral("other.txt"));
    for (const Row& row : rows) {
        QFileListWidget list({writable, other});
        QString expected;
        for (int i = 0; i < row.selectedRows; ++i) {
            list.topLevelItem(i)->setSelected(true);
            expected += list.topLevelItem(i)->text(0) + '\n';
        }
        QApplication::clipboard()->setText(kUntouched);
        QTest::keyClick(&list, Qt::Key_C, row.modifiers);
        EXPECT_EQ(QApplication::clipboard()->text(), row.copies ? expected : kUntouched) << row.name;
    }
}

TEST_F(FileListTest, RightClickMenuCopiesOrRevealsTheSelection)
{
    RecordingLauncher launcher;
    QFileListWidget list({writable});
    list.resize(400, 300);
    list.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&list));

    MenuChooser onEmptyArea(QStringLiteral("Copy to clipboard"));
    QTest::mouseClick(list.viewport(), Qt::RightButton, {}, QPoint(50, 250));
    EXPECT_EQ(onEmptyArea.entries,
              QStringList({QStringLiteral("Show in Explorer"), QStringLiteral("Copy to clipboard")}));
    EXPECT_EQ(QApplication::clipboard()->text(), QString());  // nothing was selected

    MenuChooser onRow(QStringLiteral("Show in Explorer"));
    QTest::mouseClick(list.viewport(), Qt::RightButton, {}, list.visualItemRect(list.topLevelItem(0)).center());
    ASSERT_EQ(launcher.starts.size(), 1u);  // the row under the pointer was selected by the click
    const ProgramStart expected = RevealFileCommand(writable, CurrentFileBrowserPlatform());
    EXPECT_EQ(launcher.starts.front().program, expected.program);
    EXPECT_EQ(launcher.starts.front().arguments, expected.arguments);
}

TEST_F(FileListTest, RevealingThreeFilesStartsTheBrowserOnceOnTheFirst)
{
    RecordingLauncher launcher;
    const QStringList files = {temp.filePath("a/./one.txt"), temp.filePath("two.txt"), temp.filePath("three.txt")};
    ShowFilesInExplorer(files);
    ShowFilesInExplorer({});
    ASSERT_EQ(launcher.starts.size(), 1u);
#ifdef Q_OS_WIN
    EXPECT_EQ(launcher.starts.front().program, QStringLiteral("explorer.exe"));
#else
    EXPECT_EQ(launcher.starts.front().program, QStringLiteral("xdg-open"));
    EXPECT_EQ(launcher.starts.front().arguments, QStringList{temp.filePath("a")});
#endif
}

TEST(RevealFileCommand, SelectsTheCleanedFileOnWindowsAndOpensItsFolderElsewhere)
{
    struct Row {
        QString path;
        FileBrowserPlatform platform;
        QString program;
        QString argument;
    };
    const Row rows[] = {
        {"C:/a/./b/../c.txt", FileBrowserPlatform::Windows, "explorer.exe", "/select,C:\\a\\c.txt"},
        {QStringLiteral(u"D:\\\u00e9t\u00e9/x//y.kel"), FileBrowserPlatform::Windows, "explorer.exe",
         QStringLiteral(u"/select,D:\\\u00e9t\u00e9\\x\\y.kel")},
        {"/tmp/x/./y/../f.txt", FileBrowserPlatform::FreeDesktop, "xdg-open", "/tmp/x"},
        {QStringLiteral(u"/tmp/\u00e9/f.txt"), FileBrowserPlatform::FreeDesktop, "xdg-open", QStringLiteral(u"/tmp/\u00e9")},
    };
    for (const Row& row : rows) {
        const ProgramStart start = RevealFileCommand(row.path, row.platform);
        EXPECT_EQ(start.program, row.program) << row.path.toStdString();
        EXPECT_EQ(start.arguments, QStringList{row.argument}) << row.path.toStdString();
    }
}

TEST(MakeWindowsPath, CleansAndUsesBackslashesKeepingEveryCharacter)
{
    const std::pair<QString, std::string> rows[] = {
        {"C:/a/./b/../c.txt", "C:\\a\\c.txt"},
        {"a//b/", "a\\b"},
        {QStringLiteral(u"D:/\u00e9t\u00e9/f.txt"), "D:\\\xc3\xa9t\xc3\xa9\\f.txt"},
    };
    for (const auto& [input, expected] : rows)
        EXPECT_EQ(MakeWindowsPath(input), expected) << input.toStdString();
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
            EXPECT_GE(dialog->width(), 500);
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

    QWidget hiddenTarn;
    hiddenTarn.setObjectName(QStringLiteral("TarnWindow"));
    QWidget visibleOther;
    visibleOther.setObjectName(QStringLiteral("TarnWindow2"));
    visibleOther.show();
    EXPECT_EQ(GetMainAppWindow(), nullptr);

    QWidget visibleTarn;
    visibleTarn.setObjectName(QStringLiteral("TarnWindow"));
    visibleTarn.show();
    EXPECT_EQ(GetMainAppWindow(), &visibleTarn);
}

}  // namespace
