// Path helpers and the command that reveals a file, table-driven: each row names its case and holds
// the helper's answer beside the expected one.
#include "toolkittest.h"

#include <qtextention/fileexplorer.h>
#include <qtextention/pathutils.h>

namespace {

// Narrow text in the file-name encoding, as callers pass paths.
QByteArray narrow(const QString& text)
{
    return QFile::encodeName(text);
}

QString shown(const ProgramStart& start)
{
    return start.program + '|' + start.arguments.join('|');  // '|' between arguments
}

TEST(PathText, RelativeAbsoluteJoinedAndRevealedPathsAreCleanedAndKeepTheirCharacters)
{
    using P = FileBrowserPlatform;
    const Row<QString> rows[] = {
        {"relative: below", MakePathRelative("/home/u", "/home/u/a/b.txt"), "a/b.txt"},
        {"relative: beside", MakePathRelative("/home/u/x", "/home/u/a.txt"), "../a.txt"},
        {"relative: kept with its dot-dot", MakePathRelative("/home/u", "../rel/./x.txt"), "../rel/./x.txt"},
        {"relative: non-ASCII",
         MakePathRelative(narrow(QStringLiteral(u"/tmp/\u00fc")), narrow(QStringLiteral(u"/tmp/\u00fc/\u00df.txt"))),
         QStringLiteral(u"\u00df.txt")},
        {"absolute: relative resolved and cleaned", MakePathAbsolute("/base", "a/../b.txt"), "/base/b.txt"},
        {"absolute: absolute only cleaned", MakePathAbsolute("/base", "/x/./y//z/"), "/x/y/z"},
        {"absolute: climbing above the base", MakePathAbsolute("/base/sub", "../../up"), "/up"},
        {"absolute: non-ASCII",
         MakePathAbsolute(narrow(QStringLiteral(u"/d\u00e9p\u00f4t")), narrow(QStringLiteral(u"\u00e9t\u00e9"))),
         QStringLiteral(u"/d\u00e9p\u00f4t/\u00e9t\u00e9")},
        {"joined: null part skipped", MakePath("a", "b", nullptr, "d"), "a/b/d"},
        {"joined: separators merged", MakePath("a/", "/b", nullptr, nullptr), "a/b"},
        {"joined: cleaned", MakePath("/r", "x/..", ".", "d/"), "/r/d"},
        {"windows path: cleaned with backslashes", QString::fromStdString(MakeWindowsPath("C:/a/./b/..//c/")), "C:\\a\\c"},
        {"windows path: non-ASCII", QString::fromStdString(MakeWindowsPath(QStringLiteral(u"D:/\u00e9t\u00e9/f.txt"))),
         QStringLiteral(u"D:\\\u00e9t\u00e9\\f.txt")},
        {"reveal on windows: selects the cleaned file", shown(RevealFileCommand("C:/a/./b/../c.txt", P::Windows)),
         "explorer.exe|/select,C:\\a\\c.txt"},
        {"reveal on windows: non-ASCII", shown(RevealFileCommand(QStringLiteral(u"D:\\\u00e9t\u00e9/x//y.kel"), P::Windows)),
         QStringLiteral(u"explorer.exe|/select,D:\\\u00e9t\u00e9\\x\\y.kel")},
        {"reveal elsewhere: opens the folder", shown(RevealFileCommand("/tmp/x/./y/../f.txt", P::FreeDesktop)),
         "xdg-open|/tmp/x"},
        {"reveal elsewhere: non-ASCII", shown(RevealFileCommand(QStringLiteral(u"/tmp/\u00e9/f.txt"), P::FreeDesktop)),
         QStringLiteral(u"xdg-open|/tmp/\u00e9")},
    };
    expectRows(rows);
}

TEST(IsSubDirectory, ComparesCleanedComponentsWithoutCase)
{
    const Row<bool> rows[] = {
        {"drive and case differ", IsSubDirectory("C:/Data", "c:/data/maps"), true},
        {"equal", IsSubDirectory("/a/b", "/a/b"), true},
        {"trailing slash", IsSubDirectory("/a/b/", "/a/b"), true},
        {"dot parts cleaned", IsSubDirectory("/a/./b", "/a/x/../b/c"), true},
        {"non-ASCII case", IsSubDirectory(QStringLiteral(u"/A/\u00dc"), QStringLiteral(u"/a/\u00fc/x")), true},
        {"directory deeper than path", IsSubDirectory("/a/b/c", "/a/b"), false},
        {"prefix of a component is not a parent", IsSubDirectory("/a/b", "/a/bc/d"), false},
        {"different root", IsSubDirectory("/x", "/a/x"), false},
    };
    expectRows(rows);
}

// root/top.txt, root/folder.txt/, root/sub/notes.txt, root/sub/deeper/<non-ASCII>.dat, root/sub/loop -> root.
class PathsOnDisk : public ::testing::Test
{
protected:
    QTemporaryDir temp;
    QString root = temp.path();
    const QString notes = root + QStringLiteral("/sub/notes.txt");
    const QString odd = root + QStringLiteral(u"/sub/deeper/\u00fcn\u00ef.dat");

