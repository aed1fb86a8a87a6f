#pragma once

#include <depot/types.h>

#include <map>
#include <string>

namespace hbrc::host {

// The pending changelists of a working copy with their descriptions. Subversion's changelists are
// names on files that exist while a file carries them; these records, kept in the working copy's
// administrative folder, make a changelist exist from its creation (empty) to its submission and
// give it a description. Ids are numbers as text, counted per working copy; "" is the default
// changelist, which always exists and has no record.
class SvnChangelists
{
public:
    explicit SvnChangelists(std::string workingCopy);

    bool exists(const depot::ChangelistId& id) const;
    // The description of an existing changelist ("" for the default one).
    std::string description(const depot::ChangelistId& id) const;
    const std::map<int, std::string>& pending() const { return m_descriptions; }

    depot::Result create(const std::string& description, depot::ChangelistId& created);
    depot::Result setDescription(const depot::ChangelistId& id, const std::string& description);
    depot::Result erase(const depot::ChangelistId& id);

private:
    depot::Result save() const;

    std::string m_file;
    int m_next = 1;
    std::map<int, std::string> m_descriptions;
};

}  // namespace hbrc::host
