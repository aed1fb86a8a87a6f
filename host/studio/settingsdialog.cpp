#include "settingsdialog.h"

#include "studiosession.h"

#include <hbrchost/prefmanager.h>
#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

namespace hbrc::studio {

using Settings = IRevisionControlPropertiesMgr;

namespace {
const std::string kActionKey = "RevControl.ActionWhenEditingReadOnlyAsset";
}

SettingsDialog::SettingsDialog(IRevisionControlPropertiesMgr& settings, StudioSession& session, QWidget* parent)
    : QDialog(parent), m_settings(settings), m_session(session)
{
    setObjectName(QStringLiteral("settingsDialog"));
    setWindowTitle(tr("Revision Control Settings"));
    std::string user, server, workspace, changelist;
    m_settings.GetAccountProperties(user, server, workspace);
    m_settings.GetChangeListToUseWhenAutoCheckingOut(changelist);
    Settings::ActionWhenEditingReadOnlyAsset action = Settings::eActionPrompt;
    m_settings.GetActionWhenEditingReadOnlyAsset(action);
    bool alwaysUse = false, prompt = false, useSource = false;
    m_settings.GetAlwaysUseSetting(alwaysUse);
    m_settings.GetPromptForChangeListWhenCheckingOut(prompt);
    m_settings.GetUseSourceDataControl(useSource);

    auto* form = new QFormLayout(this);
    m_useSource = checkBox("useSourceDataControl", tr("Use revision control"), useSource);
    form->addRow(m_useSource);
    m_server = lineEdit("server", server);
    form->addRow(tr("&Server:"), m_server);
    m_user = lineEdit("userName", user);
    form->addRow(tr("&User:"), m_user);
    m_workspace = lineEdit("workspace", workspace);
    form->addRow(tr("&Workspace:"), m_workspace);
    m_action = new QComboBox(this);
    m_action->setObjectName(QStringLiteral("action"));
    m_action->addItems({tr("Do nothing"), tr("Ask"), tr("Check out"), tr("Make writable")});
    m_action->setCurrentIndex(action);
    form->addRow(tr("When editing a read-only &asset:"), m_action);
    m_alwaysUse = checkBox("alwaysUseSetting", tr("Always use this setting"), alwaysUse);
    form->addRow(m_alwaysUse);
    m_changelist = lineEdit("changeList", changelist);
    form->addRow(tr("&Changelist for automatic check-outs:"), m_changelist);
    m_prompt = checkBox("promptForChangeList", tr("Ask for a changelist when checking out"), prompt);
    form->addRow(m_prompt);
    m_refresh = new QSpinBox(this);
    m_refresh->setObjectName(QStringLiteral("statusRefreshSeconds"));
    m_refresh->setRange(0, 24 * 60 * 60);
    m_refresh->setSuffix(tr(" s"));
    m_refresh->setSpecialValueText(tr("never"));
    m_refresh->setValue(m_session.statusRefreshSeconds());
    form->addRow(tr("&Refresh status every:"), m_refresh);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    for (QAbstractButton* button : buttons->buttons())
        button->setFocusPolicy(Qt::StrongFocus);  // the dark styles leave buttons out of the Tab chain
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
}

QLineEdit* SettingsDialog::lineEdit(const char* name, const std::string& value)
{
    auto* edit = new QLineEdit(QString::fromStdString(value), this);
    edit->setObjectName(QString::fromLatin1(name));
    return edit;
}

QCheckBox* SettingsDialog::checkBox(const char* name, const QString& text, bool value)
{
    auto* box = new QCheckBox(text, this);
    box->setObjectName(QString::fromLatin1(name));
    box->setChecked(value);
    box->setFocusPolicy(Qt::StrongFocus);
    return box;
}

// The plug-in's setter stores "check out" whatever it is given (its own flows rely on that when they
// reset the action). The studio is the host and owns the preferences: it writes the chosen action
// itself, then lets the settings' listeners know through the one setter that only notifies.
void SettingsDialog::storeAction(Settings::ActionWhenEditingReadOnlyAsset action)
{
    m_session.host().Preferences().SetIntPref(kActionKey, action, 1);
    m_settings.SetUserSawSourceControlDialog(m_settings.GetUserSawSourceControlDialog());
}

void SettingsDialog::accept()
{
    std::string user, server, workspace;
    m_settings.GetAccountProperties(user, server, workspace);
    const std::string newUser = m_user->text().toStdString(), newServer = m_server->text().toStdString(),
                      newWorkspace = m_workspace->text().toStdString();
    if (newUser != user || newServer != server || newWorkspace != workspace)
        m_settings.SetAccountProperties(newUser, newServer, newWorkspace);
    m_settings.SetUseSourceDataControl(m_useSource->isChecked());
    storeAction(Settings::ActionWhenEditingReadOnlyAsset(m_action->currentIndex()));
    m_settings.SetAlwaysUseSetting(m_alwaysUse->isChecked());
    m_settings.SetChangeListToUseWhenAutoCheckingOut(m_changelist->text().toStdString());
    m_settings.SetPromptForChangeListWhenCheckingOut(m_prompt->isChecked());
    m_session.setStatusRefreshSeconds(m_refresh->value());
    QDialog::accept();
}

}  // namespace hbrc::studio
