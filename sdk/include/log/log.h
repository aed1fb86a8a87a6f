#pragma once

#include <kel4/sdkglobal.h>

#include <mutex>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace Log {

/// Message types (levels) of the host log.
enum MessageType : int {
    eMessage = 0,  // information
    eWarning = 1,
    eError = 2
};

/// Receives every log entry.
class KEL_INTERFACE ISink
{
public:
    virtual ~ISink() = default;
    virtual void Write(int messageType, const std::string& text) = 0;
};

class Stream;

/// The host log. Entries go to stderr (unless switched off) and to every added sink.
class KEL_RUNTIME_API Singleton
{
public:
    static Singleton& Instance();

    void Write(int messageType, const std::string& text);
    /// A stream that writes one entry of this type when it is destroyed.
    Stream GetStream(int messageType);

    void AddSink(ISink* sink);
    void RemoveSink(ISink* sink);
    void SetStderrEnabled(bool enabled);

private:
    Singleton() = default;
    std::mutex m_mutex;
    std::vector<ISink*> m_sinks;
    bool m_stderr = true;
};

/// Collects text with operator<< and writes it as one log entry when destroyed.
class Stream
{
public:
    Stream(Singleton& log, int messageType) : m_log(log), m_type(messageType) {}
    Stream(Stream&& other) noexcept : m_log(other.m_log), m_type(other.m_type), m_text(std::move(other.m_text))
    {
        other.m_moved = true;
    }
    ~Stream()
    {
        if (!m_moved)
            m_log.Write(m_type, m_text.str());
    }
    template <class T>
    Stream& operator<<(const T& value)
    {
        m_text << value;
        return *this;
    }
    Stream& operator<<(std::ostream& (*manipulator)(std::ostream&))
    {
        m_text << manipulator;
        return *this;
    }

private:
    Singleton& m_log;
    int m_type;
    std::ostringstream m_text;
    bool m_moved = false;
};

inline Stream Singleton::GetStream(int messageType) { return Stream(*this, messageType); }

}  // namespace Log
