// The host's preference store: typed reads, session-only writes, and a broken store.
#include <hbrchost/logcapture.h>
#include <hbrchost/prefmanager.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// Session-only writes are read back but not persisted; a value of another type is not read as
// this one and leaves the caller's value alone.
TEST(PrefManager, SessionOnlyWritesAreNotPersistedAndTypesAreNotMixed)
{
    QTemporaryDir dir;
    const QString file = dir.filePath("p.ini");
    {
        hbrc::host::PrefManager prefs(file);
        prefs.SetIntPref("kept", 5, 1);
        prefs.SetIntPref("session", 6, 0);
        prefs.SetStringPref("text", "not a number", 1);
        int value = 0;
        prefs.GetIntPref("session", 1, value, 0);
        EXPECT_EQ(value, 6);
    }
    hbrc::host::PrefManager reopened(file);
    int kept = 0, session = 0, number = 42;
    bool flag = true;
    reopened.GetIntPref("kept", 1, kept, 0);
    reopened.GetIntPref("session", 1, session, 0);
    EXPECT_EQ(kept, 5);
    EXPECT_EQ(session, 1);
    EXPECT_FALSE(reopened.GetIntPref("text", 1, number, 0));
    EXPECT_FALSE(reopened.GetBoolPref("text", false, flag, 0));
    EXPECT_EQ(number, 42);
    EXPECT_TRUE(flag);
}

TEST(PrefManager, ACorruptStoreGivesDefaultsKeepsTheOldFileAndLogs)
{
    QTemporaryDir dir;
    const QString file = dir.filePath("p.ini");
    {
        QFile broken(file);
        ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
        broken.write("[General\nRevControl.UserName=alice\n\x01\x02[[[\n");
    }
    hbrc::host::LogCapture log;
    hbrc::host::PrefManager prefs(file);
    std::string user = "x";
    prefs.GetStringPref("RevControl.UserName", "", user, 0);
    EXPECT_EQ(user, "");
    EXPECT_TRUE(QFile::exists(file + ".corrupt"));
    ASSERT_EQ(log.TextsOfType(Log::eWarning).size(), 1u);
    EXPECT_NE(log.TextsOfType(Log::eWarning).front().find("could not be parsed"), std::string::npos);
    EXPECT_TRUE(prefs.SetStringPref("RevControl.UserName", "bob", 1));
}

TEST(PrefManager, AStoreThatCannotBeWrittenKeepsValuesForTheSession)
{
    QTemporaryDir dir;
    // A folder where the file should be: nothing can be read from or written to it.
    const QString file = dir.filePath("p.ini");
    ASSERT_TRUE(QDir().mkpath(file));
    hbrc::host::LogCapture log;
    hbrc::host::PrefManager prefs(file);
    EXPECT_TRUE(prefs.SetIntPref("n", 3, 1));
    int n = 0;
    prefs.GetIntPref("n", 1, n, 0);
    EXPECT_EQ(n, 3);
    EXPECT_FALSE(log.TextsOfType(Log::eWarning).empty());
}

}  // namespace
