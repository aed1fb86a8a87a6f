#pragma once

#include <depot/export.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

#include <depot/types.h>

namespace hbrc::depot {

// A wait that ends early when its cancel check turns true or when another thread interrupts it.
// An injected round-trip latency waits here so that it ends the way a real network wait does: the
// cancel check is polled between reads, and a caller that gives up breaks the connection, which
// ends a read that polls nothing.
class HBRC_DEPOT_EXPORT InterruptibleWait
{
public:
    enum class End { Elapsed, Cancelled, Interrupted };

    // Waits for `duration` unless the cancel check turns true or interrupt() is called first.
    End waitFor(std::chrono::milliseconds duration, const CancelCheck& cancel);
    // Ends every wait under way, from any thread; a wait that begins afterwards runs its course.
    void interrupt();

private:
    std::mutex m_mutex;
    std::condition_variable m_woken;
    std::uint64_t m_interrupts = 0;  // guarded by m_mutex
};

}  // namespace hbrc::depot
