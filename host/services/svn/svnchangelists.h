#pragma once

#include <hbrcservices/revisiontypes.h>

#include <functional>
#include <map>
#include <string>

namespace hbrc::host {

// The pending changelists of a working copy with their descriptions. Subversion's changelists are
// names on files that exist while a file carries them; these records, kept in the working copy's
// administrative folder, make a changelist exist from its creation (empty) to its submission and
// give it a description. Ids are numbers as text, counted per working copy; "" is the default
// changelist, which always exists and has no record.
//
// The records belong to the working copy, not to a connection: every question reads the file
// anew, and every change reads, edits and replaces it while holding an exclusive lock on a lock
// file beside it. So all connections on one working copy (in this process or another, before and
// after a restart) see the same changelists, and no number is handed out twice.
class SvnChangelists
{
public:
    // adminFolder: the administrative folder at the root of the working copy.
    explicit SvnChangelists(const std::string& adminFolder);

    bool exists(const revision::ChangelistId& id) const;
    // The description of an existing changelist ("" for the default one).
    std::string description(const revision::ChangelistId& id) const;
    // The numbered changelists as they are now: number to description.
    std::map<int, std::string> pending() const;

    revision::Result create(const std::string& description, revision::ChangelistId& created) const;
    // Refuses a changelist without a record (deleted or submitted meanwhile, or never made).
    revision::Result setDescription(const revision::ChangelistId& id, const std::string& description) const;
    revision::Result erase(const revision::ChangelistId& id) const;

private:
    struct Records
    {
        int next = 1;
        std::map<int, std::string> descriptions;
    };

    Records read() const;
    // Reads the records, lets edit change them and writes them back, all under the lock; an edit
    // that fails leaves the file as it was.
    revision::Result change(const std::function<revision::Result(Records&)>& edit) const;
    revision::Result write(const Records& records) const;

    std::string m_file;
    std::string m_lockFile;
};

}  // namespace hbrc::host
