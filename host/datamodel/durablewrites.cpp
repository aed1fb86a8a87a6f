#include "durablewrites.h"

#include <QFile>
#include <QFileInfo>

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

bool Replace(const QByteArray& file, const QByteArray& content)
{
    const QByteArray temporary = file + ".new";
    const int descriptor = ::open(temporary.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (descriptor < 0)
        return false;
    const bool durable = WriteAll(descriptor, content) && ::fsync(descriptor) == 0;
    if (::close(descriptor) != 0 || !durable || ::rename(temporary.constData(), file.constData()) != 0) {
        const int why = errno;  // for the caller's message
        ::unlink(temporary.constData());
        errno = why;
        return false;
    }
    Flush(QFile::encodeName(QFileInfo(QFile::decodeName(file)).absolutePath()));
    return true;
}

}  // namespace hbrc::host::DurableWrites
