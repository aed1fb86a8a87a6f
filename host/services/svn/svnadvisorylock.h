#pragma once

#include <string>

namespace hbrc::host {

// An advisory lock (flock) on a file of the working copy's administrative folder, held from
// construction to destruction. flock() locks belong to the open file, so two connections in one
// process exclude each other as two processes do, and a process that dies lets go of its locks.
class SvnAdvisoryLock
{
public:
    enum class Mode { Shared, Exclusive, ExclusiveIfFree };

    // Waits for the lock, except ExclusiveIfFree, which gives up at once when it is held.
    SvnAdvisoryLock(const std::string& file, Mode mode);
    ~SvnAdvisoryLock();
    SvnAdvisoryLock(const SvnAdvisoryLock&) = delete;
    SvnAdvisoryLock& operator=(const SvnAdvisoryLock&) = delete;

    bool held() const { return m_fd >= 0; }

private:
    int m_fd;
};

}  // namespace hbrc::host
