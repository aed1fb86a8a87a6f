#pragma once

#include "sessioncontroller.h"

#include <QDialog>

#include <optional>

class QCheckBox;
class QDialogButtonBox;
class QLineEdit;

namespace hbrc::studio {

// "Log In": the server, the user name, the password and "Keep me logged in" (the server keeps
// the log-in; the password is never stored). OK is enabled only while a password is typed; the
// password field has the focus when the user name is known.
class LoginDialog : public QDialog
{
    Q_OBJECT
public:
    explicit LoginDialog(const LoginRequest& request, QWidget* parent = nullptr);

    LoginAnswer answer() const;

    // The answer, or nothing when the user cancelled.
    static std::optional<LoginAnswer> ask(QWidget* parent, const LoginRequest& request);

private:
    QLineEdit* m_user = nullptr;
    QLineEdit* m_password = nullptr;
    QCheckBox* m_keep = nullptr;
    QDialogButtonBox* m_buttons = nullptr;
};

}  // namespace hbrc::studio
