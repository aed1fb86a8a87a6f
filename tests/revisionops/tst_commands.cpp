// The revision commands against scripted services: what they ask the data control, what they
// leave on themselves, and when the item library hears of it.
#include "hbcheckoutcommand.h"
#include "hbmakewritablecommand.h"
#include "hbmarkforaddcommand.h"
#include "unspecifiedaccessorlist.h"

#include "scriptedhost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>

using borax::datamodel::ItemID;
using borax::datamodel::ItemLibraryAccessor;
using borax::datamodel::UnspecifiedAccessor;
using hbrc::test::ScriptedHost;
using hbrc::test::MockDataControl;
using ::testing::_;
using ::testing::DoAll;
using ::testing::ElementsAre;
using ::testing::Invoke;
using ::testing::Return;
using ::testing::SetArgReferee;

namespace {

using ObjectList = BaseScsCommand::ObjectList;
using AccessorList = BaseScsCommand::AccessorList;

// An item library whose items are bound to database ids; records access-state notifications.
class ItemTable : public borax::datamodel::IItemLibraryContext, public borax::datamodel::IItemLibrary
{
public:
    void Bind(ItemID item, const std::string& dbUid) { m_uids[item.GetValue()] = dbUid; }
    const std::vector<ItemID>& notified() const { return m_notified; }

    IItemLibrary* GetLibrary() const override { return const_cast<ItemTable*>(this); }
    void RegisterNotification(borax::datamodel::IItemLibraryNotification*, int, int) override {}
    void UnregisterNotification(borax::datamodel::IItemLibraryNotification*, int, int) override {}
    bool FindItemByDbUid(const std::string& dbUid, ItemID& item) const override
    {
        for (const auto& [value, uid] : m_uids) {
            if (uid == dbUid) {
                item = ItemID(value);
                return true;
            }
        }
        return false;
    }
    DbObjectId GetItemDbUid(const ItemID& item) const override
    {
        const auto found = m_uids.find(item.GetValue());
        return found == m_uids.end() ? DbObjectId() : DbObjectId(found->second);
    }
    std::string GetItemName(const ItemID&) const override { return {}; }
    void CreateItemAccessStateChanged(const ItemID& item, long) override { m_notified.push_back(item); }

private:
    std::map<std::uint64_t, std::string> m_uids;
    std::vector<ItemID> m_notified;
};

ItemID itemOf(int asset) { return ItemID(10 + asset); }

class CommandTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        host.proxy.SetAccessor(library);
        // The data control names each object by its database id.
        ON_CALL(*host.dataControl, GetDbObjectIds(_, _))
            .WillByDefault(Invoke([](const ObjectList& objects, kel4::List<DbObjectId>& ids) {
                for (const auto& object : objects)
                    ids.push_back(object.GetDbObjectId());
                return kelResult(0);
            }));
    }

    // Asset n: object "id<n>" bound to item 10 + n.
    UnspecifiedAccessor addAsset(int n)
    {
        const std::string id = "id" + std::to_string(n);
        objects.push_back(host.manager->AddObject(id, "asset" + std::to_string(n)));
        items.Bind(itemOf(n), id);
        return UnspecifiedAccessor(library, itemOf(n));
    }
    AccessorList addAssets(int count)
    {
        AccessorList accessors;
        for (int n = 1; n <= count; ++n)
            accessors.push_back(addAsset(n));
        return accessors;
    }
    void expectNoOperation()
    {
        EXPECT_CALL(*host.dataControl, CheckOut(_, _, _, _, _)).Times(0);
        EXPECT_CALL(*host.dataControl, MarkForAdd(_, _, _, _, _)).Times(0);
        EXPECT_CALL(*host.dataControl, MakeWritable(_, _, _, _)).Times(0);
    }

    ScriptedHost host;
    ItemTable items;
    ItemLibraryAccessor library{&items, 3};
    ObjectList objects;
};

std::optional<int> returnValue(const BaseScsCommand& command)
{
    int value = 0;
    return command.GetReturnValue(value) ? std::optional<int>(value) : std::nullopt;
}

std::optional<std::string> errorString(const BaseScsCommand& command)
{
    const auto* param = nrk::fwk::GetParamAs<nrk::fwk::StringParam>(command, BaseScsCommand::kErrorStringParam);
    return param ? std::optional<std::string>(param->GetValue()) : std::nullopt;
}

using CommandFactory = std::function<BaseScsCommand*(const ItemLibraryAccessor&, const AccessorList&)>;

struct IdentityCase {
    const char* name;
    CommandFactory make;
    const char* identifier;
    const char* displayName;
    const char* changelist;
};

class CommandIdentity : public CommandTest, public ::testing::WithParamInterface<IdentityCase>
{
};

