#include "listings.h"

#include <depot/depot.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <iomanip>
#include <limits>
#include <optional>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include "commandcontext.h"
#include "jsonwriter.h"
#include "statuswords.h"

namespace hbrc::hbdepot {

using depot::Result;

namespace {

std::string changelistName(const depot::ChangelistId& id)
{
    return id.empty() ? "default" : id;
}

std::string hex(std::uint32_t word)
{
    std::ostringstream text;
    text << "0x" << std::hex << word;
    return text.str();
}

// Local time, as "2026/03/14 09:26:53"; "unknown" for a change recorded before changes had times.
std::string dateOf(std::int64_t seconds)
{
    if (seconds <= 0)
        return "unknown";
    const std::time_t time = seconds;
    std::tm local{};
    localtime_r(&time, &local);
    std::ostringstream text;
    text << std::put_time(&local, "%Y/%m/%d %H:%M:%S");
    return text.str();
}

std::string joined(const std::vector<std::string>& words, const char* separator)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : separator) + word;
    return text;
}

// A description on the one line a change has in a listing.
std::string oneLine(std::string text)
{
    std::replace_if(text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
    return text;
}

const char* stateName(depot::ChangelistState state)
{
    return state == depot::ChangelistState::Pending ? "pending" : "submitted";
}

void writeChangeFields(JsonWriter& json, const depot::Changelist& change)
{
    json.key("change").value(changelistName(change.id)).key("user").value(change.user);
    json.key("workspace").value(change.workspace).key("state").value(stateName(change.state));
    json.key("description").value(change.description);
    json.key("time").value(change.time).key("date").value(dateOf(change.time));
}

// -m N: a count above 0; none without the option.
std::optional<std::size_t> maximumCount(const VerbArguments& args)
{
    const std::optional<std::string> text = args.option("-m");
    if (!text)
        return std::nullopt;
    if (text->empty() || text->size() > 9 || !std::all_of(text->begin(), text->end(), ::isdigit) || *text == "0")
        throw std::invalid_argument("-m takes a count above 0, not '" + *text + "'");
    return std::stoul(*text);
}

// A file's revision as filelog and files print it: "#3 change 5 edit on DATE by USER@WORKSPACE".
std::string revisionLine(const depot::FileRevision& revision)
{
    return "#" + std::to_string(revision.revision) + " change " + revision.changelist + " " +
           depot::actionName(revision.action) + " on " + dateOf(revision.time) + " by " + revision.user + "@" +
           revision.workspace;
}

void writeRevisionFields(JsonWriter& json, const depot::FileRevision& revision)
{
    json.key("revision").value(revision.revision).key("change").value(revision.changelist);
    json.key("action").value(depot::actionName(revision.action));
    json.key("user").value(revision.user).key("workspace").value(revision.workspace);
    json.key("time").value(revision.time).key("date").value(dateOf(revision.time));
}

}  // namespace

Result printStatus(Context& c)
{
    const std::vector<std::string> files = c.files();
    std::vector<depot::FileStatus> statuses;
    const Result result = c.depot.status(c.ticket, files, statuses);
    if (!result.ok())
        return result;
    const auto opened = [](const depot::FileStatus& status) {
        return (status.word & (depot::status::OpenedForEdit | depot::status::OpenedForAdd |
                               depot::status::OpenedForDelete)) != 0;
    };
    if (c.line.json()) {
        JsonWriter json(c.out);
        json.beginDocument().key("files").beginArray();
        for (std::size_t i = 0; i < statuses.size(); ++i) {
            const depot::FileStatus& status = statuses[i];
            json.beginObject().key("file").value(c.word(i)).key("path").value(files[i]);
            json.key("status").value(hex(status.word)).key("words").value(statusWords(status.word));
            json.key("changelist");
            if (opened(status))
                json.value(changelistName(status.changelist));
            else
                json.value(std::string());
            json.key("holders").value(status.holders).endObject();
        }
        json.endArray().endObject();
        return result;
    }
    for (std::size_t i = 0; i < statuses.size(); ++i) {
        const depot::FileStatus& status = statuses[i];
        c.out << c.word(i) << " - " << joined(statusWords(status.word), ", ");
        if (opened(status))
            c.out << " in " << (status.changelist.empty() ? "the default changelist" : "change " + status.changelist);
        if (!status.holders.empty())
            c.out << " (" << joined(status.holders, ", ") << ")";
        c.out << "\n";
    }
    return result;
}

