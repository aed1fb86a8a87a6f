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
// While reconcile brings a file the user changed to a newer revision and puts her content back
// over it, that content is kept in a copy beside the journal (KeptCopyOf), written and flushed
// before the record that names it and before anything touches the file: whatever is interrupted,
// the file or the kept copy holds her bytes, and the journal names the copy until she has them.
//
// One line per record: a letter (W made writable, C created, D deleted, K kept), a space and the
// file's absolute path in the file-name encoding, with '%', CR and LF percent-encoded.
class HBRC_DATAMODEL_EXPORT OfflineJournal
{
public:
    enum class Change { MadeWritable, Created, Deleted, Kept };

    // The journal kept at file (created by the first record); reads what an earlier run left.
    explicit OfflineJournal(QString file);

    // Where the journal of the workspace at root is kept inside folder (outside the workspace, so
    // that no scan of the workspace takes it for a new file).
    static QString FileFor(const QString& folder, const QString& root);

    // Appends the record and flushes it; false with errorText when it is not on the disk, and then
    // the caller must leave the file as it is. A file recorded with the same change already is not
    // recorded again, nor any change of a kept file: its record names the kept copy until Unkeep.
    bool Record(const std::string& path, Change change, std::string& errorText);
    // The files named, each with its latest change, by path.
    const std::map<std::string, Change>& Entries() const { return m_entries; }
    bool IsEmpty() const { return m_entries.empty(); }
    // Drops the files' entries in one atomic rewrite, apart from kept ones; false with errorText
    // when it failed (the journal is then as it was).
    bool Forget(const std::vector<std::string>& paths, std::string& errorText);

    // Copies the file's content to its kept copy, flushed, then records it as kept; false with
    // errorText when either is not on the disk, and then the file must not be touched. A file
    // kept already is refused: its copy may hold content the file no longer has.
    bool Keep(const std::string& path, std::string& errorText);
    // Once the file holds the kept content again (or it was put back otherwise): records it as
    // made writable, then removes its kept copy.
    bool Unkeep(const std::string& path, std::string& errorText);
    // Where a file's content is kept: a folder beside the journal, a name from the path's digest.
    QString KeptCopyOf(const std::string& path) const;
    const QString& File() const { return m_file; }

private:
    bool append(const std::string& path, Change change, std::string& errorText);

    QString m_file;
    std::map<std::string, Change> m_entries;
};

}  // namespace hbrc::host
