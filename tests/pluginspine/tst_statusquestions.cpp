// The status questions a host asks before it lets the user change an asset: whether it can be
// checked out or made writable, and the status words of a list of objects.
#include "hbrevisioncontrolpropertiesmgr.h"
#include "revisioncontroluihelper.h"

#include <hostfakes.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using ::testing::_;
using ::testing::DoAll;
using ::testing::Return;
using ::testing::SetArgReferee;

namespace {

enum class Settings { Missing, Off, On };

struct StatusQuestionCase {
    const char* name;
    Settings settings;
    bool dataControl;         // the object's database offers a data control
    int canCheckOutCode;      // result of the data control's can-check-out question
    bool canCheckOutAnswer;   // its answer when it succeeds
    bool canMakeWritable;     // the data control's can-make-writable answer
    bool expectCanCheckOut;
    bool expectCanMakeWritable;
};

class StatusQuestions : public ::testing::TestWithParam<StatusQuestionCase>
{
protected:
    void SetUp() override
    {
        const StatusQuestionCase& row = GetParam();
        if (row.settings != Settings::Missing)
            host.system.RegisterFactory("RevisionControlPropertiesMgr", &CHBRevisionControlPropertiesMgr::Factory);
        host.prefs->SetBoolPref("RevControl.UseSourceDataControl", row.settings == Settings::On, 1);
        if (!row.dataControl)
            host.instance->SetService(kel4::UID_DataControl(), {});
        ON_CALL(*host.dataControl, CanCheckOut(_, _, _, _))
            .WillByDefault(DoAll(SetArgReferee<3>(row.canCheckOutAnswer), Return(kelResult(row.canCheckOutCode))));
        ON_CALL(*host.dataControl, CanMakeWritable(_, _, _)).WillByDefault(Return(row.canMakeWritable));
    }
    void TearDown() override { ::testing::Mock::VerifyAndClear(host.dataControl.Get()); }

    hbrc::test::FakeHost host;
    CRevisionControlUIHelper helper;
};

TEST_P(StatusQuestions, AnswerFromTheSettingsAndTheDataControl)
{
    const StatusQuestionCase& row = GetParam();
    const KELHandle<IDbObject> rock = host.manager->AddObject("id-rock", "Rock");
    EXPECT_EQ(helper.IsRevisionControlEnabled(), row.settings == Settings::On);
    EXPECT_EQ(helper.CanCheckOutObject(rock, true), row.expectCanCheckOut);
    EXPECT_EQ(helper.CanMakeObjectWritable(rock, true), row.expectCanMakeWritable);
}

// Revision control is on only through the settings. Making writable asks the data control whatever
// the settings say; checking out needs revision control switched on, and is allowed when the data
// control cannot tell.
INSTANTIATE_TEST_SUITE_P(
    Helper, StatusQuestions,
    ::testing::Values(
        StatusQuestionCase{"NoSettingsManager", Settings::Missing, true, 0, true, true, false, true},
        StatusQuestionCase{"RevisionControlOff", Settings::Off, true, 0, true, false, false, false},
        StatusQuestionCase{"NoDataControl", Settings::On, false, 0, true, true, false, false},
        StatusQuestionCase{"QuestionFailsSoCheckOutMayBeTried", Settings::On, true, -34, false, false, true, false},
        StatusQuestionCase{"HeldByOthers", Settings::On, true, 0, false, true, false, true},
        StatusQuestionCase{"Free", Settings::On, true, 0, true, false, true, false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ObjectStatus, AnEmptyListAnswersOneWithoutAskingAndAListIsOneQuestion)
{
    hbrc::test::FakeHost host;
    CRevisionControlUIHelper helper;
    kel4::List<unsigned> statuses{0xdead};
    EXPECT_CALL(*host.dataControl, GetStatus(_, _, _, _, _, _)).Times(0);
    EXPECT_EQ(helper.GetObjectStatus({}, true, false, statuses).GetCode(), 1);
    EXPECT_EQ(statuses, kel4::List<unsigned>{0xdead}) << "the caller's list is left as it was";
    ::testing::Mock::VerifyAndClear(host.dataControl.Get());

    const CRevisionControlUIHelper::ObjectList objects{host.manager->AddObject("id-rock", "Rock"),
                                                       host.manager->AddObject("id-sky", "Sky")};
    EXPECT_CALL(*host.dataControl, GetStatus(objects, true, kel4::closureId::Persistence, true, _, _))
        .WillOnce(DoAll(SetArgReferee<4>(kel4::List<unsigned>{0x2, 0x0}), SetArgReferee<5>("ignored"),
                        Return(kelResult(0))));
    EXPECT_EQ(helper.GetObjectStatus(objects, true, true, statuses).GetCode(), 0);
    EXPECT_EQ(statuses, (kel4::List<unsigned>{0x2, 0x0}));
    ::testing::Mock::VerifyAndClear(host.dataControl.Get());

    host.instance->SetService(kel4::UID_DataControl(), {});
    kel4::DisableErrorReportingGuard quiet;
    EXPECT_THROW(helper.GetObjectStatus(objects, true, false, statuses), kel4::ExBase::NullPtr)
        << "objects whose database offers no data control are a host error";
}

}  // namespace
