#include "pendingchangespane.h"

#include "changelistwork.h"
#include "descriptiondialog.h"
#include "revisionoperations.h"

#include <hbrcdatamodel/workspace.h>
#include <log/log.h>
#include <qtextention/qfunctoraction.h>
#include <qtextention/qlistviewdragdrop.h>

#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>
#include <map>
#include <set>

namespace hbrc::studio {

PendingChangesPane::PendingChangesPane(RevisionOperations& operations, QWidget* parent)
    : QDockWidget(tr("Pending Changes"), parent), m_operations(operations)
{
    setObjectName(QStringLiteral("pendingChanges"));
    auto* content = new QWidget(this);
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(2, 2, 2, 2);
    // The commands in two columns, the files' beside the changelists', each button as wide as the
    // longest: a tool bar would hide what does not fit behind its extension arrow.
    auto* commands = new QGridLayout;
    m_busy = new QLabel(tr("Working..."), content);
    m_busy->setObjectName(QStringLiteral("pendingBusy"));
    m_busy->hide();
    m_view = new QTreeView(content);
    m_view->setObjectName(QStringLiteral("pendingView"));
    m_view->setModel(&m_model);
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    m_view->header()->setStretchLastSection(false);
    m_view->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_view->header()->setSectionResizeMode(PendingChangesModel::NameColumn, QHeaderView::Stretch);
    layout->addLayout(commands);
    layout->addWidget(m_busy);
    layout->addWidget(m_view);
    setWidget(content);

    const auto addButton = [this, commands, content](int row, int column, QFunctorAction* command) {
        auto* button = new QToolButton(content);
        button->setDefaultAction(command);
        button->setAutoRaise(true);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        button->setFocusPolicy(Qt::StrongFocus);  // the dark styles leave buttons out of the Tab chain
        commands->addWidget(button, row, column);
    };
    auto numbered = [this] { return idle() && !currentChangelist().empty(); };
    addButton(0, 0, addCommand("submit", tr("&Submit..."), [this] { submit(); }, [this] {
        const revision::PendingChangelist* list = m_model.changelist(currentChangelist());
        return idle() && list && !list->files.empty();
    }));
    addButton(1, 0, addCommand("revert", tr("&Revert..."), [this] { revert(); },
                                [this] { return idle() && !m_model.checkedFiles().empty(); }));
    addButton(2, 0, addCommand("revertUnchanged", tr("Revert &Unchanged"), [this] { revertUnchanged(); }, [this] {
        return idle() && std::any_of(m_model.pending().begin(), m_model.pending().end(),
                                     [](const revision::PendingChangelist& list) { return !list.files.empty(); });
    }));
    addButton(0, 1, addCommand("newChangelist", tr("&New Changelist..."), [this] { newChangelist(); },
                                [this] { return idle() && m_workspace; }));
    addButton(1, 1, addCommand("deleteChangelist", tr("&Delete Changelist"), [this] { deleteChangelist(); }, [this] {
        const revision::PendingChangelist* list = m_model.changelist(currentChangelist());
        return idle() && list && !list->changelist.id.empty() && list->files.empty();
    }));
    addButton(2, 1, addCommand("editDescription", tr("&Edit Description..."), [this] { editDescription(); }, numbered));

    m_dragDrop = new QListViewDragDrop([this](const QListViewDragDrop::Drop& drop) {
        if (!idle() || !drop.targetIndex.isValid() || drop.items.isEmpty())
            return false;
        const std::string target = PendingChangesModel::changelistOf(drop.targetIndex);
        std::vector<std::string> files;
        for (const QPersistentModelIndex& item : drop.items) {
            if (!PendingChangesModel::isFile(item))
                return false;
            if (PendingChangesModel::changelistOf(item) != target)
                files.push_back(PendingChangesModel::pathOf(item));
        }
        if (files.empty())
            return false;
        if (!drop.hovering)
            moveFiles(files, target);
        return true;
    }, this);
    m_dragDrop->addView(m_view);

    connect(m_view, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        QMenu menu(this);
        QMenu* move = menu.addMenu(tr("&Move to Changelist"));
        fillMoveMenu(*move);
        move->setEnabled(!move->isEmpty());
        menu.addSeparator();
        for (const char* name : {"submit", "revert", "revertUnchanged", "newChangelist", "deleteChangelist",
                                 "editDescription"})
            menu.addAction(action(QString::fromLatin1(name)));
        menu.exec(m_view->viewport()->mapToGlobal(at));
    });
    connect(m_view->selectionModel(), &QItemSelectionModel::currentChanged, this, &PendingChangesPane::updateCommands);
    connect(&m_model, &QAbstractItemModel::dataChanged, this, &PendingChangesPane::updateCommands);
    connect(&m_operations, &RevisionOperations::workingChanged, this, [this](bool working) {
        m_busy->setVisible(working);
        updateCommands();
    });
    connect(&m_operations, &RevisionOperations::finished, this, &PendingChangesPane::takeOutcome);
    updateCommands();
}

