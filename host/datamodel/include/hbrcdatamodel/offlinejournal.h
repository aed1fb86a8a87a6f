#pragma once

#include <hbrcdatamodel/export.h>

#include <QString>

#include <map>
#include <string>
#include <vector>

namespace hbrc::host {

// The files of one workspace that the host changed while it worked without its revision-control
// server: made writable, created or deleted. Each record is appended and flushed to the disk
// before the file changes, so that after a crash or a kill the journal still names every file
// that may have changed. Entries go when their files were brought under revision control again;
// that rewrite replaces the journal in one rename, so a crash leaves the old or the new list.
//
// One line per record: a letter (W made writable, C created, D deleted), a space and the file's
// absolute path in the file-name encoding, with '%', CR and LF percent-encoded.
class HBRC_DATAMODEL_EXPORT OfflineJournal
{
public:
    enum class Change { MadeWritable, Created, Deleted };

    // The journal kept at file (created by the first record); reads what an earlier run left.
    explicit OfflineJournal(QString file);

    // Where the journal of the workspace at root is kept inside folder (outside the workspace, so
    // that no scan of the workspace takes it for a new file).
    static QString FileFor(const QString& folder, const QString& root);

    // Appends the record and flushes it; false with errorText when it is not on the disk, and then
    // the caller must leave the file as it is. A file recorded with the same change already is not
    // recorded again.
    bool Record(const std::string& path, Change change, std::string& errorText);
    // The files named, each with its latest change, by path.
    const std::map<std::string, Change>& Entries() const { return m_entries; }
    bool IsEmpty() const { return m_entries.empty(); }
    // Drops the files' entries in one atomic rewrite; false with errorText when it failed (the
    // journal is then as it was).
    bool Forget(const std::vector<std::string>& paths, std::string& errorText);
    const QString& File() const { return m_file; }

private:
    QString m_file;
    std::map<std::string, Change> m_entries;
};

}  // namespace hbrc::host
