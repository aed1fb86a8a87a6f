// The files behind an object: listing, external files, showing them, and the asset-list text
// that the prompts show.
#include "objectlisthelpers.h"
#include "revisioncontroluihelper.h"

#include <dialogdriver.h>
#include <hostfakes.h>

#include <hbrchost/logcapture.h>
#include <qtextention/fileexplorer.h>
#include <qtextention/qfilelistwidget.h>

#include <QWidget>

#include <gtest/gtest.h>

#include <vector>

using hbrc::internal::GetAssetListPrettyNames;
using hbrc::test::DialogDriver;
using hbrc::test::FakeHost;
using ::testing::_;
using ::testing::DoAll;
using ::testing::Return;
using ::testing::SetArgReferee;

namespace {

using Files = kel4::Set<std::string>;

class ObjectFilesTest : public ::testing::Test
{
protected:
    // Answers scripted for a handle hold the manager, which holds the service: break that circle.
    void TearDown() override { ::testing::Mock::VerifyAndClear(host.dataControl.Get()); }

    void answerFiles(const std::vector<std::string>& files, kelResult result = 0)
    {
        ON_CALL(*host.dataControl, GetFiles(rock, true, kel4::closureId::Persistence, std::string(), _))
            .WillByDefault(DoAll(SetArgReferee<4>(Files(files.begin(), files.end())), Return(result)));
    }

