#include "durablewrites.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace hbrc::host::DurableWrites {

bool WriteAll(int descriptor, const QByteArray& content)
{
    const char* data = content.constData();
    qsizetype left = content.size();
    while (left > 0) {
        const ssize_t written = ::write(descriptor, data, static_cast<size_t>(left));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        data += written;
        left -= written;
    }
    return true;
}

bool Flush(const QByteArray& path)
{
    const int descriptor = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool flushed = ::fsync(descriptor) == 0;
    ::close(descriptor);
    return flushed;
}

}  // namespace hbrc::host::DurableWrites
