#pragma once

#include <depot/export.h>
#include <depot/interruptiblewait.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>

#include <depot/types.h>

namespace hbrc::depot {

// Faults that tests and benchmarks inject into a depot connection: a delay in every round trip
// (a slow server) and failures forced onto the next calls or onto one operation.
class HBRC_DEPOT_EXPORT FaultInjector
{
public:
    void setLatency(std::chrono::milliseconds perRoundTrip) { m_latency = perRoundTrip; }
    std::chrono::milliseconds latency() const { return m_latency; }
    // Waits the latency of one round trip, unless the cancel check turns true or interruptLatency()
    // breaks the wait off, as a broken connection ends a read.
    InterruptibleWait::End waitLatency(const CancelCheck& cancel) { return m_latencyWait.waitFor(m_latency, cancel); }
    // Ends the latency waits under way; from any thread.
    void interruptLatency() { m_latencyWait.interrupt(); }

    // The next `count` round trips fail with `code` (e.g. code::SessionUnusable or code::IoError).
    void failNextCalls(int count, int code, std::string message = {});
    // Every call of `operation` fails with `code` until clear().
    void failOperation(Operation operation, int code, std::string message = {});
    void clear();

    // Consumed once per round trip by the depot: the failure forced onto this call, if any.
    std::optional<Result> takeForcedFailure(Operation operation);

private:
    std::chrono::milliseconds m_latency{0};
    InterruptibleWait m_latencyWait;
    int m_failuresLeft = 0;
    Result m_nextCallsFailure;
    std::map<Operation, Result> m_operationFailures;
};

}  // namespace hbrc::depot
