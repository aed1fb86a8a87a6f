// The per-object answers drawn from file statuses: needs-action and can-check-out.
#include <hbrcservices/statusrules.h>

#include <gtest/gtest.h>

#include <set>

using namespace hbrc::revision;
using hbrc::host::StatusRules::CanCheckOut;
using hbrc::host::StatusRules::NeedsAction;
using hbrc::host::StatusRules::ObjectWord;

namespace {

struct RuleCase
{
    const char* name;
    std::vector<std::uint32_t> words;     // one file each: "a", "b", ...
    std::set<std::string> readOnlyFiles;
    bool needsAction;
    bool canCheckOut;
};

class StatusRules : public ::testing::TestWithParam<RuleCase>
{
};

TEST_P(StatusRules, FollowFromTheFilesStatusesAndPermissions)
{
    const RuleCase& row = GetParam();
    std::vector<std::string> files;
    std::vector<FileStatus> statuses;
    unsigned expectedWord = 0;
    for (std::size_t i = 0; i < row.words.size(); ++i) {
        files.push_back(std::string(1, char('a' + i)));
        FileStatus fileStatus;
        fileStatus.word = row.words[i];
        statuses.push_back(fileStatus);
        expectedWord |= row.words[i];
    }
    const auto readOnly = [&](const std::string& file) { return row.readOnlyFiles.count(file) != 0; };
    EXPECT_EQ(NeedsAction(files, statuses, readOnly), row.needsAction);
    EXPECT_EQ(CanCheckOut(statuses), row.canCheckOut);
    EXPECT_EQ(ObjectWord(statuses), expectedWord);
}

INSTANTIATE_TEST_SUITE_P(
    , StatusRules,
    ::testing::Values(
        RuleCase{"SyncedReadOnly", {0}, {"a"}, true, true},
        RuleCase{"MadeWritable", {0}, {}, false, true},
        RuleCase{"CheckedOut", {status::OpenedForEdit}, {}, false, false},
        RuleCase{"OneOfTwoCheckedOut", {status::OpenedForEdit, 0}, {"b"}, true, true},
        RuleCase{"NewFile", {status::NotInDepot}, {}, false, false},
        RuleCase{"NewFileBesideSyncedOne", {status::NotInDepot, 0}, {"b"}, true, false},
        RuleCase{"HeldByOthers", {status::OpenedByOthers}, {"a"}, true, false},
        RuleCase{"LockedByOthers", {status::OpenedByOthers | status::LockedByOthers}, {"a"}, true, false},
        RuleCase{"DeletedByOthers", {status::DeletedByOthers}, {"a"}, true, false},
        RuleCase{"AddedByOthers", {status::AddedByOthers | status::NotInDepot}, {}, false, false},
        RuleCase{"NotAtHead", {status::NotAtHead}, {"a"}, true, false},
        RuleCase{"IoError", {status::IoError}, {"a"}, true, false},
        RuleCase{"MarkedForDeleteHere", {status::OpenedForDelete}, {"a"}, false, false},
        RuleCase{"NoFiles", {}, {}, false, false}),
    [](const ::testing::TestParamInfo<RuleCase>& info) { return std::string(info.param.name); });

}  // namespace
