// Path helpers, table-driven: each row names the case it stands for.
#include <qtextention/pathutils.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>


namespace {

// Narrow text in the file-name encoding, as callers pass paths.
QByteArray narrow(const QString& text)
{
    return QFile::encodeName(text);
}

// MakePathRelative and MakePathAbsolute: (base, path) -> expected.
using TwoPathFunction = QString (*)(const char*, const char*);

struct TwoPathRow {
    const char* name;
    TwoPathFunction function;
    QString base;
    QString path;
    QString expected;
};

void PrintTo(const TwoPathRow& row, std::ostream* os)
{
    *os << row.name;
}

class TwoPathTest : public ::testing::TestWithParam<TwoPathRow>
{
};

TEST_P(TwoPathTest, Row)
{
    const TwoPathRow& row = GetParam();
    EXPECT_EQ(row.function(narrow(row.base), narrow(row.path)), row.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TwoPathTest,
    ::testing::Values(
        TwoPathRow{"below", MakePathRelative, "/home/u", "/home/u/a/b.txt", "a/b.txt"},
        TwoPathRow{"beside", MakePathRelative, "/home/u/x", "/home/u/a.txt", "../a.txt"},
        TwoPathRow{"trailing slash on base", MakePathRelative, "/home/u/", "/home/u/a", "a"},
        TwoPathRow{"relative kept with its dot-dot", MakePathRelative, "/home/u", "../rel/./x.txt", "../rel/./x.txt"},
        TwoPathRow{"relative of non-ASCII", MakePathRelative, QStringLiteral(u"/tmp/\u00fc"), QStringLiteral(u"/tmp/\u00fc/\u00df.txt"),
                   QStringLiteral(u"\u00df.txt")},
        TwoPathRow{"relative resolved and cleaned", MakePathAbsolute, "/base", "a/../b.txt", "/base/b.txt"},
        TwoPathRow{"absolute only cleaned", MakePathAbsolute, "/base", "/x/./y//z/", "/x/y/z"},
        TwoPathRow{"dot on a base with trailing slash", MakePathAbsolute, "/base/", "./c", "/base/c"},
        TwoPathRow{"climbing above the base", MakePathAbsolute, "/base/sub", "../../up", "/up"},
        TwoPathRow{"absolute of non-ASCII", MakePathAbsolute, QStringLiteral(u"/d\u00e9p\u00f4t"), QStringLiteral(u"\u00e9t\u00e9"),
                   QStringLiteral(u"/d\u00e9p\u00f4t/\u00e9t\u00e9")}));

TEST(MakePath, JoinsTheGivenPartsAndCleansTheResult)
{
    struct Row {
        const char* a;
        const char* b;
        const char* c;
        const char* d;
        QString expected;
    };
    const Row rows[] = {
        {"a", "b", nullptr, "d", "a/b/d"},
        {"a/", "/b", nullptr, nullptr, "a/b"},
        {"/r", "b", "c", "d", "/r/b/c/d"},
        {"/r", "x/..", ".", "d/", "/r/d"},
        {"a", nullptr, nullptr, nullptr, "a"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(MakePath(row.a, row.b, row.c, row.d), row.expected) << row.expected.toStdString();
}

TEST(IsSubDirectory, ComparesCleanedComponentsWithoutCase)
{
    struct Row {
        const char* name;
        QString directory;
        QString path;
        bool expected;
    };
    const Row rows[] = {
        {"drive and case differ", "C:/Data", "c:/data/maps", true},
        {"equal", "/a/b", "/a/b", true},
        {"trailing slash", "/a/b/", "/a/b", true},
        {"dot parts cleaned", "/a/./b", "/a/x/../b/c", true},
        {"non-ASCII case", QStringLiteral(u"/A/\u00dc"), QStringLiteral(u"/a/\u00fc/x"), true},
        {"directory deeper than path", "/a/b/c", "/a/b", false},
        {"prefix of a component is not a parent", "/a/b", "/a/bc/d", false},
        {"different root", "/x", "/a/x", false},
    };
    for (const Row& row : rows)
        EXPECT_EQ(IsSubDirectory(row.directory, row.path), row.expected) << row.name;
}

TEST(PathValidation, DirectoriesAreBackslashShapedOrExistFilesEndInANameAndAreNoDirectory)
{
    QTemporaryDir temp;
    ASSERT_TRUE(temp.isValid());
    ASSERT_TRUE(QDir(temp.path()).mkdir("folder.txt"));
    QFile file(temp.filePath("plain.txt"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    struct Row {
        const char* name;
        bool (*isValid)(const QString&);
        QString path;
        bool expected;
    };
    const Row rows[] = {
        {"drive with trailing backslash", IsDirectoryPathValid, "C:\\temp\\", true},
        {"share-like folder", IsDirectoryPathValid, "\\server\\share", true},
        {"forbidden character in a folder", IsDirectoryPathValid, "C:\\te|mp", false},
        {"slashes that do not exist", IsDirectoryPathValid, "C:/temp", false},
        {"relative folder", IsDirectoryPathValid, "relative\\dir", false},
        {"existing folder in any form", IsDirectoryPathValid, temp.path() + "/.", true},
        {"existing file as folder", IsDirectoryPathValid, file.fileName(), false},
        {"file with drive and backslashes", IsFilePathValid, "C:\\a\\b.txt", true},
        {"file with drive and slashes", IsFilePathValid, "C:/a/b.txt", true},
        {"non-ASCII file", IsFilePathValid, QStringLiteral(u"/tmp/\u00e9t\u00e9.txt"), true},
        {"forbidden character before the name", IsFilePathValid, "a<b/c.txt", false},
        {"file ending with a separator", IsFilePathValid, "C:\\dir\\", false},
        {"colon after the drive", IsFilePathValid, "C:\\a:b\\c.txt", false},
        {"existing folder named like a file", IsFilePathValid, temp.path() + "/folder.txt", false},
    };
    for (const Row& row : rows)
        EXPECT_EQ(row.isValid(row.path), row.expected) << row.name;
}

// root/top.txt, root/sub/notes.txt, root/sub/deeper/<non-ASCII>.dat and root/sub/loop -> root.
class PathsOnDisk : public ::testing::Test
{
protected:
    QTemporaryDir temp;
    QString root;

    void SetUp() override
    {
        ASSERT_TRUE(temp.isValid());
        root = temp.path();
        QDir dir(root);
        ASSERT_TRUE(dir.mkpath(QStringLiteral("sub/deeper")));
        touch(QStringLiteral("top.txt"));
        touch(QStringLiteral("sub/notes.txt"));
        touch(QStringLiteral(u"sub/deeper/\u00fcn\u00ef.dat"));
        ASSERT_TRUE(QFile::link(root, root + QStringLiteral("/sub/loop")));
    }

    void touch(const QString& relative)
    {
        QFile file(root + '/' + relative);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
};

TEST_F(PathsOnDisk, FindFileRecursiveSearchesAsDeepAsTheDepthAllows)
{
    struct Row {
        QString name;
        int depth;
        bool expected;
    };
    const Row rows[] = {
        {"top", 1, true},
        {"notes", 1, false},
        {"notes", 2, true},
        {"txt", 0, false},  // depth 0 searches nothing, not even the folder itself
        {"txt", 1, true},   // a part of the path is enough
        {QStringLiteral(u"\u00fcn\u00ef"), 2, false},
        {QStringLiteral(u"\u00fcn\u00ef"), 3, true},
        {QStringLiteral(u"\u00fcn\u00ef"), -1, true},
        {"absent", -1, false},  // the link back to the root does not make it run forever
    };
    for (const Row& row : rows) {
        EXPECT_EQ(FindFileRecursive(narrow(root), narrow(row.name), row.depth), row.expected)
            << row.name.toStdString() << " depth " << row.depth;
    }
}

TEST_F(PathsOnDisk, ExistenceAndEqualityFollowTheDisk)
{
    const QString notes = root + QStringLiteral("/sub/notes.txt");
    const QString odd = root + QStringLiteral(u"/sub/deeper/\u00fcn\u00ef.dat");
    EXPECT_TRUE(PathExists(narrow(notes)));
    EXPECT_TRUE(PathExists(narrow(odd)));
    EXPECT_FALSE(PathExists(narrow(root + "/sub/none.txt")));

    EXPECT_TRUE(ArePathEqual(narrow(notes), narrow(root + "/sub/deeper/../notes.txt")));
    EXPECT_TRUE(ArePathEqual(narrow(notes), narrow(root + "/sub/loop/sub/notes.txt")));
    EXPECT_FALSE(ArePathEqual(narrow(notes), narrow(root + "/top.txt")));
}

}  // namespace
