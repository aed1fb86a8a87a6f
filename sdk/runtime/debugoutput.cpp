// The host's debug output and the switch that silences the host's exception reports.
#include <kel4/exbase.h>
#include <sdkruntime/hosthooks.h>

#include <atomic>
#include <iostream>

namespace {
std::atomic<sdkruntime::DebugOutputSink> g_sink{nullptr};
std::atomic<int> g_disabledReporting{0};
}  // namespace

namespace sdkruntime {

DebugOutputSink SetDebugOutputSink(DebugOutputSink sink)
{
    return g_sink.exchange(sink);
}

}  // namespace sdkruntime

namespace kel4 {

void PrintDebugString(const char* text)
{
    const char* line = text ? text : "";
    std::cerr << "[debug] " << line << '\n';
    if (sdkruntime::DebugOutputSink sink = g_sink.load())
        sink(line);
}

DisableErrorReportingGuard::DisableErrorReportingGuard()
{
    ++g_disabledReporting;
}

DisableErrorReportingGuard::~DisableErrorReportingGuard()
{
    --g_disabledReporting;
}

bool DisableErrorReportingGuard::IsErrorReportingDisabled()
{
    return g_disabledReporting.load() > 0;
}

}  // namespace kel4
