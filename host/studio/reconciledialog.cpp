#include "reconciledialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace hbrc::studio {

namespace {
enum Column { FileColumn, ActionColumn, ServerColumn };
}  // namespace

ReconcileDialog::ReconcileDialog(const ReconcileSurvey& survey, const std::vector<revision::PendingChangelist>& pending,
                                 const QString& root, QWidget* parent)
    : QDialog(parent), m_items(survey.items)
{
    setObjectName(QStringLiteral("reconcileDialog"));
    setWindowTitle(tr("Reconcile Offline Work"));
    auto* layout = new QVBoxLayout(this);
    auto* intro = new QLabel(tr("These files were changed without being opened. Reconcile opens the checked ones "
                                "in the changelist below; what the files hold stays as it is."),
                             this);
    intro->setWordWrap(true);
    layout->addWidget(intro);
    if (!survey.scanProblem.empty()) {
        auto* scan = new QLabel(tr("The workspace was not scanned (%1): only the files recorded offline are listed.")
                                    .arg(QString::fromStdString(survey.scanProblem)),
                                this);
        scan->setWordWrap(true);
        layout->addWidget(scan);
    }

    m_files = new QTreeWidget(this);
    m_files->setObjectName(QStringLiteral("files"));
    m_files->setRootIsDecorated(false);
    m_files->setHeaderLabels({tr("File"), tr("Action"), tr("On the server")});
    const QDir folder(root);
    for (const ReconcileItem& item : m_items) {
        auto* row = new QTreeWidgetItem(m_files);
        row->setText(FileColumn, folder.relativeFilePath(QFile::decodeName(QByteArray::fromStdString(item.localPath))));
        row->setText(ActionColumn, ReconcileWork::actionText(item));
        row->setText(ServerColumn, ReconcileWork::serverText(item));
        row->setFlags(row->flags() | Qt::ItemIsUserCheckable);
        row->setCheckState(FileColumn, Qt::Checked);
    }
    m_files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_files->setCurrentItem(m_files->topLevelItem(0));
    layout->addWidget(m_files);

    auto* form = new QFormLayout;
    m_changelist = new QComboBox(this);
    m_changelist->setObjectName(QStringLiteral("changelist"));
    m_changelist->addItem(tr("New changelist"));
    for (const revision::PendingChangelist& list : pending) {
        const QString id = QString::fromStdString(list.changelist.id);
        m_changelist->addItem(id.isEmpty() ? tr("Default changelist")
                                           : tr("%1: %2").arg(id, QString::fromStdString(list.changelist.description)),
                              id);
    }
    m_description = new QLineEdit(tr("Work done offline"), this);
    m_description->setObjectName(QStringLiteral("description"));
    form->addRow(tr("&Changelist:"), m_changelist);
    form->addRow(tr("&Description:"), m_description);
    layout->addLayout(form);

    m_buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    m_reconcile = m_buttons->addButton(tr("&Reconcile"), QDialogButtonBox::AcceptRole);
    m_reconcile->setObjectName(QStringLiteral("reconcile"));
    m_reconcile->setDefault(true);
    for (QAbstractButton* button : m_buttons->buttons())
        button->setFocusPolicy(Qt::StrongFocus);  // the dark styles leave buttons out of the Tab chain
    layout->addWidget(m_buttons);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_files, &QTreeWidget::itemChanged, this, &ReconcileDialog::updateButtons);
    connect(m_changelist, &QComboBox::currentIndexChanged, this, &ReconcileDialog::updateButtons);
    connect(m_description, &QLineEdit::textChanged, this, &ReconcileDialog::updateButtons);
    setTabOrder(m_files, m_changelist);
    setTabOrder(m_changelist, m_description);
    setTabOrder(m_description, m_reconcile);
    setTabOrder(m_reconcile, m_buttons->button(QDialogButtonBox::Cancel));
    updateButtons();
    m_files->setFocus();
    resize(640, 380);
}

void ReconcileDialog::updateButtons()
{
    const bool newChangelist = m_changelist->currentIndex() == 0;
    m_description->setEnabled(newChangelist);
    bool anyChecked = false;
    for (int row = 0; row < m_files->topLevelItemCount(); ++row)
        anyChecked = anyChecked || m_files->topLevelItem(row)->checkState(FileColumn) == Qt::Checked;
    const bool described = !newChangelist || !m_description->text().trimmed().isEmpty();
    m_reconcile->setEnabled(anyChecked && described);
}

ReconcileChoice ReconcileDialog::choice() const
{
    ReconcileChoice chosen;
    for (int row = 0; row < m_files->topLevelItemCount(); ++row)
        if (m_files->topLevelItem(row)->checkState(FileColumn) == Qt::Checked)
            chosen.items.push_back(m_items[std::size_t(row)]);
    if (m_changelist->currentIndex() == 0)
        chosen.newDescription = m_description->text().trimmed().toStdString();
    else
        chosen.changelist = m_changelist->currentData().toString().toStdString();
    return chosen;
}

std::optional<ReconcileChoice> ReconcileDialog::ask(QWidget* parent, const ReconcileSurvey& survey,
                                                    const std::vector<revision::PendingChangelist>& pending,
                                                    const QString& root)
{
    ReconcileDialog dialog(survey, pending, root, parent);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.choice();
}

}  // namespace hbrc::studio
