#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <optional>
#include <string>

namespace hbrc::host {
class OfflineJournal;
}

namespace hbrc::studio {

// The user's content of a file that reconcile brings to a newer revision before opening it
// ("keep mine"): the offline journal keeps it in a copy while the file changes; this puts it back.
class KeptContent
{
    Q_DECLARE_TR_FUNCTIONS(KeptContent)
public:
    // A file's bytes; nothing when it cannot be read.
    static std::optional<QByteArray> read(const QString& file);
    // Writes content over the file (made writable first) in one rename; false when it is not there.
    static bool write(const std::string& file, const QByteArray& content);
    // Puts right what an interrupted keep-mine left, before anything else looks at the files: a
    // kept file that holds nothing of the user's (gone, or read-only as the server wrote it) gets
    // its kept copy back, and a file that holds the copy's content already lets the copy go. A
    // file changed since (writable, with other content) is left with its copy: the texts name both.
    static QStringList recover(host::OfflineJournal& journal);
};

}  // namespace hbrc::studio
