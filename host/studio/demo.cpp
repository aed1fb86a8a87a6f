#include "demo.h"

#include <depot/depot.h>
#include <hbrchost/pluginloader.h>
#include <hbrcservices/revisioncontrolservices.h>
#include <hbrcservices/revisionserver.h>
#include <hbrcsession/hostsession.h>
#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <kel4/irevisioncontroluihelper.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <stdexcept>

namespace hbrc::studio {

namespace {

using kel4::IRevisionControlUIHelper;

// A failed step of the demo: what went wrong, for the closing message.
struct DemoError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void expect(bool ok, const std::string& what)
{
    if (!ok)
        throw DemoError(what);
}

void expectDepot(const depot::Result& result, const std::string& what)
{
    expect(result.ok(), what + ": " + result.error);
}

QString hex(unsigned word)
{
    return QStringLiteral("0x%1").arg(word, 0, 16);
}

template <class Names>
void printList(QTextStream& out, const char* title, const Names& names)
{
    out << title << ":";
    for (const std::string& name : names)
        out << " " << QString::fromStdString(name);
    out << "\n";
}

void printSettings(QTextStream& out, IRevisionControlPropertiesMgr& settings)
{
    std::string user, server, workspace, changelist;
    bool alwaysUse = false, prompt = false, useSource = false;
    IRevisionControlPropertiesMgr::ActionWhenEditingReadOnlyAsset action = IRevisionControlPropertiesMgr::eActionNone;
    settings.GetAccountProperties(user, server, workspace);
    const bool actionKnown = settings.GetActionWhenEditingReadOnlyAsset(action);
    settings.GetAlwaysUseSetting(alwaysUse);
    settings.GetChangeListToUseWhenAutoCheckingOut(changelist);
    settings.GetPromptForChangeListWhenCheckingOut(prompt);
    settings.GetUseSourceDataControl(useSource);
    auto yesNo = [](bool b) { return b ? "true" : "false"; };
    out << "Revision-control settings:\n"
        << "  RevControl.UserName = \"" << QString::fromStdString(user) << "\"\n"
        << "  RevControl.Workspace = \"" << QString::fromStdString(workspace) << "\"\n"
        << "  RevControl.Server = \"" << QString::fromStdString(server) << "\"\n"
        << "  RevControl.ActionWhenEditingReadOnlyAsset = "
        << (actionKnown ? QString::number(action) : QStringLiteral("(unknown value)")) << "\n"
        << "  RevControl.AlwaysUseSetting = " << yesNo(alwaysUse) << "\n"
        << "  RevControl.ChangeListToUseWhenAutoCheckingOut = \"" << QString::fromStdString(changelist) << "\"\n"
        << "  RevControl.PromptForChangeListWhenCheckingOut = " << yesNo(prompt) << "\n"
        << "  RevControl.UseSourceDataControl = " << yesNo(useSource) << "\n";
}

// The server with alice and bob, each with a workspace folder of their own: a new embedded depot,
// or the Subversion repository at a URL where both users exist (their workspaces are then the
// folders of their working copies).
class DemoServer
{
public:
    DemoServer(const QString& root, const std::string& url) : m_root(root), m_path(url)
    {
        expect(QDir(root).mkpath(QStringLiteral("alice")) && QDir(root).mkpath(QStringLiteral("bob")),
               "cannot create the workspace folders");
        depot::DepotOptions options;
        options.passwordHashCost = depot::PasswordHashCost::Minimal;  // a throw-away depot
        if (m_path.empty()) {
            m_path = QFile::encodeName(root + QStringLiteral("/depot.db")).toStdString();
            expectDepot(depot::Depot::create(m_path), "cannot create the depot");
            depot::Depot admin(m_path, options);
            expectDepot(admin.addUser("alice", "alice-pw"), "add alice");
            expectDepot(admin.addUser("bob", "bob-pw"), "add bob");
            expectDepot(admin.addWorkspace(Workspace("alice"), "alice", FolderPath("alice")), "add alice-ws");
            expectDepot(admin.addWorkspace(Workspace("bob"), "bob", FolderPath("bob")), "add bob-ws");
        }
        m_bob = host::OpenRevisionServer(m_path, options);
    }

