#include "svnchangelists.h"

#include "svnadvisorylock.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace hbrc::host {

namespace {

// One record per line: descriptions keep their line breaks as "\n" and backslashes as "\\".
std::string Escaped(const std::string& text)
{
    std::string escaped;
    for (char c : text) {
        if (c == '\\')
            escaped += "\\\\";
        else if (c == '\n')
            escaped += "\\n";
        else
            escaped += c;
    }
    return escaped;
}

std::string Unescaped(const std::string& text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) {
            plain += text[i + 1] == 'n' ? '\n' : text[i + 1];
            ++i;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

int IdNumber(const revision::ChangelistId& id)
{
    if (id.empty() || id.find_first_not_of("0123456789") != std::string::npos || id.size() > 9)
        return 0;
    return std::stoi(id);
}

revision::Result Unknown(const revision::ChangelistId& id)
{
    return {revision::code::Failed, "Change " + id + " unknown."};
}

}  // namespace

SvnChangelists::SvnChangelists(const std::string& adminFolder)
    : m_file(adminFolder + "/hbrc-changelists"), m_lockFile(adminFolder + "/hbrc-changelists.lock")
{
}

SvnChangelists::Records SvnChangelists::read() const
{
    // No lock: the file is only ever replaced whole, so a reader sees the old or the new records.
    Records records;
    std::ifstream in(m_file);
    std::string line;
    if (std::getline(in, line))
        records.next = std::max(1, std::atoi(line.c_str()));
    while (std::getline(in, line)) {
        const std::size_t tab = line.find('\t');
        if (tab == std::string::npos)
            continue;
        if (const int number = IdNumber(line.substr(0, tab)))
            records.descriptions[number] = Unescaped(line.substr(tab + 1));
    }
    return records;
}

bool SvnChangelists::exists(const revision::ChangelistId& id) const
{
    return id.empty() || read().descriptions.count(IdNumber(id)) > 0;
}

std::string SvnChangelists::description(const revision::ChangelistId& id) const
{
    const Records records = read();
    const auto found = records.descriptions.find(IdNumber(id));
    return found == records.descriptions.end() ? std::string() : found->second;
}

std::map<int, std::string> SvnChangelists::pending() const
{
    return read().descriptions;
}

revision::Result SvnChangelists::create(const std::string& description, revision::ChangelistId& created) const
{
    int number = 0;
    revision::Result saved = change([&](Records& records) {
        number = records.next++;
        records.descriptions[number] = description;
        return revision::Result{};
    });
    if (saved.ok())
        created = std::to_string(number);
    return saved;
}

revision::Result SvnChangelists::setDescription(const revision::ChangelistId& id, const std::string& description) const
{
    return change([&](Records& records) {
        const auto found = records.descriptions.find(IdNumber(id));
        if (found == records.descriptions.end())
            return Unknown(id);
        found->second = description;
        return revision::Result{};
    });
}

revision::Result SvnChangelists::erase(const revision::ChangelistId& id) const
{
    return change([&](Records& records) {
        records.descriptions.erase(IdNumber(id));
        return revision::Result{};
    });
}

revision::Result SvnChangelists::change(const std::function<revision::Result(Records&)>& edit) const
{
    const SvnAdvisoryLock lock(m_lockFile, SvnAdvisoryLock::Mode::Exclusive);
    if (!lock.held())
        return {revision::code::IoError, "Cannot lock the changelists of the working copy in " + m_lockFile};
    Records records = read();
    if (revision::Result edited = edit(records); !edited.ok())
        return edited;
    return write(records);
}

revision::Result SvnChangelists::write(const Records& records) const
{
    // Written beside and renamed over the old records, so that a crash leaves one or the other.
    const std::string written = m_file + ".new";
    {
        std::ofstream out(written, std::ios::trunc);
        out << records.next << '\n';
        for (const auto& [number, text] : records.descriptions)
            out << number << '\t' << Escaped(text) << '\n';
        if (!out.flush())
            return {revision::code::IoError, "Cannot write the changelists of the working copy to " + written};
    }
    if (std::rename(written.c_str(), m_file.c_str()) != 0)
        return {revision::code::IoError, "Cannot write the changelists of the working copy to " + m_file};
    return {};
}

}  // namespace hbrc::host
