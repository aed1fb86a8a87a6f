#include "submittedchangesdock.h"

#include "assetversions.h"
#include "differenceview.h"
#include "pendingchangesmodel.h"
#include "serverfiles.h"
#include "serverquestion.h"
#include "studiosession.h"
#include "submittedchangesmodel.h"

#include <hbrcdatamodel/workspace.h>

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTreeView>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace hbrc::studio {

namespace {

struct ChangesAnswer
{
    revision::Result result;
    std::vector<revision::Changelist> changes;
};

struct DescribeAnswer
{
    revision::Result result;
    revision::Changelist change;
};

// The asset's .kel file and the asset's name, kept on a file row.
constexpr int kKelFileRole = Qt::UserRole;

}  // namespace

SubmittedChangesDock::SubmittedChangesDock(StudioSession& session, QWidget* parent)
    : QDockWidget(tr("Submitted Changes"), parent), m_session(session), m_model(new SubmittedChangesModel(this)),
      m_listQuestion(new ServerQuestion(this)), m_describeQuestion(new ServerQuestion(this)),
      m_differenceQuestion(new ServerQuestion(this))
{
    setObjectName(QStringLiteral("submittedChanges"));
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    auto* filters = new QHBoxLayout;
    m_user = new QComboBox(page);
    m_user->setObjectName(QStringLiteral("userFilter"));
    m_user->setFocusPolicy(Qt::StrongFocus);
    m_user->addItem(tr("All users"));
    m_text = new QLineEdit(page);
    m_text->setObjectName(QStringLiteral("textFilter"));
    m_text->setPlaceholderText(tr("Filter by text"));
    m_text->setClearButtonEnabled(true);
    auto* refreshButton = new QPushButton(tr("&Refresh"), page);
    refreshButton->setObjectName(QStringLiteral("refreshChanges"));
    refreshButton->setFocusPolicy(Qt::StrongFocus);
    filters->addWidget(m_user);
    filters->addWidget(m_text, 1);
    filters->addWidget(refreshButton);
    layout->addLayout(filters);
    m_state = new QLabel(page);
    m_state->setObjectName(QStringLiteral("changesState"));
    layout->addWidget(m_state);

    auto* splitter = new QSplitter(Qt::Vertical, page);
    m_changes = new QTreeView(splitter);
    m_changes->setObjectName(QStringLiteral("changes"));
    m_changes->setModel(m_model);
    m_changes->setRootIsDecorated(false);
    m_changes->setUniformRowHeights(true);
    m_changes->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_description = new QPlainTextEdit(splitter);
    m_description->setObjectName(QStringLiteral("changeDescription"));
    m_description->setReadOnly(true);
    m_files = new QTreeWidget(splitter);
    m_files->setObjectName(QStringLiteral("changeFiles"));
    m_files->setRootIsDecorated(false);
    m_files->setHeaderLabels({tr("File"), tr("Action"), tr("Revision"), tr("Asset")});
    m_files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_files->setToolTip(tr("Double-click a file to select its asset."));
    m_differences = new DifferenceView(splitter);
    for (QWidget* part : {static_cast<QWidget*>(m_changes), static_cast<QWidget*>(m_description),
                          static_cast<QWidget*>(m_files), static_cast<QWidget*>(m_differences)})
        splitter->addWidget(part);
    layout->addWidget(splitter, 1);
    setWidget(page);

    connect(m_user, &QComboBox::currentIndexChanged, this, &SubmittedChangesDock::applyFilter);
    connect(m_text, &QLineEdit::textChanged, this, &SubmittedChangesDock::applyFilter);
    connect(refreshButton, &QPushButton::clicked, this, &SubmittedChangesDock::refresh);
    connect(m_changes->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &SubmittedChangesDock::describeCurrent);
    connect(m_files, &QTreeWidget::currentItemChanged, this, &SubmittedChangesDock::compareFile);
    connect(m_files, &QTreeWidget::itemActivated, this, &SubmittedChangesDock::chooseFile);
}

SubmittedChangesDock::~SubmittedChangesDock() = default;

bool SubmittedChangesDock::isPending() const
{
    return m_listQuestion->isPending() || m_describeQuestion->isPending() || m_differenceQuestion->isPending();
}

void SubmittedChangesDock::refresh()
{
    m_stale = true;
    if (isVisible())
        askChanges();
}

void SubmittedChangesDock::showEvent(QShowEvent* event)
{
    QDockWidget::showEvent(event);
    if (m_stale)
        askChanges();
}

void SubmittedChangesDock::askChanges()
{
    m_stale = false;
    if (!m_session.currentWorkspace()) {
        showNothing(tr("Open a workspace to see its server's submitted changes."));
        return;
    }
    if (m_session.workOfflineChosen()) {
        showNothing(tr("Working offline: the submitted changes are asked for when you work online."));
        return;
    }
    m_state->setText(tr("Asking the server for the submitted changes..."));
    m_listQuestion->ask<ChangesAnswer>(
        m_session.sessionAccount(),
        [](host::RevisionServer& server, const std::string& ticket) {
            ChangesAnswer answer;
            answer.result = server.submittedChanges(ticket, {}, answer.changes);
            return answer;
        },
        [this](const ChangesAnswer& answer) {
            if (!answer.result.ok())
                m_state->setText(tr("The submitted changes are unknown: %1")
                                     .arg(QString::fromStdString(answer.result.error)));
            else
                takeChanges(answer.changes);
        });
}

void SubmittedChangesDock::showNothing(const QString& why)
{
    for (ServerQuestion* question : {m_listQuestion, m_describeQuestion, m_differenceQuestion})
        question->cancel();
    takeChanges({});
    m_shownChange.clear();
    m_description->clear();
    m_files->clear();
    m_differences->showMessage({});
    m_state->setText(why);
}

void SubmittedChangesDock::takeChanges(std::vector<revision::Changelist> changes)
{
    const QString user = m_user->currentIndex() > 0 ? m_user->currentText() : QString();
    m_model->setChanges(std::move(changes));
    {
        const QSignalBlocker quiet(m_user);
        while (m_user->count() > 1)
            m_user->removeItem(1);
        m_user->addItems(m_model->users());
        m_user->setCurrentIndex(std::max(0, m_user->findText(user)));
    }
    applyFilter();
}

void SubmittedChangesDock::applyFilter()
{
    m_model->setFilter(m_user->currentIndex() > 0 ? m_user->currentText() : QString(), m_text->text());
    m_state->setText(tr("%n submitted change(s)", nullptr, m_model->rowCount()));
    const int row = m_model->rowOf(m_shownChange);
    if (row >= 0)
        m_changes->setCurrentIndex(m_model->index(row, 0));
}

void SubmittedChangesDock::describeCurrent()
{
    const QModelIndex current = m_changes->currentIndex();
    if (!current.isValid())
        return;
    const revision::ChangelistId id = m_model->changeAt(current.row()).id;
    if (id == m_shownChange && m_files->topLevelItemCount())
        return;
    m_shownChange = id;
    m_description->setPlainText(QString::fromStdString(m_model->changeAt(current.row()).description));
    m_files->clear();
    m_differences->showMessage(tr("Asking the server..."));
    m_describeQuestion->ask<DescribeAnswer>(
        m_session.sessionAccount(),
        [id](host::RevisionServer& server, const std::string& ticket) {
            DescribeAnswer answer;
            answer.result = server.submittedChange(ticket, id, answer.change);
            return answer;
        },
        [this](const DescribeAnswer& answer) {
            if (!answer.result.ok())
                m_differences->showMessage(
                    tr("The change is unknown: %1").arg(QString::fromStdString(answer.result.error)));
            else
                showChange(answer.change);
        });
}

void SubmittedChangesDock::showChange(const revision::Changelist& change)
{
    host::Workspace* workspace = m_session.currentWorkspace();
    if (!workspace)
        return;
    const host::DataModelMgr& model = workspace->Model();
    QTreeWidgetItem* firstAsset = nullptr;
    for (const revision::ChangelistFile& file : change.files) {
        std::string local;
        const KELHandle<kel4::IAsset> asset = AssetOfServerFile(model, file.depotPath, local);
        auto* row = new QTreeWidgetItem(m_files, {QString::fromStdString(file.depotPath),
                                                   PendingChangesModel::actionText(file.action),
                                                   QStringLiteral("#%1").arg(file.revision),
                                                   QString::fromStdString(asset.IsNull() ? std::string() : asset.GetName())});
        if (asset.IsNull())
            continue;
        row->setData(FileNameColumn, kKelFileRole,
                     QString::fromStdString(model.AbsolutePath(model.Store().AssetAt(model.SlotOf(asset)).kelPath)));
        if (!firstAsset)
            firstAsset = row;
    }
    if (firstAsset)
        m_files->setCurrentItem(firstAsset);
    else
        m_differences->showMessage(tr("The change made no difference to an asset of this workspace."));
}

void SubmittedChangesDock::compareFile(QTreeWidgetItem* item)
{
    const std::string kelFile = item ? item->data(FileNameColumn, kKelFileRole).toString().toStdString() : std::string();
    if (kelFile.empty()) {
        m_differenceQuestion->cancel();
        m_differences->showMessage(tr("Choose a file of an asset to see what the change did to it."));
        return;
    }
    const revision::ChangelistId change = m_shownChange;
    const QString asset = item->text(AssetColumn);
    m_differences->showMessage(tr("Asking the server..."));
    m_differenceQuestion->ask<DifferenceAnswer>(
        m_session.sessionAccount(),
        [kelFile, change](host::RevisionServer& server, const std::string& ticket) {
            std::vector<std::vector<revision::FileRevision>> histories;
            DifferenceAnswer answer;
            answer.result = server.fileHistory(ticket, {kelFile}, 0, histories);
            if (answer.result.ok())
                answer = AssetVersionReader(server, ticket, AssetHistory({kelFile}, std::move(histories))).changeOf(change);
            return answer;
        },
        [this, asset, change](const DifferenceAnswer& answer) {
            if (!answer.result.ok())
                m_differences->showMessage(
                    tr("The difference is unknown: %1").arg(QString::fromStdString(answer.result.error)));
            else
                m_differences->showRows(answer.rows, tr("%1 before").arg(asset),
                                        tr("%1 in change %2").arg(asset, QString::fromStdString(change)));
        });
}

void SubmittedChangesDock::chooseFile(QTreeWidgetItem* item)
{
    host::Workspace* workspace = m_session.currentWorkspace();
    if (!item || !workspace)
        return;
    std::string local;
    const KELHandle<kel4::IAsset> asset =
        AssetOfServerFile(workspace->Model(), item->text(FileNameColumn).toStdString(), local);
    if (!asset.IsNull())
        emit assetChosen(asset);
}

}  // namespace hbrc::studio
