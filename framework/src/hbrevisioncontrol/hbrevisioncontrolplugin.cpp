// The plug-in's entry: registers the helper's factory, and the settings manager as the singleton
// the helper and the host look up by name.
#include "hbrevisioncontrolpropertiesmgr.h"
#include "plugintranslation.h"
#include "revisioncontroluihelper.h"

#include <kel4/plugin.h>
#include <nrk/isystem.h>

namespace {

void RegisterPropertiesManager(nrk::ISystem& system)
{
    system.RegisterFactory(CHBRevisionControlPropertiesMgr::GetSingletonName(),
                           &CHBRevisionControlPropertiesMgr::Factory);
}

}  // namespace

extern "C" void plxPluginRegister()
{
    if (!nrkIsSystemInitialized())
        return;
    nrk::ISystem* system = nrkGetSystem();
    if (!system->IsAcceptingRegistrations())
        return;
    hbrc::internal::InstallPluginTranslator();
    system->RegisterFactory(CRevisionControlUIHelper::kFactoryName, &CRevisionControlUIHelper::Factory);
    RegisterPropertiesManager(*system);
}
