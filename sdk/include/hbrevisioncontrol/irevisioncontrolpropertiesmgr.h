#pragma once

#include <basesystem/hbconnection.h>
#include <kel4/iuserparameters.h>
#include <kel4/kelptr.h>
#include <kel4/sdkglobal.h>
#include <nrk/signalling/iconnection.h>

#include <boost/signals2/signal.hpp>

#include <string>

class IRevisionControlPropertiesMgr;

/// Listener of the revision-control settings.
class KEL_INTERFACE IRevisionControlPropertiesMgr_Slot
{
public:
    virtual ~IRevisionControlPropertiesMgr_Slot() = default;
    /// Called after any setting changed (also when set to the value it had).
    virtual void OnRevisionControlPropertiesChange(IRevisionControlPropertiesMgr* mgr) = 0;
};

/// The revision-control settings (the singleton "RevisionControlPropertiesMgr"). Every persistent
/// value lives in the host's preference manager; getters read it at the moment of the call.
class KEL_INTERFACE IRevisionControlPropertiesMgr
{
public:
    enum ActionWhenEditingReadOnlyAsset : int {
        eActionNone = 0,
        eActionPrompt = 1,
        eActionCheckOut = 2,
        eActionMakeWritable = 3
    };

    virtual ~IRevisionControlPropertiesMgr() = default;

    /// Connects slot at the back of the change signal; *connection is the caller's (destroying it
    /// disconnects). The slot is held by plain pointer.
    virtual void Connect_OnRevisionControlPropertiesChange(IRevisionControlPropertiesMgr_Slot* slot,
                                                           nrk::signalling::IConnection** connection)
    {
        boost::signals2::connection c = m_changed.connect(
            [slot](IRevisionControlPropertiesMgr* mgr) { slot->OnRevisionControlPropertiesChange(mgr); });
        *connection = new BaseSystem::hbconnection(c);
    }
    virtual bool GetAccountProperties(std::string& userName, std::string& server, std::string& workspace) = 0;
    virtual bool GetActionWhenEditingReadOnlyAsset(ActionWhenEditingReadOnlyAsset& action) const = 0;
    virtual bool GetAlwaysUseSetting(bool& value) = 0;
    virtual bool GetChangeListToUseWhenAutoCheckingOut(std::string& changeList) const = 0;
    virtual bool GetPromptForChangeListWhenCheckingOut(bool& value) = 0;
    /// The account of the settings as the file version control service describes it, or null.
    virtual KELPtr<kel4::IUserParameters> GetUserParameters() const = 0;
    virtual bool GetUseSourceDataControl(bool& value) = 0;
    virtual bool SetAccountProperties(const std::string& userName, const std::string& server,
                                      const std::string& workspace) = 0;
    virtual bool SetActionWhenEditingReadOnlyAsset(ActionWhenEditingReadOnlyAsset action) = 0;
    virtual bool SetAlwaysUseSetting(bool value) = 0;
    virtual bool SetChangeListToUseWhenAutoCheckingOut(const std::string& changeList) = 0;
    virtual bool SetPromptForChangeListWhenCheckingOut(bool value) = 0;
    virtual bool SetUseSourceDataControl(bool value) = 0;
    virtual bool GetUserSawSourceControlDialog() const = 0;
    virtual void SetUserSawSourceControlDialog(bool value) = 0;

protected:
    /// Listeners run in connection order; the last result is kept (there is none: void).
    boost::signals2::signal<void(IRevisionControlPropertiesMgr*)> m_changed;
};