TEST_P(CommandIdentity, CarriesItsIdentifierNameAndParametersInOrder)
{
    const IdentityCase& c = GetParam();
    const AccessorList assets = addAssets(2);
    const KELPtr<BaseScsCommand> command(c.make(library, assets));
    EXPECT_STREQ(command->GetCommandIdentifier(), c.identifier);
    EXPECT_EQ(command->GetName(), c.displayName);
    std::vector<std::string> names;
    for (const auto* param : command->GetAllParams())
        names.push_back(param->GetName());
    EXPECT_THAT(names, ElementsAre("changelist", "asset", "includeexternalfile"));
    EXPECT_EQ(nrk::fwk::GetParamAs<nrk::fwk::StringParam>(*command, "changelist")->GetValue(), c.changelist);
    EXPECT_EQ(nrk::fwk::GetParamAs<borax::datamodel::UnspecifiedAccessorListParam>(*command, "asset")->GetValue(),
              assets);
    EXPECT_TRUE(nrk::fwk::GetParamAs<nrk::fwk::BoolParam>(*command, "includeexternalfile")->GetValue());
}

const CommandFactory makeCheckOut = [](const ItemLibraryAccessor& l, const AccessorList& a) -> BaseScsCommand* {
    return new ScsCheckOutCommand(l, "cl 7", a, true);
};
const CommandFactory makeMarkForAdd = [](const ItemLibraryAccessor& l, const AccessorList& a) -> BaseScsCommand* {
    return new ScsMarkForAddCommand(l, "cl 7", a, true);
};
const CommandFactory makeMakeWritable = [](const ItemLibraryAccessor& l, const AccessorList& a) -> BaseScsCommand* {
    return new ScsMakeWritableCommand(l, a, true);
};

INSTANTIATE_TEST_SUITE_P(
    Commands, CommandIdentity,
    ::testing::Values(IdentityCase{"CheckOut", makeCheckOut, "checkoutKELDbObjects", "CheckOut Command", "cl 7"},
                      IdentityCase{"MarkForAdd", makeMarkForAdd, "markForAddKELDbObjects", "MarkForAdd Command",
                                   "cl 7"},
                      IdentityCase{"MakeWritable", makeMakeWritable, "makewritableKELDbObjects",
                                   "MakeWritable Command", ""}),
    [](const auto& info) { return std::string(info.param.name); });

// Check-out and mark-for-add: one call for all objects; notification on success only.
struct ListOperationCase {
    const char* name;
    CommandFactory make;
    std::function<void(MockDataControl&, const ObjectList&, int code, const std::string& text)> expectOperation;
};

class ListOperationCommand : public CommandTest, public ::testing::WithParamInterface<ListOperationCase>
{
protected:
    void run(int code, const std::string& text)
    {
        GetParam().expectOperation(*host.dataControl, objects, code, text);
        command = GetParam().make(library, assets);
        EXPECT_TRUE(command->BuildExecutionCommands(nullptr));
        EXPECT_EQ(returnValue(*command), code);
        EXPECT_EQ(errorString(*command), text);
    }

    AccessorList assets = addAssets(2);
    KELPtr<BaseScsCommand> command;
};

TEST_P(ListOperationCommand, ASuccessNotifiesEveryItem)
{
    run(0, "");
    EXPECT_THAT(items.notified(), ElementsAre(itemOf(1), itemOf(2)));
}

TEST_P(ListOperationCommand, AFailureRecordsItsCodeAndTextAndNotifiesNothing)
{
    EXPECT_CALL(*host.dataControl, GetDbObjectIds(_, _)).Times(0);
    run(kel4::kResultSessionUnusable, "session expired");
    EXPECT_TRUE(items.notified().empty());
}

auto answer(int code, const std::string& text)
{
    return DoAll(SetArgReferee<4>(text), Return(kelResult(code)));
}

