#include "verbarguments.h"

#include <algorithm>
#include <stdexcept>

namespace hbrc::hbdepot {

namespace {

bool contains(const std::vector<std::string>& names, const std::string& name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

VerbArguments::VerbArguments(const VerbSyntax& syntax, const std::vector<std::string>& given)
{
    bool optionsEnded = false;
    for (std::size_t i = 0; i < given.size(); ++i) {
        const std::string& word = given[i];
        if (optionsEnded || word.size() < 2 || word[0] != '-') {
            m_words.push_back(word);
        } else if (word == "--") {
            optionsEnded = true;
        } else if (contains(syntax.flags, word)) {
            m_flags.insert(word);
        } else if (contains(syntax.options, word)) {
            if (i + 1 == given.size())
                throw std::invalid_argument("option " + word + " needs a value");
            if (!m_options.emplace(word, given[++i]).second)
                throw std::invalid_argument("option " + word + " is given twice");
        } else {
            throw std::invalid_argument("unknown option " + word);
        }
    }
    if (m_words.size() < syntax.minWords)
        throw std::invalid_argument(syntax.minWords == 1 ? "an argument is missing" : "arguments are missing");
    if (m_words.size() > syntax.maxWords)
        throw std::invalid_argument("unexpected argument '" + m_words[syntax.maxWords] + "'");
}

std::optional<std::string> VerbArguments::option(const std::string& name) const
{
    const auto found = m_options.find(name);
    if (found == m_options.end())
        return std::nullopt;
    return found->second;
}

bool VerbArguments::flag(const std::string& name) const
{
    return m_flags.count(name) != 0;
}

}  // namespace hbrc::hbdepot
