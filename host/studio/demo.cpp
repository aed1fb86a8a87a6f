#include "demo.h"

#include <hbrchost/pluginloader.h>
#include <hbrcsession/hostsession.h>
#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <kel4/irevisioncontroluihelper.h>

#include <QTemporaryDir>

namespace hbrc::studio {

namespace {

void printList(QTextStream& out, const char* title, const std::vector<std::string>& names)
{
    out << title << ":\n";
    for (const std::string& name : names)
        out << "  " << QString::fromStdString(name) << "\n";
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

}  // namespace

int RunDemo(QTextStream& out)
{
    QTemporaryDir scratch;
    if (!scratch.isValid()) {
        out << "Cannot create a scratch folder: " << scratch.errorString() << "\n";
        return 1;
    }
    host::HostSession host(scratch.filePath(QStringLiteral("preferences.ini")));

    const std::string plugin = host::PluginLoader::DefaultPluginDirectory() + "/libhbrevisioncontrol.so";
    std::string error;
    if (!host.LoadPlugin(plugin, error)) {
        out << QString::fromStdString(error) << "\n";
        return 1;
    }
    out << "Loaded plug-in " << QString::fromStdString(plugin) << "\n";

    auto* helperBase = host.StartComponent("RevisionControlUIHelper");
    auto* helper = dynamic_cast<kel4::IRevisionControlUIHelper*>(helperBase);
    auto* settings = dynamic_cast<IRevisionControlPropertiesMgr*>(host.StartComponent("RevisionControlPropertiesMgr"));
    if (!helper || !settings) {
        out << "The plug-in did not provide its helper and settings components\n";
        return 1;
    }
    out << "Started " << helperBase->GetClsName() << "\n";
    printList(out, "Registered factories", host.System().GetFactoryNames());
    printList(out, "Singletons", host.System().GetSingletonNames());
    printSettings(out, *settings);
    out << "Revision control enabled: " << (helper->IsRevisionControlEnabled() ? "yes" : "no") << "\n";
    return 0;
}

}  // namespace hbrc::studio
