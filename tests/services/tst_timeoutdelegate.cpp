// The time-out delegate protocol: a slow operation asks the delegate (the plug-in's progress
// box), ends it with Close when it finishes, and rolls back when the user cancels.
#include <serverhostfixture.h>
#include <dialogdriver.h>

#include <kel4/itimeoutdelegate.h>
#include <kel4/revisionstatus.h>

#include <functional>

using namespace kel4;

namespace {

// Answers GetUserInput with Cancel at once, or spins the event loop (as a modal box does) until
// Close comes; a Close that never comes ends the wait after a while as a Cancel.
class ScriptedDelegate final : public ITimeOutDelegate
{
public:
    explicit ScriptedDelegate(bool cancel) : m_cancel(cancel) {}

    bool GetUserInput() override
    {
        ++userInputCalls;
        if (whileAsking)
            whileAsking();
        return m_cancel || !hbrc::test::DialogDriver::waitUntil([this] { return closeCalls > 0; }, 20000);
    }
    void Close() override { ++closeCalls; }

    int userInputCalls = 0;
    int closeCalls = 0;
    std::function<void()> whileAsking;

private:
    bool m_cancel;
};

class TimeOutDelegate : public ServerFixture
{
protected:
    void SetUp() override
    {
        ServerFixture::SetUp();
        services.connection->Runner().SetThreshold(std::chrono::milliseconds(0));
        services.connection->Runner().SetInteractiveCheck([] { return true; });  // as if a window were up
    }
    void TearDown() override
    {
        FileVersionControl()->SetTimeOutDelegate(nullptr);
        ServerFixture::TearDown();
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, TimeOutDelegate, ServerKinds(), ServerKindName);

TEST_P(TimeOutDelegate, CancelledOperationsChangeNothing)
{
    AliceChecksOut("Tree");
    std::string error;
    const std::pair<const char*, std::function<kelResult()>> operations[] = {
        {"Rock", [&] { return DataControl()->CheckOut({Asset("Rock")}, true, kPersistence, "", error); }},
        {"Sky", [&] { return FileVersionControl()->MarkForDeleteInChangelist(AliceSession(), FilesOf("Sky"), "", error); }},
        {"Tree", [&] { return FileVersionControl()->Revert(AliceSession(), FilesOf("Tree"), error, 0, 0); }},
    };
    for (const auto& [asset, operation] : operations) {
        const unsigned wordBefore = StatusOf(asset);
        const bool wasReadOnly = DataControl()->IsReadOnly(Asset(asset), true, kPersistence);
        ScriptedDelegate delegate(true);
        FileVersionControl()->SetTimeOutDelegate(&delegate);
        // Far longer than any test run: only the cancel can end the round trip early.
        services.connection->Faults().setLatency(std::chrono::minutes(10));
        const kelResult result = operation();
        services.connection->Faults().clear();
        FileVersionControl()->SetTimeOutDelegate(nullptr);

        EXPECT_EQ(result.GetCode(), kResultFailed) << asset;
        EXPECT_NE(error.find("cancelled"), std::string::npos) << error;
        EXPECT_EQ(delegate.userInputCalls, 1) << asset;
        EXPECT_EQ(delegate.closeCalls, 0) << asset << ": the operation did not end by itself";
        EXPECT_EQ(StatusOf(asset), wordBefore) << asset;
        EXPECT_EQ(DataControl()->IsReadOnly(Asset(asset), true, kPersistence), wasReadOnly) << asset;
    }
}

TEST_P(TimeOutDelegate, SlowOperationClosesTheDelegateAndTurnsAwayCallsFromInsideIt)
{
    ScriptedDelegate delegate(false);
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
    EXPECT_EQ(delegate.userInputCalls, 1);
    EXPECT_EQ(delegate.closeCalls, 1);
    EXPECT_EQ(nested.GetCode(), kResultFailed);
    EXPECT_NE(nestedError.find("still running"), std::string::npos) << nestedError;

    // Within the threshold the delegate is not asked.
    services.connection->Runner().SetThreshold(std::chrono::minutes(10));
    EXPECT_EQ(StatusOf("Rock"), eStatusCheckedOut);
    EXPECT_EQ(delegate.userInputCalls, 1);
}

}  // namespace
