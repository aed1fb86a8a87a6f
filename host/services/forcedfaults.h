#pragma once

#include <hbrcservices/faultinjection.h>

#include <depot/interruptiblewait.h>

#include <map>
#include <optional>

namespace hbrc::host {

// The fault injection of a backend that has none of its own (the Subversion one): it keeps what
// the tests set, and the backend takes the forced failure and waits the latency of each call.
class ForcedFaults final : public revision::FaultInjection
{
public:
    void setLatency(std::chrono::milliseconds perRoundTrip) override { m_latency = perRoundTrip; }
    std::chrono::milliseconds latency() const override { return m_latency; }
    void failNextCalls(int count, int code, std::string message) override;
    void failOperation(revision::Operation operation, int code, std::string message) override;
    void clear() override;

    // Consumed once per call by the backend: the failure forced onto this call, if any.
    std::optional<revision::Result> takeForcedFailure(revision::Operation operation);
    // Waits the latency of one call, unless the cancel check turns true or interruptLatency()
    // breaks the wait off, as a broken connection ends a read.
    depot::InterruptibleWait::End waitLatency(const revision::CancelCheck& cancel)
    {
        return m_latencyWait.waitFor(m_latency, cancel);
    }
    // Ends the latency waits under way; from any thread.
    void interruptLatency() { m_latencyWait.interrupt(); }

private:
    std::chrono::milliseconds m_latency{0};
    depot::InterruptibleWait m_latencyWait;
    int m_failuresLeft = 0;
    revision::Result m_nextCallsFailure;
    std::map<revision::Operation, revision::Result> m_operationFailures;
};

}  // namespace hbrc::host
