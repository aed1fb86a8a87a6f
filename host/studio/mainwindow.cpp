#include "mainwindow.h"

#include "assetbrowser.h"
#include "assetbrowsermodel.h"
#include "changelistwork.h"
#include "demodepot.h"
#include "fieldeditcommand.h"
#include "heldassets.h"
#include "logdock.h"
#include "logindialog.h"
#include "pendingchangespane.h"
#include "propertypane.h"
#include "revisionoperations.h"
#include "sessioncontroller.h"
#include "settingsdialog.h"
#include "startpage.h"
#include "studiosession.h"
#include "windowlayout.h"

#include <hbrcdatamodel/workspace.h>
#include <hbrcservices/userparameters.h>
#include <kel4/irevisioncontroluihelper.h>
#include <log/log.h>
#include <nrk/signalling/iconnection.h>
#include <qtextention/qfunctoraction.h>
#include <qtextention/qhyperlink.h>
#include <qtextention/qsplitterwithbutton.h>

#include <QCloseEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTimer>
#include <QTreeView>

#include <set>

namespace hbrc::studio {

namespace {

std::string toStd(const QString& text)
{
    return text.toStdString();
}

QString fromStd(const std::string& text)
{
    return QString::fromStdString(text);
}

constexpr int kMessageTimeoutMs = 5000;
// The dark palette keeps Qt's default link blue (#0000ff), which reads at 1.13:1 on the dark
// styles' window grey (68, 68, 68) where the start page and the status bar draw their links; this
// light blue reads at 5.31:1 there (WCAG contrast ratio).
constexpr QRgb kReadableLink = 0x8cc4ff;
constexpr qint64 kActivationRefreshGapMs = 3000;

}  // namespace

MainWindow::MainWindow(StudioSession& session, QWidget* parent)
    : QMainWindow(parent), m_session(session), m_model(std::make_unique<AssetBrowserModel>())
{
    setObjectName(QStringLiteral("TarnWindow"));
    setWindowTitle(tr("hbrc-studio"));
    QPalette readable = palette();
    readable.setColor(QPalette::Link, QColor(kReadableLink));
    setPalette(readable);
    m_pages = new QStackedWidget(this);
    m_start = new StartPage(m_pages);
    m_pages->addWidget(m_start);
    auto* splitter = new QSplitterWithButton(m_pages);
    m_splitter = splitter;
    splitter->setObjectName(QStringLiteral("workSplitter"));
    m_browser = new AssetBrowser(*m_model, splitter);
    m_properties = new PropertyPane(splitter);
    splitter->addWidget(m_browser);
    splitter->addWidget(m_properties);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    m_pages->addWidget(splitter);
    setCentralWidget(m_pages);
    m_log = new LogDock(this);
    addDockWidget(Qt::BottomDockWidgetArea, m_log);
    resizeDocks({m_log}, {140}, Qt::Vertical);
    m_operations = std::make_unique<RevisionOperations>([this] { return serverAccount(); });
    m_pending = new PendingChangesPane(*m_operations, this);
    addDockWidget(Qt::RightDockWidgetArea, m_pending);
    resizeDocks({m_pending}, {360}, Qt::Horizontal);
    connect(m_pending, &PendingChangesPane::message, this, &MainWindow::log);
    connect(m_operations.get(), &RevisionOperations::finished, this, &MainWindow::afterOperation);

    for (QLabel** label : {&m_serverLabel, &m_userLabel, &m_workspaceLabel}) {
        *label = new QLabel(this);
        statusBar()->addPermanentWidget(*label);
    }
    m_sessionLabel = new QHyperlink(QString(), this);
    m_sessionLabel->setObjectName(QStringLiteral("sessionState"));
    statusBar()->addPermanentWidget(m_sessionLabel);
    connect(m_sessionLabel, &QHyperlink::clicked, this, &MainWindow::offerSessionAction);
    m_sessionController = new SessionController(
        m_session, [this](const LoginRequest& request) { return LoginDialog::ask(this, request); }, this);
    connect(m_sessionController, &SessionController::stateChanged, this, &MainWindow::updateStatusBar);
    connect(m_sessionController, &SessionController::message, this, &MainWindow::log);
    buildMenus();

    connect(m_start, &StartPage::openFolderRequested, this, &MainWindow::openFolder);
    connect(m_start, &StartPage::openRecentRequested, this, &MainWindow::openWorkspace);
    connect(m_start, &StartPage::createDemoRequested, this, &MainWindow::createDemoDepot);
    connect(m_browser, &AssetBrowser::currentAssetChanged, this, &MainWindow::showSelection);
    connect(m_properties, &PropertyPane::fieldEdited, this, &MainWindow::editField);
    connect(m_model.get(), &AssetBrowserModel::statusRefreshed, this, &MainWindow::takeStatus);
    connect(m_model.get(), &AssetBrowserModel::changesSeen, this, [](const QStringList& lines) {
        for (const QString& line : lines)
            Log::Singleton::Instance().Write(Log::eMessage, toStd(line));
    });
    splitter->setAnimated(true);
    m_refreshTimer = new QTimer(this);
    connect(m_refreshTimer, &QTimer::timeout, this, &MainWindow::refreshUnlessEditing);
    applyRefreshInterval();

    if (IRevisionControlPropertiesMgr* settings = m_session.Settings()) {
        nrk::signalling::IConnection* connection = nullptr;
        settings->Connect_OnRevisionControlPropertiesChange(this, &connection);
        m_settingsConnection.reset(connection);
    }
    m_start->setRecentWorkspaces(m_session.RecentWorkspaces());
    updateStatusBar();
    updateActions();
    resize(1100, 720);
    WindowLayout::restore(*this, *splitter, *m_browser->view()->header(), m_session.Host().Preferences());
}

MainWindow::~MainWindow()
{
    m_settingsConnection.reset();
    m_properties->showAsset(nullptr, {}, {});
    m_model->setWorkspace(nullptr);
}

QFunctorAction* MainWindow::addAction(QMenu* menu, const char* name, const QString& text, std::function<void()> run,
                                      std::function<bool()> condition)
{
    auto* action = new QFunctorAction(text, std::move(run), this);
    action->setObjectName(QString::fromLatin1(name));
    if (condition)
        action->setCondition(std::move(condition));
    menu->addAction(action);
    m_actions[action->objectName()] = action;
    return action;
}

void MainWindow::buildMenus()
{
    auto open = [this] { return m_session.CurrentWorkspace() != nullptr; };
    auto selection = [this] { return !selected().IsNull(); };
    QMenu* file = menuBar()->addMenu(tr("&File"));
    addAction(file, "openWorkspace", tr("&Open Workspace..."), [this] { openFolder(); })
        ->setShortcut(QKeySequence::Open);
    addAction(file, "newAsset", tr("&New Asset..."), [this] { newAsset(); }, open)->setShortcut(QKeySequence::New);
    addAction(file, "deleteAsset", tr("&Delete Asset"), [this] { deleteAsset(); }, selection);
    addAction(file, "renameAsset", tr("&Rename..."), [this] { renameAsset(); }, selection)
        ->setShortcut(Qt::Key_F2);
    addAction(file, "addExternalFile", tr("&Add External File..."), [this] { addExternalFile(); }, selection);
    addAction(file, "removeExternalFile", tr("Re&move External File..."), [this] { removeExternalFile(); }, selection);
    file->addSeparator();
    addAction(file, "save", tr("&Save"), [this] { save(); }, open)->setShortcut(QKeySequence::Save);
    addAction(file, "closeWorkspace", tr("&Close"), [this] {
        if (askToKeepUnsaved())
            closeWorkspace();
    }, open);
    file->addSeparator();
    addAction(file, "quit", tr("&Quit"), [this] { close(); })->setShortcut(QKeySequence::Quit);

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    addAction(edit, "undo", tr("&Undo"), [this] { undo(); }, [this] { return m_session.Host().Commands().CanUndo(); })
        ->setShortcut(QKeySequence::Undo);
    addAction(edit, "redo", tr("&Redo"), [this] { redo(); }, [this] { return m_session.Host().Commands().CanRedo(); })
        ->setShortcut(QKeySequence::Redo);

    QMenu* revision = menuBar()->addMenu(tr("&Revision Control"));
    addAction(revision, "checkOut", tr("&Check Out"), [this] { checkOut(); }, selection);
    addAction(revision, "makeWritable", tr("Make &Writable"), [this] { makeWritable(); }, selection);
    addAction(revision, "markForAdd", tr("Mark for &Add"), [this] { markForAdd(); }, selection);
    addAction(revision, "getLatest", tr("&Get Latest"), [this] { getLatest({selected()}); }, [this] {
        const AssetStatus* status = m_model->statusAt(m_model->rowOf(selected()));
        return status && status->behind;
    });
    addAction(revision, "getLatestAll", tr("Get Latest of A&ll Assets"), [this] { getLatest(assetsBehind()); },
              [this] { return !assetsBehind().empty(); });
    revision->addSeparator();
    addAction(revision, "showFiles", tr("Show &Files"), [this] { showFiles(false); }, selection);
    addAction(revision, "revealInFileBrowser", tr("Reveal in File &Browser"), [this] { showFiles(true); }, selection);
    addAction(revision, "refreshStatus", tr("&Refresh Status"), [this] { refreshStatus(); }, open)
        ->setShortcut(QKeySequence::Refresh);
    revision->addSeparator();
    addAction(revision, "logIn", tr("Log &In..."), [this] { m_sessionController->logIn(); },
              [this] { return m_sessionController->hasServer(); });
    addAction(revision, "logOut", tr("Log &Out"), [this] { m_sessionController->logOut(); },
              [this] { return m_sessionController->hasSession(); });
    addAction(revision, "turnRevisionControlOn", tr("Turn Revision Control &On"),
              [this] { m_sessionController->turnRevisionControlOn(); },
              [this] { return m_sessionController->hasServer() && !m_sessionController->revisionControlOn(); });
    addAction(revision, "settings", tr("&Settings..."), [this] { showSettings(); });
    for (QMenu* menu : {file, edit, revision})
        connect(menu, &QMenu::aboutToShow, this, &MainWindow::updateActions);

    // The asset commands also on a right click in the browser (the click makes the row current).
    QTreeView* assets = m_browser->view();
    assets->setContextMenuPolicy(Qt::ActionsContextMenu);
    for (const char* name : {"checkOut", "makeWritable", "markForAdd", "getLatest", "", "showFiles",
                             "revealInFileBrowser", "", "renameAsset", "deleteAsset"}) {
        if (*name) {
            assets->addAction(action(QString::fromLatin1(name)));
            continue;
        }
        auto* separator = new QAction(assets);
        separator->setSeparator(true);
        assets->addAction(separator);
    }
}

QFunctorAction* MainWindow::action(const QString& name) const
{
    const auto found = m_actions.find(name);
    return found == m_actions.end() ? nullptr : found->second;
}

void MainWindow::updateActions()
{
    for (const auto& [name, action] : m_actions)
        action->updateEnabled();
    const nrk::fwk::ICommand* last = m_session.Host().Commands().GetUndoCommand();
    action(QStringLiteral("undo"))->setText(last ? tr("&Undo %1").arg(fromStd(last->GetName())) : tr("&Undo"));
}

void MainWindow::updateStatusBar()
{
    const Account account = m_session.StoredAccount();
    m_serverLabel->setText(tr("Server: %1").arg(account.server.empty() ? tr("none") : fromStd(account.server)));
    m_userLabel->setText(tr("User: %1").arg(fromStd(account.userName)));
    host::Workspace* workspace = m_session.CurrentWorkspace();
    m_workspaceLabel->setText(tr("Workspace: %1").arg(workspace ? workspace->Root() : tr("none")));
    m_sessionLabel->setLinkText(tr("Session: %1").arg(sessionState()));
    const SessionState state = m_sessionController->state();
    m_model->setStatusUnavailable(state == SessionState::RevisionControlOff || state == SessionState::NotLoggedIn
                                      ? sessionState()
                                      : QString());
}

QString MainWindow::sessionState() const
{
    return m_sessionController->stateText();
}

void MainWindow::offerSessionAction()
{
    static const std::map<SessionAction, const char*> kActions{
        {SessionAction::LogIn, "logIn"},
        {SessionAction::LogOut, "logOut"},
        {SessionAction::TurnRevisionControlOn, "turnRevisionControlOn"},
    };
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const SessionAction fitting = m_sessionController->fittingAction();
    if (const auto found = kActions.find(fitting); found != kActions.end())
        menu->addAction(action(QString::fromLatin1(found->second)));
    else if (fitting == SessionAction::Retry)
        connect(menu->addAction(tr("&Retry")), &QAction::triggered, this, [this] {
            m_sessionController->retry();
            refreshStatus();
        });
    if (menu->isEmpty()) {
        delete menu;
        return;
    }
    updateActions();
    menu->popup(m_sessionLabel->mapToGlobal(QPoint(0, 0)));
}

// Each outcome also shows in the status bar for a while, so that it replaces an earlier step's.
void MainWindow::log(int level, const QString& text)
{
    Log::Singleton::Instance().Write(level, toStd(text));
    statusBar()->showMessage(text, kMessageTimeoutMs);
}

bool MainWindow::openWorkspace(const QString& folder)
{
    if (m_session.CurrentWorkspace() && !askToKeepUnsaved())
        return false;
    m_properties->showAsset(nullptr, {}, {});
    m_model->setWorkspace(nullptr);
    std::string error;
    host::Workspace* workspace = m_session.Open(folder, error);
    if (!workspace) {
        log(Log::eError, tr("Cannot open the workspace %1: %2").arg(folder, fromStd(error)));
        return false;
    }
    m_sessionController->workspaceOpened();
    m_model->setWorkspace(workspace);
    m_pending->setWorkspace(workspace);
    m_pages->setCurrentIndex(1);
    setWindowTitle(tr("%1 - hbrc-studio").arg(QFileInfo(workspace->Root()).fileName()));
    updateStatusBar();
    updateActions();
    refreshStatus();
    return true;
}

void MainWindow::closeWorkspace()
{
    m_properties->showAsset(nullptr, {}, {});
    m_model->setWorkspace(nullptr);
    m_pending->setWorkspace(nullptr);
    m_session.Close();
    m_sessionController->workspaceClosed();
    m_session.Host().Commands().Clear();
    m_pages->setCurrentIndex(0);
    m_start->setRecentWorkspaces(m_session.RecentWorkspaces());
    setWindowTitle(tr("hbrc-studio"));
    updateStatusBar();
    updateActions();
}

void MainWindow::refreshStatus()
{
    askStatus();
    m_pending->refresh();
}

ServerAccount MainWindow::serverAccount() const
{
    const host::RevisionControlServices& services = m_session.Services();
    if (!services.dataControl)
        return {};
    const Account account = m_session.StoredAccount();
    return {services.connection->Server(),
            host::UserParameters::TicketOf(services.dataControl->GetUserParameters().Get()), account.userName,
            account.password, account.workspaceName};
}

void MainWindow::askStatus()
{
    if (!m_session.CurrentWorkspace() || !m_session.Services().dataControl)
        return;
    m_lastRefresh.start();
    m_model->refreshStatus(serverAccount());
}

void MainWindow::afterOperation(const OperationOutcome& outcome)
{
    if (outcome.what.isEmpty())
        return;  // a refresh of the pane: the status question runs beside it
    if (outcome.result.ok())
        log(Log::eMessage, outcome.done);
    else
        log(Log::eError, tr("%1 refused: %2").arg(outcome.what, fromStd(outcome.result.error)));
    if (!m_session.CurrentWorkspace())
        return;
    if (m_session.Services().connection)
        m_session.Services().connection->Cache().Invalidate();
    reloadFromDisk(outcome.changedOnDisk);
    askStatus();
}

// Only assets without unsaved edits are read again (the workspace refuses the others): what the
// user edited stays in memory.
void MainWindow::reloadFromDisk(const std::vector<std::string>& files)
{
    host::Workspace* workspace = m_session.CurrentWorkspace();
    if (files.empty())
        return;
    std::set<std::string> done;
    for (const KELHandle<kel4::IAsset>& asset : workspace->Model().AssetsOwningFiles({files.begin(), files.end()})) {
        if (asset.IsNull() || !done.insert(asset.GetName()).second)
            continue;
        if (const host::EditResult read = workspace->ReloadFromDisk(asset); !read)
            log(Log::eWarning, tr("%1 was not read again: %2").arg(fromStd(asset.GetName()), fromStd(read.error)));
    }
    const KELHandle<kel4::IDbObject> current = selected();
    m_model->reload();
    m_browser->selectAsset(current);
    m_properties->showValues();
}

void MainWindow::takeStatus(const StatusAnswer& answer)
{
    const QString before = sessionState();
    m_sessionController->statusAnswered(answer);
    // The timer asks again and again: a failure is news once.
    if (answer.code < 0 && sessionState() != before)
        log(Log::eWarning, tr("The status of the assets is unknown: %1").arg(answer.error));
    updateStatusBar();
    showSelection();
    emit statusRefreshed();
}

// An edit's check-out asks in a dialog of its own; the edit refreshes when it is done.
void MainWindow::refreshUnlessEditing()
{
    if (!m_editing)
        refreshStatus();
}

void MainWindow::applyRefreshInterval()
{
    const int seconds = m_session.StatusRefreshSeconds();
    if (seconds > 0)
        m_refreshTimer->start(std::chrono::seconds(seconds));
    else
        m_refreshTimer->stop();
}

void MainWindow::changeEvent(QEvent* event)
{
    // Back from another application: what others did meanwhile shows, unless it was just asked.
    if (event->type() == QEvent::ActivationChange && isActiveWindow() &&
        (!m_lastRefresh.isValid() || m_lastRefresh.hasExpired(kActivationRefreshGapMs)))
        refreshUnlessEditing();
    QMainWindow::changeEvent(event);
}

KELHandle<kel4::IDbObject> MainWindow::selected() const
{
    return m_browser->currentAsset();
}

void MainWindow::showSelection()
{
    const KELHandle<kel4::IDbObject> asset = selected();
    QStringList files;
    if (!asset.IsNull() && m_session.Helper())
        m_session.Helper()->GetObjectFiles(asset, files);
    if (asset != m_properties->asset())
        m_properties->showAsset(m_session.CurrentWorkspace(), asset, files);
    else
        m_properties->showValues();
    updateActions();
}

void MainWindow::afterChange()
{
    const KELHandle<kel4::IDbObject> asset = selected();
    m_model->reload();
    m_browser->selectAsset(asset);
    m_properties->showValues();
    updateActions();
    refreshStatus();
}

bool MainWindow::mayEdit(const KELHandle<kel4::IDbObject>& asset, const QString& what)
{
    if (m_editing)
        return false;
    m_editing = true;
    const bool allowed = m_session.Helper()->CanEditObjects({asset}, true, true, toStd(what));
    m_editing = false;
    if (!allowed) {
        m_properties->addHistory(asset, tr("refused: %1").arg(what));
        log(Log::eWarning, tr("Refused: %1").arg(what));
    }
    return allowed;
}

bool MainWindow::editField(const QString& field, const QString& oldValue, const QString& newValue)
{
    const KELHandle<kel4::IDbObject> asset = m_properties->asset();
    host::Workspace* workspace = m_session.CurrentWorkspace();
    if (asset.IsNull() || !workspace || m_editing)
        return false;
    const QString what = tr("%1 of %2: %3 -> %4").arg(field, fromStd(asset.GetName()), oldValue, newValue);
    if (!mayEdit(asset, what)) {
        m_properties->showValues();
        refreshStatus();
        return false;
    }
    const KELPtr<nrk::fwk::ICommand> command(
        new FieldEditCommand(*workspace, asset, toStd(field), toStd(oldValue), toStd(newValue)));
    const bool done = m_session.Host().Commands().ExecuteCommand(command.Get(), true);
    m_properties->addHistory(asset, done ? what : tr("failed: %1").arg(what));
    log(done ? Log::eMessage : Log::eError, done ? tr("Edited %1").arg(what) : tr("Cannot edit %1").arg(what));
    afterChange();
    return done;
}

bool MainWindow::save()
{
    host::Workspace* workspace = m_session.CurrentWorkspace();
    if (!workspace)
        return false;
    // With revision control off the save offers to make read-only files writable without naming
    // who holds them. Naming them first protects their work best without overriding the user's
    // own choice to work without revision control: a writable copy changes nothing on the server,
    // where their check-out or lock still stands, and the user now knows whom to ask before they
    // turn revision control on (which would make the save check the files out instead).
    if (!m_sessionController->revisionControlOn())
        for (const QString& held : HeldAssets::describe(*workspace, m_session.Services()))
            log(Log::eWarning, held);
    const host::SaveReport report = workspace->Save();
    if (report.Succeeded())
        log(Log::eMessage, tr("Saved %n file(s)", nullptr, int(report.writtenFiles.size())));
    else
        log(Log::eError, tr("The save did not complete: %1").arg(fromStd(report.DescribeFailures())));
    afterChange();
    return report.Succeeded();
}

bool MainWindow::newAsset(const QString& givenName)
{
    host::Workspace* workspace = m_session.CurrentWorkspace();
    if (!workspace)
        return false;
    QString name = givenName;
    if (name.isEmpty()) {
        bool ok = false;
        name = QInputDialog::getText(this, tr("New Asset"), tr("Name:"), QLineEdit::Normal, {}, &ok).trimmed();
        if (!ok || name.isEmpty())
            return false;
    }
    host::NewAsset asset;
    asset.name = toStd(name);
    asset.kind = host::AssetKind::Metadata;
    asset.type = "Material";
    asset.fields = {{"colour", "#808080"}, {"roughness", "0.50"}};
    std::string error;
    const KELHandle<kel4::IAsset> created = workspace->CreateAsset(asset, error);
    if (created.IsNull()) {
        log(Log::eError, tr("Cannot create %1: %2").arg(name, fromStd(error)));
        return false;
    }
    log(Log::eMessage, tr("Created %1 (saved with the next save)").arg(name));
    m_model->reload();
    m_browser->selectAsset(created);
    afterChange();
    return true;
}

void MainWindow::deleteAsset()
{
    const KELHandle<kel4::IDbObject> asset = selected();
    const QString name = fromStd(asset.GetName());
    if (QMessageBox::question(this, tr("Delete Asset"), tr("Delete %1? The next save removes its files.").arg(name)) !=
            QMessageBox::Yes ||
        !mayEdit(asset, tr("delete %1").arg(name)))
        return;
    const host::EditResult deleted = m_session.CurrentWorkspace()->DeleteAsset(asset);
    log(deleted ? Log::eMessage : Log::eError, deleted ? tr("Deleted %1").arg(name) : fromStd(deleted.error));
    afterChange();
}

void MainWindow::renameAsset()
{
    const KELHandle<kel4::IDbObject> asset = selected();
    const QString old = fromStd(asset.GetName());
    bool ok = false;
    const QString name = QInputDialog::getText(this, tr("Rename"), tr("New name:"), QLineEdit::Normal, old, &ok).trimmed();
    if (ok && !name.isEmpty() && name != old)
        editField(QString::fromLatin1(FieldEditCommand::kNameField), old, name);
}

void MainWindow::addExternalFile()
{
    const KELHandle<kel4::IDbObject> asset = selected();
    const QString path = QFileDialog::getOpenFileName(this, tr("Add External File"));
    if (path.isEmpty())
        return;
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly)) {
        log(Log::eError, tr("Cannot read %1").arg(path));
        return;
    }
    const QString fileName = QFileInfo(path).fileName();
    if (!mayEdit(asset, tr("add %1 to %2").arg(fileName, fromStd(asset.GetName()))))
        return;
    const host::EditResult added = m_session.CurrentWorkspace()->AddExternalFile(asset, toStd(fileName), source.readAll());
    log(added ? Log::eMessage : Log::eError, added ? tr("Added %1").arg(fileName) : fromStd(added.error));
    afterChange();
}

