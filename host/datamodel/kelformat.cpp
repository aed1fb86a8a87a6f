#include <hbrcdatamodel/kelformat.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string_view>
#include <utility>

namespace hbrc::host {

namespace {

const char* const kKindNames[] = {"metadata", "value", "data"};

// Control characters other than the tab never stand in a line as they are: the reader refuses
// them, so that a character lost or changed on the way (a carriage return) cannot pass unnoticed.
bool isControl(unsigned char c)
{
    return (c < 0x20 && c != '\t') || c == 0x7f;
}

std::string escape(const std::string& text)
{
    static const char kHex[] = "0123456789abcdef";
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\\')
            out += "\\\\";
        else if (c == '\n')
            out += "\\n";
        else if (c == '\r')
            out += "\\r";
        else if (isControl(byte))
            out += std::string("\\x") + kHex[byte >> 4] + kHex[byte & 0xf];
        else
            out += c;
    }
    return out;
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

bool unescape(std::string_view text, std::string& out)
{
    out.clear();
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            out += text[i];
            continue;
        }
        if (++i == text.size())
            return false;
        switch (text[i]) {
        case '\\': out += '\\'; break;
        case 'n': out += '\n'; break;
        case 'r': out += '\r'; break;
        case 'x': {
            const int high = i + 1 < text.size() ? hexDigit(text[i + 1]) : -1;
            const int low = i + 2 < text.size() ? hexDigit(text[i + 2]) : -1;
            if (high < 0 || low < 0 || !isControl(static_cast<unsigned char>(high * 16 + low)))
                return false;
            out += static_cast<char>(high * 16 + low);
            i += 2;
            break;
        }
        default: return false;
        }
    }
    return true;
}

bool isToken(std::string_view text)
{
    return !text.empty()
           && std::none_of(text.begin(), text.end(), [](unsigned char c) { return std::isspace(c) || c == '\\'; });
}

bool isSpace(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

void skipSpace(std::string_view& text)
{
    text.remove_prefix(std::size_t(std::find_if_not(text.begin(), text.end(), isSpace) - text.begin()));
}

// The next whitespace-separated word of text, taken off its front ("" when there is none).
std::string_view takeWord(std::string_view& text)
{
    skipSpace(text);
    const std::string_view word = text.substr(0, std::size_t(std::find_if(text.begin(), text.end(), isSpace) - text.begin()));
    text.remove_prefix(word.size());
    return word;
}

// Reads the record line by line; every failure names the line. It works on views of the text and
// copies only what the record keeps.
class Parser
{
public:
    Parser(AssetRecord& record, std::string& errorText) : m_record(record), m_error(errorText) {}

    bool Run(std::string_view text)
    {
        std::size_t start = 0;
        while (start < text.size()) {
            const std::size_t end = std::min(text.find('\n', start), text.size());
            std::string_view line = text.substr(start, end - start);
            start = end + 1;
            ++m_lineNumber;
            if (!line.empty() && line.back() == '\r')
                line.remove_suffix(1);
            const auto control = std::find_if(line.begin(), line.end(), [](char c) { return isControl(static_cast<unsigned char>(c)); });
            if (control != line.end())
                return FailAt(control - line.begin(), static_cast<unsigned char>(*control));
            if (line.empty() || line.front() == '#')
                continue;
            const std::size_t space = line.find(' ');
            const std::string_view key = line.substr(0, space);
            const std::string_view value = space == std::string_view::npos ? std::string_view() : line.substr(space + 1);
            if (!m_sawHeader ? !ReadHeader(key, value) : !ReadEntry(key, value))
                return false;
        }
        if (!m_sawHeader)
            return Fail("the file is empty or has no \"kel 1\" header", false);
        for (const auto& [required, bit] : kRequired) {
            if (!(m_seen & bit))
                return Fail(std::string("the entry \"") + required + "\" is missing", false);
        }
        return true;
    }

private:
    // The entries that stand at most once, one bit each.
    enum Once : unsigned { kId = 1, kKind = 2, kType = 4, kName = 8, kVersion = 16, kPersistable = 32 };
    static constexpr std::pair<const char*, unsigned> kRequired[] = {
        {"id", kId}, {"kind", kKind}, {"type", kType}, {"name", kName}, {"version", kVersion}};

    bool Fail(const std::string& reason, bool withLine = true)
    {
        m_error = withLine ? "line " + std::to_string(m_lineNumber) + ": " + reason : reason;
        return false;
    }

    bool FailAt(std::ptrdiff_t index, unsigned char control)
    {
        static const char kHex[] = "0123456789abcdef";
        m_error = "line " + std::to_string(m_lineNumber) + ", column " + std::to_string(index + 1) +
                  ": control character 0x" + kHex[control >> 4] + kHex[control & 0xf] +
                  " (write it as an escape in a text, leave it out of names and words)";
        return false;
    }

    bool ReadHeader(std::string_view key, std::string_view value)
    {
        if (key != "kel")
            return Fail("expected the header \"kel 1\"");
        if (value != std::to_string(KelFormat::kVersion))
            return Fail("unsupported format version \"" + std::string(value) + "\"");
        m_sawHeader = true;
        return true;
    }

    bool Once(std::string_view key, unsigned bit)
    {
        if (m_seen & bit)
            return Fail("the entry \"" + std::string(key) + "\" appears twice");
        m_seen |= bit;
        return true;
    }

    bool ReadText(std::string_view key, std::string_view value, std::string& out)
    {
        if (!unescape(value, out))
            return Fail("bad escape sequence in \"" + std::string(key) + "\"");
        return true;
    }

    bool ReadToken(std::string_view key, std::string_view value, std::string& out)
    {
        if (!isToken(value))
            return Fail("\"" + std::string(key) + "\" needs one word without spaces");
        out.assign(value);
        return true;
    }

    bool ReadEntry(std::string_view key, std::string_view value)
    {
        if (key == "id")
            return Once(key, kId) && ReadToken(key, value, m_record.id);
        if (key == "type")
            return Once(key, kType) && ReadToken(key, value, m_record.type);
        if (key == "name")
            return Once(key, kName) && ReadText(key, value, m_record.name);
        if (key == "kind") {
            if (!Once(key, kKind))
                return false;
            return AssetKindFromName(std::string(value), m_record.kind)
                   || Fail("unknown kind \"" + std::string(value) + "\"");
        }
        if (key == "persistable") {
            if (!Once(key, kPersistable))
                return false;
            if (value != "yes" && value != "no")
                return Fail("\"persistable\" must be yes or no");
            m_record.persistable = value == "yes";
            return true;
        }
        if (key == "version")
            return Once(key, kVersion) && ReadVersion(value);
        if (key == "field")
            return ReadField(value);
        if (key == "external")
            return ReadExternal(std::string(value));
        if (key == "part")
            return ReadPart(value);
        return Fail("unknown entry \"" + std::string(key) + "\"");
    }

    bool ReadVersion(std::string_view value)
    {
        if (value.empty() || value.size() > 18 || !std::all_of(value.begin(), value.end(), ::isdigit))
            return Fail("\"version\" must be a whole number");
        m_record.version = std::stoull(std::string(value));
        return true;
    }

    bool ReadField(std::string_view value)
    {
        const std::size_t separator = value.find(" = ");
        const std::string_view name = value.substr(0, separator);
        if (separator == std::string_view::npos || !isToken(name))
            return Fail("a field reads \"field <name> = <value>\"");
        std::string text;
        if (!ReadText("field", value.substr(separator + 3), text))
            return false;
        if (!m_record.fields.emplace(name, std::move(text)).second)
            return Fail("the field \"" + std::string(name) + "\" appears twice");
        return true;
    }

    bool ReadExternal(std::string value)
    {
        if (!KelFormat::IsValidExternalFileName(value))
            return Fail("\"" + value + "\" is not a file name inside the asset's folder");
        if (std::find(m_record.externalFiles.begin(), m_record.externalFiles.end(), value) != m_record.externalFiles.end())
            return Fail("the external file \"" + value + "\" appears twice");
        m_record.externalFiles.push_back(std::move(value));
        return true;
    }

    bool ReadPart(std::string_view value)
    {
        PartRecord part;
        part.id = takeWord(value);
        part.type = takeWord(value);
        skipSpace(value);  // the name is the rest of the line
        if (!isToken(part.id) || !isToken(part.type))
            return Fail("a part reads \"part <id> <type> <name>\"");
        if (!ReadText("part", value, part.name))
            return false;
        m_record.parts.push_back(std::move(part));
        return true;
    }

    AssetRecord& m_record;
    std::string& m_error;
    int m_lineNumber = 0;
    bool m_sawHeader = false;
    unsigned m_seen = 0;
};

}  // namespace

