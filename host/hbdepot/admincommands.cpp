#include "admincommands.h"

#include <depot/depot.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <ostream>
#include <stdexcept>

#include "commandcontext.h"
#include "configfile.h"
#include "passwordinput.h"

namespace hbrc::hbdepot {

namespace fs = std::filesystem;
using depot::Result;

namespace {

// The session lifetime of a new depot; a clear error instead of the parser's own for a bad value.
std::chrono::seconds sessionLifetime(const VerbArguments& args)
{
    const std::string text = args.option("--session-lifetime").value_or("43200");
    std::size_t used = 0;
    long long seconds = 0;
    try {
        seconds = std::stoll(text, &used);
    } catch (const std::logic_error&) {
        used = 0;
    }
    if (used == 0 || used != text.size() || seconds <= 0)
        throw std::invalid_argument("--session-lifetime takes a number of seconds above 0, not '" + text + "'");
    return std::chrono::seconds(seconds);
}

Result reportDone(Context& c, const Result& result, const std::string& what)
{
    if (result.ok())
        c.report() << what << "\n";
    return result;
}

// The outermost folder that creating `folder` makes; empty when it exists already.
fs::path firstMissingFolder(const fs::path& folder)
{
    std::error_code error;
    fs::path missing;
    for (fs::path at = folder; !at.empty() && !fs::exists(at, error); at = at.parent_path()) {
        missing = at;
        if (at == at.root_path())
            break;
    }
    return missing;
}

void writeConfigFile(const fs::path& root, const Context& c)
{
    std::ofstream out(root / ConfigFile::kName);
    out << "# Written by 'hbdepot workspace add --create': commands below this folder use these.\n"
        << "depot = " << fs::absolute(c.depot.path()).lexically_normal().string() << "\n"
        << "user = " << c.word(1) << "\n"
        << "workspace = " << c.word(0) << "\n";
    if (!out.flush())
        throw std::runtime_error("cannot write " + (root / ConfigFile::kName).string());
}

}  // namespace

Result createDepot(Context& c)
{
    return reportDone(c, depot::Depot::create(c.depot.path(), sessionLifetime(c.args)),
                      "Depot " + c.depot.path() + " created.");
}

Result addUser(Context& c)
{
    const std::string name = c.word(0);
    std::string password;
    if (c.args.words().size() > 1) {
        warnAboutVisiblePassword(c.err, "a password given as an argument");
        password = c.word(1);
    } else if (c.line.passwordFromStandardInput() || !c.line.password().empty()) {
        password = passwordFor(c.line, "", c.err);
    } else if (passwordOffered(c.line)) {
        password = newPasswordFor(c.line, name, c.err);
    }
    return reportDone(c, c.depot.addUser(name, password), "User " + name + " added.");
}

Result deleteUser(Context& c)
{
    return reportDone(c, c.depot.removeUser(c.word(0)), "User " + c.word(0) + " deleted.");
}

Result changePassword(Context& c)
{
    const std::string name = c.args.words().empty() ? c.line.user() : c.word(0);
    if (name.empty())
        throw std::invalid_argument("name the user, give -u, or work inside a workspace's folder");
    const std::string password = newPasswordFor(c.line, name, c.err);
    return reportDone(c, c.depot.setPassword(name, password),
                      password.empty() ? "User " + name + " now needs no password."
                                       : "The password of " + name + " is changed.");
}

Result addWorkspace(Context& c)
{
    const fs::path root = fs::absolute(c.word(2)).lexically_normal();
    std::error_code error;
    const fs::path created = firstMissingFolder(root);
    if (!created.empty()) {
        if (!c.args.flag("--create"))
            return {depot::code::Failed, "The root folder " + root.string() +
                                             " does not exist; create it first, or give --create"};
        fs::create_directories(root, error);
        if (error) {
            fs::remove_all(created, error);
            return {depot::code::Failed, "Cannot create the root folder " + root.string() + ": " + error.message()};
        }
    } else if (!fs::is_directory(root, error)) {
        return {depot::code::Failed, "The root " + root.string() + " is not a folder"};
    }
    Result result = c.depot.addWorkspace(c.word(0), c.word(1), root.string());
    if (result.ok() && !created.empty()) {
        try {
            writeConfigFile(root, c);
        } catch (const std::runtime_error& failure) {
            c.depot.removeWorkspace(c.word(0));
            result = {depot::code::Failed, failure.what()};
        }
    }
    // A refused workspace leaves nothing behind: the folders made for it go again.
    if (!result.ok() && !created.empty())
        fs::remove_all(created, error);
    return reportDone(c, result,
                      "Workspace " + c.word(0) + " of " + c.word(1) + " added, rooted in " + root.string() + ".");
}

Result deleteWorkspace(Context& c)
{
    const std::string name = c.word(0);
    std::vector<depot::WorkspaceInfo> workspaces;
    c.depot.workspaces(workspaces);
    const auto deleted = std::find_if(workspaces.begin(), workspaces.end(),
                                      [&](const depot::WorkspaceInfo& workspace) { return workspace.name == name; });
    const Result result = c.depot.removeWorkspace(name);
    // The .hbdepot file 'workspace add --create' wrote would name a workspace that is gone.
    if (result.ok() && deleted != workspaces.end()) {
        const std::optional<ConfigFile> config = findConfigFile(deleted->root);
        if (config && config->path == fs::path(deleted->root) / ConfigFile::kName && config->workspace == name)
            fs::remove(config->path);
    }
    return reportDone(c, result, "Workspace " + name + " deleted; its files on disk are left as they are.");
}

}  // namespace hbrc::hbdepot