Result printOpened(Context& c)
{
    std::vector<depot::OpenedFile> files;
    const Result result = c.depot.opened(c.ticket, c.args.flag("-a"), files);
    if (!result.ok())
        return result;
    if (c.line.json()) {
        JsonWriter json(c.out);
        json.beginDocument().key("files").beginArray();
        for (const depot::OpenedFile& file : files) {
            json.beginObject().key("depotPath").value(file.depotPath).key("localPath").value(file.localPath);
            json.key("action").value(depot::actionName(file.action));
            json.key("changelist").value(changelistName(file.changelist));
            json.key("user").value(file.user).key("workspace").value(file.workspace);
            json.key("locked").value(file.locked).endObject();
        }
        json.endArray().endObject();
        return result;
    }
    for (const depot::OpenedFile& file : files)
        c.out << file.depotPath << " - " << depot::actionName(file.action) << " in "
              << (file.changelist.empty() ? "default" : "change " + file.changelist) << " by " << file.user << "@"
              << file.workspace << (file.locked ? " *locked*" : "") << "\n";
    return result;
}

Result printChanges(Context& c)
{
    const std::string state = c.args.option("-s").value_or("pending");
    if (state != "pending" && state != "submitted")
        throw std::invalid_argument("-s takes pending or submitted");
    const std::size_t maximum = maximumCount(c.args).value_or(std::numeric_limits<std::size_t>::max());
    const std::optional<std::string> user = c.args.option("-u");
    std::vector<depot::Changelist> all;
    const Result result = c.depot.changelists(
        c.ticket, state == "pending" ? depot::ChangelistState::Pending : depot::ChangelistState::Submitted, all);
    if (!result.ok())
        return result;
    std::vector<depot::Changelist> shown;
    for (auto change = all.rbegin(); change != all.rend() && shown.size() < maximum; ++change) {
        if (!user || change->user == *user)
            shown.push_back(*change);
    }
    if (c.line.json()) {
        JsonWriter json(c.out);
        json.beginDocument().key("changes").beginArray();
        for (const depot::Changelist& change : shown) {
            json.beginObject();
            writeChangeFields(json, change);
            json.endObject();
        }
        json.endArray().endObject();
        return result;
    }
    for (const depot::Changelist& change : shown)
        c.out << "Change " << change.id << " on " << dateOf(change.time) << " by " << change.user << "@"
              << change.workspace << " *" << state << "* '" << oneLine(change.description) << "'\n";
    return result;
}

Result printDescription(Context& c)
{
    depot::Changelist change;
    const Result result = c.depot.describe(c.ticket, c.word(0), change);
    if (!result.ok())
        return result;
    if (c.line.json()) {
        JsonWriter json(c.out);
        json.beginDocument();
        writeChangeFields(json, change);
        json.key("files").beginArray();
        for (const depot::ChangelistFile& file : change.files) {
            json.beginObject().key("depotPath").value(file.depotPath);
            json.key("action").value(depot::actionName(file.action));
            json.key("revision").value(std::int64_t{file.revision}).endObject();
        }
        json.endArray().endObject();
        return result;
    }
    c.out << "Change " << changelistName(change.id) << " by " << change.user << "@" << change.workspace;
    if (!change.id.empty())
        c.out << " on " << dateOf(change.time);
    c.out << " *" << stateName(change.state) << "*\n\n\t" << change.description << "\n\nFiles:\n";
    for (const depot::ChangelistFile& file : change.files) {
        c.out << "... " << file.depotPath;
        if (file.revision > 0)
            c.out << "#" << file.revision;
        c.out << " " << depot::actionName(file.action) << "\n";
    }
    return result;
}