const char* AssetKindName(AssetKind kind)
{
    return kKindNames[static_cast<int>(kind)];
}

bool AssetKindFromName(const std::string& text, AssetKind& kind)
{
    for (int i = 0; i < 3; ++i) {
        if (text == kKindNames[i]) {
            kind = static_cast<AssetKind>(i);
            return true;
        }
    }
    return false;
}

namespace KelFormat {

bool Parse(const std::string& text, AssetRecord& record, std::string& errorText)
{
    record = AssetRecord();
    return Parser(record, errorText).Run(text);
}

std::string Serialize(const AssetRecord& record)
{
    std::ostringstream out;
    out << "kel " << kVersion << '\n'
        << "id " << record.id << '\n'
        << "kind " << AssetKindName(record.kind) << '\n'
        << "persistable " << (record.persistable ? "yes" : "no") << '\n'
        << "type " << record.type << '\n'
        << "name " << escape(record.name) << '\n'
        << "version " << record.version << '\n';
    for (const auto& [name, value] : record.fields)
        out << "field " << name << " = " << escape(value) << '\n';
    for (const std::string& file : record.externalFiles)
        out << "external " << file << '\n';
    for (const PartRecord& part : record.parts)
        out << "part " << part.id << ' ' << part.type << ' ' << escape(part.name) << '\n';
    return out.str();
}

bool IsValidExternalFileName(const std::string& name)
{
    if (name.empty() || name.front() == '/' || name.back() == '/' || name.find('\\') != std::string::npos
        || name.find("//") != std::string::npos
        || std::any_of(name.begin(), name.end(), [](char c) { return isControl(static_cast<unsigned char>(c)) || c == '\t'; }))
        return false;
    std::size_t start = 0;
    while (start <= name.size()) {
        const std::size_t end = std::min(name.find('/', start), name.size());
        const std::string component = name.substr(start, end - start);
        if (component == "." || component == "..")
            return false;
        start = end + 1;
    }
    const std::string lower = [&] {
        std::string l = name;
        std::transform(l.begin(), l.end(), l.begin(), [](unsigned char c) { return char(std::tolower(c)); });
        return l;
    }();
    return lower.size() < 4 || lower.compare(lower.size() - 4, 4, ".kel") != 0;
}

}  // namespace KelFormat
}  // namespace hbrc::host