void MainWindow::removeExternalFile()
{
    const KELHandle<kel4::IDbObject> asset = selected();
    host::DataModelMgr& model = m_session.CurrentWorkspace()->Model();
    QStringList names;
    for (const std::string& name : model.Store().AssetAt(model.SlotOf(asset)).record.externalFiles)
        names << fromStd(name);
    if (names.isEmpty()) {
        statusBar()->showMessage(tr("%1 has no external file").arg(fromStd(asset.GetName())), kMessageTimeoutMs);
        return;
    }
    bool ok = false;
    const QString name = QInputDialog::getItem(this, tr("Remove External File"), tr("File:"), names, 0, false, &ok);
    if (!ok || !mayEdit(asset, tr("remove %1 from %2").arg(name, fromStd(asset.GetName()))))
        return;
    const host::EditResult removed = m_session.CurrentWorkspace()->RemoveExternalFile(asset, toStd(name));
    log(removed ? Log::eMessage : Log::eError, removed ? tr("Removed %1").arg(name) : fromStd(removed.error));
    afterChange();
}

void MainWindow::undo()
{
    const nrk::fwk::ICommand* step = m_session.Host().Commands().GetUndoCommand();
    const QString name = step ? fromStd(step->GetName()) : QString();
    if (m_session.Host().Commands().Undo())
        log(Log::eMessage, tr("Undid %1").arg(name));
    afterChange();
}

