#include "svnadvisorylock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace hbrc::host {

namespace {

int FlockOperation(SvnAdvisoryLock::Mode mode)
{
    switch (mode) {
    case SvnAdvisoryLock::Mode::Shared:
        return LOCK_SH;
    case SvnAdvisoryLock::Mode::Exclusive:
        return LOCK_EX;
    case SvnAdvisoryLock::Mode::ExclusiveIfFree:
        return LOCK_EX | LOCK_NB;
    }
    return LOCK_EX;
}

}  // namespace

SvnAdvisoryLock::SvnAdvisoryLock(const std::string& file, Mode mode)
    : m_fd(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644))
{
    int locked = -1;
    while (m_fd >= 0 && (locked = ::flock(m_fd, FlockOperation(mode))) != 0 && errno == EINTR) {
    }
    if (m_fd >= 0 && locked != 0) {
        ::close(m_fd);
        m_fd = -1;
    }
}

SvnAdvisoryLock::~SvnAdvisoryLock()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

}  // namespace hbrc::host
