#include "demo.h"

#include "demodepot.h"

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

class Demo
{
public:
    Demo(QTextStream& out, std::string server, std::optional<int> batchRetryDeadlineSeconds)
        : m_out(out), m_server(std::move(server)), m_batchRetryDeadlineSeconds(batchRetryDeadlineSeconds)
    {
    }

    int run()
    {
        QTemporaryDir scratch;
        Expect(scratch.isValid(), "cannot create a scratch folder");
        step(m_server.empty() ? "An embedded depot with the users alice and bob in " + scratch.path()
                              : "The Subversion repository " + QString::fromStdString(m_server) +
                                    " with the users alice and bob, working copies in " + scratch.path());
        DemoServer depot(scratch.path(), m_server);

        host::HostSession host(scratch.filePath(QStringLiteral("preferences.ini")));
        host::RevisionControlServices services;
        host.AddWorkspaceSetup([&](host::Workspace& workspace) {
            std::string error;
            host::ConnectionOptions options;
            options.renewFromKeptLogIn = true;  // a batch run: nobody to type a password
            services = host::InstallRevisionControlServices(
                workspace, depot.path(), {"alice", "alice-pw", depot.workspace("alice")}, error, options);
            Expect(error.empty(), error);
        });
        startPlugin(host);
        // The account as the host's preferences keep it; the workspace setup logs alice in. (The
        // settings' own setters would hand the data control a fresh account without a session.)
        host.Preferences().SetStringPref("RevControl.UserName", "alice", 1);
        host.Preferences().SetStringPref("RevControl.Workspace", depot.workspace("alice"), 1);
        host.Preferences().SetStringPref("RevControl.Server", depot.path(), 1);
        host.Preferences().SetBoolPref("RevControl.UseSourceDataControl", true, 1);
        if (m_batchRetryDeadlineSeconds)
            host.Preferences().SetIntPref("RevControl.BatchRetryDeadlineSeconds", *m_batchRetryDeadlineSeconds, 1);
        std::string error;
        host::Workspace* workspace = host.OpenWorkspace(depot.folder("alice"), error);
        Expect(workspace, error);
        printSettings(m_out, *m_settings);
        m_out << "Revision control enabled: " << (m_helper->IsRevisionControlEnabled() ? "yes" : "no") << "\n";

        step("alice creates Rock (with rock.bin), Sky and Leaf and saves: the save marks them for add; she submits");
        const KELHandle<IDbObject> rock = createAsset(*workspace, "Rock", "rock.bin");
        const KELHandle<IDbObject> sky = createAsset(*workspace, "Sky", {});
        const KELHandle<IDbObject> leaf = createAsset(*workspace, "Leaf", {});
        const host::SaveReport saved = workspace->Save();
        Expect(saved.Succeeded(), "the first save failed");
        KELPtr<kel4::IDataControl> dataControl = services.dataControl;
        m_out << "  the post-save hook marked the new assets for add in the default changelist, no dialog:\n";
        printStatus({rock, sky, leaf});
        Expect(services.connection
                   ->Run(dataControl->GetUserParameters().Get(),
                         [](host::RevisionServer& d, const std::string& ticket, const revision::CancelCheck&) {
                             revision::ChangelistId submitted;
                             return d.submit(ticket, "", "first assets", submitted);
                         },
                         error)
                   .IsSuccess(),
               error);
        printStatus({rock, sky});
        printFiles(rock);

        step("bob syncs and opens Rock for edit in his own workspace");
        ExpectDone(depot.bob().sync(depot.bobTicket(), {}), "bob syncs");
        ExpectDone(depot.bob().edit(depot.bobTicket(), {depot.folderPath("bob") + "/Rock.kel"}, ""), "bob edits");
        printStatus({rock, sky});
        kel4::List<std::string> users;
        dataControl->GetUsersOfObject(rock, kel4::closureId::Persistence, users);
        printList(m_out, "  Rock is held by", users);

        step("alice edits Sky: her setting checks it out into her pending changelist without asking");
        std::string changelist;
        Expect(dataControl->CreateChangeList("sky colours", changelist, error).IsSuccess(), error);
        m_settings->SetActionWhenEditingReadOnlyAsset(IRevisionControlPropertiesMgr::eActionCheckOut);
        m_settings->SetChangeListToUseWhenAutoCheckingOut(changelist);
        m_out << "  stored action " << IRevisionControlPropertiesMgr::eActionCheckOut << " (check out) into pending changelist "
              << QString::fromStdString(changelist) << "\n";
        const bool mayEdit = m_helper->CanEditObjects({sky}, true, true, "alice edits Sky");
        Expect(mayEdit, "the check-out of Sky was refused");
        m_out << "  CanEditObjects(Sky) answers " << (mayEdit ? "true" : "false") << ", no dialog shown\n";
        printStatus({rock, sky});

        step("alice edits Leaf, whose files are read-only, and saves: the pre-save hook checks it out first");
        Expect(bool(workspace->SetField(leaf, "colour", "autumn")), "cannot edit Leaf");
        const host::SaveReport leafSaved = workspace->Save();
        Expect(leafSaved.Succeeded(), "the save of Leaf failed: " + leafSaved.DescribeFailures());
        m_out << "  saved " << leafSaved.writtenFiles.size()
              << " file(s); Leaf is checked out into the stored changelist:\n";
        printStatus({leaf});

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

    void startPlugin(host::HostSession& host)
    {
        const std::string plugin = host::PluginLoader::DefaultPluginDirectory() + "/libhbrevisioncontrol.so";
        std::string error;
        Expect(host.LoadPlugin(plugin, error), error);
        m_out << "Loaded plug-in " << QString::fromStdString(plugin) << "\n";
        nrk::IBase* helper = host.StartComponent("RevisionControlUIHelper");
        m_helper = dynamic_cast<IRevisionControlUIHelper*>(helper);
        m_settings = dynamic_cast<IRevisionControlPropertiesMgr*>(host.StartComponent("RevisionControlPropertiesMgr"));
        Expect(m_helper && m_settings, "the plug-in did not provide its helper and settings components");
        m_out << "Started " << helper->GetClsName() << "\n";
        printList(m_out, "Registered factories", host.System().GetFactoryNames());
        printList(m_out, "Singletons", host.System().GetSingletonNames());
    }

    KELHandle<IDbObject> createAsset(host::Workspace& workspace, const std::string& name, const std::string& external)
    {
        host::NewAsset asset;
        asset.kind = host::AssetKind::Metadata;  // what a save asks about
        asset.name = name;
        std::string error;
        const KELHandle<IDbObject> created(workspace.CreateAsset(asset, error));
        Expect(!created.IsNull(), error);
        if (!external.empty())
            Expect(bool(workspace.AddExternalFile(created, external, "bulk data of " + QByteArray::fromStdString(name))),
                   "cannot add " + external);
        return created;
    }

    void printStatus(const kel4::List<KELHandle<IDbObject>>& objects)
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

    void printFiles(const KELHandle<IDbObject>& object)
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
    std::optional<int> m_batchRetryDeadlineSeconds;
    IRevisionControlUIHelper* m_helper = nullptr;
    IRevisionControlPropertiesMgr* m_settings = nullptr;
};

}  // namespace

int RunDemo(QTextStream& out, const std::string& server, std::optional<int> batchRetryDeadlineSeconds)
{
    try {
        return Demo(out, server, batchRetryDeadlineSeconds).run();
    } catch (const std::exception& error) {
        out << "The demo stopped: " << error.what() << "\n";
        return 1;
    }
}

}  // namespace hbrc::studio
