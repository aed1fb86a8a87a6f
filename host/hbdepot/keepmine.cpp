#include "keepmine.h"

#include <depot/depot.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include <fcntl.h>
#include <unistd.h>

#include "commandcontext.h"

namespace hbrc::hbdepot {

using depot::Result;

namespace {

namespace fs = std::filesystem;

const std::string kSuffix = ".hbdepot-kept";

std::string keptCopyOf(const std::string& file)
{
    return file + kSuffix;
}

std::optional<std::string> contentOf(const std::string& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(in), {});
}

bool isWritable(const std::string& file)
{
    std::error_code error;
    return (fs::status(file, error).permissions() & fs::perms::owner_write) != fs::perms::none;
}

// Writes content to target through a temporary the workspace scan passes over, flushed and renamed
// over it, and flushes the folder: target holds its old content or all of the new.
bool replaceDurably(const std::string& target, const std::string& content, fs::perms permissions)
{
    const fs::path path(target);
    const std::string temporary = (path.parent_path() / (".hbdepot-" + path.filename().string() + ".tmp")).string();
    const int descriptor = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (descriptor < 0)
        return false;
    bool written = true;
    for (std::size_t done = 0; written && done < content.size();) {
        const ssize_t part = ::write(descriptor, content.data() + done, content.size() - done);
        written = part > 0 || (part < 0 && errno == EINTR);
        done += part > 0 ? std::size_t(part) : 0;
    }
    written = ::fsync(descriptor) == 0 && ::close(descriptor) == 0 && written;
    std::error_code error;
    fs::permissions(temporary, permissions, error);
    if (!written || error || ::rename(temporary.c_str(), target.c_str()) != 0) {
        ::unlink(temporary.c_str());
        return false;
    }
    const int folder = ::open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        ::fsync(folder);
        ::close(folder);
    }
    return true;
}

// Writes the kept content over the file, writable.
bool putBack(const std::string& file)
{
    const std::optional<std::string> content = contentOf(keptCopyOf(file));
    return content && replaceDurably(file, *content, fs::perms::owner_read | fs::perms::owner_write |
                                                          fs::perms::group_read | fs::perms::others_read);
}

void removeFiles(const std::vector<KeptFile>& files)
{
    for (const KeptFile& file : files) {
        std::error_code ignored;
        fs::remove(file.path, ignored);
    }
}

}  // namespace

bool isKeptCopy(const std::string& file)
{
    return file.size() > kSuffix.size() && file.compare(file.size() - kSuffix.size(), kSuffix.size(), kSuffix) == 0;
}

Result findBehind(Context& c, const std::vector<depot::WorkspaceChange>& changes, std::vector<KeptFile>& behind)
{
    depot::Depot::Files edited;
    for (const depot::WorkspaceChange& change : changes)
        if (change.action == depot::FileAction::Edit)
            edited.push_back(change.localPath);
    std::vector<depot::FileStatus> statuses;
    if (edited.empty())
        return {};
    const Result asked = c.depot.status(c.ticket, edited, statuses);
    for (std::size_t i = 0; asked.ok() && i < statuses.size(); ++i)
        if (statuses[i].haveRevision > 0 && statuses[i].headRevision > statuses[i].haveRevision)
            behind.push_back({edited[i], statuses[i].haveRevision, statuses[i].headRevision});
    return asked;
}

bool recoverKeptCopies(const std::vector<depot::WorkspaceChange>& changes, bool onlySay, std::ostream& say)
{
    bool changed = false;
    for (const depot::WorkspaceChange& change : changes) {
        if (change.action != depot::FileAction::Add || !isKeptCopy(change.localPath))
            continue;
        const std::string file = change.localPath.substr(0, change.localPath.size() - kSuffix.size());
        const std::optional<std::string> present = contentOf(file);
        const bool holdsIt = present == contentOf(change.localPath);
        if (!holdsIt && present && isWritable(file)) {
            say << Context::shown(file) << " changed after an interrupted reconcile kept your content of it in "
                << Context::shown(change.localPath) << ": compare the two, and remove the copy to reconcile it\n";
            continue;
        }
        if (onlySay) {
            say << Context::shown(file) << " - would get your content back from " << Context::shown(change.localPath)
                << "\n";
            continue;
        }
        if (holdsIt || putBack(file)) {
            std::error_code ignored;
            fs::remove(change.localPath, ignored);
            say << Context::shown(file) << " - your content is back from an interrupted reconcile\n";
            changed = true;
        }
    }
    return changed;
}

Result keepOverHead(Context& c, const std::vector<KeptFile>& files)
{
    std::vector<depot::FileAtRevision> heads;
    for (const KeptFile& file : files) {
        const std::string copy = keptCopyOf(file.path);
        const std::optional<std::string> content = contentOf(file.path);
        if (fs::exists(copy))
            return {depot::code::Failed, "Cannot keep " + file.path + ": " + copy + " holds content kept before"};
        if (!content || !replaceDurably(copy, *content, fs::perms::owner_read | fs::perms::owner_write))
            return {depot::code::IoError, "Cannot keep the content of " + file.path + " in " + copy + ": " +
                                              std::strerror(errno)};
        heads.push_back({file.path, file.head});
    }
    removeFiles(files);
    Result brought = c.depot.syncTo(c.ticket, heads);
    for (const KeptFile& file : files)
        if (brought.ok() && !putBack(file.path))
            brought = {depot::code::IoError, "Cannot put your content back into " + file.path};
    return brought;
}

void bringBack(Context& c, const std::vector<KeptFile>& files)
{
    std::vector<KeptFile> kept;
    std::vector<depot::FileAtRevision> haves;
    for (const KeptFile& file : files)
        if (fs::exists(keptCopyOf(file.path))) {
            kept.push_back(file);
            haves.push_back({file.path, file.have});
        }
    removeFiles(kept);
    c.depot.syncTo(c.ticket, haves);
    for (const KeptFile& file : kept)
        putBack(file.path);
}

void dropKeptCopies(const std::vector<KeptFile>& files)
{
    for (const KeptFile& file : files) {
        const std::string copy = keptCopyOf(file.path);
        if (contentOf(file.path) == contentOf(copy)) {
            std::error_code ignored;
            fs::remove(copy, ignored);
        }
    }
}

}  // namespace hbrc::hbdepot
