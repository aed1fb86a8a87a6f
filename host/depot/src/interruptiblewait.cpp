#include <depot/interruptiblewait.h>

#include <algorithm>

namespace hbrc::depot {

namespace {

// How often the cancel check is polled while waiting.
constexpr std::chrono::milliseconds kCancelPoll{10};

}  // namespace

InterruptibleWait::End InterruptibleWait::waitFor(std::chrono::milliseconds duration, const CancelCheck& cancel)
{
    using Clock = std::chrono::steady_clock;
    if (duration <= std::chrono::milliseconds::zero())
        return End::Elapsed;
    const Clock::time_point until = Clock::now() + duration;
    std::unique_lock<std::mutex> lock(m_mutex);
    const std::uint64_t interruptsBefore = m_interrupts;
    for (;;) {
        if (m_interrupts != interruptsBefore)
            return End::Interrupted;
        const Clock::time_point now = Clock::now();
        if (now >= until)
            return End::Elapsed;
        // The check is the caller's: it runs without the lock, which interrupt() needs.
        lock.unlock();
        const bool cancelled = cancel && cancel();
        lock.lock();
        if (cancelled)
            return End::Cancelled;
        m_woken.wait_until(lock, std::min<Clock::time_point>(until, now + kCancelPoll));
    }
}

void InterruptibleWait::interrupt()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        ++m_interrupts;
    }
    m_woken.notify_all();
}

}  // namespace hbrc::depot