void MainWindow::redo()
{
    if (m_session.Host().Commands().Redo())
        log(Log::eMessage, tr("Redid the last undone step"));
    afterChange();
}

void MainWindow::checkOut()
{
    bool cancelled = false;
    const KELHandle<kel4::IDbObject> asset = selected();
    if (m_session.Helper()->CheckOutObject(asset, cancelled, true))
        log(Log::eMessage, tr("Checked out %1").arg(fromStd(asset.GetName())));
    afterChange();
}

void MainWindow::makeWritable()
{
    const KELHandle<kel4::IDbObject> asset = selected();
    if (m_session.Helper()->MakeObjectWritable(asset, true))
        log(Log::eMessage, tr("Made %1 writable").arg(fromStd(asset.GetName())));
    afterChange();
}

void MainWindow::markForAdd()
{
    const KELHandle<kel4::IDbObject> asset = selected();
    const host::DataModelMgr& model = m_session.CurrentWorkspace()->Model();
    if (!model.Store().AssetAt(model.SlotOf(asset)).IsOnDisk()) {
        // Nothing to add yet: the save writes its files and its post-save hook marks them for add.
        log(Log::eMessage, tr("%1 is not saved yet: the next save marks it for add").arg(fromStd(asset.GetName())));
        return;
    }
    std::string changelist, error;
    if (IRevisionControlPropertiesMgr* settings = m_session.Settings())
        settings->GetChangeListToUseWhenAutoCheckingOut(changelist);
    const kelResult result = m_session.Services().dataControl->MarkForAdd({asset}, true, kel4::closureId::Persistence,
                                                                          changelist, error);
    if (result.IsSuccess())
        log(Log::eMessage, tr("Marked %1 for add").arg(fromStd(asset.GetName())));
    else
        log(Log::eError, tr("Cannot mark %1 for add: %2").arg(fromStd(asset.GetName()), fromStd(error)));
    afterChange();
}

