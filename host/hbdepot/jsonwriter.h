#pragma once

// Writes JSON to a stream as it goes: objects, arrays, strings, numbers and booleans, with the
// commas in place and strings escaped.

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace hbrc::hbdepot {

class JsonWriter
{
public:
    explicit JsonWriter(std::ostream& out) : m_out(out) {}
    // Ends the document with a line break.
    ~JsonWriter();
    JsonWriter(const JsonWriter&) = delete;
    JsonWriter& operator=(const JsonWriter&) = delete;

    // The version of the documents' format, at the top of every one: a change that could break a
    // reader of them (a key removed or renamed, a meaning changed) gives it a new number.
    static constexpr std::int64_t kFormatVersion = 1;

    // The top-level object of a document, its format version first.
    JsonWriter& beginDocument() { return beginObject().key("format").value(kFormatVersion); }
    JsonWriter& beginObject() { return open('{'); }
    JsonWriter& endObject() { return close('}'); }
    JsonWriter& beginArray() { return open('['); }
    JsonWriter& endArray() { return close(']'); }
    JsonWriter& key(const std::string& name);
    JsonWriter& value(const std::string& text);
    JsonWriter& value(const char* text) { return value(std::string(text)); }
    JsonWriter& value(std::int64_t number);
    JsonWriter& value(bool flag);
    JsonWriter& value(const std::vector<std::string>& texts);

private:
    JsonWriter& open(char bracket);
    JsonWriter& close(char bracket);
    void separate();
    void writeString(const std::string& text);

    std::ostream& m_out;
    std::vector<bool> m_firstInLevel{true};
    bool m_afterKey = false;
};

}  // namespace hbrc::hbdepot
