// The time-out delegate protocol: a slow operation asks the delegate (the plug-in's progress
// box), ends it with Close when it finishes, and rolls back when the user cancels.
#include <depothostfixture.h>

#include <kel4/itimeoutdelegate.h>
#include <kel4/revisionstatus.h>

#include <QEventLoop>
#include <QTimer>

#include <functional>

using namespace kel4;

namespace {

// Answers GetUserInput as scripted: Cancel at once, or wait in an event loop (as a modal box
// does) until Close comes; a Close that never comes ends the wait after a while as a Cancel.
class ScriptedDelegate final : public ITimeOutDelegate
{
public:
    enum class Answer { Cancel, WaitForClose };

    explicit ScriptedDelegate(Answer answer) : m_answer(answer) {}

    bool GetUserInput() override
    {
        ++userInputCalls;
        if (whileAsking)
            whileAsking();
        if (m_answer == Answer::Cancel)
            return true;
        QEventLoop loop;
        m_loop = &loop;
        QTimer::singleShot(std::chrono::seconds(20), &loop, &QEventLoop::quit);
        loop.exec();
        m_loop = nullptr;
        return !m_closed;
    }

    void Close() override
    {
        ++closeCalls;
        m_closed = true;
        if (m_loop)
            m_loop->quit();
    }

    int userInputCalls = 0;
    int closeCalls = 0;
    std::function<void()> whileAsking;

private:
    Answer m_answer;
    bool m_closed = false;
    QEventLoop* m_loop = nullptr;
};

class TimeOutDelegate : public DepotHostFixture
{
protected:
    void SetUp() override
    {
        DepotHostFixture::SetUp();
        services.connection->Runner().SetThreshold(std::chrono::milliseconds(0));
    }
    void TearDown() override
    {
        FileVersionControl()->SetTimeOutDelegate(nullptr);
        DepotHostFixture::TearDown();
    }

public:
    List<std::string> FilesOf(const std::string& assetName) const
    {
        Set<std::string> files;
        DataControl()->GetFiles(Asset(assetName), true, kPersistence, "", files);
        return {files.begin(), files.end()};
    }
};

struct CancelCase
{
    const char* name;
    const char* asset;
    std::function<kelResult(TimeOutDelegate&, std::string& error)> prepare;  // before the depot turns slow
    std::function<kelResult(TimeOutDelegate&, std::string& error)> operation;
    unsigned wordAfter;
};

class CancelledOperation : public TimeOutDelegate, public ::testing::WithParamInterface<CancelCase>
{
};

TEST_P(CancelledOperation, ChangesNothing)
{
    const CancelCase& row = GetParam();
    std::string error;
    if (row.prepare) {
        ASSERT_EQ(row.prepare(*this, error).GetCode(), 0) << error;
    }
    const bool wasReadOnly = DataControl()->IsReadOnly(Asset(row.asset), true, kPersistence);

    ScriptedDelegate delegate(ScriptedDelegate::Answer::Cancel);
    FileVersionControl()->SetTimeOutDelegate(&delegate);
    // Far longer than any test run: only the cancel can end the round trip early.
    services.connection->Faults().setLatency(std::chrono::minutes(10));
    const kelResult result = row.operation(*this, error);
    services.connection->Faults().clear();
    FileVersionControl()->SetTimeOutDelegate(nullptr);

    EXPECT_EQ(result.GetCode(), kResultFailed);
    EXPECT_NE(error.find("cancelled"), std::string::npos) << error;
    EXPECT_EQ(delegate.userInputCalls, 1);
    EXPECT_EQ(delegate.closeCalls, 0) << "the operation did not end by itself";
    EXPECT_EQ(StatusOf(row.asset), row.wordAfter);
    EXPECT_EQ(DataControl()->IsReadOnly(Asset(row.asset), true, kPersistence), wasReadOnly);
}

INSTANTIATE_TEST_SUITE_P(
    , CancelledOperation,
    ::testing::Values(
        CancelCase{"CheckOut", "Rock", nullptr,
                   [](TimeOutDelegate& f, std::string& error) {
                       return f.DataControl()->CheckOut({f.Asset("Rock")}, true, kel4::closureId::Persistence, "", error);
                   },
                   0u},
        CancelCase{"MarkForDelete", "Sky", nullptr,
                   [](TimeOutDelegate& f, std::string& error) {
                       return f.FileVersionControl()->MarkForDeleteInChangelist(f.AliceSession(), f.FilesOf("Sky"),
                                                                               "", error);
                   },
                   0u},
        CancelCase{"Revert", "Tree",
                   [](TimeOutDelegate& f, std::string& error) {
                       return f.DataControl()->CheckOut({f.Asset("Tree")}, true, kel4::closureId::Persistence, "", error);
                   },
                   [](TimeOutDelegate& f, std::string& error) {
                       return f.FileVersionControl()->Revert(f.AliceSession(), f.FilesOf("Tree"), error, 0, 0);
                   },
                   eStatusCheckedOut}),
    [](const ::testing::TestParamInfo<CancelCase>& info) { return std::string(info.param.name); });

TEST_F(TimeOutDelegate, SlowOperationClosesTheDelegateWhenItEnds)
{
    ScriptedDelegate delegate(ScriptedDelegate::Answer::WaitForClose);
    FileVersionControl()->SetTimeOutDelegate(&delegate);
    services.connection->Faults().setLatency(std::chrono::milliseconds(50));
    std::string error;
    const kelResult result = DataControl()->CheckOut({Asset("Rock")}, true, kPersistence, "", error);
    services.connection->Faults().clear();

    EXPECT_EQ(result.GetCode(), 0) << error;
    EXPECT_EQ(delegate.userInputCalls, 1);
    EXPECT_EQ(delegate.closeCalls, 1);
    FileVersionControl()->SetTimeOutDelegate(nullptr);
    EXPECT_EQ(StatusOf("Rock"), eStatusCheckedOut);
}

TEST_F(TimeOutDelegate, OperationWithinTheThresholdDoesNotAsk)
{
    ScriptedDelegate delegate(ScriptedDelegate::Answer::Cancel);
    FileVersionControl()->SetTimeOutDelegate(&delegate);
    services.connection->Runner().SetThreshold(std::chrono::minutes(10));
    std::string error;
    EXPECT_EQ(DataControl()->CheckOut({Asset("Rock")}, true, kPersistence, "", error).GetCode(), 0) << error;
    EXPECT_EQ(delegate.userInputCalls, 0);
    EXPECT_EQ(delegate.closeCalls, 0);
}

TEST_F(TimeOutDelegate, CallFromInsideTheProgressBoxIsTurnedAwayNotRun)
{
    ScriptedDelegate delegate(ScriptedDelegate::Answer::WaitForClose);
    kelResult nested;
    std::string nestedError;
    delegate.whileAsking = [&] {
        List<std::string> changelists;
        nested = DataControl()->GetPendingChangeLists(changelists, nestedError);
    };
    FileVersionControl()->SetTimeOutDelegate(&delegate);
    services.connection->Faults().setLatency(std::chrono::milliseconds(50));
    std::string error;
    EXPECT_EQ(DataControl()->CheckOut({Asset("Rock")}, true, kPersistence, "", error).GetCode(), 0) << error;
    services.connection->Faults().clear();
    EXPECT_EQ(nested.GetCode(), kResultFailed);
    EXPECT_NE(nestedError.find("still running"), std::string::npos) << nestedError;
    EXPECT_EQ(delegate.closeCalls, 1);
}

}  // namespace