    void SetUp() override
    {
        ASSERT_TRUE(QDir(root).mkpath(QStringLiteral("sub/deeper")) && QDir(root).mkdir(QStringLiteral("folder.txt")));
        for (const QString& file : {root + QStringLiteral("/top.txt"), notes, odd})
            ASSERT_TRUE(QFile(file).open(QIODevice::WriteOnly)) << file.toStdString();
        ASSERT_TRUE(QFile::link(root, root + QStringLiteral("/sub/loop")));
    }
    bool find(const QString& name, int depth) const { return FindFileRecursive(narrow(root), narrow(name), depth); }
};

TEST_F(PathsOnDisk, ValiditySearchExistenceAndEqualityFollowTheShapeAndTheDisk)
{
    const QString unusual = QStringLiteral(u"\u00fcn\u00ef");
    const Row<bool> rows[] = {
        {"folder: drive with trailing backslash", IsDirectoryPathValid("C:\\temp\\"), true},
        {"folder: forbidden character", IsDirectoryPathValid("C:\\te|mp"), false},
        {"folder: slashes that do not exist", IsDirectoryPathValid("C:/temp"), false},
        {"folder: relative", IsDirectoryPathValid("relative\\dir"), false},
        {"folder: existing in any form", IsDirectoryPathValid(root + "/."), true},
        {"folder: existing file", IsDirectoryPathValid(notes), false},
        {"file: drive and backslashes", IsFilePathValid("C:\\a\\b.txt"), true},
        {"file: non-ASCII", IsFilePathValid(QStringLiteral(u"/tmp/\u00e9t\u00e9.txt")), true},
        {"file: forbidden character before the name", IsFilePathValid("a<b/c.txt"), false},
        {"file: ending with a separator", IsFilePathValid("C:\\dir\\"), false},
        {"file: colon after the drive", IsFilePathValid("C:\\a:b\\c.txt"), false},
        {"file: existing folder named like a file", IsFilePathValid(root + "/folder.txt"), false},
        {"find top at depth 1", find("top", 1), true},
        {"find notes at depth 1", find("notes", 1), false},
        {"find notes at depth 2", find("notes", 2), true},
        {"depth 0 searches nothing, not even the folder itself", find("txt", 0), false},
        {"a part of the path is enough", find("txt", 1), true},
        {"non-ASCII at depth 3", find(unusual, 3), true},
        {"non-ASCII at any depth", find(unusual, -1), true},
        {"absent at any depth: the link back to the root is not followed forever", find("absent", -1), false},
        {"exists", PathExists(narrow(notes)), true},
        {"non-ASCII exists", PathExists(narrow(odd)), true},
        {"does not exist", PathExists(narrow(root + "/sub/none.txt")), false},
        {"equal through dot-dot", ArePathEqual(narrow(notes), narrow(root + "/sub/deeper/../notes.txt")), true},
        {"equal through a link", ArePathEqual(narrow(notes), narrow(root + "/sub/loop/sub/notes.txt")), true},
        {"different files", ArePathEqual(narrow(notes), narrow(root + "/top.txt")), false},
    };
    expectRows(rows);
}

TEST_F(PathsOnDisk, NamesStartingWithAColonAreFilesNotQtResources)
{
    ASSERT_TRUE(QDir(root).mkdir(QStringLiteral("./:assets")));
    ASSERT_TRUE(QFile(root + QStringLiteral("/:assets/rock.kel")).open(QIODevice::WriteOnly));
    const QString previous = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(root));
    const Row<bool> rows[] = {
        {"exists", PathExists(":assets/rock.kel"), true},
        {"equal to its dotted form", ArePathEqual(":assets/rock.kel", "./:assets/rock.kel"), true},
        {"searched", FindFileRecursive(":assets", "rock", 1), true},
        {"a folder", IsDirectoryPathValid(QStringLiteral(":assets")), true},
    };
    const Row<QString> texts[] = {
        {"made absolute below the base", MakePathAbsolute("/base", ":assets/rock.kel"), "/base/:assets/rock.kel"},
        {"relative stays as given", MakePathRelative("/base", ":assets/rock.kel"), ":assets/rock.kel"},
        {"relative to a colon base", MakePathRelative(":assets", narrow(root + "/:assets/rock.kel")), "rock.kel"},
    };
    QDir::setCurrent(previous);
    expectRows(rows);
    expectRows(texts);
}

}  // namespace
