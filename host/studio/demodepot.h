#pragma once

#include <hbrcservices/revisionserver.h>

#include <QString>

#include <map>
#include <memory>
#include <stdexcept>
#include <string>

namespace hbrc::studio {

// A step of setting up a demo that failed: what went wrong.
struct DemoError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

inline void Expect(bool ok, const std::string& what)
{
    if (!ok)
        throw DemoError(what);
}

// An answer with ok() and error: a revision server's, or the embedded depot's to its administrator.
template <typename Answer>
void ExpectDone(const Answer& result, const std::string& what)
{
    Expect(result.ok(), what + ": " + result.error);
}

// A server with the users alice ("alice-pw") and bob ("bob-pw"), each with a workspace folder of
// their own below root: a new embedded depot (root/depot.db), or the Subversion repository at a
// URL where both users exist (their workspaces are then the folders of their working copies).
// Throws DemoError when it cannot be set up.
class DemoServer
{
public:
    DemoServer(const QString& root, const std::string& url = {});

    // The server setting: the depot file's path or the repository's URL.
    const std::string& path() const { return m_path; }
    QString folder(const char* user) const;
    std::string folderPath(const char* user) const;
    // The workspace name a user logs in with.
    std::string workspace(const char* user) const;
    // bob's own connection (another user, as from another machine).
    host::RevisionServer& bob() { return *m_bob; }
    // Logs bob in once; the ticket of his session.
    const std::string& bobTicket();

private:
    QString m_root;
    std::string m_path;
    std::unique_ptr<host::RevisionServer> m_bob;
    std::string m_bobTicket;
};

// Fills alice's folder with the sample workspace (about twenty assets of several kinds:
// materials, meshes and textures with external files, curves, lights, level settings), submits it
// as alice and lets bob sync it. Returns the number of assets. Throws DemoError.
int SeedSampleWorkspace(DemoServer& server);

// A user changes these fields of an asset's file that he has open for edit in his own workspace
// and submits his default changelist with the description. Throws DemoError.
void SubmitFields(host::RevisionServer& server, const std::string& ticket, const std::string& kelFile,
                  const std::map<std::string, std::string>& fields, const std::string& description);

// Creates a demo depot with the sample workspace in a new folder below parent ("demo-depot",
// "demo-depot-2", ...); returns the new folder. Throws DemoError.
QString CreateDemoDepot(const QString& parent, std::unique_ptr<DemoServer>& server);

}  // namespace hbrc::studio