Result printInfo(Context& c)
{
    std::vector<depot::WorkspaceInfo> workspaces;
    const Result result = c.depot.workspaces(workspaces);
    if (!result.ok())
        return result;
    const auto workspace = std::find_if(workspaces.begin(), workspaces.end(),
                                        [&](const depot::WorkspaceInfo& w) { return w.name == c.line.workspace(); });
    const std::string root = workspace == workspaces.end() ? "" : workspace->root;
    const std::string keptTicket = c.tickets.find(c.depotKey(), c.line.user()) ? "yes" : "no";
    const std::vector<std::pair<const char*, std::string>> fields = {
        {"depot", c.depot.path()},
        {"user", c.line.user()},
        {"workspace", c.line.workspace()},
        {"root", root},
        {"currentFolder", std::filesystem::current_path().string()},
        {"configFile", c.line.configFile().string()},
        {"keptTicket", keptTicket},
        {"version", HBRC_VERSION},
    };
    if (c.line.json()) {
        JsonWriter json(c.out);
        json.beginDocument();
        for (const auto& [name, value] : fields)
            json.key(name).value(value);
        json.endObject();
        return result;
    }
    const char* labels[] = {"Depot",          "User",          "Workspace", "Workspace root",
                            "Current folder", "Configuration", "Kept ticket", "hbdepot version"};
    for (std::size_t i = 0; i < fields.size(); ++i)
        c.out << std::left << std::setw(17) << (std::string(labels[i]) + ":")
              << (fields[i].second.empty() ? "(none)" : fields[i].second) << "\n";
    return result;
}

Result printFileLog(Context& c)
{
    const std::vector<std::string> files = c.files();
    std::vector<std::vector<depot::FileRevision>> histories;
    const Result result = c.depot.fileHistory(c.ticket, files, maximumCount(c.args).value_or(0), histories);
    if (!result.ok())
        return result;
    std::vector<std::string> unknown;
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (histories[i].empty())
            unknown.push_back(c.word(i) + " - no such file in the depot");
    }
    if (c.line.json()) {
        JsonWriter json(c.out);
        json.beginDocument().key("files").beginArray();
        for (std::size_t i = 0; i < files.size(); ++i) {
            if (histories[i].empty())
                continue;
            json.beginObject().key("file").value(c.word(i)).key("depotPath").value(histories[i].front().depotPath);
            json.key("revisions").beginArray();
            for (const depot::FileRevision& revision : histories[i]) {
                json.beginObject();
                writeRevisionFields(json, revision);
                json.key("description").value(revision.description).endObject();
            }
            json.endArray().endObject();
        }
        json.endArray().endObject();
    } else {
        for (const std::vector<depot::FileRevision>& history : histories) {
            if (history.empty())
                continue;
            c.out << history.front().depotPath << "\n";
            for (const depot::FileRevision& revision : history)
                c.out << "... " << revisionLine(revision) << " '" << oneLine(revision.description) << "'\n";
        }
    }
    if (!unknown.empty())
        return {depot::code::Failed, joined(unknown, "\n")};
    return result;
}

Result printFiles(Context& c)
{
    std::vector<depot::FileRevision> files;
    const Result result = c.depot.filesAt(c.ticket, c.files(), c.changelistOption(), files);
    if (!result.ok())
        return result;
    if (c.line.json()) {
        JsonWriter json(c.out);
        json.beginDocument().key("files").beginArray();
        for (const depot::FileRevision& file : files) {
            json.beginObject().key("depotPath").value(file.depotPath);
            writeRevisionFields(json, file);
            json.endObject();
        }
        json.endArray().endObject();
        return result;
    }
    for (const depot::FileRevision& file : files)
        c.out << file.depotPath << revisionLine(file) << "\n";
    return result;
}

Result printUsers(Context& c)
{
    std::vector<std::string> users;
    const Result result = c.depot.users(c.ticket, users);
    if (!result.ok())
        return result;
    if (c.line.json()) {
        JsonWriter json(c.out);
        json.beginDocument().key("users").value(users).endObject();
        return result;
    }
    for (const std::string& user : users)
        c.out << user << "\n";
    return result;
}

Result printWorkspaces(Context& c)
{
    std::vector<depot::WorkspaceInfo> workspaces;
    const Result result = c.depot.workspaces(c.ticket, workspaces);
    if (!result.ok())
        return result;
    if (c.line.json()) {
        JsonWriter json(c.out);
        json.beginDocument().key("workspaces").beginArray();
        for (const depot::WorkspaceInfo& workspace : workspaces) {
            json.beginObject().key("name").value(workspace.name).key("owner").value(workspace.owner);
            json.key("root").value(workspace.root).endObject();
        }
        json.endArray().endObject();
        return result;
    }
    for (const depot::WorkspaceInfo& workspace : workspaces)
        c.out << "Workspace " << workspace.name << " owner " << workspace.owner << " root " << workspace.root << "\n";
    return result;
}

}  // namespace hbrc::hbdepot
