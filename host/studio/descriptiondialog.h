#pragma once

#include <QDialog>

class QDialogButtonBox;
class QPlainTextEdit;

namespace hbrc::studio {

// Asks for a changelist's description: OK is enabled only while the text is not blank. Tab leaves
// the text for the buttons, Ctrl+Return accepts. Given files, it lists them below the text (the
// files a submit will submit).
class DescriptionDialog : public QDialog
{
    Q_OBJECT
public:
    DescriptionDialog(const QString& title, const QString& prompt, const QString& description,
                      const QStringList& files = {}, QWidget* parent = nullptr);

    QString description() const;

    // The description entered, or an empty text when the dialog was cancelled.
    static QString ask(QWidget* parent, const QString& title, const QString& prompt, const QString& description,
                       const QStringList& files = {});

private:
    QPlainTextEdit* m_text = nullptr;
    QDialogButtonBox* m_buttons = nullptr;
};

}  // namespace hbrc::studio
