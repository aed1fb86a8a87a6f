#include <hbrcdatamodel/kelformat.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <sstream>

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

bool unescape(const std::string& text, std::string& out)
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

bool isToken(const std::string& text)
{
    return !text.empty()
           && std::none_of(text.begin(), text.end(), [](unsigned char c) { return std::isspace(c) || c == '\\'; });
}

// Reads the record line by line; every failure names the line.
class Parser
{
public:
    Parser(AssetRecord& record, std::string& errorText) : m_record(record), m_error(errorText) {}

    bool Run(const std::string& text)
    {
        std::istringstream lines(text);
        std::string line;
        while (std::getline(lines, line)) {
            ++m_lineNumber;
            if (!line.empty() && line.back() == '\r')
                line.pop_back();
            const auto control = std::find_if(line.begin(), line.end(), [](char c) { return isControl(static_cast<unsigned char>(c)); });
            if (control != line.end())
                return FailAt(control - line.begin(), static_cast<unsigned char>(*control));
            if (line.empty() || line.front() == '#')
                continue;
            const std::size_t space = line.find(' ');
            const std::string key = line.substr(0, space);
            const std::string value = space == std::string::npos ? std::string() : line.substr(space + 1);
            if (!m_sawHeader ? !ReadHeader(key, value) : !ReadEntry(key, value))
                return false;
        }
        if (!m_sawHeader)
            return Fail("the file is empty or has no \"kel 1\" header", false);
        for (const char* required : {"id", "kind", "type", "name", "version"}) {
            if (!m_seen.count(required))
                return Fail(std::string("the entry \"") + required + "\" is missing", false);
        }
        return true;
    }

private:
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

    bool ReadHeader(const std::string& key, const std::string& value)
    {
        if (key != "kel")
            return Fail("expected the header \"kel 1\"");
        if (value != std::to_string(KelFormat::kVersion))
            return Fail("unsupported format version \"" + value + "\"");
        m_sawHeader = true;
        return true;
    }

    bool Once(const std::string& key)
    {
        if (!m_seen.insert(key).second)
            return Fail("the entry \"" + key + "\" appears twice");
        return true;
    }

    bool ReadText(const std::string& key, const std::string& value, std::string& out)
    {
        if (!unescape(value, out))
            return Fail("bad escape sequence in \"" + key + "\"");
        return true;
    }

    bool ReadToken(const std::string& key, const std::string& value, std::string& out)
    {
        if (!isToken(value))
            return Fail("\"" + key + "\" needs one word without spaces");
        out = value;
        return true;
    }

    bool ReadEntry(const std::string& key, const std::string& value)
    {
        if (key == "id")
            return Once(key) && ReadToken(key, value, m_record.id);
        if (key == "type")
            return Once(key) && ReadToken(key, value, m_record.type);
        if (key == "name")
            return Once(key) && ReadText(key, value, m_record.name);
        if (key == "kind") {
            if (!Once(key))
                return false;
            return AssetKindFromName(value, m_record.kind) || Fail("unknown kind \"" + value + "\"");
        }
        if (key == "persistable") {
            if (!Once(key))
                return false;
            if (value != "yes" && value != "no")
                return Fail("\"persistable\" must be yes or no");
            m_record.persistable = value == "yes";
            return true;
        }
        if (key == "version")
            return Once(key) && ReadVersion(value);
        if (key == "field")
            return ReadField(value);
        if (key == "external")
            return ReadExternal(value);
        if (key == "part")
            return ReadPart(value);
        return Fail("unknown entry \"" + key + "\"");
    }

    bool ReadVersion(const std::string& value)
    {
        if (value.empty() || value.size() > 18 || !std::all_of(value.begin(), value.end(), ::isdigit))
            return Fail("\"version\" must be a whole number");
        m_record.version = std::stoull(value);
        return true;
    }

    bool ReadField(const std::string& value)
    {
        const std::size_t separator = value.find(" = ");
        const std::string name = value.substr(0, separator);
        if (separator == std::string::npos || !isToken(name))
            return Fail("a field reads \"field <name> = <value>\"");
        std::string text;
        if (!ReadText("field", value.substr(separator + 3), text))
            return false;
        if (!m_record.fields.emplace(name, text).second)
            return Fail("the field \"" + name + "\" appears twice");
        return true;
    }

    bool ReadExternal(const std::string& value)
    {
        if (!KelFormat::IsValidExternalFileName(value))
            return Fail("\"" + value + "\" is not a file name inside the asset's folder");
        if (std::find(m_record.externalFiles.begin(), m_record.externalFiles.end(), value) != m_record.externalFiles.end())
            return Fail("the external file \"" + value + "\" appears twice");
        m_record.externalFiles.push_back(value);
        return true;
    }

    bool ReadPart(const std::string& value)
    {
        std::istringstream words(value);
        PartRecord part;
        words >> part.id >> part.type;
        std::string name;
        std::getline(words >> std::ws, name);
        if (!isToken(part.id) || !isToken(part.type))
            return Fail("a part reads \"part <id> <type> <name>\"");
        if (!ReadText("part", name, part.name))
            return false;
        m_record.parts.push_back(std::move(part));
        return true;
    }

    AssetRecord& m_record;
    std::string& m_error;
    int m_lineNumber = 0;
    bool m_sawHeader = false;
    std::set<std::string> m_seen;
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
