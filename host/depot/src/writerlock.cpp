#include "writerlock.h"

#include <cerrno>
#include <cstring>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "depoterror.h"

namespace hbrc::depot {

namespace {

constexpr std::chrono::milliseconds kPoll{5};

int openLockFile(const std::string& depotPath)
{
    return ::open((depotPath + "-lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
}

bool lockNow(int fd)
{
    while (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EINTR)
            return false;
    }
    return true;
}

}  // namespace

WriterLock::WriterLock(const std::string& depotPath, std::chrono::milliseconds timeout,
                       const std::function<void()>& keepWaiting)
    : m_fd(openLockFile(depotPath))
{
    if (m_fd < 0)
        throw DepotError(code::Failed, "Cannot change the depot: its lock file '" + depotPath + "-lock' cannot be made (" +
                                           std::strerror(errno) + "); is the depot's folder read-only?");
    const auto until = std::chrono::steady_clock::now() + timeout;
    while (!lockNow(m_fd)) {
        if (std::chrono::steady_clock::now() >= until) {
            ::close(m_fd);
            throw DepotError(code::Failed, "The depot is busy, try again later (another process is changing it)");
        }
        try {
            keepWaiting();
        } catch (...) {
            ::close(m_fd);
            throw;
        }
        std::this_thread::sleep_for(kPoll);
    }
}

WriterLock::~WriterLock()
{
    if (m_fd >= 0)
        ::close(m_fd);  // closing the descriptor releases the lock
}

bool WriterLock::tryTake(const std::string& depotPath, std::function<void()> whileHeld)
{
    WriterLock lock;
    lock.m_fd = openLockFile(depotPath);
    if (lock.m_fd < 0 || !lockNow(lock.m_fd))
        return false;
    whileHeld();
    return true;
}

}  // namespace hbrc::depot
