#pragma once

#include "internalvisibility.h"

#include <algorithm>
#include <chrono>

HBRC_INTERNAL_NAMESPACE_BEGIN

// The waits between the attempts of an operation that a batch run retries: half a second first,
// then twice the previous wait, never more than thirty seconds, so that a job that waits for a file
// someone else holds neither floods the log nor keeps a core busy; and the end of the retries,
// a deadline after the first attempt, so that a job never hangs on a server that is down.
class RetryBackoff
{
public:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds kFirstWait{500};
    static constexpr std::chrono::milliseconds kLongestWait{30000};

    explicit RetryBackoff(std::chrono::milliseconds deadline = std::chrono::milliseconds::max())
        : m_deadline(deadline)
    {
    }

    // The wait before the next attempt.
    std::chrono::milliseconds Next()
    {
        const std::chrono::milliseconds wait = m_next;
        m_next = std::min(m_next * 2, kLongestWait);
        m_waited += wait;
        return wait;
    }

    // True when the next attempt would begin after the deadline: the time since the first attempt
    // counts, or the waits handed out when they were skipped (a test's wait returns at once).
    bool PastDeadline() const
    {
        const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_start);
        return std::max(elapsed, m_waited + m_next) > m_deadline;
    }

private:
    std::chrono::milliseconds m_next = kFirstWait;
    std::chrono::milliseconds m_waited{0};
    std::chrono::milliseconds m_deadline;
    Clock::time_point m_start = Clock::now();
};

HBRC_INTERNAL_NAMESPACE_END
