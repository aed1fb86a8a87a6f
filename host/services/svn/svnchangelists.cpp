#include "svnchangelists.h"

#include <cstdio>
#include <fstream>
#include <sstream>

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

int IdNumber(const depot::ChangelistId& id)
{
    if (id.empty() || id.find_first_not_of("0123456789") != std::string::npos || id.size() > 9)
        return 0;
    return std::stoi(id);
}

}  // namespace

SvnChangelists::SvnChangelists(std::string workingCopy) : m_file(std::move(workingCopy) + "/.svn/hbrc-changelists")
{
    std::ifstream in(m_file);
    std::string line;
    if (std::getline(in, line))
        m_next = std::max(1, std::atoi(line.c_str()));
    while (std::getline(in, line)) {
        const std::size_t tab = line.find('\t');
        if (tab == std::string::npos)
            continue;
        if (const int number = IdNumber(line.substr(0, tab)))
            m_descriptions[number] = Unescaped(line.substr(tab + 1));
    }
}

bool SvnChangelists::exists(const depot::ChangelistId& id) const
{
    return id.empty() || m_descriptions.count(IdNumber(id)) > 0;
}

std::string SvnChangelists::description(const depot::ChangelistId& id) const
{
    const auto found = m_descriptions.find(IdNumber(id));
    return found == m_descriptions.end() ? std::string() : found->second;
}

depot::Result SvnChangelists::create(const std::string& description, depot::ChangelistId& created)
{
    const int number = m_next++;
    m_descriptions[number] = description;
    depot::Result saved = save();
    if (saved.ok())
        created = std::to_string(number);
    return saved;
}

depot::Result SvnChangelists::setDescription(const depot::ChangelistId& id, const std::string& description)
{
    m_descriptions[IdNumber(id)] = description;
    return save();
}

depot::Result SvnChangelists::erase(const depot::ChangelistId& id)
{
    m_descriptions.erase(IdNumber(id));
    return save();
}

depot::Result SvnChangelists::save() const
{
    // Written beside and renamed over the old records, so that a crash leaves one or the other.
    const std::string written = m_file + ".new";
    {
        std::ofstream out(written, std::ios::trunc);
        out << m_next << '\n';
        for (const auto& [number, text] : m_descriptions)
            out << number << '\t' << Escaped(text) << '\n';
        if (!out.flush())
            return {depot::code::IoError, "Cannot write the changelists of the working copy to " + written};
    }
    if (std::rename(written.c_str(), m_file.c_str()) != 0)
        return {depot::code::IoError, "Cannot write the changelists of the working copy to " + m_file};
    return {};
}

}  // namespace hbrc::host
