#pragma once

#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <nrk/ibase.h>

#include <chrono>

class IHBPrefManager;

// The revision-control settings. Every persistent value lives in the host's preference manager
// ("PrefManager") under a "RevControl." key and is read at the moment of the call; only the
// user-saw-source-control-dialog flag is kept in memory. Every setter writes, then notifies.
class CHBRevisionControlPropertiesMgr final : public IRevisionControlPropertiesMgr,
                                              public nrk::ISingleton,
                                              public nrk::IBase,
                                              public nrk::IDestroy
{
public:
    static constexpr const char* kUserNameKey = "RevControl.UserName";
    static constexpr const char* kWorkspaceKey = "RevControl.Workspace";
    static constexpr const char* kServerKey = "RevControl.Server";
    static constexpr const char* kActionKey = "RevControl.ActionWhenEditingReadOnlyAsset";
    static constexpr const char* kAlwaysUseSettingKey = "RevControl.AlwaysUseSetting";
    static constexpr const char* kChangeListKey = "RevControl.ChangeListToUseWhenAutoCheckingOut";
    static constexpr const char* kPromptForChangeListKey = "RevControl.PromptForChangeListWhenCheckingOut";
    static constexpr const char* kUseSourceDataControlKey = "RevControl.UseSourceDataControl";
    // How long a batch run retries a failed edit action before it gives up (seconds); a host
    // preference, not a setting of the dialogs.
    static constexpr const char* kBatchRetryDeadlineKey = "RevControl.BatchRetryDeadlineSeconds";
    static constexpr int kDefaultBatchRetryDeadlineSeconds = 600;

    // The host's batch retry deadline (kBatchRetryDeadlineKey, ten minutes when unset; never negative).
    static std::chrono::seconds BatchRetryDeadline();

    static const char* GetSingletonName() { return "RevisionControlPropertiesMgr"; }
    static nrk::IBase* Factory();

    bool GetAccountProperties(std::string& userName, std::string& server, std::string& workspace) override;
    bool GetActionWhenEditingReadOnlyAsset(ActionWhenEditingReadOnlyAsset& action) const override;
    bool GetAlwaysUseSetting(bool& value) override;
    bool GetChangeListToUseWhenAutoCheckingOut(std::string& changeList) const override;
    bool GetPromptForChangeListWhenCheckingOut(bool& value) override;
    KELPtr<kel4::IUserParameters> GetUserParameters() const override;
    bool GetUseSourceDataControl(bool& value) override;
    bool SetAccountProperties(const std::string& userName, const std::string& server,
                              const std::string& workspace) override;
    bool SetActionWhenEditingReadOnlyAsset(ActionWhenEditingReadOnlyAsset action) override;
    bool SetAlwaysUseSetting(bool value) override;
    bool SetChangeListToUseWhenAutoCheckingOut(const std::string& changeList) override;
    bool SetPromptForChangeListWhenCheckingOut(bool value) override;
    bool SetUseSourceDataControl(bool value) override;
    bool GetUserSawSourceControlDialog() const override;
    void SetUserSawSourceControlDialog(bool value) override;

    void Init() override {}
    void Term() override {}
    const char* GetClsName() const override { return "Korvex.QLT.RevisionControlPropertiesMgr"; }

private:
    void NotifyListeners();
    // Gives the data control the account as it stands in the settings now.
    void HandUserParametersToDataControl() const;

    bool m_userSawSourceControlDialog = false;
};
