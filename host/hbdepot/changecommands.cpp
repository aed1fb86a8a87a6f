#include "changecommands.h"

#include <depot/depot.h>

#include <algorithm>
#include <ostream>
#include <stdexcept>

#include "commandcontext.h"

namespace hbrc::hbdepot {

using depot::Result;

namespace {

std::string inChangelist(const depot::ChangelistId& id)
{
    return id.empty() || id == "default" ? "the default changelist" : "change " + id;
}

// One line per file named, once the depot has done it all.
Result reportEach(Context& c, const Result& result, const std::string& what)
{
    if (result.ok()) {
        for (const std::string& file : c.args.words())
            c.report() << file << " - " << what << "\n";
    }
    return result;
}

using OpenFiles = Result (depot::Depot::*)(const std::string&, const depot::Depot::Files&, const depot::ChangelistId&,
                                           const depot::CancelCheck&);

Result openFiles(Context& c, OpenFiles open, const char* action)
{
    const depot::ChangelistId changelist = c.changelistOption();
    return reportEach(c, (c.depot.*open)(c.ticket, c.files(), changelist, {}),
                      std::string("opened for ") + action + " in " + inChangelist(changelist));
}

}  // namespace

Result editFiles(Context& c)
{
    return openFiles(c, &depot::Depot::edit, "edit");
}

Result addFiles(Context& c)
{
    return openFiles(c, &depot::Depot::add, "add");
}

Result deleteFiles(Context& c)
{
    return openFiles(c, &depot::Depot::remove, "delete");
}

Result revertFiles(Context& c)
{
    if (c.args.flag("-a")) {
        std::vector<std::string> reverted;
        const Result result = c.depot.revertUnchanged(c.ticket, c.files(), reverted);
        for (const std::string& file : reverted)
            c.report() << file << " - reverted, unchanged\n";
        if (result.ok() && reverted.empty())
            c.report() << "No unchanged files to revert.\n";
        return result;
    }
    if (c.args.words().empty())
        throw std::invalid_argument("name the files to revert, or give -a for every unchanged one");
    const std::vector<std::string> files = c.files();
    const Result result = c.depot.revert(c.ticket, files);
    if (!result.ok())
        return result;
    // Files that were not open are named in the answer, which the caller prints.
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (result.error.find(files[i] + " - file not opened") == std::string::npos)
            c.report() << c.word(i) << " - reverted\n";
    }
    return result;
}

Result lockFiles(Context& c)
{
    return reportEach(c, c.depot.lock(c.ticket, c.files()), "locked");
}

Result unlockFiles(Context& c)
{
    return reportEach(c, c.depot.unlock(c.ticket, c.files()), "unlocked");
}

Result reopenFiles(Context& c)
{
    const depot::ChangelistId changelist = c.changelistOption();
    return reportEach(c, c.depot.reopen(c.ticket, c.files(), changelist), "moved to " + inChangelist(changelist));
}

Result syncFiles(Context& c)
{
    const depot::SyncMode mode =
        c.args.flag("-f") || c.args.flag("--force") ? depot::SyncMode::Force : depot::SyncMode::Safe;
    // FILE#REV names a revision; a sync that names one brings each file to the revision named
    // (the head where none is) and refuses files open here.
    std::vector<depot::FileAtRevision> targets;
    bool pinned = false;
    for (const std::string& file : c.files()) {
        const std::size_t hash = file.rfind('#');
        const std::string revision = hash == std::string::npos ? std::string() : file.substr(hash + 1);
        const bool named = !revision.empty() && revision.size() <= 9 &&
                           std::all_of(revision.begin(), revision.end(), ::isdigit) && std::stoll(revision) > 0;
        targets.push_back({named ? file.substr(0, hash) : file, named ? std::stoll(revision) : 0});
        pinned = pinned || named;
    }
    depot::SyncReport report;
    std::vector<std::string> heads;
    for (const depot::FileAtRevision& target : targets)
        heads.push_back(target.file);
    const Result result = pinned ? c.depot.syncTo(c.ticket, targets, mode, {}, &report)
                                 : c.depot.sync(c.ticket, heads, mode, {}, &report);
    for (const std::string& file : report.updated)
        c.report() << file << " - updated\n";
    for (const std::string& file : report.deleted)
        c.report() << file << " - deleted\n";
    if (result.ok() || !report.updated.empty() || !report.deleted.empty())
        c.report() << "updated " << report.updated.size() << ", deleted " << report.deleted.size() << "\n";
    return result;
}

Result submitChange(Context& c)
{
    depot::ChangelistId submitted;
    const Result result = c.depot.submit(c.ticket, c.changelistOption(), c.args.option("-d").value_or(""), submitted);
    if (result.ok())
        c.report() << "Change " << submitted << " submitted.\n";
    return result;
}

Result changeChangelist(Context& c)
{
    const std::optional<std::string> removed = c.args.option("-d");
    const std::optional<std::string> changed = c.args.option("-c");
    if (removed) {
        if (changed || !c.args.words().empty())
            throw std::invalid_argument("-d takes only the changelist to delete");
        const Result result = c.depot.deleteChangelist(c.ticket, *removed);
        if (result.ok())
            c.report() << "Change " << *removed << " deleted.\n";
        return result;
    }
    if (c.args.words().size() != 1)
        throw std::invalid_argument("give the description as one argument (quote it)");
    if (changed) {
        const Result result = c.depot.setDescription(c.ticket, *changed, c.word(0));
        if (result.ok())
            c.report() << "Change " << *changed << " described anew.\n";
        return result;
    }
    // The number is the answer (scripts keep it), so it is printed even with -q.
    depot::ChangelistId created;
    const Result result = c.depot.createChangelist(c.ticket, c.word(0), created);
    if (result.ok())
        c.out << created << "\n";
    return result;
}

}  // namespace hbrc::hbdepot
