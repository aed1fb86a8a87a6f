// Log-in, sessions, an unreachable depot and injected faults: the codes and texts the plug-in
// acts on (-34 starts its re-connection; "Invalid password" its password dialog).
#include <serverhostfixture.h>

#include <kel4/revisionstatus.h>

#include <QProcess>

#include <chrono>
#include <functional>
#include <set>
#include <thread>

using namespace kel4;

namespace {

using SessionsAndFaults = ServerFixture;
INSTANTIATE_TEST_SUITE_P(Servers, SessionsAndFaults, ServerKinds(), ServerKindName);

TEST_P(SessionsAndFaults, FailedLogInsGiveNoSessionAndSayWhy)
{
    // What a Subversion server answers differs where a working copy has no owner (nullptr: the
    // log-in succeeds); file:// repositories have no authentication: only the unreachable row applies.
    const struct
    {
        const char* name;
        const char* user;
        const char* password;
        bool bobsWorkspace;
        bool unreachable;
        const char* errorPart;
        const char* svnErrorPart;
    } rows[] = {
        {"WrongPassword", "alice", "guess", false, false, "Invalid password", "Invalid password"},
        {"MissingPassword", "alice", "", false, false, "Invalid password", "Invalid password"},
        {"UnknownUser", "carol", "x", false, false, "Invalid password", "Invalid password"},
        {"SomeoneElsesWorkspace", "alice", "alice-pw", true, false, "belongs to user bob", nullptr},
        {"UnreachableServer", "alice", "alice-pw", false, true, "Cannot reach the depot", "Cannot reach the Subversion server"},
    };
    for (const auto& row : rows) {
        if (Server() == ServerKind::SvnFile && !row.unreachable)
            continue;
        std::string error;
        const KELPtr<IUserParameters> session =
            FileVersionControl()->Login(row.user, row.password, row.bobsWorkspace ? BobWorkspace() : AliceWorkspace(),
                                        row.unreachable ? UnreachableServer() : DepotPath(), error);
        const char* expected = IsSubversion() ? row.svnErrorPart : row.errorPart;
        EXPECT_EQ(session.IsNull(), expected != nullptr) << row.name << ": " << error;
        if (expected) {
            EXPECT_NE(error.find(expected), std::string::npos) << row.name << ": " << error;
        }
    }
    EXPECT_EQ(StatusOf("Rock"), 0u) << "alice's installed session still works, on the same server";
}

// Every operation that needs the depot, as the plug-in calls them; each answers a result code.
struct DepotOperation
{
    const char* name;
    std::function<kelResult(ServerHostFixture&, std::string& error)> run;
};

using F = ServerHostFixture;
const DepotOperation kOperations[] = {
    {"status", [](F& f, std::string& error) {
         List<unsigned> statuses;
         return f.DataControl()->GetStatus({f.Asset("Rock")}, true, closureId::Persistence, true, statuses, error);
     }},
    {"check-out", [](F& f, std::string& error) {
         return f.DataControl()->CheckOut({f.Asset("Rock")}, true, closureId::Persistence, "", error); }},
    {"users", [](F& f, std::string&) { List<std::string> users;
         return f.DataControl()->GetUsersOfObject(f.Asset("Rock"), closureId::Persistence, users); }},
    {"changelists", [](F& f, std::string& error) { List<std::string> changelists;
         return f.DataControl()->GetPendingChangeLists(changelists, error); }},
    {"revert", [](F& f, std::string& error) {
         return f.FileVersionControl()->Revert(f.AliceSession(), {f.AlicePath("rock.bin")}, error, 0, 0); }},
    {"mark-for-delete", [](F& f, std::string& error) {
         return f.FileVersionControl()->MarkForDeleteInChangelist(f.AliceSession(), {f.AlicePath("rock.bin")}, "", error);
     }},
    // Answered from the status cache while the session's statuses are known.
    {"can-check-out", [](F& f, std::string&) { bool can = false;
         return f.DataControl()->CanCheckOut(f.Asset("Sky"), true, closureId::Persistence, can); }},
};

// Runs every operation: each works, or each answers that the session is unusable.
void ExpectEveryOperation(ServerHostFixture& fixture, bool usable)
{
    std::string error;
    for (const DepotOperation& operation : kOperations) {
        const int code = operation.run(fixture, error).GetCode();
        EXPECT_TRUE(usable ? code >= 0 : code == kResultSessionUnusable) << operation.name << ": " << code << ' ' << error;
    }
}

// Alice's session through its life. A failed change reaches her with its text and opens nothing
// (how injected failures count is the depot's, tst_depot). An expired session makes every
// operation unusable until the plug-in's re-connection logs in again. The settings hand the account
// over when revision control is switched on or the account is written again: the same account
// keeps its session; another one, or none, makes every operation unusable without asking the
// server. (Keeping a log-in for the next start and logging out run in tst_studiowindow on the
// embedded depot and tst_studioday on svnserve.)
TEST_P(SessionsAndFaults, ASessionLivesUntilItExpiresOrAnotherAccountIsHandedOver)
{
    std::string error;
    services.connection->Faults().failOperation(hbrc::revision::Operation::Edit, hbrc::revision::code::IoError, "disk on fire");
    EXPECT_EQ(DataControl()->CheckOut({Asset("Rock")}, true, kPersistence, "", error).GetCode(), kResultFailed);
    EXPECT_EQ(error, "disk on fire");
    services.connection->Faults().clear();
    EXPECT_EQ(StatusOf("Rock"), 0u);
    EXPECT_TRUE(DataControl()->NeedsAction(Asset("Rock"), true, kPersistence));

    ASSERT_EQ(services.ExpireSessionNow().GetCode(), 0);
    ExpectEveryOperation(*this, false);
    EXPECT_FALSE(DataControl()->ChangeListExists("1"));
    EXPECT_TRUE(DataControl()->ChangeListExists("")) << "the default changelist exists without asking";
    std::vector<hbrc::revision::FileStatus> bobSees;
    BobExpects(Bob().status(BobTicket(), BobFilesOf("Rock"), bobSees));
    for (const auto& status : bobSees)
        EXPECT_EQ(status.word, 0u) << "the refused check-out opened nothing";
    const KELPtr<IUserParameters> session = FileVersionControl()->Login("alice", "alice-pw", AliceWorkspace(), DepotPath(), error);
    ASSERT_FALSE(session.IsNull()) << error;
    EXPECT_TRUE(session->HasSession());
    DataControl()->SetSession(session);
    DataControl()->SetUserParameters(
        FileVersionControl()->CreateUserParameters("alice", "", DepotPath(), AliceWorkspace(), error));
    EXPECT_EQ(DataControl()->GetUserParameters(), session);
    ExpectEveryOperation(*this, true);
    // An account without a session, as the host describes it before logging in.
    const KELPtr<IUserParameters> bob =
        FileVersionControl()->CreateUserParameters("bob", "", DepotPath(), BobWorkspace(), error);
    ASSERT_FALSE(bob.IsNull()) << error;
    EXPECT_FALSE(bob->HasSession());
    const auto before = services.connection->RoundTrips();
    for (const KELPtr<IUserParameters>& account : {bob, KELPtr<IUserParameters>()}) {
        DataControl()->SetUserParameters(account);
        ExpectEveryOperation(*this, false);
    }
    EXPECT_EQ(services.connection->RoundTrips(), before);
    if (!IsSubversion()) {
        // Only a depot file can be looked for without a log-in.
        EXPECT_TRUE(FileVersionControl()->CreateUserParameters("alice", "", UnreachableServer(), AliceWorkspace(), error)
                        .IsNull());
        EXPECT_NE(error.find("Cannot reach the depot"), std::string::npos) << error;
    }
}

TEST_P(SessionsAndFaults, ServicesOnAnUnreachableServerAnswerUnusableUntilALogInThere)
{
    std::string error;
    auto unreachable = hbrc::host::InstallRevisionControlServices(
        *workspace, UnreachableServer(), {"alice", "alice-pw", AliceWorkspace()}, error, ConnectionOptionsForAlice());
    EXPECT_NE(error.find("Cannot reach the"), std::string::npos) << error;
    ExpectEveryOperation(*this, false);
    const KELPtr<IUserParameters> session = FileVersionControl()->Login("alice", "alice-pw", AliceWorkspace(), DepotPath(), error);
    ASSERT_FALSE(session.IsNull()) << error;
    DataControl()->SetSession(session);
    EXPECT_EQ(unreachable.connection->Server(), DepotPath());
    EXPECT_EQ(StatusOf("Rock"), 0u);
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

// Bob forces his lock over alice's in the repository (svn lock --force): her working copy still
// has its token, but the files are no longer checked out here, they are locked by bob.
TEST_F(SvnServeFaults, ALockStolenInTheRepositoryIsTheThiefsNotAlices)
{
    AliceChecksOut("Rock");
    const QTemporaryDir config;
    QStringList arguments{"lock", "--force", "--non-interactive", "--no-auth-cache", "--config-dir", config.path(),
                          "--username", "bob", "--password", "bob-pw"};
    for (const std::string& file : FilesOf("Rock"))
        arguments << QString::fromStdString(DepotPath() + file.substr(AlicePath("").size() - 1));
    QProcess svn;
    svn.start(QStringLiteral("svn"), arguments);
    ASSERT_TRUE(svn.waitForFinished(30000) && svn.exitCode() == 0) << svn.readAllStandardError().toStdString();
    EXPECT_EQ(StatusOf("Rock"), eStatusCheckedOutByOthers | eStatusLockedByOthers);
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
