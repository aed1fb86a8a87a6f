#include <hostworkspacefixture.h>

#include <hbrcdatamodel/objectquery.h>

#include <gtest/gtest.h>

#include <set>
#include <tuple>

using namespace hbrc::host;

namespace {

// The query the save hook runs before every save, character for character.
const char* const kSaveHookQuery = "select object where OR(AND(IS_PERSISTABLE,AND(IS_METADATA, IS_DIRTY)),"
                                   "AND(IS_PERSISTABLE,AND(IS_VALUE_ASSET, IS_DIRTY)))";

class ObjectQueryTest : public HostWorkspaceFixture
{
protected:
    // Saved: every kind once, clean; then some of them edited; one asset never saved.
    void SetUp() override
    {
        HostWorkspaceFixture::SetUp();
        Open();
        const std::pair<AssetKind, const char*> assets[] = {
            {AssetKind::Metadata, "material"}, {AssetKind::Value, "curve"}, {AssetKind::Data, "mesh"},
            {AssetKind::Metadata, "clean material"}, {AssetKind::Value, "clean curve"}};
        for (const auto& [kind, name] : assets)
            Create(kind, name);
        NewAsset preview;
        preview.kind = AssetKind::Metadata;
        preview.name = "preview";
        preview.persistable = false;
        std::string error;
        ASSERT_FALSE(workspace->CreateAsset(preview, error).IsNull());
        ASSERT_FALSE(workspace->AddPart(workspace->FindAsset("material"), "Layer", "coat", error).IsNull());
        ASSERT_TRUE(workspace->Save().Succeeded());
        for (const char* name : {"material", "curve", "mesh", "preview"})
            ASSERT_TRUE(workspace->SetField(workspace->FindAsset(name), "edited", "yes"));
        Create(AssetKind::Value, "new curve");
    }

    std::set<std::string> Run(const std::string& text, int options)
    {
        kel4::Vector<kel4::CQueryResult> results;
        std::string error;
        EXPECT_TRUE(workspace->Model().Query(text, results, options, error).IsSuccess()) << error;
        std::set<std::string> names;
        for (const auto& result : results)
            names.insert(result.GetObject().GetName());
        return names;
    }
};

TEST_F(ObjectQueryTest, SelectsWhatItsFlagsDescribeUntilSaved)
{
    const std::tuple<const char*, std::string, int, std::set<std::string>> rows[] = {  // name, query, options, selected
        {"save hook: dirty persistable metadata and value assets", kSaveHookQuery, 3, {"material", "curve", "new curve"}},
        {"save hook without option bit 0: never saved left out", kSaveHookQuery, 2, {"material", "curve"}},
        {"not persistable", "select object where AND(IS_DIRTY, NOT(IS_PERSISTABLE))", 1, {"preview"}},
        // A part is persistable and dirty with its asset but is neither metadata nor a value asset.
        {"neither kind", "select object where AND(IS_DIRTY,NOT(OR(IS_METADATA,IS_VALUE_ASSET)))", 1, {"mesh", "coat"}},
        {"blanks anywhere", "  select  object\nwhere\tNOT( IS_DIRTY )  ", 1, {"clean material", "clean curve"}},
    };
    for (const auto& [name, query, options, selected] : rows)
        EXPECT_EQ(Run(query, options), selected) << name;

    // Through the manager, a malformed query is a failed result with the parser's message.
    kel4::Vector<kel4::CQueryResult> results;
    std::string error;
    EXPECT_EQ(workspace->Model().Query("select object where IS_DELETED", results, 3, error), kel4::kResultFailed);
    EXPECT_EQ(error, "position 21: unknown flag \"IS_DELETED\"");
    EXPECT_TRUE(results.empty());
    ASSERT_TRUE(workspace->Save().Succeeded());
    EXPECT_TRUE(Run(kSaveHookQuery, 3).empty());
}

// A malformed query names the position of its fault (the text starting there; empty: its end)
// and why, and deep nesting is refused rather than overflowing the stack.
TEST(ObjectQueryErrors, PointAtTheFault)
{
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"select object where AND(IS_DIRTY, IS_TEXTURE)", "IS_TEXTURE", "unknown flag \"IS_TEXTURE\""},
        {"select object where is_dirty", "is_dirty", "unknown flag \"is_dirty\""},
        {"select object where OR(IS_DIRTY IS_METADATA)", "IS_METADATA", "expected ','"},
        {"select object where AND(IS_DIRTY,IS_METADATA,IS_PERSISTABLE)", ",IS_PERSISTABLE", "expected ')'"},
        {"select object where NOT(IS_DIRTY", "", "expected ')'"},
        {"select object where ", "", "expected a flag or AND, OR, NOT"},
        {"select object where AND IS_DIRTY", "IS_DIRTY", "expected '('"},
        {"select objects where IS_DIRTY", "objects", "expected \"object\""},
        {"IS_DIRTY", "IS_DIRTY", "expected \"select\""},
        {"select object where IS_DIRTY)", ")", "unexpected text after the expression"},
        {"select object where AND(IS_DIRTY,&IS_METADATA)", "&", "expected a flag or AND, OR, NOT"},
    };
    for (const auto& [query, at, reason] : cases) {
        const std::string text = query;
        const std::size_t position = *at ? text.find(at) : text.size();
        ASSERT_NE(position, std::string::npos) << text;
        std::string error;
        EXPECT_EQ(ObjectQuery::Parse(text, error), nullptr) << text;
        EXPECT_EQ(error, "position " + std::to_string(position + 1) + ": " + reason) << text;
    }
    std::string deep = "select object where ";
    for (int i = 0; i < 100000; ++i)
        deep += "NOT(";
    std::string error;
    EXPECT_EQ(ObjectQuery::Parse(deep + "IS_DIRTY", error), nullptr);
    EXPECT_NE(error.find("nested too deeply"), std::string::npos) << error;
}

}  // namespace
