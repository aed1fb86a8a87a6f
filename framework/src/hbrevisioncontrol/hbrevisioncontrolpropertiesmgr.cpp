#include "hbrevisioncontrolpropertiesmgr.h"

#include "hostservices.h"

#include <algorithm>

#include <ihbprefmanager.h>
#include <kel4/ifileversioncontrol.h>
#include <log/log.h>
#include <nrk/isystem.h>

namespace {

constexpr int kPersistent = 1;
constexpr int kLookup = 0;

// The preference manager must exist while the settings are used; its absence is a host fault.
IHBPrefManager& prefs()
{
    auto* manager = nrk::GetSingletonAs<IHBPrefManager>(IHBPrefManager::GetSingletonName());
    if (!manager)
        kel4::RaiseNullPtr("hbrevisioncontrolpropertiesmgr.cpp");
    return *manager;
}

std::string readString(const char* key)
{
    std::string value;
    prefs().GetStringPref(key, "", value, kLookup);
    return value;
}

}  // namespace

std::chrono::seconds CHBRevisionControlPropertiesMgr::BatchRetryDeadline()
{
    int seconds = kDefaultBatchRetryDeadlineSeconds;
    prefs().GetIntPref(kBatchRetryDeadlineKey, kDefaultBatchRetryDeadlineSeconds, seconds, kLookup);
    return std::chrono::seconds(std::max(seconds, 0));
}

nrk::IBase* CHBRevisionControlPropertiesMgr::Factory()
{
    return new CHBRevisionControlPropertiesMgr;
}

bool CHBRevisionControlPropertiesMgr::GetAccountProperties(std::string& userName, std::string& server,
                                                           std::string& workspace)
{
    // Read in the order user, workspace, server; returned as user, server, workspace.
    userName = readString(kUserNameKey);
    workspace = readString(kWorkspaceKey);
    server = readString(kServerKey);
    return true;
}

bool CHBRevisionControlPropertiesMgr::GetActionWhenEditingReadOnlyAsset(ActionWhenEditingReadOnlyAsset& action) const
{
    int stored = 0;
    prefs().GetIntPref(kActionKey, eActionPrompt, stored, kLookup);
    if (stored < eActionNone || stored > eActionMakeWritable)
        return false;
    action = static_cast<ActionWhenEditingReadOnlyAsset>(stored);
    return true;
}

bool CHBRevisionControlPropertiesMgr::GetAlwaysUseSetting(bool& value)
{
    prefs().GetBoolPref(kAlwaysUseSettingKey, false, value, kLookup);
    return true;
}

bool CHBRevisionControlPropertiesMgr::GetChangeListToUseWhenAutoCheckingOut(std::string& changeList) const
{
    changeList = readString(kChangeListKey);
    return true;
}

bool CHBRevisionControlPropertiesMgr::GetPromptForChangeListWhenCheckingOut(bool& value)
{
    prefs().GetBoolPref(kPromptForChangeListKey, false, value, kLookup);
    return true;
}

bool CHBRevisionControlPropertiesMgr::GetUseSourceDataControl(bool& value)
{
    prefs().GetBoolPref(kUseSourceDataControlKey, false, value, kLookup);
    return true;
}

KELPtr<kel4::IUserParameters> CHBRevisionControlPropertiesMgr::GetUserParameters() const
{
    const std::string userName = readString(kUserNameKey);
    const std::string workspace = readString(kWorkspaceKey);
    const std::string server = readString(kServerKey);

    KELPtr<kel4::IFileVersionControl> fileVersionControl =
        hbrc::internal::CurrentService<kel4::IFileVersionControl>(kel4::UID_FileVersionControl());
    std::string errorText;
    KELPtr<kel4::IUserParameters> parameters =
        fileVersionControl.GetPointeeNotNull().CreateUserParameters(userName, "", server, workspace, errorText);
    if (!parameters && !(userName.empty() && workspace.empty() && server.empty()))
        Log::Singleton::Instance().Write(Log::eWarning, errorText + "\n");
    return parameters;
}

bool CHBRevisionControlPropertiesMgr::SetAccountProperties(const std::string& userName, const std::string& server,
                                                           const std::string& workspace)
{
    prefs().SetStringPref(kUserNameKey, userName, kPersistent);
    prefs().SetStringPref(kWorkspaceKey, workspace, kPersistent);
    prefs().SetStringPref(kServerKey, server, kPersistent);
    NotifyListeners();
    HandUserParametersToDataControl();
    return true;
}

bool CHBRevisionControlPropertiesMgr::SetActionWhenEditingReadOnlyAsset(ActionWhenEditingReadOnlyAsset)
{
    // The stored action is always automatic check-out, whatever the caller asks for; callers
    // rely on this (a reset to prompting still leaves check-out stored).
    prefs().SetIntPref(kActionKey, eActionCheckOut, kPersistent);
    NotifyListeners();
    return true;
}

bool CHBRevisionControlPropertiesMgr::SetAlwaysUseSetting(bool value)
{
    prefs().SetBoolPref(kAlwaysUseSettingKey, value, kPersistent);
    NotifyListeners();
    return true;
}

bool CHBRevisionControlPropertiesMgr::SetChangeListToUseWhenAutoCheckingOut(const std::string& changeList)
{
    prefs().SetStringPref(kChangeListKey, changeList, kPersistent);
    NotifyListeners();
    return true;
}

bool CHBRevisionControlPropertiesMgr::SetPromptForChangeListWhenCheckingOut(bool value)
{
    prefs().SetBoolPref(kPromptForChangeListKey, value, kPersistent);
    NotifyListeners();
    return true;
}

bool CHBRevisionControlPropertiesMgr::SetUseSourceDataControl(bool value)
{
    prefs().SetBoolPref(kUseSourceDataControlKey, value, kPersistent);
    NotifyListeners();
    HandUserParametersToDataControl();
    return true;
}

bool CHBRevisionControlPropertiesMgr::GetUserSawSourceControlDialog() const
{
    return m_userSawSourceControlDialog;
}

void CHBRevisionControlPropertiesMgr::SetUserSawSourceControlDialog(bool value)
{
    m_userSawSourceControlDialog = value;
    NotifyListeners();
}

void CHBRevisionControlPropertiesMgr::NotifyListeners()
{
    m_changed(this);
}

void CHBRevisionControlPropertiesMgr::HandUserParametersToDataControl() const
{
    KELPtr<kel4::IUserParameters> parameters = GetUserParameters();
    KELPtr<kel4::IDataControl> dataControl =
        hbrc::internal::CurrentService<kel4::IDataControl>(kel4::UID_DataControl());
    dataControl.GetPointeeNotNull().SetUserParameters(parameters);
}
