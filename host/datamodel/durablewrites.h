#pragma once

#include <QByteArray>

namespace hbrc::host::DurableWrites {

// Writes all of content to the descriptor, going on after interruptions; false when it failed.
bool WriteAll(int descriptor, const QByteArray& content);
// Flushes a file or folder to the disk; false when the flush failed.
bool Flush(const QByteArray& path);

}  // namespace hbrc::host::DurableWrites
