#pragma once

#include <log/log.h>

#include <string>
#include <utility>
#include <vector>

namespace hbrc::host {

// Records every host log entry written while it lives (for tests and the batch runner).
class LogCapture final : public Log::ISink
{
public:
    struct Entry {
        int type;
        std::string text;
    };

    LogCapture() { Log::Singleton::Instance().AddSink(this); }
    ~LogCapture() override { Log::Singleton::Instance().RemoveSink(this); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    void Write(int messageType, const std::string& text) override { m_entries.push_back({messageType, text}); }

    const std::vector<Entry>& Entries() const { return m_entries; }
    std::vector<std::string> TextsOfType(int messageType) const
    {
        std::vector<std::string> texts;
        for (const Entry& e : m_entries)
            if (e.type == messageType)
                texts.push_back(e.text);
        return texts;
    }
    void Clear() { m_entries.clear(); }

private:
    std::vector<Entry> m_entries;
};

}  // namespace hbrc::host
