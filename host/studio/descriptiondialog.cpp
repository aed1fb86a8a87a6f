#include "descriptiondialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace hbrc::studio {

DescriptionDialog::DescriptionDialog(const QString& title, const QString& prompt, const QString& description,
                                     const QStringList& files, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("descriptionDialog"));
    setWindowTitle(title);
    auto* layout = new QVBoxLayout(this);
    auto* label = new QLabel(prompt, this);
    m_text = new QPlainTextEdit(description, this);
    m_text->setObjectName(QStringLiteral("description"));
    m_text->setTabChangesFocus(true);
    label->setBuddy(m_text);
    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    for (QAbstractButton* button : m_buttons->buttons())
        button->setFocusPolicy(Qt::StrongFocus);  // the dark styles leave buttons out of the Tab chain
    layout->addWidget(label);
    layout->addWidget(m_text);
    if (!files.isEmpty()) {
        auto* list = new QListWidget(this);
        list->setObjectName(QStringLiteral("files"));
        list->addItems(files);
        auto* listLabel = new QLabel(tr("%n file(s):", nullptr, int(files.size())), this);
        listLabel->setBuddy(list);
        layout->addWidget(listLabel);
        layout->addWidget(list);
    }
    layout->addWidget(m_buttons);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    const auto updateOk = [this] { m_buttons->button(QDialogButtonBox::Ok)->setEnabled(!this->description().isEmpty()); };
    connect(m_text, &QPlainTextEdit::textChanged, this, updateOk);
    updateOk();
    auto* accept = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Return), this);
    connect(accept, &QShortcut::activated, this, [this] {
        if (!this->description().isEmpty())
            this->accept();
    });
    m_text->selectAll();
    m_text->setFocus();
    resize(420, files.isEmpty() ? 220 : 340);
}

QString DescriptionDialog::description() const
{
    return m_text->toPlainText().trimmed();
}

QString DescriptionDialog::ask(QWidget* parent, const QString& title, const QString& prompt,
                               const QString& description, const QStringList& files)
{
    DescriptionDialog dialog(title, prompt, description, files, parent);
    return dialog.exec() == QDialog::Accepted ? dialog.description() : QString();
}

}  // namespace hbrc::studio
