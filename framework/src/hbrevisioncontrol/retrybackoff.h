#pragma once

#include "internalvisibility.h"

#include <algorithm>
#include <chrono>

HBRC_INTERNAL_NAMESPACE_BEGIN

// The waits between the attempts of an operation that a batch run retries without a limit: half a
// second first, then twice the previous wait, never more than thirty seconds. So a job that waits
// for a file someone else holds neither floods the log nor keeps a core busy.
class RetryBackoff
{
public:
    static constexpr std::chrono::milliseconds kFirstWait{500};
    static constexpr std::chrono::milliseconds kLongestWait{30000};

    // The wait before the next attempt.
    std::chrono::milliseconds Next()
    {
        const std::chrono::milliseconds wait = m_next;
        m_next = std::min(m_next * 2, kLongestWait);
        return wait;
    }

private:
    std::chrono::milliseconds m_next = kFirstWait;
};

HBRC_INTERNAL_NAMESPACE_END
