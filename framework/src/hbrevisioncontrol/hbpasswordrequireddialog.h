#pragma once

#include <QDialog>

class QLineEdit;
class QPushButton;
class QVBoxLayout;

// Asks for the password that re-opens a revision-control session. Every showing starts with an
// empty field and OK disabled, also when the same dialog comes back after a wrong password.
class PasswordRequiredDialog : public QDialog
{
    Q_OBJECT
public:
    explicit PasswordRequiredDialog(QWidget* parent);

    // Adds a label with reason above everything shown so far; earlier reasons stay.
    void SetReason(const QString& reason);
    QString GetPassword() const;

protected:
    void showEvent(QShowEvent* event) override;

private slots:
    void EnableOkButton();

private:
    QLineEdit* m_password = nullptr;
    QPushButton* m_ok = nullptr;
    QPushButton* m_cancel = nullptr;
    QVBoxLayout* m_mainLayout = nullptr;
};
