// Log-in, sessions, an unreachable depot and injected faults: the codes and texts the plug-in
// acts on (-34 starts its re-connection; "Invalid password" its password dialog).
#include <depothostfixture.h>

#include <functional>

using namespace kel4;

namespace {

using SessionsAndFaults = DepotHostFixture;

struct LoginCase
{
    const char* name;
    const char* user;
    const char* password;
    const char* workspace;
    const char* serverSuffix;  // after the depot's path
    const char* errorPart;
};

class LoginFailures : public DepotHostFixture, public ::testing::WithParamInterface<LoginCase>
{
};

TEST_P(LoginFailures, GiveNoSessionAndSayWhy)
{
    const LoginCase& row = GetParam();
    std::string error;
    EXPECT_TRUE(FileVersionControl()->Login(row.user, row.password, row.workspace, DepotPath() + row.serverSuffix, error)
                    .IsNull());
    EXPECT_NE(error.find(row.errorPart), std::string::npos) << error;
    EXPECT_EQ(StatusOf("Rock"), 0u) << "alice's installed session still works, on the same depot";
}

INSTANTIATE_TEST_SUITE_P(
    , LoginFailures,
    ::testing::Values(LoginCase{"WrongPassword", "alice", "guess", "alice-ws", "", "Invalid password"},
                      LoginCase{"MissingPassword", "alice", "", "alice-ws", "", "Invalid password"},
                      LoginCase{"UnknownUser", "carol", "x", "alice-ws", "", "Invalid password"},
                      LoginCase{"SomeoneElsesWorkspace", "alice", "alice-pw", "bob-ws", "", "belongs to user bob"},
                      LoginCase{"UnreachableDepot", "alice", "alice-pw", "alice-ws", ".missing", "Cannot reach the depot"}),
    [](const ::testing::TestParamInfo<LoginCase>& info) { return std::string(info.param.name); });

// Every operation that needs the depot, as the plug-in calls them; each answers a result code.
struct DepotOperation
{
    const char* name;
    std::function<kelResult(SessionsAndFaults&, std::string& error)> run;
};

const DepotOperation kOperations[] = {
    {"status", [](SessionsAndFaults& f, std::string& error) {
         List<unsigned> statuses;
         return f.DataControl()->GetStatus({f.Asset("Rock")}, true, closureId::Persistence, true, statuses, error);
     }},
    {"check-out", [](SessionsAndFaults& f, std::string& error) {
         return f.DataControl()->CheckOut({f.Asset("Rock")}, true, closureId::Persistence, "", error);
     }},
    {"users", [](SessionsAndFaults& f, std::string&) {
         List<std::string> users;
         return f.DataControl()->GetUsersOfObject(f.Asset("Rock"), closureId::Persistence, users);
     }},
    {"changelists", [](SessionsAndFaults& f, std::string& error) {
         List<std::string> changelists;
         return f.DataControl()->GetPendingChangeLists(changelists, error);
     }},
    {"revert", [](SessionsAndFaults& f, std::string& error) {
         return f.FileVersionControl()->Revert(f.AliceSession(), {f.AlicePath("rock.bin")}, error, 0, 0);
     }},
    {"mark-for-delete", [](SessionsAndFaults& f, std::string& error) {
         return f.FileVersionControl()->MarkForDeleteInChangelist(f.AliceSession(), {f.AlicePath("rock.bin")}, "", error);
     }},
};

TEST_F(SessionsAndFaults, ExpiredSessionMakesEveryOperationUnusableUntilALogIn)
{
    ASSERT_EQ(services.ExpireSessionNow().GetCode(), 0);
    std::string error;
    for (const DepotOperation& operation : kOperations)
        EXPECT_EQ(operation.run(*this, error).GetCode(), kResultSessionUnusable) << operation.name;
    EXPECT_FALSE(DataControl()->ChangeListExists("1"));
    EXPECT_TRUE(DataControl()->ChangeListExists("")) << "the default changelist exists without asking";
    std::vector<hbrc::depot::FileStatus> bobSees;
    BobExpects(Bob().status(BobTicket(), BobFilesOf("Rock"), bobSees));
    for (const auto& status : bobSees)
        EXPECT_EQ(status.word, 0u) << "the refused check-out opened nothing";

    // What the plug-in's re-connection does: log in again and install the session.
    const KELPtr<IUserParameters> session = FileVersionControl()->Login("alice", "alice-pw", "alice-ws", DepotPath(), error);
    ASSERT_FALSE(session.IsNull()) << error;
    EXPECT_TRUE(session->HasSession());
    DataControl()->SetSession(session);
    for (const DepotOperation& operation : kOperations)
        EXPECT_GE(operation.run(*this, error).GetCode(), 0) << operation.name << ": " << error;
}

TEST_F(SessionsAndFaults, WithoutASessionOperationsAreUnusableWithoutAsking)
{
    DataControl()->SetUserParameters({});
    const auto before = services.connection->RoundTrips();
    std::string error;
    for (const DepotOperation& operation : kOperations)
        EXPECT_EQ(operation.run(*this, error).GetCode(), kResultSessionUnusable) << operation.name;
    EXPECT_EQ(services.connection->RoundTrips(), before);

    // An account without a session, as the host describes it before logging in.
    const KELPtr<IUserParameters> account =
        FileVersionControl()->CreateUserParameters("alice", "", DepotPath(), "alice-ws", error);
    ASSERT_FALSE(account.IsNull()) << error;
    EXPECT_FALSE(account->HasSession());
    EXPECT_EQ(account->GetServer(), DepotPath());
    DataControl()->SetUserParameters(account);
    EXPECT_EQ(DataControl()->GetUserParameters(), account);
    EXPECT_EQ(kOperations[0].run(*this, error).GetCode(), kResultSessionUnusable);
    EXPECT_TRUE(FileVersionControl()->CreateUserParameters("alice", "", DepotPath() + ".missing", "alice-ws", error)
                    .IsNull());
    EXPECT_NE(error.find("Cannot reach the depot"), std::string::npos) << error;
}

TEST_F(SessionsAndFaults, TheSameAccountHandedOverAgainKeepsTheSession)
{
    // As the settings do when revision control is switched on or the account is written again.
    std::string error;
    const KELPtr<IUserParameters> running = DataControl()->GetUserParameters();
    DataControl()->SetUserParameters(
        FileVersionControl()->CreateUserParameters("alice", "", DepotPath(), "alice-ws", error));
    EXPECT_EQ(DataControl()->GetUserParameters(), running);
    for (const DepotOperation& operation : kOperations)
        EXPECT_GE(operation.run(*this, error).GetCode(), 0) << operation.name << ": " << error;

    // Another account starts over: it needs a log-in of its own.
    const KELPtr<IUserParameters> bob =
        FileVersionControl()->CreateUserParameters("bob", "", DepotPath(), "bob-ws", error);
    DataControl()->SetUserParameters(bob);
    EXPECT_EQ(DataControl()->GetUserParameters(), bob);
    EXPECT_EQ(kOperations[0].run(*this, error).GetCode(), kResultSessionUnusable);
}

TEST_F(SessionsAndFaults, ServicesOnAnUnreachableDepotAnswerUnusable)
{
    std::string error;
    auto unreachable = hbrc::host::InstallRevisionControlServices(
        *workspace, DepotPath() + ".missing", {"alice", "alice-pw", "alice-ws"}, error, ConnectionOptionsForAlice());
    EXPECT_NE(error.find("Cannot reach the depot"), std::string::npos) << error;
    for (const DepotOperation& operation : kOperations)
        EXPECT_EQ(operation.run(*this, error).GetCode(), kResultSessionUnusable) << operation.name;

    // Logging in to the right depot moves the services there.
    const KELPtr<IUserParameters> session = FileVersionControl()->Login("alice", "alice-pw", "alice-ws", DepotPath(), error);
    ASSERT_FALSE(session.IsNull()) << error;
    DataControl()->SetSession(session);
    EXPECT_EQ(unreachable.connection->Server(), DepotPath());
    EXPECT_EQ(StatusOf("Rock"), 0u);
}

// How injected failures count and pick their operation is the depot's (tst_depot); here, that a
// failed change reaches the caller with its text and opens nothing.
TEST_F(SessionsAndFaults, FailedCheckOutLeavesNothingOpen)
{
    services.connection->Faults().failOperation(hbrc::depot::Operation::Edit, hbrc::depot::code::IoError, "disk on fire");
    std::string error;
    EXPECT_EQ(DataControl()->CheckOut({Asset("Rock")}, true, kPersistence, "", error).GetCode(), kResultFailed);
    EXPECT_EQ(error, "disk on fire");
    services.connection->Faults().clear();
    EXPECT_EQ(StatusOf("Rock"), 0u);
    EXPECT_TRUE(DataControl()->NeedsAction(Asset("Rock"), true, kPersistence));
}

}  // namespace
