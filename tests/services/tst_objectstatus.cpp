// What alice's data control reports about objects while bob works on the same depot.
#include <serverhostfixture.h>

#include <kel4/revisionstatus.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <tuple>

using namespace kel4;

namespace {

struct OtherUserCase
{
    const char* name;
    std::function<void(ServerHostFixture&, const std::vector<std::string>& bobFiles)> bobDoes;
    unsigned expectedWord;
    List<std::string> expectedUsers;
    bool canCheckOut;
};

class OtherUserStatus : public ServerHostFixture,
                        public ::testing::WithParamInterface<std::tuple<ServerKind, OtherUserCase>>
{
public:
    ServerKind Server() const override { return std::get<0>(GetParam()); }
};

TEST_P(OtherUserStatus, AliceSeesBobsWorkWithHisName)
{
    const OtherUserCase& row = std::get<1>(GetParam());
    EXPECT_EQ(StatusOf("Rock"), 0u) << "known before bob acts";
    row.bobDoes(*this, BobFilesOf("Rock"));

    // A refresh asks the server again, and the questions from the cache after it get its answer.
    // A Subversion check-out is a lock: the others' word says so too.
    const unsigned lockedBit = IsSubversion() && (row.expectedWord & eStatusCheckedOutByOthers) ? eStatusLockedByOthers : 0u;
    EXPECT_EQ(StatusOf("Rock"), row.expectedWord | lockedBit);
    bool canCheckOut = !row.canCheckOut;
    ASSERT_EQ(DataControl()->CanCheckOut(Asset("Rock"), true, kPersistence, canCheckOut).GetCode(), 0);
    EXPECT_EQ(canCheckOut, row.canCheckOut);
    EXPECT_TRUE(DataControl()->NeedsAction(Asset("Rock"), true, kPersistence)) << "alice's copy is still read-only";
    List<std::string> users, usersOfFiles;
    std::string error;
    ASSERT_EQ(DataControl()->GetUsersOfObject(Asset("Rock"), kPersistence, users).GetCode(), 0);
    EXPECT_EQ(users, row.expectedUsers);
    ASSERT_EQ(FileVersionControl()->GetUsersOfFiles(AliceSession(), FilesOf("Rock"), usersOfFiles, error).GetCode(), 0);
    EXPECT_EQ(usersOfFiles, row.expectedUsers);

    // A check-out with an asset bob did not touch succeeds or fails whole, naming who holds the rock.
    EXPECT_EQ(DataControl()->CheckOut({Asset("Sky"), Asset("Rock")}, true, kPersistence, "", error).GetCode(),
              row.canCheckOut ? 0 : kResultFailed) << error;
    EXPECT_EQ(StatusOf("Sky"), row.canCheckOut ? eStatusCheckedOut : 0u);
    for (const std::string& user : row.expectedUsers)
        EXPECT_NE(error.find(user), std::string::npos) << error;
}

// Locks and deletes of others reach the object word as the depot reports them (tst_depot) and
// refuse a check-out as the status rules say (tst_statusrules).
INSTANTIATE_TEST_SUITE_P(
    , OtherUserStatus,
    ::testing::Combine(ServerKinds(), ::testing::Values(
        OtherUserCase{"Untouched", [](ServerHostFixture&, const auto&) {}, 0u, {}, true},
        OtherUserCase{"BobEdits",
                      [](ServerHostFixture& f, const auto& files) { f.BobExpects(f.Bob().edit(f.BobTicket(), files, "")); },
                      eStatusCheckedOutByOthers, {"bob"}, false},
        OtherUserCase{"BobSubmitsAnEdit",
                      [](ServerHostFixture& f, const auto& files) {
                          f.BobExpects(f.Bob().edit(f.BobTicket(), files, ""));
                          for (const std::string& file : files)
                              ASSERT_TRUE(f.WriteText(file, "bob's edit", std::ios::app));
                          hbrc::revision::ChangelistId submitted;
                          f.BobExpects(f.Bob().submit(f.BobTicket(), "", "bob's change", submitted));
                      },
                      eStatusNotHeadRevision, {}, false})),
    [](const ::testing::TestParamInfo<std::tuple<ServerKind, OtherUserCase>>& info) {
        return ServerKindName({std::get<0>(info.param), info.index}) + std::get<1>(info.param).name;
    });

using ObjectStatus = ServerFixture;
INSTANTIATE_TEST_SUITE_P(Servers, ObjectStatus, ServerKinds(), ServerKindName);

// An object's word is the union of its files' words: bob holds only the tree's external file,
// alice checks out only its .kel file. Mark-for-add adds only the files the depot lacks: a new
// asset's, and a new external file of the rock, which is in the depot and checked out.
TEST_P(ObjectStatus, ObjectWordIsTheUnionOfItsFilesAndMarkForAddAddsOnlyTheMissingOnes)
{
    BobExpects(Bob().edit(BobTicket(), {BobPath("tree.bin")}, ""));
    std::string error;
    ASSERT_EQ(DataControl()->CheckOut({Asset("Tree")}, false, kPersistence, "", error).GetCode(), 0) << error;
    List<unsigned> statuses;
    ASSERT_EQ(DataControl()->GetStatus({Asset("Tree"), Asset("Sky")}, true, kPersistence, true, statuses, error).GetCode(), 0);
    const unsigned lockedBit = IsSubversion() ? eStatusLockedByOthers : 0u;
    EXPECT_EQ(statuses, (List<unsigned>{eStatusCheckedOut | eStatusCheckedOutByOthers | lockedBit, 0u}));
    ASSERT_EQ(DataControl()->GetStatus({Asset("Tree")}, false, kPersistence, true, statuses, error).GetCode(), 0);
    EXPECT_EQ(statuses, List<unsigned>{eStatusCheckedOut}) << "without external files only the .kel file counts";

    const auto lamp = CreateSavedAsset("Lamp", "lamp.bin");
    EXPECT_EQ(StatusOf("Lamp"), eStatusNotInDatabase);
    EXPECT_FALSE(DataControl()->NeedsAction(lamp, true, kPersistence)) << "a new asset is editable as it is";
    bool canCheckOut = true;
    ASSERT_EQ(DataControl()->CanCheckOut(lamp, true, kPersistence, canCheckOut).GetCode(), 0);
    EXPECT_FALSE(canCheckOut);
    ASSERT_EQ(DataControl()->MarkForAdd({lamp}, true, kPersistence, "", error).GetCode(), 0) << error;
    EXPECT_EQ(StatusOf("Lamp"), eStatusMarkedForAdd);
    AliceChecksOut("Rock");
    ASSERT_TRUE(workspace->AddExternalFile(Asset("Rock"), "moss.bin", "moss"));
    workspace->Save();
    EXPECT_EQ(StatusOf("Rock"), eStatusCheckedOut | eStatusNotInDatabase);
    ASSERT_EQ(DataControl()->MarkForAdd({Asset("Rock")}, true, kPersistence, "", error).GetCode(), 0) << error;
    EXPECT_EQ(StatusOf("Rock"), eStatusCheckedOut | eStatusMarkedForAdd);
}

TEST_P(ObjectStatus, ThousandObjectStatusQuestionIsOneRoundTripAnEmptyOneNone)
{
    ObjectList objects;
    for (int i = 0; i < 1000; ++i) {
        hbrc::host::NewAsset asset;
        asset.name = "Pebble" + std::to_string(i);
        std::string error;
        objects.emplace_back(workspace->CreateAsset(asset, error));
    }
    const auto before = services.connection->RoundTrips();
    List<unsigned> statuses{7u};
    std::string error;
    EXPECT_EQ(DataControl()->GetStatus({}, true, kPersistence, true, statuses, error).GetCode(), kResultEmptyQuery);
    EXPECT_EQ(statuses, List<unsigned>{7u}) << "an empty question leaves the answer untouched";
    ASSERT_EQ(DataControl()->GetStatus(objects, true, kPersistence, true, statuses, error).GetCode(), 0) << error;
    EXPECT_EQ(services.connection->RoundTrips() - before, 1u) << "none for the empty question, one for the thousand";
    ASSERT_EQ(statuses.size(), 1000u);
    EXPECT_EQ(std::count(statuses.begin(), statuses.end(), eStatusNotInDatabase), 1000);
    // The per-object questions that follow answer from what that question brought.
    for (const auto& object : objects)
        EXPECT_FALSE(DataControl()->NeedsAction(object, true, kPersistence));
    EXPECT_EQ(services.connection->RoundTrips() - before, 1u);
}

TEST_P(ObjectStatus, PerObjectQuestionsAboutTheWorkListShareOneRoundTripAndAChangeForgetsOnlyItsFiles)
{
    // The status cache on the test's clock: its entries go stale when the clock passes their lifetime.
    auto now = std::chrono::steady_clock::now();
    services.connection->Cache() = hbrc::host::StatusCache(std::chrono::minutes(10), [&now] { return now; });
    // A question about an object outside any work list asks about its own files only.
    auto before = services.connection->RoundTrips();
    EXPECT_TRUE(DataControl()->NeedsAction(Asset("Rock"), true, kPersistence));
    EXPECT_EQ(services.connection->RoundTrips() - before, 1u);
    EXPECT_EQ(services.connection->Cache().Size(), 2u) << "Rock.kel and rock.bin, not the workspace";

    AliceChecksOut("Sky");
    // An editability question names its work list through the related-objects question first; the
    // work list is asked about in one question, again so once its statuses went stale.
    IDataControl::ObjectSet related;
    ASSERT_EQ(DataControl()->GetRelatedObjects({Asset("Rock"), Asset("Tree"), Asset("Sky")}, related).GetCode(), 0);
    for (const bool stale : {false, true}) {
        now += stale ? std::chrono::minutes(11) : std::chrono::minutes(0);
        before = services.connection->RoundTrips();
        std::vector<bool> needsAction;
        for (const char* asset : {"Rock", "Tree", "Sky"})
            needsAction.push_back(DataControl()->NeedsAction(Asset(asset), true, kPersistence));
        EXPECT_EQ(needsAction, (std::vector<bool>{true, true, false}));
        EXPECT_EQ(services.connection->RoundTrips() - before, 1u) << "one status query for the work list";
    }

    // A change through the services: the next question about its files asks the depot again,
    // about those files only; the others' statuses still hold.
    AliceChecksOut("Rock");
    before = services.connection->RoundTrips();
    EXPECT_TRUE(DataControl()->NeedsAction(Asset("Tree"), true, kPersistence));
    EXPECT_EQ(services.connection->RoundTrips() - before, 0u);
    const std::size_t known = services.connection->Cache().Size();
    EXPECT_FALSE(DataControl()->NeedsAction(Asset("Rock"), true, kPersistence));
    EXPECT_EQ(services.connection->RoundTrips() - before, 1u);
    EXPECT_EQ(services.connection->Cache().Size(), known + 2) << "Rock.kel and rock.bin";
}

// The post-save hook asks about the files of every asset a save created in one question, then marks
// the assets for add one at a time: each mark-for-add then saves the status round trip it makes
// when it must ask itself (a Subversion add is local: the status is its only round trip).
TEST_P(ObjectStatus, MarkForAddAfterAStatusQuestionAboutItsFilesSkipsItsOwnStatusRoundTrip)
{
    const auto vase = CreateSavedAsset("Vase");
    const ObjectList created{CreateSavedAsset("Lamp", "lamp.bin"), CreateSavedAsset("Bench")};
    std::string error;
    services.connection->Cache().Invalidate();
    auto before = services.connection->RoundTrips();
    ASSERT_EQ(DataControl()->MarkForAdd({vase}, true, kPersistence, "", error).GetCode(), 0) << error;
    const auto askingItself = services.connection->RoundTrips() - before;
    ASSERT_GE(askingItself, 1u);

    std::vector<std::string> files;
    for (const char* asset : {"Lamp", "Bench"})
        for (const std::string& file : FilesOf(asset))
            files.push_back(file);
    List<unsigned> statuses;
    List<std::string> changelists;
    ASSERT_EQ(FileVersionControl()->GetStatus(AliceSession(), {files.begin(), files.end()}, statuses, changelists, error, 0)
                  .GetCode(),
              0) << error;
    before = services.connection->RoundTrips();
    for (const auto& asset : created)
        ASSERT_EQ(DataControl()->MarkForAdd({asset}, true, kPersistence, "", error).GetCode(), 0) << error;
    EXPECT_EQ(services.connection->RoundTrips() - before, 2 * (askingItself - 1));
    for (const char* asset : {"Vase", "Lamp", "Bench"})
        EXPECT_EQ(StatusOf(asset), eStatusMarkedForAdd) << asset;
}

}  // namespace
