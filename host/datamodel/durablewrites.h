#pragma once

#include <QByteArray>

namespace hbrc::host::DurableWrites {

// Writes all of content to the descriptor, going on after interruptions; false when it failed.
bool WriteAll(int descriptor, const QByteArray& content);
// Flushes a file or folder to the disk; false when the flush failed.
bool Flush(const QByteArray& path);
// Replaces file by content in one rename, after flushing it, so that a crash leaves the old or the
// new content; false with errno when it failed (the file is then as it was).
bool Replace(const QByteArray& file, const QByteArray& content);

}  // namespace hbrc::host::DurableWrites
