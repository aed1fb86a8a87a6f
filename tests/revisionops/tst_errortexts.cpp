// The failure explanations built from status words (which lines, in which order, which users);
// showing a retryable failure (a critical box with Ok and Retry when a user is present, the host
// log otherwise); and how long a batch run waits before it tries a failed operation again.
#include "errorreporting.h"
#include "retrybackoff.h"

#include <dialogdriver.h>
#include <hostfakes.h>

#include <hbrchost/logcapture.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QWidget>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <optional>

using hbrc::internal::AddErrorString;
using hbrc::internal::GetErrorStrings;
using hbrc::internal::HandleError;
using hbrc::test::DialogDriver;
using ::testing::_;
using ::testing::DoAll;
using ::testing::Return;
using ::testing::SetArgReferee;

namespace {

// Expectations that name objects hold handles, and handles hold the manager that holds the
// services: the services forget them when the host goes, so that they are destroyed and verified.
struct ScriptedHost : hbrc::test::FakeHost {
    ~ScriptedHost()
    {
        ::testing::Mock::VerifyAndClear(dataControl.Get());
        ::testing::Mock::VerifyAndClear(fileVersionControl.Get());
    }
};

const std::string kCheckedOutByOthers = "because the following users have checked out some of the files\n";
const std::string kMarkedForAdd = "because some of the files are marked for add\n";
const std::string kMarkedForAddByOthers = "because the following users have marked for add some of the files\n";
const std::string kMarkedForDelete = "because some of the files are marked for delete\n";
const std::string kNotHead = "because some of the files are not at the head revision\n";
const std::string kNotInDatabase = "because some of the files are not in the database\n";
const std::string kIOError = "because some of the files are causing a IO error\n";
const std::string kLockedByOthers = "because the following users have locked some of the files\n";
const std::string kUnknown = "Unknown error found\nError reported by IO module: depot says no\n";
const std::string kPrefix = "Cannot checkout the assets\n";
const std::string kFileDetails = "Files:\n/ws/a.kel\n/ws/b.kel\n";

using Users = std::optional<std::vector<std::string>>;  // nullopt: the users query fails
const std::set<unsigned>& checkOut = hbrc::internal::kCheckOutErrorFlags;
const std::set<unsigned>& markForAdd = hbrc::internal::kMarkForAddErrorFlags;

struct ObjectsCase {
    const char* name;
    std::set<unsigned> flags;
    std::vector<unsigned> words;  // one per object, named asset0, asset1, ...
    std::map<int, Users> users;   // by object index
    std::string expected;         // after kPrefix
    int statusCode = 0;           // of the status query, which answers "no route to host" when it fails
};

class ObjectErrorText : public ::testing::TestWithParam<ObjectsCase>
{
protected:
    ScriptedHost host;
};

TEST_P(ObjectErrorText, ExplainsTheFlagsTheObjectsCarryAndListsTheirFiles)
{
    const ObjectsCase& c = GetParam();
    kel4::List<KELHandle<IDbObject>> objects;
    for (std::size_t i = 0; i < c.words.size(); ++i)
        objects.push_back(host.manager->AddObject("id" + std::to_string(i), "asset" + std::to_string(i)));
    EXPECT_CALL(*host.dataControl, GetStatus(objects, true, kel4::closureId::Persistence, _, _, _))
        .WillOnce(DoAll(SetArgReferee<4>(kel4::List<unsigned>(c.words.begin(), c.words.end())),
                        SetArgReferee<5>(std::string("no route to host")), Return(kelResult(c.statusCode))));
    EXPECT_CALL(*host.dataControl, GetUsersOfObject(_, _, _)).Times(0);  // but for the objects below
    for (const auto& [index, users] : c.users) {
        const KELHandle<IDbObject> object = *std::next(objects.begin(), index);
        EXPECT_CALL(*host.dataControl, GetUsersOfObject(object, kel4::closureId::Persistence, _))
            .WillOnce(DoAll(SetArgReferee<2>(users ? kel4::List<std::string>(users->begin(), users->end())
                                                   : kel4::List<std::string>{"not to be shown"}),
                            Return(kelResult(users ? 0 : -2))));
    }
    ON_CALL(*host.dataControl, GetFiles(objects, true, kel4::closureId::Persistence, std::string(), _, _))
        .WillByDefault(DoAll(SetArgReferee<4>(kel4::Set<std::string>{"/ws/b.kel", "/ws/a.kel"}), Return(kelResult(0))));

    std::string message = kPrefix;
    std::string details = "stale";
    EXPECT_EQ(GetErrorStrings(host.dataControl, objects, true, c.flags, "depot says no", message, details),
              c.statusCode == 0 ? 0 : 1);
    EXPECT_EQ(message, kPrefix + c.expected);
    EXPECT_EQ(details, c.statusCode == 0 ? kFileDetails : "stale");
}

const std::string kUsersOf = "\nError found while trying to get the list of users for object ";
const std::string kNoRoute = "Error reported by IO module: no route to host\n";

INSTANTIATE_TEST_SUITE_P(
    Rows, ObjectErrorText,
    ::testing::Values(
        ObjectsCase{"SeveralFlagsInAscendingOrderWithTheUsersLast", checkOut, {0x80 | 0x2, 0x40 | 0x10},
                    {{0, Users({"bob"})}},
                    kCheckedOutByOthers + kMarkedForDelete + kNotHead + kNotInDatabase + "\nbob\n"},
        ObjectsCase{"EachLineOnceWithTheUsersOfItsFirstObject", checkOut, {0x4, 0x8, 0x8 | 0x4}, {{1, Users({"carl"})}},
                    kMarkedForAdd + kMarkedForAddByOthers + "\ncarl\n"},
        ObjectsCase{"UsersOnceAndSortedAcrossFlags", checkOut, {0x2, 0x20000},
                    {{0, Users({"zoe", "bob"})}, {1, Users({"bob", "amy"})}},
                    kCheckedOutByOthers + kLockedByOthers + "\namy\nbob\nzoe\n"},
        ObjectsCase{"AFailedUsersQueryBecomesAnEntryNamingTheObject", checkOut, {0, 0x20000}, {{1, std::nullopt}},
                    kLockedByOthers + kUsersOf + "asset1\n\n"},
        ObjectsCase{"NoUsersCountsAsAFailedQuery", checkOut, {0x2}, {{0, Users(std::vector<std::string>{})}},
                    kCheckedOutByOthers + kUsersOf + "asset0\n\n"},
        ObjectsCase{"CheckedOutByTheUserAddsNothing", markForAdd, {0x1 | 0x8000}, {}, kIOError},
        // 0x1 has no line; the others are outside the mark-for-add set.
        ObjectsCase{"NoFlagWithALineIsUnexplained", markForAdd, {0x1 | 0x4 | 0x10 | 0x40 | 0x80}, {}, kUnknown},
        ObjectsCase{"NoObjectsIsUnexplained", checkOut, {}, {}, kUnknown},
        ObjectsCase{"ASessionUnusableStatusQuery", checkOut, {0x2}, {},
                    "Cannot connect to source control.\n" + kNoRoute, -34},
        ObjectsCase{"AnotherFailedStatusQuery", checkOut, {0x2}, {}, "Unknown error encountered.\n" + kNoRoute, -2},
        ObjectsCase{"AStatusQueryWithARemark", checkOut, {0x2}, {}, "Unknown error encountered.\n" + kNoRoute, 1}),
    [](const auto& info) { return std::string(info.param.name); });

struct FilesCase {
    const char* name;
    unsigned combinedStatus;
    Users users;  // nullopt: the users query fails
    std::string expected;
};

class FileErrorText : public ::testing::TestWithParam<FilesCase>
{
protected:
    ScriptedHost host;
};

TEST_P(FileErrorText, ExplainsTheCombinedStatus)
{
    const FilesCase& c = GetParam();
    const kel4::List<std::string> files{"/ws/a.kel", "/ws/b.kel"};
    auto& usersQuery = EXPECT_CALL(*host.fileVersionControl, GetUsersOfFiles(nullptr, files, _, _));
    if (c.expected.find("following users") == std::string::npos)
        usersQuery.Times(0);
    else
        usersQuery.WillOnce(DoAll(SetArgReferee<2>(kel4::List<std::string>(c.users->begin(), c.users->end())),
                                  Return(kelResult(c.users->empty() ? -34 : 0))));

    std::string message = "Cannot mark-for-delete the files\n";
    AddErrorString(host.fileVersionControl, nullptr, files, c.combinedStatus,
                   hbrc::internal::kMarkForDeleteErrorFlags, "depot says no", message);
    EXPECT_EQ(message, "Cannot mark-for-delete the files\n" + c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FileErrorText,
    ::testing::Values(
        FilesCase{"LinesInAscendingOrderThenTheUsers", 0x20000 | 0x80 | 0x2, Users({"bob", "amy", "bob"}),
                  kCheckedOutByOthers + kNotInDatabase + kLockedByOthers + "\namy\nbob\n"},
        FilesCase{"NoUserNamingFlagAsksNoUsers", 0x40 | 0x8000, std::nullopt, kNotHead + kIOError},
        FilesCase{"UsersNamedAlthoughALaterFlagNamesNone", 0x2 | 0x40, Users({"bob"}),
                  kCheckedOutByOthers + kNotHead + "\nbob\n"},
        FilesCase{"AFailedUsersQueryHasItsOwnLine", 0x8, Users(std::vector<std::string>{}),
                  kMarkedForAddByOthers + "Sorry cannot get the list of users\n"},
        FilesCase{"AFlagOutsideTheSetIsUnexplained", 0x10 | 0x1, std::nullopt, kUnknown}),
    [](const auto& info) { return std::string(info.param.name); });

// Ok gives up: the check-out flows press it (tst_revisionops_host).
TEST(HandleErrorInteractive, ShowsACriticalBoxAndRetriesOnRetry)
{
    QWidget mainWindow;  // makes the session interactive
    DialogDriver driver;
    driver.expect("error box", [](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->windowTitle(), "Revert Error");
        EXPECT_EQ(box->text(), "Cannot revert\nbecause some of the files are not in the database\n");
        EXPECT_EQ(box->icon(), QMessageBox::Critical);
        EXPECT_EQ(box->standardButtons(), QMessageBox::Ok | QMessageBox::Retry);
        EXPECT_EQ(box->defaultButton(), box->button(QMessageBox::Retry));
        EXPECT_EQ(box->escapeButton(), box->button(QMessageBox::Ok));
        EXPECT_EQ(box->parentWidget(), nullptr);
        box->button(QMessageBox::Retry)->click();
    });
    EXPECT_TRUE(HandleError("Revert Error", "Cannot revert\nbecause some of the files are not in the database\n"));
    EXPECT_TRUE(driver.finished()) << driver.failures().join('\n').toStdString();
}

TEST(HandleErrorBatch, LogsTheTitleAndEachLineAsAnErrorAndDoesNotRetry)
{
    ASSERT_TRUE(QApplication::topLevelWidgets().isEmpty());
    hbrc::host::LogCapture log;
    DialogDriver driver;  // fails the test if any box appears
    EXPECT_FALSE(HandleError("Mark-For-Delete Error", "Cannot mark-for-delete\n\nbob\namy\n"));
    ASSERT_EQ(log.Entries().size(), 1u);
    EXPECT_EQ(log.Entries().front().type, 2);
    EXPECT_EQ(log.Entries().front().text, "Mark-For-Delete Error:\n  Cannot mark-for-delete\n  bob\n  amy");
    EXPECT_TRUE(driver.finished()) << driver.failures().join('\n').toStdString();
}

TEST(BatchRetry, WaitsHalfASecondThenTwiceAsLongUpToThirtySeconds)
{
    using namespace std::chrono_literals;
    hbrc::internal::RetryBackoff backoff;
    std::vector<std::chrono::milliseconds> waits;
    for (int attempt = 0; attempt < 9; ++attempt)
        waits.push_back(backoff.Next());
    EXPECT_THAT(waits, ::testing::ElementsAre(500ms, 1s, 2s, 4s, 8s, 16s, 30s, 30s, 30s));
}

}  // namespace
