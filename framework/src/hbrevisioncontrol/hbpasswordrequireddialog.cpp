#include "hbpasswordrequireddialog.h"

#include "keyboardaccess.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

PasswordRequiredDialog::PasswordRequiredDialog(QWidget* parent)
    : QDialog(parent),
      m_password(new QLineEdit(this)),
      m_ok(new QPushButton(tr("Ok"), this)),
      m_cancel(new QPushButton(tr("Cancel"), this))
{
    m_password->setEchoMode(QLineEdit::Password);
    m_ok->setEnabled(false);
    connect(m_ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_password, &QLineEdit::textEdited, this, &PasswordRequiredDialog::EnableOkButton);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_ok);
    buttons->addWidget(m_cancel);

    m_mainLayout = new QVBoxLayout(this);
    m_mainLayout->addWidget(new QLabel(tr("Please enter the password"), this));
    m_mainLayout->addWidget(m_password);
    m_mainLayout->addLayout(buttons);

    hbrc::internal::MakeButtonsReachableByKeyboard(*this);
    m_password->setFocus();
    setTabOrder(m_password, m_ok);
    setTabOrder(m_ok, m_cancel);
    setWindowTitle(tr("Data Source Password Required"));
}

void PasswordRequiredDialog::SetReason(const QString& reason)
{
    m_mainLayout->insertWidget(0, new QLabel(reason, this));
}

QString PasswordRequiredDialog::GetPassword() const
{
    return m_password->text();
}

void PasswordRequiredDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    m_password->clear();
    m_ok->setEnabled(false);
}

void PasswordRequiredDialog::EnableOkButton()
{
    m_ok->setEnabled(!m_password->text().isEmpty());
    m_ok->setDefault(true);
    m_ok->setAutoDefault(true);
}
