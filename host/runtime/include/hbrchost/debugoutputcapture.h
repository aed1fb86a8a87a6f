#pragma once

#include <hbrchost/export.h>

#include <string>
#include <vector>

namespace hbrc::host {

// Records what kel4::PrintDebugString prints while it lives.
class HBRC_HOSTRUNTIME_EXPORT DebugOutputCapture
{
public:
    DebugOutputCapture();
    ~DebugOutputCapture();
    DebugOutputCapture(const DebugOutputCapture&) = delete;
    DebugOutputCapture& operator=(const DebugOutputCapture&) = delete;

    const std::vector<std::string>& Lines() const { return m_lines; }

private:
    friend void AppendDebugOutput(const char* text);
    std::vector<std::string> m_lines;
};

}  // namespace hbrc::host
