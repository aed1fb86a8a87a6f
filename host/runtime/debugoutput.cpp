#include <hbrchost/debugoutputcapture.h>

#include <sdkruntime/hosthooks.h>

#include <mutex>

namespace hbrc::host {

namespace {
std::mutex g_mutex;
DebugOutputCapture* g_capture = nullptr;
}  // namespace

void AppendDebugOutput(const char* text)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    if (g_capture)
        g_capture->m_lines.emplace_back(text);
}

DebugOutputCapture::DebugOutputCapture()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_capture = this;
    sdkruntime::SetDebugOutputSink(&AppendDebugOutput);
}

DebugOutputCapture::~DebugOutputCapture()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    if (g_capture == this) {
        g_capture = nullptr;
        sdkruntime::SetDebugOutputSink(nullptr);
    }
}

}  // namespace hbrc::host