PendingChangesPane::~PendingChangesPane() = default;

QFunctorAction* PendingChangesPane::addCommand(const char* name, const QString& text, std::function<void()> run,
                                               std::function<bool()> condition)
{
    auto* command = new QFunctorAction(text, std::move(run), this);
    command->setObjectName(QString::fromLatin1(name));
    command->setCondition(std::move(condition));
    return command;
}

QFunctorAction* PendingChangesPane::action(const QString& name) const
{
    return findChild<QFunctorAction*>(name, Qt::FindDirectChildrenOnly);
}

void PendingChangesPane::updateCommands()
{
    for (QFunctorAction* command : findChildren<QFunctorAction*>(QString(), Qt::FindDirectChildrenOnly))
        command->updateEnabled();
}

bool PendingChangesPane::idle() const
{
    return m_workspace && !m_operations.isWorking();
}

void PendingChangesPane::setWorkspace(host::Workspace* workspace)
{
    m_workspace = workspace;
    m_model.setPending({}, {}, {});
    updateCommands();
}

void PendingChangesPane::refresh()
{
    if (m_workspace)
        m_operations.refreshPending();
}

void PendingChangesPane::takeOutcome(const OperationOutcome& outcome)
{
    if (!outcome.pendingKnown || !m_workspace)
        return;
    const bool hadCurrent = m_view->currentIndex().isValid();
    const std::string current = currentChangelist();
    std::vector<std::string> paths;
    for (const revision::PendingChangelist& list : outcome.pending)
        for (const revision::OpenedFile& file : list.files)
            paths.push_back(file.localPath);
    const host::DataModelMgr& data = m_workspace->Model();
    const auto owners = data.AssetsOwningFiles({paths.begin(), paths.end()});
    std::map<std::string, QString> assets;
    auto owner = owners.begin();
    for (std::size_t i = 0; i < paths.size() && owner != owners.end(); ++i, ++owner)
        if (!owner->IsNull())
            assets[paths[i]] = QString::fromStdString(owner->GetName());
    m_model.setPending(outcome.pending, m_workspace->Root(), assets);
    m_view->expandAll();
    if (const QModelIndex changelist = m_model.changelistIndex(current); hadCurrent && changelist.isValid())
        m_view->setCurrentIndex(changelist);
    updateCommands();
}

std::string PendingChangesPane::currentChangelist() const
{
    const QModelIndex current = m_view->currentIndex();
    return current.isValid() ? PendingChangesModel::changelistOf(current) : std::string();
}

std::vector<std::string> PendingChangesPane::selectedFiles() const
{
    std::vector<std::string> files;
    for (const QModelIndex& index : m_view->selectionModel()->selectedRows())
        if (PendingChangesModel::isFile(index))
            files.push_back(PendingChangesModel::pathOf(index));
    return files;
}

UnsavedEdits::Verdict PendingChangesPane::checkUnsaved(UnsavedEdits::Rewrite rewrite,
                                                     const std::vector<std::string>& files)
{
    UnsavedEdits::Verdict verdict = UnsavedEdits::check(m_workspace->Model(), rewrite, files);
    if (!verdict.warning.isEmpty())
        emit message(Log::eWarning, verdict.warning);
    return verdict;
}

QStringList PendingChangesPane::fileNames(const std::vector<std::string>& files) const
{
    QStringList names;
    for (const std::string& file : files)
        names << m_model.fileIndex(file).data().toString();
    return names;
}

bool PendingChangesPane::confirmRevert(const std::vector<std::string>& files)
{
    return QMessageBox::question(this, tr("Revert"),
                                 tr("Revert these files? Their edits are lost.\n\n%1")
                                     .arg(fileNames(files).join(QLatin1Char('\n'))),
                                 QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Cancel) == QMessageBox::Yes;
}

