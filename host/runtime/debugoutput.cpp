#include <hbrchost/debugoutputcapture.h>

#include <kel4/exbase.h>

#include <atomic>
#include <iostream>
#include <mutex>

namespace hbrc::host {

namespace {
std::mutex g_mutex;
DebugOutputCapture* g_capture = nullptr;
std::atomic<int> g_disabledReporting{0};
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
}

DebugOutputCapture::~DebugOutputCapture()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    if (g_capture == this)
        g_capture = nullptr;
}

}  // namespace hbrc::host

namespace kel4 {

void PrintDebugString(const char* text)
{
    std::cerr << "[debug] " << (text ? text : "") << '\n';
    hbrc::host::AppendDebugOutput(text ? text : "");
}

DisableErrorReportingGuard::DisableErrorReportingGuard()
{
    ++hbrc::host::g_disabledReporting;
}

DisableErrorReportingGuard::~DisableErrorReportingGuard()
{
    --hbrc::host::g_disabledReporting;
}

bool DisableErrorReportingGuard::IsErrorReportingDisabled()
{
    return hbrc::host::g_disabledReporting.load() > 0;
}

}  // namespace kel4
