#include "diffcommands.h"

#include <depot/depot.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <stdexcept>

#include "commandcontext.h"
#include "linediff.h"

namespace hbrc::hbdepot {

using depot::Result;

namespace {

// A revision given on the command line: a number above 0, "#" before it allowed.
std::int64_t revisionNumber(std::string text)
{
    if (!text.empty() && text.front() == '#')
        text.erase(0, 1);
    if (text.empty() || text.size() > 9 || !std::all_of(text.begin(), text.end(), ::isdigit) ||
        std::stoll(text) == 0)
        throw std::invalid_argument("a revision is a number above 0, not '" + text + "'");
    return std::stoll(text);
}

Result contentAt(Context& c, const std::string& file, std::int64_t revision, std::string& content)
{
    std::ostringstream bytes;
    const Result result = c.depot.fileContent(c.ticket, {file, revision}, bytes);
    content = std::move(bytes).str();
    return result;
}

std::string readLocal(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error("cannot read " + path);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace

Result printContent(Context& c)
{
    const std::optional<std::string> revision = c.args.option("-r");
    return c.depot.fileContent(c.ticket, {c.files().front(), revision ? revisionNumber(*revision) : 0}, c.out);
}

Result printOpenedDifferences(Context& c)
{
    std::vector<depot::OpenedFile> opened;
    Result result = c.depot.opened(c.ticket, false, opened);
    if (!result.ok())
        return result;
    const std::vector<std::string> named = c.files();
    std::set<std::string> notOpened(named.begin(), named.end());
    std::vector<depot::OpenedFile> shown;
    for (const depot::OpenedFile& file : opened) {
        if (named.empty() || notOpened.erase(file.localPath) > 0)
            shown.push_back(file);
    }
    std::vector<std::string> locals;
    for (const depot::OpenedFile& file : shown)
        locals.push_back(file.localPath);
    std::vector<depot::FileStatus> statuses;
    result = c.depot.status(c.ticket, locals, statuses);
    for (std::size_t i = 0; result.ok() && i < shown.size(); ++i) {
        const depot::OpenedFile& file = shown[i];
        std::string before;
        const std::int64_t have = statuses[i].haveRevision;
        if (file.action != depot::FileAction::Add && have > 0)
            result = contentAt(c, file.localPath, have, before);
        const bool gone = file.action == depot::FileAction::Delete;
        const std::string after = gone ? std::string() : readLocal(file.localPath);
        c.out << unifiedDiff(before, after, have > 0 ? file.depotPath + "#" + std::to_string(have) : "/dev/null",
                             gone ? "/dev/null" : file.localPath);
    }
    if (result.ok() && !notOpened.empty()) {
        std::string text;
        for (const std::string& path : notOpened)
            text += (text.empty() ? "" : "\n") + path + " - file not opened in this workspace, skipped";
        return {depot::code::Skipped, text};
    }
    return result;
}

Result printRevisionDifference(Context& c)
{
    const std::string file = c.files().front();
    const std::int64_t first = revisionNumber(c.word(1));
    const std::int64_t second = revisionNumber(c.word(2));
    std::string before;
    std::string after;
    Result result = contentAt(c, file, first, before);
    if (result.ok())
        result = contentAt(c, file, second, after);
    if (result.ok())
        c.out << unifiedDiff(before, after, c.word(0) + "#" + std::to_string(first),
                             c.word(0) + "#" + std::to_string(second));
    return result;
}

}  // namespace hbrc::hbdepot
