#include <hostworkspacefixture.h>

#include <hbrcdatamodel/kelformat.h>
#include <hbrchost/logcapture.h>

#include <gtest/gtest.h>

#include <algorithm>
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

// Each malformed text is rejected naming its line: a body with no "kel" header follows a valid
// header and identity (lines 1 to 6).
TEST(KelFormat, MalformedTextIsRejectedNamingTheLine)
{
    const std::string validStart = "kel 1\nid x1\nkind metadata\ntype Material\nname Steel\nversion 2\n";
    const std::string control = " (write it as an escape in a text, leave it out of names and words)";
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"Empty", "", "the file is empty or has no \"kel 1\" header"},
        {"OnlyComments", "# nothing\n", "the file is empty or has no \"kel 1\" header"},
        {"NoHeader", "id x1\n", "line 1: expected the header \"kel 1\""},
        {"FutureVersion", "kel 2\n", "line 1: unsupported format version \"2\""},
        {"MissingName", "kel 1\nid x\nkind data\ntype T\nversion 1\n", "the entry \"name\" is missing"},
        {"TwiceNamed", validStart + "name Other\n", "line 7: the entry \"name\" appears twice"},
        {"UnknownKind", "kel 1\nkind texture\n", "line 2: unknown kind \"texture\""},
        {"IdWithSpace", "kel 1\nid a b\n", "line 2: \"id\" needs one word without spaces"},
        {"NegativeVersion", "kel 1\nversion -3\n", "line 2: \"version\" must be a whole number"},
        {"UnknownEntry", validStart + "colour red\n", "line 7: unknown entry \"colour\""},
        {"FieldWithoutValue", validStart + "field roughness\n", "line 7: a field reads \"field <name> = <value>\""},
        {"FieldTwice", validStart + "field a = 1\nfield a = 2\n", "line 8: the field \"a\" appears twice"},
        {"BadEscape", validStart + "field a = c:\\temp\n", "line 7: bad escape sequence in \"field\""},
        {"EscapedPrintable", validStart + "field a = \\x41\n", "line 7: bad escape sequence in \"field\""},
        {"ControlInExternal", validStart + "external fade\x01.bin\n", "line 7, column 14: control character 0x01" + control},
        {"CarriageReturnInside", validStart + "external a\rb.bin\r\n", "line 7, column 11: control character 0x0d" + control},
        {"ExternalOutside", validStart + "external ../other.bin\n",
         "line 7: \"../other.bin\" is not a file name inside the asset's folder"},
        {"PartWithoutType", validStart + "part p1\n", "line 7: a part reads \"part <id> <type> <name>\""},
        {"BadPersistable", validStart + "persistable maybe\n", "line 7: \"persistable\" must be yes or no"},
    };
    for (const auto& [name, text, expected] : cases) {
        AssetRecord record;
        std::string error;
        EXPECT_FALSE(KelFormat::Parse(text, record, error)) << name;
        EXPECT_EQ(error, expected) << name;
    }
}

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
    auto errors = log.TextsOfType(Log::eError);
    std::sort(errors.begin(), errors.end());  // the folder is read in no fixed order
    EXPECT_EQ(errors, (std::vector<std::string>{
                          "Skipping asset file " + PathOf("sub/broken.kel") + ": line 6: \"version\" must be a whole number",
                          "Skipping asset file " + PathOf("sub/twin.kel")
                              + ": its id \"g1p\" or the id of one of its parts is used by another asset"}));

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
