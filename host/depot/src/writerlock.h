#pragma once

// The depot's writer lock: an advisory lock on a file beside the depot ("<depot>-lock"), held by
// an operation from before its transaction until its file steps are done, so that the files of
// one operation are changed before the next operation looks at them. The system drops the lock
// when its process dies, which is how a later process knows that journal rows are left over.

#include <chrono>
#include <functional>
#include <string>

namespace hbrc::depot {

class WriterLock
{
public:
    // Waits up to `timeout` (polling `keepWaiting`, which may throw to give up) and throws
    // DepotError when the lock cannot be had.
    WriterLock(const std::string& depotPath, std::chrono::milliseconds timeout, const std::function<void()>& keepWaiting);
    ~WriterLock();
    WriterLock(const WriterLock&) = delete;
    WriterLock& operator=(const WriterLock&) = delete;

    // The lock if it is free now; false when another process holds it or the file cannot be made.
    static bool tryTake(const std::string& depotPath, std::function<void()> whileHeld);

private:
    WriterLock() = default;
    int m_fd = -1;
};

}  // namespace hbrc::depot
