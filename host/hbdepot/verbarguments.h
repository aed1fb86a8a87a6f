#pragma once

// The words after a command's name, checked against what the command takes: its options with a
// value, its flags, and how many other words (files, names) it needs. Anything else is bad usage.

#include <cstddef>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace hbrc::hbdepot {

struct VerbSyntax
{
    std::vector<std::string> options;  // each followed by its value ("-c CHANGE")
    std::vector<std::string> flags;    // alone ("-a", "--force")
    std::size_t minWords = 0;
    std::size_t maxWords = std::numeric_limits<std::size_t>::max();
};

class VerbArguments
{
public:
    // Throws std::invalid_argument for an unknown option, an option without its value, or too
    // few or too many words. "--" ends the options, so that a file may start with "-".
    VerbArguments(const VerbSyntax& syntax, const std::vector<std::string>& given);

    std::optional<std::string> option(const std::string& name) const;
    bool flag(const std::string& name) const;
    const std::vector<std::string>& words() const { return m_words; }

private:
    std::map<std::string, std::string> m_options;
    std::set<std::string> m_flags;
    std::vector<std::string> m_words;
};

}  // namespace hbrc::hbdepot