INSTANTIATE_TEST_SUITE_P(
    Commands, ListOperationCommand,
    ::testing::Values(
        ListOperationCase{"CheckOut", makeCheckOut,
                          [](MockDataControl& dc, const ObjectList& objects, int code, const std::string& text) {
                              EXPECT_CALL(dc, CheckOut(objects, true, kel4::closureId::Persistence, "cl 7", _))
                                  .WillOnce(answer(code, text));
                          }},
        ListOperationCase{"MarkForAdd", makeMarkForAdd,
                          [](MockDataControl& dc, const ObjectList& objects, int code, const std::string& text) {
                              EXPECT_CALL(dc, MarkForAdd(objects, true, kel4::closureId::Persistence, "cl 7", _))
                                  .WillOnce(answer(code, text));
                          }}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(CommandTest, MissingChangelistAndIncludeFlagCountAsDefaultChangelistWithoutExternalFiles)
{
    const KELPtr<ScsCheckOutCommand> command(new ScsCheckOutCommand(library));
    command->AddParam(borax::datamodel::UnspecifiedAccessorListParam("asset", addAssets(1)));
    EXPECT_CALL(*host.dataControl, CheckOut(objects, false, _, "", _)).WillOnce(Return(kelResult(0)));
    EXPECT_TRUE(command->BuildExecutionCommands(nullptr));
}

TEST_F(CommandTest, MakeWritableStopsAtTheFirstFailureAndStillNotifies)
{
    const AccessorList assets = addAssets(3);
    const auto& [first, second, third] = std::tuple(objects.front(), *std::next(objects.begin()), objects.back());
    ::testing::InSequence order;
    EXPECT_CALL(*host.dataControl, MakeWritable(first, true, kel4::closureId::Persistence, _))
        .WillOnce(DoAll(SetArgReferee<3>(std::string("fine")), Return(kelResult(0))));
    EXPECT_CALL(*host.dataControl, MakeWritable(second, true, kel4::closureId::Persistence, _))
        .WillOnce(DoAll(SetArgReferee<3>(std::string("asset2.kel is locked")), Return(kelResult(-2))));
    EXPECT_CALL(*host.dataControl, MakeWritable(third, _, _, _)).Times(0);
    EXPECT_CALL(*host.dataControl, GetDbObjectIds(objects, _));

    const KELPtr<ScsMakeWritableCommand> command(new ScsMakeWritableCommand(library, assets, true));
    EXPECT_TRUE(command->BuildExecutionCommands(nullptr));
    EXPECT_EQ(returnValue(*command), -2);
    EXPECT_EQ(errorString(*command), "asset2.kel is locked");
    EXPECT_THAT(items.notified(), ElementsAre(itemOf(1), itemOf(2), itemOf(3)));
}

TEST_F(CommandTest, MakeWritableOfEveryObjectSucceedsWithAnEmptyErrorString)
{
    const AccessorList assets = addAssets(2);
    EXPECT_CALL(*host.dataControl, MakeWritable(_, false, _, _))
        .Times(2)
        .WillRepeatedly(DoAll(SetArgReferee<3>(std::string("note")), Return(kelResult(0))));
    const KELPtr<ScsMakeWritableCommand> command(new ScsMakeWritableCommand(library, assets, false));
    EXPECT_TRUE(command->BuildExecutionCommands(nullptr));
    EXPECT_EQ(returnValue(*command), 0);
    EXPECT_EQ(errorString(*command), "note");
    EXPECT_EQ(items.notified().size(), 2u);
}

// Inputs that stop a command before any data-control call: nothing is recorded on it.
struct StopCase {
    const char* name;
    std::function<void(CommandTest&, ItemTable&)> spoil;
};

class CommandThatCannotRun : public CommandTest,
                             public ::testing::WithParamInterface<std::tuple<CommandFactory, StopCase>>
{
};

TEST_P(CommandThatCannotRun, StopsBeforeAnyServiceCall)
{
    const auto& [make, stop] = GetParam();
    AccessorList assets = addAssets(2);
    assets.push_back(UnspecifiedAccessor(library, ItemID(99)));
    items.Bind(ItemID(99), "");
    stop.spoil(*this, items);
    expectNoOperation();
    EXPECT_CALL(*host.dataControl, GetDbObjectIds(_, _)).Times(0);
    const KELPtr<BaseScsCommand> command(make(library, assets));
    EXPECT_FALSE(command->BuildExecutionCommands(nullptr));
    EXPECT_EQ(returnValue(*command), std::nullopt);
    EXPECT_EQ(errorString(*command), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, CommandThatCannotRun,
    ::testing::Combine(::testing::Values(makeCheckOut, makeMarkForAdd, makeMakeWritable),
                       ::testing::Values(StopCase{"ItemWithoutObject", [](CommandTest&, ItemTable&) {}},
                                         StopCase{"ObjectUnknownToTheDatabase",
                                                  [](CommandTest&, ItemTable& t) { t.Bind(ItemID(99), "gone"); }},
                                         StopCase{"NoDatabaseProxy", [](CommandTest&, ItemTable& t) {
                                                      t.Bind(ItemID(99), "id1");
                                                      nrkGetSystem()->UnregisterSingleton("KELDBProxy");
                                                  }})));

TEST_F(CommandTest, ACommandWithoutAssetsCannotRun)
{
    expectNoOperation();
    for (BaseScsCommand* bare : {static_cast<BaseScsCommand*>(new ScsCheckOutCommand(library)),
                                 static_cast<BaseScsCommand*>(new ScsMarkForAddCommand(library)),
                                 static_cast<BaseScsCommand*>(new ScsMakeWritableCommand(library))}) {
        const KELPtr<BaseScsCommand> command(bare);
        EXPECT_TRUE(command->GetAllParams().empty());
        EXPECT_FALSE(command->BuildExecutionCommands(nullptr));
    }
}

TEST_F(CommandTest, AccessorListingGivesEachKnownItemOnceInItemOrder)
{
    addAssets(3);
    const ObjectList asked{*std::next(objects.begin(), 2), objects.front(), *std::next(objects.begin(), 2),
                           host.manager->AddObject("not-in-library", "stray")};
    AccessorList accessors{UnspecifiedAccessor(library, ItemID(1))};
    hbrc::internal::GetListOfUnspecifiedAccessors(borax::datamodel::Internal::ItemLibraryInternalAccessor(library),
                                                  asked, accessors);
    EXPECT_THAT(accessors, ElementsAre(UnspecifiedAccessor(library, ItemID(1)), UnspecifiedAccessor(library, itemOf(1)),
                                       UnspecifiedAccessor(library, itemOf(3))));
}

}  // namespace