    const std::string& Path() const { return m_path; }
    QString Folder(const char* name) const { return QDir(m_root + '/' + name).canonicalPath(); }
    std::string FolderPath(const char* name) const { return QFile::encodeName(Folder(name)).toStdString(); }
    std::string Workspace(const char* user) const
    {
        return host::IsSubversionUrl(m_path) ? FolderPath(user) : std::string(user) + "-ws";
    }
    // bob's own connection (another user, as from another machine).
    host::RevisionServer& Bob() { return *m_bob; }

private:
    QString m_root;
    std::string m_path;
    std::unique_ptr<host::RevisionServer> m_bob;
};

class Demo
{
public:
    Demo(QTextStream& out, std::string server) : m_out(out), m_server(std::move(server)) {}

    int Run()
    {
        QTemporaryDir scratch;
        expect(scratch.isValid(), "cannot create a scratch folder");
        step(m_server.empty() ? "An embedded depot with the users alice and bob in " + scratch.path()
                              : "The Subversion repository " + QString::fromStdString(m_server) +
                                    " with the users alice and bob, working copies in " + scratch.path());
        DemoServer depot(scratch.path(), m_server);

        host::HostSession host(scratch.filePath(QStringLiteral("preferences.ini")));
        host::RevisionControlServices services;
        host.AddWorkspaceSetup([&](host::Workspace& workspace) {
            std::string error;
            services = host::InstallRevisionControlServices(workspace, depot.Path(),
                                                            {"alice", "alice-pw", depot.Workspace("alice")}, error);
            expect(error.empty(), error);
        });
        StartPlugin(host);
        // The account as the host's preferences keep it; the workspace setup logs alice in. (The
        // settings' own setters would hand the data control a fresh account without a session.)
        host.Preferences().SetStringPref("RevControl.UserName", "alice", 1);
        host.Preferences().SetStringPref("RevControl.Workspace", depot.Workspace("alice"), 1);
        host.Preferences().SetStringPref("RevControl.Server", depot.Path(), 1);
        host.Preferences().SetBoolPref("RevControl.UseSourceDataControl", true, 1);
        std::string error;
        host::Workspace* workspace = host.OpenWorkspace(depot.Folder("alice"), error);
        expect(workspace, error);
        printSettings(m_out, *m_settings);
        m_out << "Revision control enabled: " << (m_helper->IsRevisionControlEnabled() ? "yes" : "no") << "\n";

        step("alice creates Rock (with rock.bin), Sky and Leaf and saves: the save marks them for add; she submits");
        const KELHandle<IDbObject> rock = CreateAsset(*workspace, "Rock", "rock.bin");
        const KELHandle<IDbObject> sky = CreateAsset(*workspace, "Sky", {});
        const KELHandle<IDbObject> leaf = CreateAsset(*workspace, "Leaf", {});
        const host::SaveReport saved = workspace->Save();
        expect(saved.Succeeded(), "the first save failed");
        KELPtr<kel4::IDataControl> dataControl = services.dataControl;
        m_out << "  the post-save hook marked the new assets for add in the default changelist, no dialog:\n";
        PrintStatus({rock, sky, leaf});
        expect(services.connection
                   ->Run(dataControl->GetUserParameters().Get(),
                         [](host::RevisionServer& d, const std::string& ticket, const depot::CancelCheck&) {
                             depot::ChangelistId submitted;
                             return d.submit(ticket, "", "first assets", submitted);
                         },
                         error)
                   .IsSuccess(),
               error);
        PrintStatus({rock, sky});
        PrintFiles(rock);

        step("bob syncs and opens Rock for edit in his own workspace");
        std::string bobTicket;
        expectDepot(depot.Bob().login("bob", "bob-pw", depot.Workspace("bob"), bobTicket), "bob logs in");
        expectDepot(depot.Bob().sync(bobTicket, {}), "bob syncs");
        expectDepot(depot.Bob().edit(bobTicket, {depot.FolderPath("bob") + "/Rock.kel"}, ""), "bob edits");
        PrintStatus({rock, sky});
        kel4::List<std::string> users;
        dataControl->GetUsersOfObject(rock, kel4::closureId::Persistence, users);
        printList(m_out, "  Rock is held by", users);

        step("alice edits Sky: her setting checks it out into her pending changelist without asking");
        std::string changelist;
        expect(dataControl->CreateChangeList("sky colours", changelist, error).IsSuccess(), error);
        m_settings->SetActionWhenEditingReadOnlyAsset(IRevisionControlPropertiesMgr::eActionCheckOut);
        m_settings->SetChangeListToUseWhenAutoCheckingOut(changelist);
        m_out << "  stored action " << IRevisionControlPropertiesMgr::eActionCheckOut << " (check out) into pending changelist "
              << QString::fromStdString(changelist) << "\n";
        const bool mayEdit = m_helper->CanEditObjects({sky}, true, true, "alice edits Sky");
        expect(mayEdit, "the check-out of Sky was refused");
        m_out << "  CanEditObjects(Sky) answers " << (mayEdit ? "true" : "false") << ", no dialog shown\n";
        PrintStatus({rock, sky});

        step("alice edits Leaf, whose files are read-only, and saves: the pre-save hook checks it out first");
        expect(bool(workspace->SetField(leaf, "colour", "autumn")), "cannot edit Leaf");
        const host::SaveReport leafSaved = workspace->Save();
        expect(leafSaved.Succeeded(), "the save of Leaf failed: " + leafSaved.DescribeFailures());
        m_out << "  saved " << leafSaved.writtenFiles.size()
              << " file(s); Leaf is checked out into the stored changelist:\n";
        PrintStatus({leaf});

        step("alice's session expires");
        services.ExpireSessionNow();
        kel4::List<unsigned> statuses;
        m_out << "  status question answers " << m_helper->GetObjectStatus({rock}, true, true, statuses).GetCode()
              << " (session unusable); a batch run shows no password dialog\n";

        step("done");
        m_out << "Saved " << saved.writtenFiles.size() << " file(s) in the first save; the demo's folder is removed now.\n";
        return 0;
    }

private:
    void step(const QString& title) { m_out << "\n== " << title << "\n"; }