    FakeHost host;
    KELHandle<IDbObject> rock = host.manager->AddObject("id-rock", "Rock");
    CRevisionControlUIHelper helper;
};

// GetObjectFiles appends the sorted distinct files unless the query fails. Without a data control:
// no external files; listing files or naming assets raises, naming only non-assets does not.
TEST_F(ObjectFilesTest, ObjectFilesAndExternalFilesWithAndWithoutADataControl)
{
    answerFiles({"/w/b.kel", "/w/a.kel", "/w/a.kel", "/w/\xC3\xA9t\xC3\xA9.bin"});
    QStringList files{QStringLiteral("kept")};
    helper.GetObjectFiles(rock, files);
    EXPECT_EQ(files, (QStringList{"kept", "/w/a.kel", "/w/b.kel", QStringLiteral("/w/\u00e9t\u00e9.bin")}));
    answerFiles({"/w/c.kel"}, kel4::kResultFailed);
    helper.GetObjectFiles(rock, files);
    EXPECT_EQ(files.size(), 4);

    EXPECT_CALL(*host.dataControl, HasExternalFile(rock, kel4::closureId::Persistence)).WillOnce(Return(true));
    EXPECT_TRUE(helper.ObjectHasExternalFile(rock));

    host.instance->SetService(kel4::UID_DataControl(), {});
    EXPECT_FALSE(helper.ObjectHasExternalFile(rock));
    kel4::DisableErrorReportingGuard quiet;
    EXPECT_THROW(helper.GetObjectFiles(rock, files), kel4::ExBase::NullPtr);
    EXPECT_THROW(helper.ObjectHasExternalFile(KELHandle<IDbObject>()), kel4::ExBase::NullPtr);
    const KELHandle<IDbObject> part = host.manager->AddObject("id-part", "Part of rock", false);
    QString text;
    EXPECT_NO_THROW(GetAssetListPrettyNames(KELPtr<kel4::IDataControl>(), {part}, true, text));
    EXPECT_TRUE(text.isEmpty());
    EXPECT_THROW(GetAssetListPrettyNames(KELPtr<kel4::IDataControl>(), {part, rock}, true, text),
                 kel4::ExBase::NullPtr);
}

struct LogCase {
    const char* name;
    std::vector<std::string> files;
    bool inFileBrowser;
    const char* expected;
    bool ownListing = false;  // by a host that lists an object's files its own way
};

class ShowObjectFilesLog : public ObjectFilesTest, public ::testing::WithParamInterface<LogCase>
{
};

// A host that lists files its own way: ShowObjectFiles goes through the interface.
class HelperWithOwnFiles : public CRevisionControlUIHelper
{
public:
    void GetObjectFiles(const KELHandle<IDbObject>&, QStringList& files) override
    {
        files << QStringLiteral("/own/listing.kel");
    }
};

// Without a main window: the file browser, when asked for, shows the first file; no dialog.
TEST_P(ShowObjectFilesLog, LogsTheFilesOnePerLineSeparatedByCommas)
{
    answerFiles(GetParam().files);
    std::vector<ProgramStart> started;
    ProgramLauncher previous = SetProgramLauncher([&](const ProgramStart& s) { started.push_back(s); });
    hbrc::host::LogCapture log;
    DialogDriver driver;  // any dialog would be recorded as unexpected
    HelperWithOwnFiles own;
    (GetParam().ownListing ? own : helper).ShowObjectFiles(rock, GetParam().inFileBrowser);
    SetProgramLauncher(previous);
    EXPECT_TRUE(driver.finished()) << driver.failures().join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(log.TextsOfType(Log::eMessage), std::vector<std::string>{GetParam().expected});
    EXPECT_EQ(started.size(), GetParam().inFileBrowser && !GetParam().files.empty() ? 1u : 0u);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ShowObjectFilesLog,
    ::testing::Values(LogCase{"NoFile", {}, true, "Files for asset: Rock\n"},
                      LogCase{"OneFile", {"/w/rock.kel"}, true, "Files for asset: Rock\n/w/rock.kel\n"},
                      LogCase{"ThreeFilesInABatchRun", {"/w/c.bin", "/w/a.kel", "/w/b.bin"}, false,
                              "Files for asset: Rock\n/w/a.kel,\n/w/b.bin,\n/w/c.bin\n"},
                      LogCase{"AHostsOwnListing", {"/w/rock.kel"}, false, "Files for asset: Rock\n/own/listing.kel\n", true}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(ObjectFilesTest, AFailedFilesQueryShowsAnEmptyFileDialog)
{
    answerFiles({"/w/rock.kel"}, kel4::kResultFailed);
    QWidget mainWindow;  // a session with a window of its own is interactive
    DialogDriver driver;
    int rows = -1;
    QString title;
    driver.expect(QStringLiteral("file list dialog"), [&](QWidget* dialog) {
        title = dialog->windowTitle();
        rows = dialog->findChild<QFileListWidget*>()->topLevelItemCount();
        dialog->close();
    });
    hbrc::host::LogCapture log;
    helper.ShowObjectFiles(rock, false);
    EXPECT_TRUE(driver.finished()) << driver.failures().join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(title, QStringLiteral("Files for asset Rock"));
    EXPECT_EQ(rows, 0);
    EXPECT_EQ(log.TextsOfType(Log::eMessage), std::vector<std::string>{"Files for asset: Rock\n"});
}

struct PrettyCase {
    const char* name;
    bool withExternalFiles;
    std::vector<std::string> externalFiles;
    const char* expected;
};

class PrettyNames : public ObjectFilesTest, public ::testing::WithParamInterface<PrettyCase>
{
};

TEST_P(PrettyNames, DescribeEachAssetOnOneLine)
{
    const KELHandle<IDbObject> part = host.manager->AddObject("id-part", "Part of rock", false);
    ON_CALL(*host.dataControl, GetAssetDisplayName(rock)).WillByDefault(Return(std::string("Rock [rocks]")));
    const std::vector<std::string>& external = GetParam().externalFiles;
    ON_CALL(*host.dataControl, GetExternalFiles(rock, kel4::closureId::Persistence, _))
        .WillByDefault(DoAll(SetArgReferee<2>(Files(external.begin(), external.end())), Return(0)));
    EXPECT_CALL(*host.dataControl, GetAssetDisplayName(_)).Times(1);  // the asset's only

    QString text = QStringLiteral("Assets:\n");
    GetAssetListPrettyNames(KELPtr<kel4::IDataControl>(host.dataControl.Get()), {part, rock},
                            GetParam().withExternalFiles, text);
    EXPECT_EQ(text.toStdString(), std::string("Assets:\n") + GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PrettyNames,
    ::testing::Values(
        PrettyCase{"WithoutExternalFiles", false, {"/d/data.bin"}, "Rock [rocks]\n"},
        PrettyCase{"EachQualifyingFileClosesItsOwnParenthesis", true, {"/d/x.KEL", "/d/a.bin", "/d/b.tex"},
                   "Rock [rocks] (with External: a.bin)b.tex)\n"},
        PrettyCase{"NoQualifyingFileLeavesTheParenthesisOpen", true, {"/d/x.kel"}, "Rock [rocks] (with External: \n"}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
