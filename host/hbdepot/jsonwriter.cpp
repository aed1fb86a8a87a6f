#include "jsonwriter.h"

#include <cstdio>
#include <ostream>

namespace hbrc::hbdepot {

JsonWriter::~JsonWriter()
{
    m_out << "\n";
}

void JsonWriter::separate()
{
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (!m_firstInLevel.back())
        m_out << ",";
    m_firstInLevel.back() = false;
}

void JsonWriter::writeString(const std::string& text)
{
    m_out << '"';
    for (const char c : text) {
        switch (c) {
        case '"': m_out << "\\\""; break;
        case '\\': m_out << "\\\\"; break;
        case '\n': m_out << "\\n"; break;
        case '\t': m_out << "\\t"; break;
        case '\r': m_out << "\\r"; break;
        default:
            if (static_cast<unsigned char>(c) < 0x20) {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
                m_out << escaped;
            } else {
                m_out << c;
            }
        }
    }
    m_out << '"';
}

JsonWriter& JsonWriter::open(char bracket)
{
    separate();
    m_out << bracket;
    m_firstInLevel.push_back(true);
    return *this;
}

JsonWriter& JsonWriter::close(char bracket)
{
    m_firstInLevel.pop_back();
    m_out << bracket;
    return *this;
}

JsonWriter& JsonWriter::key(const std::string& name)
{
    separate();
    writeString(name);
    m_out << ":";
    m_afterKey = true;
    return *this;
}

JsonWriter& JsonWriter::value(const std::string& text)
{
    separate();
    writeString(text);
    return *this;
}

JsonWriter& JsonWriter::value(std::int64_t number)
{
    separate();
    m_out << number;
    return *this;
}

JsonWriter& JsonWriter::value(bool flag)
{
    separate();
    m_out << (flag ? "true" : "false");
    return *this;
}

JsonWriter& JsonWriter::value(const std::vector<std::string>& texts)
{
    beginArray();
    for (const std::string& text : texts)
        value(text);
    return endArray();
}

}  // namespace hbrc::hbdepot