void MainWindow::getLatest(const std::vector<KELHandle<kel4::IDbObject>>& assets)
{
    const host::DataModelMgr& model = m_session.CurrentWorkspace()->Model();
    QStringList names;
    QStringList unsaved;
    std::vector<std::string> files;
    for (const KELHandle<kel4::IDbObject>& asset : assets) {
        if (model.IsDirty(asset)) {
            unsaved << fromStd(asset.GetName());
            continue;
        }
        const kel4::Set<std::string> own = model.FilesOf(asset, true, kel4::closureId::Persistence);
        files.insert(files.end(), own.begin(), own.end());
        names << fromStd(asset.GetName());
    }
    if (!unsaved.isEmpty())
        log(Log::eWarning, tr("Not brought up to date because of unsaved edits: %1. Save or undo them first.")
                               .arg(unsaved.join(QStringLiteral(", "))));
    if (files.empty())
        return;
    constexpr int kNamesShown = 5;
    const QString what = names.size() <= kNamesShown ? names.join(QStringLiteral(", "))
                                                     : tr("%n asset(s)", nullptr, int(names.size()));
    m_operations->Run(tr("Get Latest"), ChangelistWork::GetLatest(std::move(files), what));
}

std::vector<KELHandle<kel4::IDbObject>> MainWindow::assetsBehind() const
{
    std::vector<KELHandle<kel4::IDbObject>> behind;
    for (int row = 0; row < m_model->rowCount(); ++row)
        if (const AssetStatus* status = m_model->statusAt(row); status && status->behind)
            behind.push_back(m_model->assetAt(row));
    return behind;
}