void PendingChangesPane::submit()
{
    const revision::PendingChangelist* list = m_model.changelist(currentChangelist());
    if (!list)
        return;
    // Submitting a changelist means its files, unless the user ticked some of them.
    if (m_model.checkedFiles(list->changelist.id).empty())
        m_model.setData(m_model.changelistIndex(list->changelist.id), Qt::Checked, Qt::CheckStateRole);
    const std::vector<std::string> checked = m_model.checkedFiles(list->changelist.id);
    const QString description =
        DescriptionDialog::ask(this, tr("Submit"), tr("Describe the change:"),
                               QString::fromStdString(list->changelist.description), fileNames(checked));
    if (description.isEmpty())
        return;
    m_operations.run(tr("Submit"), ChangelistWork::submit(ChangelistWork::planSubmit(*list, checked),
                                                          description.toStdString()));
}

void PendingChangesPane::revert()
{
    const std::vector<std::string> files = m_model.checkedFiles();
    if (files.empty())
        return;
    if (checkUnsaved(UnsavedEdits::Rewrite::Revert, files).files.empty())
        return;
    if (confirmRevert(files))
        m_operations.run(tr("Revert"), ChangelistWork::revert(files));
}

void PendingChangesPane::revertUnchanged()
{
    std::vector<std::string> files = m_model.checkedFiles();
    if (files.empty()) {
        for (const revision::PendingChangelist& list : m_model.pending())
            for (const revision::OpenedFile& file : list.files)
                files.push_back(file.localPath);
    }
    UnsavedEdits::Verdict verdict = checkUnsaved(UnsavedEdits::Rewrite::RevertUnchanged, files);
    if (!verdict.files.empty())
        m_operations.run(tr("Revert Unchanged"), ChangelistWork::revertUnchanged(std::move(verdict.files)));
}

void PendingChangesPane::newChangelist()
{
    moveToNewChangelist({});
}

void PendingChangesPane::deleteChangelist()
{
    m_operations.run(tr("Delete Changelist"), ChangelistWork::deleteChangelist(currentChangelist()));
}

void PendingChangesPane::editDescription()
{
    const revision::PendingChangelist* list = m_model.changelist(currentChangelist());
    if (!list || list->changelist.id.empty())
        return;
    const QString description = DescriptionDialog::ask(this, tr("Edit Description"), tr("Description:"),
                                                       QString::fromStdString(list->changelist.description));
    if (!description.isEmpty())
        m_operations.run(tr("Edit Description"),
                         ChangelistWork::setDescription(list->changelist.id, description.toStdString()));
}

void PendingChangesPane::fillMoveMenu(QMenu& menu)
{
    const std::vector<std::string> files = selectedFiles();
    if (files.empty() || !idle())
        return;
    std::set<std::string> from;
    for (const std::string& file : files)
        from.insert(PendingChangesModel::changelistOf(m_model.fileIndex(file)));
    for (int row = 0; row < m_model.rowCount(); ++row) {
        const QModelIndex changelist = m_model.index(row, 0);
        const std::string id = PendingChangesModel::changelistOf(changelist);
        if (from.size() == 1 && from.count(id))
            continue;
        QAction* move = menu.addAction(changelist.data().toString());
        move->setObjectName(QStringLiteral("moveTo-%1").arg(id.empty() ? QStringLiteral("default") : QString::fromStdString(id)));
        connect(move, &QAction::triggered, this, [this, files, id] { moveFiles(files, id); });
    }
    menu.addSeparator();
    QAction* create = menu.addAction(tr("New Changelist..."));
    create->setObjectName(QStringLiteral("moveToNew"));
    connect(create, &QAction::triggered, this, [this, files] { moveToNewChangelist(files); });
}

void PendingChangesPane::moveFiles(const std::vector<std::string>& files, const std::string& changelist)
{
    m_operations.run(tr("Move to Changelist"), ChangelistWork::reopen(files, changelist));
}

void PendingChangesPane::moveToNewChangelist(const std::vector<std::string>& files)
{
    const QString description = DescriptionDialog::ask(this, tr("New Changelist"), tr("Description:"), {});
    if (!description.isEmpty())
        m_operations.run(tr("New Changelist"), ChangelistWork::newChangelist(description.toStdString(), files));
}

}  // namespace hbrc::studio
