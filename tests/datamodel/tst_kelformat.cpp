#include <hostworkspacefixture.h>

#include <hbrcdatamodel/kelformat.h>
#include <hbrchost/logcapture.h>

#include <gtest/gtest.h>

#include <tuple>

using namespace hbrc::host;

namespace {

TEST(KelFormat, RecordSurvivesSerializeAndParse)
{
    AssetRecord record;
    record.id = "a1";
    record.kind = AssetKind::Value;
    record.persistable = false;
    record.type = "Curve";
    record.name = "Fade \\ in\nout\r\x01\tend";
    record.version = 12;
    record.fields = {{"start", "0"}, {"note", "two\nlines = here"}};
    record.externalFiles = {"fade.bin", "cache/fade.idx"};
    record.parts = {{"p1", "Key", "first key"}, {"p2", "Key", "second\\key"}};

    AssetRecord parsed;
    std::string error;
    ASSERT_TRUE(KelFormat::Parse(KelFormat::Serialize(record), parsed, error)) << error;
    EXPECT_EQ(std::tie(parsed.id, parsed.kind, parsed.persistable, parsed.type, parsed.name, parsed.version),
              std::tie(record.id, record.kind, record.persistable, record.type, record.name, record.version));
    EXPECT_EQ(parsed.fields, record.fields);
    EXPECT_EQ(parsed.externalFiles, record.externalFiles);
    const auto part = [](const PartRecord& p) { return std::tie(p.id, p.type, p.name); };
    ASSERT_EQ(parsed.parts.size(), 2u);
    EXPECT_EQ(part(parsed.parts[0]), part(record.parts[0]));
    EXPECT_EQ(part(parsed.parts[1]), part(record.parts[1]));
}

struct MalformedCase
{
    const char* name;
    const char* body;  // the lines after a valid header and identity, or a whole file when it has no "kel"
    const char* error;
};

const char* const kValidStart = "kel 1\nid x1\nkind metadata\ntype Material\nname Steel\nversion 2\n";

std::string wholeText(const MalformedCase& c)
{
    const std::string body = c.body;
    return body.rfind("kel", 0) == 0 || body.empty() || body.rfind("#", 0) == 0 || body.rfind("id", 0) == 0
               ? body
               : kValidStart + body;
}

class KelFormatMalformed : public ::testing::TestWithParam<MalformedCase>
{
};

TEST_P(KelFormatMalformed, IsRejectedNamingTheLine)
{
    AssetRecord record;
    std::string error;
    EXPECT_FALSE(KelFormat::Parse(wholeText(GetParam()), record, error));
    EXPECT_EQ(error, GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, KelFormatMalformed,
    ::testing::Values(
        MalformedCase{"Empty", "", "the file is empty or has no \"kel 1\" header"},
        MalformedCase{"OnlyComments", "# nothing\n", "the file is empty or has no \"kel 1\" header"},
        MalformedCase{"NoHeader", "id x1\n", "line 1: expected the header \"kel 1\""},
        MalformedCase{"FutureVersion", "kel 2\n", "line 1: unsupported format version \"2\""},
        MalformedCase{"MissingName", "kel 1\nid x\nkind data\ntype T\nversion 1\n", "the entry \"name\" is missing"},
        MalformedCase{"TwiceNamed", "name Other\n", "line 7: the entry \"name\" appears twice"},
        MalformedCase{"UnknownKind", "kel 1\nkind texture\n", "line 2: unknown kind \"texture\""},
        MalformedCase{"IdWithSpace", "kel 1\nid a b\n", "line 2: \"id\" needs one word without spaces"},
        MalformedCase{"NegativeVersion", "kel 1\nversion -3\n", "line 2: \"version\" must be a whole number"},
        MalformedCase{"UnknownEntry", "colour red\n", "line 7: unknown entry \"colour\""},
        MalformedCase{"FieldWithoutValue", "field roughness\n", "line 7: a field reads \"field <name> = <value>\""},
        MalformedCase{"FieldTwice", "field a = 1\nfield a = 2\n", "line 8: the field \"a\" appears twice"},
        MalformedCase{"BadEscape", "field a = c:\\temp\n", "line 7: bad escape sequence in \"field\""},
        MalformedCase{"EscapedPrintable", "field a = \\x41\n", "line 7: bad escape sequence in \"field\""},
        MalformedCase{"ControlInExternal", "external fade\x01.bin\n",
                      "line 7, column 14: control character 0x01 (write it as an escape in a text, leave it out "
                      "of names and words)"},
        MalformedCase{"CarriageReturnInside", "external a\rb.bin\r\n",
                      "line 7, column 11: control character 0x0d (write it as an escape in a text, leave it out "
                      "of names and words)"},
        MalformedCase{"ExternalOutside", "external ../other.bin\n",
                      "line 7: \"../other.bin\" is not a file name inside the asset's folder"},
        MalformedCase{"PartWithoutType", "part p1\n", "line 7: a part reads \"part <id> <type> <name>\""},
        MalformedCase{"BadPersistable", "persistable maybe\n", "line 7: \"persistable\" must be yes or no"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(KelFormat, ExternalFileNamesStayInsideTheAssetFolder)
{
    const std::pair<const char*, bool> cases[] = {
        {"steel.bin", true}, {"cache/steel.bin", true}, {"", false},         {"/etc/passwd", false},
        {"a/../b.bin", false}, {"./b.bin", false},      {"dir/", false},     {"a\\b.bin", false},
        {"a//b.bin", false},   {"mesh.kel", false},     {"kel", true},       {"mesh.kelp", true},
        {"mesh.KEL", false},   {"steel.bin\r", false}, {"a\tb.bin", false}, {"a\x7f.bin", false},
    };
    for (const auto& [name, valid] : cases)
        EXPECT_EQ(KelFormat::IsValidExternalFileName(name), valid) << name;
}

using WorkspaceLoading = HostWorkspaceFixture;

TEST_F(WorkspaceLoading, MalformedFileIsSkippedWithItsNameAndNeverRewritten)
{
    const QByteArray broken = "kel 1\nid b1\nkind metadata\ntype Material\nname Broken\nversion one\n";
    WriteFile("good.kel", "kel 1\nid g1\nkind metadata\ntype Material\nname Good\nversion 4\npart g1p Layer Top\n");
    WriteFile("sub/broken.kel", broken);
    WriteFile("sub/twin.kel", "kel 1\nid g1p\nkind value\ntype Curve\nname Twin\nversion 1\n");

    LogCapture log;
    Workspace& w = Open();
    EXPECT_EQ(w.LoadOutcome().loaded, 1u);
    EXPECT_EQ(w.LoadOutcome().skipped, 2u);
    const auto errors = log.TextsOfType(Log::eError);
    ASSERT_EQ(errors.size(), 2u);
    const std::string brokenLine = "Skipping asset file " + PathOf("sub/broken.kel") + ": line 6: \"version\" must be a whole number";
    const std::string twinLine = "Skipping asset file " + PathOf("sub/twin.kel")
                                 + ": its id \"g1p\" or the id of one of its parts is used by another asset";
    EXPECT_TRUE(errors[0] == brokenLine || errors[1] == brokenLine) << errors[0] << '\n' << errors[1];
    EXPECT_TRUE(errors[0] == twinLine || errors[1] == twinLine) << errors[0] << '\n' << errors[1];

    const auto good = w.FindAsset("Good");
    ASSERT_FALSE(good.IsNull());
    EXPECT_EQ(good.GetAncestorId().GetStr(), "4");
    ASSERT_TRUE(w.SetField(good, "roughness", "0.2"));
    ASSERT_TRUE(w.Save().Succeeded());
    EXPECT_EQ(ReadFile("sub/broken.kel"), broken);
    EXPECT_TRUE(ReadFile("good.kel").contains("version 5\n"));
}

TEST_F(WorkspaceLoading, MissingFolderIsAnErrorNotAnEmptyWorkspace)
{
    std::string error;
    EXPECT_EQ(host->OpenWorkspace(WorkspaceFolder() + QStringLiteral("/absent"), error), nullptr);
    EXPECT_NE(error.find("does not exist or cannot be read"), std::string::npos) << error;
    EXPECT_FALSE(host->Proxy().IsConnected());
}

}  // namespace
