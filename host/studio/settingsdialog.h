#pragma once

#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QSpinBox;

namespace hbrc::studio {

class StudioSession;

// The eight revision-control settings, read from and written through the plug-in's settings
// manager (whose change signal then tells the window; the studio writes the action itself), and
// the studio's status refresh interval. OK writes what changed; the account is written only when
// one of its three parts changed, since that drops the current session.
class SettingsDialog : public QDialog
{
    Q_OBJECT
public:
    SettingsDialog(IRevisionControlPropertiesMgr& settings, StudioSession& session, QWidget* parent);

    void accept() override;

private:
    QLineEdit* lineEdit(const char* name, const std::string& value);
    QCheckBox* checkBox(const char* name, const QString& text, bool value);
    void storeAction(IRevisionControlPropertiesMgr::ActionWhenEditingReadOnlyAsset action);

    IRevisionControlPropertiesMgr& m_settings;
    StudioSession& m_session;
    QLineEdit* m_user = nullptr;
    QLineEdit* m_server = nullptr;
    QLineEdit* m_workspace = nullptr;
    QComboBox* m_action = nullptr;
    QCheckBox* m_alwaysUse = nullptr;
    QLineEdit* m_changelist = nullptr;
    QCheckBox* m_prompt = nullptr;
    QCheckBox* m_useSource = nullptr;
    QSpinBox* m_refresh = nullptr;
};

}  // namespace hbrc::studio
