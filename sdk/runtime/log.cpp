#include <log/log.h>

#include <algorithm>
#include <iostream>

namespace Log {

Singleton& Singleton::Instance()
{
    static Singleton log;
    return log;
}

void Singleton::Write(int messageType, const std::string& text)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_stderr) {
        static const char* const prefixes[] = {"[info] ", "[warning] ", "[error] "};
        const char* prefix = messageType >= 0 && messageType <= 2 ? prefixes[messageType] : "[log] ";
        std::cerr << prefix << text << (text.empty() || text.back() != '\n' ? "\n" : "");
    }
    for (ISink* sink : m_sinks)
        sink->Write(messageType, text);
}

void Singleton::AddSink(ISink* sink)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_sinks.push_back(sink);
}

void Singleton::RemoveSink(ISink* sink)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_sinks.erase(std::remove(m_sinks.begin(), m_sinks.end(), sink), m_sinks.end());
}

void Singleton::SetStderrEnabled(bool enabled)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_stderr = enabled;
}

}  // namespace Log