void MainWindow::showFiles(bool inFileBrowser)
{
    m_session.Helper()->ShowObjectFiles(selected(), inFileBrowser);
}

void MainWindow::showSettings()
{
    if (IRevisionControlPropertiesMgr* settings = m_session.Settings()) {
        const bool wasOn = m_sessionController->revisionControlOn();
        SettingsDialog dialog(*settings, m_session, this);
        dialog.exec();
        applyRefreshInterval();
        m_sessionController->revisionControlChosen(wasOn);
    }
}

void MainWindow::OnRevisionControlPropertiesChange(IRevisionControlPropertiesMgr*)
{
    updateStatusBar();
}

void MainWindow::openFolder()
{
    const QString folder = QFileDialog::getExistingDirectory(this, tr("Open Workspace"));
    if (!folder.isEmpty())
        openWorkspace(folder);
}

void MainWindow::createDemoDepot()
{
    const QString parent = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    try {
        std::unique_ptr<DemoServer> server;
        const QString folder = CreateDemoDepot(parent, server);
        m_session.StoreAccount({server->Path(), "alice", server->Workspace("alice"), {}});
        m_session.SetPassword("alice-pw");
        log(Log::eMessage, tr("Created a demo depot in %1 (users alice and bob, passwords alice-pw and bob-pw)")
                               .arg(folder));
        openWorkspace(server->Folder("alice"));
    } catch (const DemoError& error) {
        log(Log::eError, tr("Cannot create a demo depot: %1").arg(QString::fromUtf8(error.what())));
    }
}

bool MainWindow::askToKeepUnsaved()
{
    host::Workspace* workspace = m_session.CurrentWorkspace();
    if (!workspace || !workspace->HasUnsavedChanges())
        return true;
    const QMessageBox::StandardButton answer =
        QMessageBox::question(this, tr("Unsaved Edits"), tr("The workspace has unsaved edits. Save them?"),
                              QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Save)
        return save();
    return answer == QMessageBox::Discard;
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (!askToKeepUnsaved()) {
        event->ignore();
        return;
    }
    WindowLayout::save(*this, *m_splitter, *m_browser->view()->header(), m_session.Host().Preferences());
    event->accept();
}

}  // namespace hbrc::studio
