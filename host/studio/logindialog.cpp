#include "logindialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace hbrc::studio {

LoginDialog::LoginDialog(const LoginRequest& request, QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("loginDialog"));
    setWindowTitle(tr("Log In"));
    auto* form = new QFormLayout(this);
    if (!request.reason.isEmpty()) {
        auto* reason = new QLabel(request.reason, this);
        reason->setObjectName(QStringLiteral("reason"));
        reason->setWordWrap(true);
        form->addRow(reason);
    }
    auto* server = new QLabel(request.server, this);
    server->setTextInteractionFlags(Qt::TextSelectableByMouse);
    form->addRow(tr("Server:"), server);
    m_user = new QLineEdit(request.userName, this);
    m_user->setObjectName(QStringLiteral("userName"));
    form->addRow(tr("&User:"), m_user);
    m_password = new QLineEdit(this);
    m_password->setObjectName(QStringLiteral("password"));
    m_password->setEchoMode(QLineEdit::Password);
    form->addRow(tr("&Password:"), m_password);
    m_keep = new QCheckBox(tr("&Keep me logged in"), this);
    m_keep->setObjectName(QStringLiteral("keepLoggedIn"));
    m_keep->setToolTip(tr("The server keeps the log-in for the next start; the password is never stored."));
    m_keep->setFocusPolicy(Qt::StrongFocus);  // the dark styles leave check boxes out of the Tab chain
    form->addRow(m_keep);
    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    for (QAbstractButton* button : m_buttons->buttons())
        button->setFocusPolicy(Qt::StrongFocus);
    // Return accepts from every field: a button box only makes OK the default when it is enabled
    // as the dialog shows, which it is not before a password is typed.
    m_buttons->button(QDialogButtonBox::Ok)->setDefault(true);
    form->addRow(m_buttons);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    const auto updateOk = [this] {
        m_buttons->button(QDialogButtonBox::Ok)->setEnabled(!m_password->text().isEmpty() &&
                                                            !m_user->text().trimmed().isEmpty());
    };
    connect(m_password, &QLineEdit::textChanged, this, updateOk);
    connect(m_user, &QLineEdit::textChanged, this, updateOk);
    updateOk();
    (request.userName.isEmpty() ? m_user : m_password)->setFocus();
    setMinimumWidth(360);
}

LoginAnswer LoginDialog::answer() const
{
    return {m_user->text().trimmed(), m_password->text(), m_keep->isChecked()};
}

std::optional<LoginAnswer> LoginDialog::ask(QWidget* parent, const LoginRequest& request)
{
    LoginDialog dialog(request, parent);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.answer();
}

}  // namespace hbrc::studio