    void StartPlugin(host::HostSession& host)
    {
        const std::string plugin = host::PluginLoader::DefaultPluginDirectory() + "/libhbrevisioncontrol.so";
        std::string error;
        expect(host.LoadPlugin(plugin, error), error);
        m_out << "Loaded plug-in " << QString::fromStdString(plugin) << "\n";
        nrk::IBase* helper = host.StartComponent("RevisionControlUIHelper");
        m_helper = dynamic_cast<IRevisionControlUIHelper*>(helper);
        m_settings = dynamic_cast<IRevisionControlPropertiesMgr*>(host.StartComponent("RevisionControlPropertiesMgr"));
        expect(m_helper && m_settings, "the plug-in did not provide its helper and settings components");
        m_out << "Started " << helper->GetClsName() << "\n";
        printList(m_out, "Registered factories", host.System().GetFactoryNames());
        printList(m_out, "Singletons", host.System().GetSingletonNames());
    }

    KELHandle<IDbObject> CreateAsset(host::Workspace& workspace, const std::string& name, const std::string& external)
    {
        host::NewAsset asset;
        asset.kind = host::AssetKind::Metadata;  // what a save asks about
        asset.name = name;
        std::string error;
        const KELHandle<IDbObject> created(workspace.CreateAsset(asset, error));
        expect(!created.IsNull(), error);
        if (!external.empty())
            expect(bool(workspace.AddExternalFile(created, external, "bulk data of " + QByteArray::fromStdString(name))),
                   "cannot add " + external);
        return created;
    }

    void PrintStatus(const kel4::List<KELHandle<IDbObject>>& objects)
    {
        kel4::List<unsigned> statuses;
        const kelResult result = m_helper->GetObjectStatus(objects, true, true, statuses);
        auto status = statuses.begin();
        for (const KELHandle<IDbObject>& object : objects) {
            m_out << "  " << QString::fromStdString(object.GetName()) << ": status ";
            m_out << (result.IsSuccess() && status != statuses.end() ? hex(*status++) : QStringLiteral("unknown"));
            m_out << ", can check out: " << (m_helper->CanCheckOutObject(object, true) ? "yes" : "no")
                  << ", can make writable: " << (m_helper->CanMakeObjectWritable(object, true) ? "yes" : "no") << "\n";
        }
    }

    void PrintFiles(const KELHandle<IDbObject>& object)
    {
        QStringList files;
        m_helper->GetObjectFiles(object, files);
        m_out << "  files of " << QString::fromStdString(object.GetName()) << " (external file: "
              << (m_helper->ObjectHasExternalFile(object) ? "yes" : "no") << "):\n";
        for (const QString& file : files)
            m_out << "    " << file << "\n";
    }

    QTextStream& m_out;
    std::string m_server;
    IRevisionControlUIHelper* m_helper = nullptr;
    IRevisionControlPropertiesMgr* m_settings = nullptr;
};

}  // namespace

int RunDemo(QTextStream& out, const std::string& server)
{
    try {
        return Demo(out, server).Run();
    } catch (const std::exception& error) {
        out << "The demo stopped: " << error.what() << "\n";
        return 1;
    }
}

}  // namespace hbrc::studio
