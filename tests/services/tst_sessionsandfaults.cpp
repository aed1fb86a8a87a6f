// Log-in, sessions, an unreachable depot and injected faults: the codes and texts the plug-in
// acts on (-34 starts its re-connection; "Invalid password" its password dialog).
#include <serverhostfixture.h>

#include <hbrcservices/serverqueries.h>

#include <chrono>
#include <functional>
#include <set>
#include <thread>
#include <tuple>

using namespace kel4;

namespace {

class SessionsAndFaults : public ServerFixture
{
};
INSTANTIATE_TEST_SUITE_P(Servers, SessionsAndFaults, ServerKinds(), ServerKindName);

struct LoginCase
{
    const char* name;
    const char* user;
    const char* password;
    bool bobsWorkspace;
    bool unreachable;
    const char* errorPart;
    // What a Subversion server answers: a working copy has no owner (nullptr: the log-in succeeds).
    const char* svnErrorPart;
};

class LoginFailures : public ServerHostFixture,
                      public ::testing::WithParamInterface<std::tuple<ServerKind, LoginCase>>
{
public:
    ServerKind Server() const override { return std::get<0>(GetParam()); }
};

TEST_P(LoginFailures, GiveNoSessionAndSayWhy)
{
    const LoginCase& row = std::get<1>(GetParam());
    std::string error;
    const std::string server = row.unreachable ? UnreachableServer() : DepotPath();
    const KELPtr<IUserParameters> session = FileVersionControl()->Login(
        row.user, row.password, row.bobsWorkspace ? BobWorkspace() : AliceWorkspace(), server, error);
    const char* expected = IsSubversion() ? row.svnErrorPart : row.errorPart;
    EXPECT_EQ(session.IsNull(), expected != nullptr) << error;
    if (expected) {
        EXPECT_NE(error.find(expected), std::string::npos) << error;
    }
    EXPECT_EQ(StatusOf("Rock"), 0u) << "alice's installed session still works, on the same server";
}

// file:// repositories have no authentication: only the unreachable row applies to them.
INSTANTIATE_TEST_SUITE_P(
    , LoginFailures,
    ::testing::Combine(
        ::testing::Values(ServerKind::EmbeddedDepot, ServerKind::SvnServe),
        ::testing::Values(
            LoginCase{"WrongPassword", "alice", "guess", false, false, "Invalid password", "Invalid password"},
            LoginCase{"MissingPassword", "alice", "", false, false, "Invalid password", "Invalid password"},
            LoginCase{"UnknownUser", "carol", "x", false, false, "Invalid password", "Invalid password"},
            LoginCase{"SomeoneElsesWorkspace", "alice", "alice-pw", true, false, "belongs to user bob", nullptr},
            LoginCase{"UnreachableServer", "alice", "alice-pw", false, true, "Cannot reach the depot",
                      "Cannot reach the Subversion server"})),
    [](const ::testing::TestParamInfo<std::tuple<ServerKind, LoginCase>>& info) {
        return ServerKindName({std::get<0>(info.param), info.index}) + std::get<1>(info.param).name;
    });

// Every operation that needs the depot, as the plug-in calls them; each answers a result code.
struct DepotOperation
{
    const char* name;
    std::function<kelResult(ServerHostFixture&, std::string& error)> run;
};

const DepotOperation kOperations[] = {
    {"status", [](ServerHostFixture& f, std::string& error) {
         List<unsigned> statuses;
         return f.DataControl()->GetStatus({f.Asset("Rock")}, true, closureId::Persistence, true, statuses, error);
     }},
    {"check-out", [](ServerHostFixture& f, std::string& error) {
         return f.DataControl()->CheckOut({f.Asset("Rock")}, true, closureId::Persistence, "", error);
     }},
    {"users", [](ServerHostFixture& f, std::string&) {
         List<std::string> users;
         return f.DataControl()->GetUsersOfObject(f.Asset("Rock"), closureId::Persistence, users);
     }},
    {"changelists", [](ServerHostFixture& f, std::string& error) {
         List<std::string> changelists;
         return f.DataControl()->GetPendingChangeLists(changelists, error);
     }},
    {"revert", [](ServerHostFixture& f, std::string& error) {
         return f.FileVersionControl()->Revert(f.AliceSession(), {f.AlicePath("rock.bin")}, error, 0, 0);
     }},
    {"mark-for-delete", [](ServerHostFixture& f, std::string& error) {
         return f.FileVersionControl()->MarkForDeleteInChangelist(f.AliceSession(), {f.AlicePath("rock.bin")}, "", error);
     }},
};

TEST_P(SessionsAndFaults, ExpiredSessionMakesEveryOperationUnusableUntilALogIn)
{
    ASSERT_EQ(services.ExpireSessionNow().GetCode(), 0);
    std::string error;
    for (const DepotOperation& operation : kOperations)
        EXPECT_EQ(operation.run(*this, error).GetCode(), kResultSessionUnusable) << operation.name;
    EXPECT_FALSE(DataControl()->ChangeListExists("1"));
    EXPECT_TRUE(DataControl()->ChangeListExists("")) << "the default changelist exists without asking";
    std::vector<hbrc::revision::FileStatus> bobSees;
    BobExpects(Bob().status(BobTicket(), BobFilesOf("Rock"), bobSees));
    for (const auto& status : bobSees)
        EXPECT_EQ(status.word, 0u) << "the refused check-out opened nothing";

    // What the plug-in's re-connection does: log in again and install the session.
    const KELPtr<IUserParameters> session = FileVersionControl()->Login("alice", "alice-pw", AliceWorkspace(), DepotPath(), error);
    ASSERT_FALSE(session.IsNull()) << error;
    EXPECT_TRUE(session->HasSession());
    DataControl()->SetSession(session);
    for (const DepotOperation& operation : kOperations)
        EXPECT_GE(operation.run(*this, error).GetCode(), 0) << operation.name << ": " << error;
}

// The settings hand the account over when revision control is switched on or the account is written
// again: the same account keeps its session; another one, or none, makes every operation unusable
// without asking the server.
TEST_P(SessionsAndFaults, AnAccountHandedOverAgainKeepsTheSessionAndAnyOtherNeedsALogIn)
{
    std::string error;
    const KELPtr<IUserParameters> running = DataControl()->GetUserParameters();
    DataControl()->SetUserParameters(
        FileVersionControl()->CreateUserParameters("alice", "", DepotPath(), AliceWorkspace(), error));
    EXPECT_EQ(DataControl()->GetUserParameters(), running);
    for (const DepotOperation& operation : kOperations)
        EXPECT_GE(operation.run(*this, error).GetCode(), 0) << operation.name << ": " << error;

    // An account without a session, as the host describes it before logging in.
    const KELPtr<IUserParameters> bob =
        FileVersionControl()->CreateUserParameters("bob", "", DepotPath(), BobWorkspace(), error);
    ASSERT_FALSE(bob.IsNull()) << error;
    EXPECT_FALSE(bob->HasSession());
    EXPECT_EQ(bob->GetServer(), DepotPath());
    const auto before = services.connection->RoundTrips();
    for (const KELPtr<IUserParameters>& account : {bob, KELPtr<IUserParameters>()}) {
        DataControl()->SetUserParameters(account);
        EXPECT_EQ(DataControl()->GetUserParameters(), account);
        for (const DepotOperation& operation : kOperations)
            EXPECT_EQ(operation.run(*this, error).GetCode(), kResultSessionUnusable) << operation.name;
    }
    EXPECT_EQ(services.connection->RoundTrips(), before);
    if (!IsSubversion()) {
        // Only a depot file can be looked for without a log-in.
        EXPECT_TRUE(FileVersionControl()->CreateUserParameters("alice", "", UnreachableServer(), AliceWorkspace(), error)
                        .IsNull());
        EXPECT_NE(error.find("Cannot reach the depot"), std::string::npos) << error;
    }
}

TEST_P(SessionsAndFaults, ServicesOnAnUnreachableDepotAnswerUnusable)
{
    std::string error;
    auto unreachable = hbrc::host::InstallRevisionControlServices(
        *workspace, UnreachableServer(), {"alice", "alice-pw", AliceWorkspace()}, error, ConnectionOptionsForAlice());
    EXPECT_NE(error.find("Cannot reach the"), std::string::npos) << error;
    for (const DepotOperation& operation : kOperations)
        EXPECT_EQ(operation.run(*this, error).GetCode(), kResultSessionUnusable) << operation.name;

    // Logging in to the right depot moves the services there.
    const KELPtr<IUserParameters> session = FileVersionControl()->Login("alice", "alice-pw", AliceWorkspace(), DepotPath(), error);
    ASSERT_FALSE(session.IsNull()) << error;
    DataControl()->SetSession(session);
    EXPECT_EQ(unreachable.connection->Server(), DepotPath());
    EXPECT_EQ(StatusOf("Rock"), 0u);
}

// A log-in kept on one connection opens a session on the next one, as after a restart: the
// embedded depot keeps the ticket in the ticket store hbdepot shares, Subversion the password in
// its client's credential cache (in $HOME, as the svn command-line client keeps it). Logging out
// ends the session and forgets what was kept.
TEST_P(SessionsAndFaults, AKeptLogInServesTheNextStartUntilLogOut)
{
    const QByteArray home = qgetenv("HOME");
    const QTemporaryDir ownHome;
    qputenv("HOME", QFile::encodeName(ownHome.path()));
    std::string error;
    ASSERT_TRUE(services.connection->Keep(DataControl()->GetUserParameters().Get(), error).IsSuccess()) << error;
    hbrc::host::ServerConnection restart(DepotPath());
    const KELPtr<hbrc::host::UserParameters> resumed = restart.ResumeKept("alice", AliceWorkspace(), error);
    ASSERT_FALSE(resumed.IsNull()) << error;
    std::vector<hbrc::revision::FileStatus> statuses;
    EXPECT_TRUE(hbrc::host::ServerQueries::Status(restart, resumed.Get(), {AlicePath("rock.bin")}, statuses, error)
                    .IsSuccess())
        << error;
    EXPECT_TRUE(restart.Logout(resumed.Get(), error).IsSuccess()) << error;
    // A file:// repository asks for no password: there is nothing to keep or forget.
    if (Server() != ServerKind::SvnFile) {
        EXPECT_TRUE(hbrc::host::ServerConnection(DepotPath()).ResumeKept("alice", AliceWorkspace(), error).IsNull());
    }
    qputenv("HOME", home);
}

// How injected failures count and pick their operation is the depot's (tst_depot); here, that a
// failed change reaches the caller with its text and opens nothing.
TEST_P(SessionsAndFaults, FailedCheckOutLeavesNothingOpen)
{
    services.connection->Faults().failOperation(hbrc::revision::Operation::Edit, hbrc::revision::code::IoError, "disk on fire");
    std::string error;
    EXPECT_EQ(DataControl()->CheckOut({Asset("Rock")}, true, kPersistence, "", error).GetCode(), kResultFailed);
    EXPECT_EQ(error, "disk on fire");
    services.connection->Faults().clear();
    EXPECT_EQ(StatusOf("Rock"), 0u);
    EXPECT_TRUE(DataControl()->NeedsAction(Asset("Rock"), true, kPersistence));
}

class SvnServeFaults : public ServerHostFixture
{
public:
    ServerKind Server() const override { return ServerKind::SvnServe; }
};

// The administrator changes alice's password: her session's next question is refused with -34 (so
// the plug-in asks for the password), the old password no longer logs in, the new one does.
TEST_F(SvnServeFaults, ACredentialTheServerNoLongerAcceptsMakesTheSessionUnusable)
{
    Repository()->SetUsers("alice = new-pw\nbob = bob-pw\n");
    std::string error;
    List<unsigned> statuses;
    EXPECT_EQ(DataControl()->GetStatus({Asset("Rock")}, true, kPersistence, true, statuses, error).GetCode(),
              kResultSessionUnusable);
    EXPECT_NE(error.find("refused the session's credentials"), std::string::npos) << error;
    EXPECT_TRUE(FileVersionControl()->Login("alice", "alice-pw", AliceWorkspace(), DepotPath(), error).IsNull());
    EXPECT_NE(error.find("Invalid password"), std::string::npos) << error;
    const KELPtr<IUserParameters> session =
        FileVersionControl()->Login("alice", "new-pw", AliceWorkspace(), DepotPath(), error);
    ASSERT_FALSE(session.IsNull()) << error;
    DataControl()->SetSession(session);
    EXPECT_EQ(StatusOf("Rock"), 0u);
}

// The server dies while a check-out is under way (its round trip delayed): the check-out and every
// question after it end with -34 and say that the server cannot be reached; nothing waits forever.
TEST_F(SvnServeFaults, AServerKilledDuringACheckOutEndsItUnusableWithAClearMessage)
{
    services.connection->Faults().setLatency(std::chrono::milliseconds(300));
    std::thread killer([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        Repository()->CrashServer();
    });
    std::string error;
    const kelResult checkOut = DataControl()->CheckOut({Asset("Rock")}, true, kPersistence, "", error);
    killer.join();
    services.connection->Faults().clear();
    EXPECT_EQ(checkOut.GetCode(), kResultSessionUnusable) << error;
    EXPECT_NE(error.find("Cannot reach the Subversion server"), std::string::npos) << error;
    // The pending changelists and a revert of files not open are answered from the working copy.
    const std::set<std::string> local{"changelists", "revert"};
    for (const DepotOperation& operation : kOperations)
        if (!local.count(operation.name)) {
            EXPECT_EQ(operation.run(*this, error).GetCode(), kResultSessionUnusable) << operation.name << ": " << error;
        }
    EXPECT_TRUE(FileVersionControl()->Login("alice", "alice-pw", AliceWorkspace(), DepotPath(), error).IsNull());
    EXPECT_NE(error.find("Cannot reach the Subversion server"), std::string::npos) << error;
}

}  // namespace
