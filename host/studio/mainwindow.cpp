#include "mainwindow.h"

#include "assetbrowser.h"
#include "assetcommands.h"
#include "assetdialogs.h"
#include "assetedits.h"
#include "assetwatches.h"
#include "historypane.h"
#include "logdock.h"
#include "logindialog.h"
#include "noticebar.h"
#include "offlinework.h"
#include "pendingchangespane.h"
#include "propertypane.h"
#include "reconciledialog.h"
#include "reconciler.h"
#include "revisionoperations.h"
#include "sessioncontroller.h"
#include "settingsdialog.h"
#include "startpage.h"
#include "statusrefreshpolicy.h"
#include "studioactions.h"
#include "studiosession.h"
#include "studiostatusbar.h"
#include "submittedchangesdock.h"
#include "windowlayout.h"
#include "workspacecontroller.h"

#include <hbrcdatamodel/workspace.h>
#include <kel4/irevisioncontroluihelper.h>
#include <log/log.h>
#include <nrk/signalling/iconnection.h>
#include <qtextention/qfunctoraction.h>
#include <qtextention/qsplitterwithbutton.h>

#include <QCloseEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QMessageBox>
#include <QPushButton>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QTreeView>
#include <QVBoxLayout>

namespace hbrc::studio {

namespace {

// The dark palette keeps Qt's default link blue (#0000ff), which reads at 1.13:1 on the dark
// styles' window grey (68, 68, 68) where the start page and the status bar draw their links; this
// light blue reads at 5.31:1 there (WCAG contrast ratio).
constexpr QRgb kReadableLink = 0x8cc4ff;

}  // namespace

MainWindow::MainWindow(StudioSession& session, QWidget* parent) : QMainWindow(parent), m_session(session)
{
    setObjectName(QStringLiteral("TarnWindow"));
    setWindowTitle(tr("hbrc-studio"));
    QPalette readable = palette();
    readable.setColor(QPalette::Link, QColor(kReadableLink));
    setPalette(readable);
    buildPanes();
    buildControllers();
    buildOfflineWork();
    m_actions = new StudioActions(*this, m_session);
    connect(m_statusBar, &StudioStatusBar::sessionClicked, m_actions, &StudioActions::offerSessionAction);
    if (IRevisionControlPropertiesMgr* settings = m_session.settings()) {
        nrk::signalling::IConnection* connection = nullptr;
        settings->Connect_OnRevisionControlPropertiesChange(this, &connection);
        m_settingsConnection.reset(connection);
    }
    m_start->setRecentWorkspaces(m_session.recentWorkspaces());
    updateStatusBar();
    updateActions();
    resize(1100, 720);
    WindowLayout::restore(*this, *m_splitter, *m_browser->view()->header(), m_session.host().Preferences());
}

MainWindow::~MainWindow()
{
    m_settingsConnection.reset();
    m_properties->showAsset(nullptr, {}, {});
    model().setWorkspace(nullptr);
}

void MainWindow::buildPanes()
{
    m_pages = new QStackedWidget(this);
    m_start = new StartPage(m_pages);
    m_pages->addWidget(m_start);
    auto* splitter = new QSplitterWithButton(m_pages);
    m_splitter = splitter;
    splitter->setObjectName(QStringLiteral("workSplitter"));
    m_browser = new AssetBrowser(splitter);
    m_properties = new PropertyPane(splitter);
    splitter->addWidget(m_browser);
    splitter->addWidget(m_properties);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    m_pages->addWidget(splitter);
    auto* central = new QWidget(this);
    auto* centralLayout = new QVBoxLayout(central);
    centralLayout->setContentsMargins(0, 0, 0, 0);
    m_notice = new NoticeBar(central);
    centralLayout->addWidget(m_notice);
    centralLayout->addWidget(m_pages, 1);
    setCentralWidget(central);
    m_log = new LogDock(this);
    addDockWidget(Qt::BottomDockWidgetArea, m_log);
    resizeDocks({m_log}, {140}, Qt::Vertical);
    m_operations = std::make_unique<RevisionOperations>([this] { return m_session.sessionAccount(); });
    m_pending = new PendingChangesPane(*m_operations, this);
    addDockWidget(Qt::RightDockWidgetArea, m_pending);
    resizeDocks({m_pending}, {360}, Qt::Horizontal);
    m_statusBar = new StudioStatusBar(this);
    setStatusBar(m_statusBar);
    splitter->setAnimated(true);

    connect(m_pending, &PendingChangesPane::message, this, &MainWindow::log);
    connect(m_operations.get(), &RevisionOperations::workingChanged, this, &MainWindow::updateActions);
    connect(m_start, &StartPage::openFolderRequested, this, &MainWindow::openFolder);
    connect(m_start, &StartPage::openRecentRequested, this, &MainWindow::openWorkspace);
    connect(m_start, &StartPage::createDemoRequested, this, &MainWindow::createDemoDepot);
    connect(m_browser, &AssetBrowser::currentAssetChanged, this, &MainWindow::showSelection);
    connect(m_properties, &PropertyPane::fieldEdited, this, &MainWindow::editField);
    connect(&model(), &AssetBrowserModel::statusRefreshed, this, &MainWindow::takeStatus);
    connect(&model(), &AssetBrowserModel::changesSeen, this, [](const QStringList& lines) {
        for (const QString& line : lines)
            Log::Singleton::Instance().Write(Log::eMessage, line.toStdString());
    });
}

void MainWindow::buildControllers()
{
    m_sessionController = new SessionController(
        m_session, [this](const LoginRequest& request) { return LoginDialog::ask(this, request); }, this);
    m_workspaces = new WorkspaceController(m_session, *m_sessionController, this);
    m_commands = new AssetCommands(m_session, *m_operations, model(), this);
    m_edits = new AssetEdits(m_session, *m_sessionController, *m_commands, this);
    m_dialogs = std::make_unique<AssetDialogs>(*this, m_session, *m_edits, *m_statusBar);
    m_refresh = new StatusRefreshPolicy(
        m_session, model(), *m_operations, [this] { return m_commands->editing() || isOpening(); }, this);
    connect(m_sessionController, &SessionController::stateChanged, this, &MainWindow::updateStatusBar);
    connect(m_sessionController, &SessionController::stateChanged, m_refresh, [this] {
        m_refresh->setHeld(m_sessionController->offlineReason() == OfflineReason::Chosen);
    });
    connect(m_sessionController, &SessionController::message, this, &MainWindow::log);
    connect(m_sessionController, &SessionController::retried, this, &MainWindow::refreshStatus);
    connect(m_workspaces, &WorkspaceController::message, this, &MainWindow::log);
    connect(m_commands, &AssetCommands::message, this, &MainWindow::log);
    connect(m_edits, &AssetEdits::message, this, &MainWindow::log);
    connect(m_workspaces, &WorkspaceController::aboutToLeave, this, [this] {
        m_properties->showAsset(nullptr, {}, {});
        m_history->showAsset({});
        model().setWorkspace(nullptr);
        m_pending->setWorkspace(nullptr);
    });
    connect(m_workspaces, &WorkspaceController::opened, this, &MainWindow::showWorkspace);
    connect(m_workspaces, &WorkspaceController::closed, this, [this] { showWorkspace(nullptr); });
    // While a workspace is read the browser shows its rows as they come, greyed: it takes no
    // selection, so that no asset of a half-read workspace is edited or sent to the server.
    connect(m_workspaces, &WorkspaceController::opening, this, [this](host::Workspace* workspace) {
        model().setWorkspace(workspace);
        m_browser->setEnabled(false);
        m_pages->setCurrentIndex(1);
    });
    connect(m_workspaces, &WorkspaceController::assetsRead, this,
            [this](const std::vector<std::uint32_t>& assetSlots, int read, int total) {
                model().appendAssets(assetSlots);
                m_statusBar->showBriefly(tr("Opening workspace: %L1 of %L2 assets").arg(read).arg(total));
            });
    connect(m_workspaces, &WorkspaceController::opened, m_browser, [this] { m_browser->setEnabled(true); });
    connect(m_workspaces, &WorkspaceController::closed, m_browser, [this] { m_browser->setEnabled(true); });
    connect(m_operations.get(), &RevisionOperations::finished, m_commands, &AssetCommands::takeOutcome);
    connect(m_commands, &AssetCommands::assetsReread, this, &MainWindow::afterReread);
    connect(m_commands, &AssetCommands::operationApplied, m_refresh, &StatusRefreshPolicy::askStatus);
    connect(m_commands, &AssetCommands::changed, this, &MainWindow::afterChange);
    connect(m_edits, &AssetEdits::changed, this, &MainWindow::afterChange);
    connect(m_commands, &AssetCommands::historyNoted, m_properties, &PropertyPane::addHistory);
    connect(m_edits, &AssetEdits::historyNoted, m_properties, &PropertyPane::addHistory);
    m_watches = new AssetWatches(m_session.host().Preferences(), model(), this);
    connect(&model(), &AssetBrowserModel::statusRefreshed, m_watches, &AssetWatches::takeStatus);
    connect(m_watches, &AssetWatches::message, this, &MainWindow::log);
    connect(m_watches, &AssetWatches::freed, this,
            [this](const KELHandle<kel4::IDbObject>& asset, const QString& line) {
                updateActions();
                m_notice->offer(line, tr("&Check Out"), [this, asset] {
                    if (model().rowOf(asset) >= 0)
                        m_commands->checkOut(asset);
                });
            });
    // Its offers act on the workspace that shows: they go with it.
    connect(m_workspaces, &WorkspaceController::aboutToLeave, m_notice, &NoticeBar::clear);
    connect(m_commands, &AssetCommands::refused, this, [this](const KELHandle<kel4::IDbObject>& asset) {
        if (const QString offer = m_watches->offerAfterRefusal(asset); !offer.isEmpty())
            m_notice->offer(offer, tr("Tell &Me When It's Free"), [this, asset] { m_watches->watch(asset); });
    });
    connect(m_edits, &AssetEdits::editRefused, this, [this] {
        m_properties->showValues();
        refreshStatus();
    });
    m_history = new HistoryPane(m_session, *m_commands, model(), m_properties);
    m_properties->addTab(m_history, tr("History"));
    m_submitted = new SubmittedChangesDock(m_session, this);
    tabifyDockWidget(m_pending, m_submitted);
    m_submitted->hide();
    connect(m_commands, &AssetCommands::operationApplied, m_history, &HistoryPane::refresh);
    connect(m_commands, &AssetCommands::operationApplied, m_submitted, &SubmittedChangesDock::refresh);
    connect(m_submitted, &SubmittedChangesDock::assetChosen, m_browser, &AssetBrowser::selectAsset);
}

// Work Offline and Reconcile: the offer to reconcile is a notice in the status bar with a button,
// never a dialog of its own.
void MainWindow::buildOfflineWork()
{
    m_offline = new OfflineWork(m_session, *m_sessionController, this);
    m_reconciler = new Reconciler(
        *m_offline, *m_operations,
        [this](const ReconcileSurvey& survey) {
            return ReconcileDialog::ask(this, survey, m_pending->model().pending(),
                                        m_session.currentWorkspace() ? m_session.currentWorkspace()->Root() : QString());
        },
        this);
    m_reconcileNotice = new QPushButton(tr("Files were changed offline: Reconcile..."), m_statusBar);
    m_reconcileNotice->setObjectName(QStringLiteral("reconcileNotice"));
    m_reconcileNotice->setFocusPolicy(Qt::StrongFocus);
    m_reconcileNotice->hide();
    m_statusBar->addPermanentWidget(m_reconcileNotice);
    connect(m_offline, &OfflineWork::message, this, &MainWindow::log);
    connect(m_reconciler, &Reconciler::message, this, &MainWindow::log);
    connect(m_workspaces, &WorkspaceController::opened, m_offline, &OfflineWork::workspaceOpened);
    connect(m_workspaces, &WorkspaceController::aboutToLeave, m_offline, &OfflineWork::workspaceClosed);
    connect(m_workspaces, &WorkspaceController::aboutToLeave, m_reconcileNotice, &QWidget::hide);
    connect(m_offline, &OfflineWork::offlineChanged, this, [this](bool offline) {
        updateStatusBar();
        updateActions();
        m_history->refresh();  // they ask the server only while the user works online
        m_submitted->refresh();
        if (!offline)
            refreshStatus();
    });
    connect(m_offline, &OfflineWork::reconcileOffered, m_reconcileNotice, &QWidget::show);
    connect(m_reconcileNotice, &QPushButton::clicked, m_reconciler, &Reconciler::start);
    connect(m_reconciler, &Reconciler::started, m_reconcileNotice, &QWidget::hide);
    connect(m_reconciler, &Reconciler::refused, this, [this](const QString& why) {
        auto* box = new QMessageBox(QMessageBox::Warning, tr("Reconcile Refused"),
                                    tr("Nothing was opened; the server refused the reconcile:\n%1").arg(why),
                                    QMessageBox::Ok, this);
        box->setObjectName(QStringLiteral("reconcileRefused"));
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
    });
}

QFunctorAction* MainWindow::action(const QString& name) const
{
    return m_actions->action(name);
}

AssetBrowserModel& MainWindow::model() const
{
    return m_browser->model();
}

void MainWindow::updateActions()
{
    m_actions->update();
}

void MainWindow::updateStatusBar()
{
    host::Workspace* workspace = m_session.currentWorkspace();
    m_statusBar->showSession(m_session.storedAccount(), workspace ? workspace->Root() : QString(), sessionState());
    const SessionState state = m_sessionController->state();
    model().setStatusUnavailable(state == SessionState::RevisionControlOff || state == SessionState::NotLoggedIn ||
                                         state == SessionState::Offline
                                     ? sessionState()
                                     : QString());
}

QString MainWindow::sessionState() const
{
    return m_sessionController->stateText();
}

// Each outcome also shows in the status bar for a while, so that it replaces an earlier step's.
void MainWindow::log(int level, const QString& text)
{
    Log::Singleton::Instance().Write(level, text.toStdString());
    m_statusBar->showBriefly(text);
}

bool MainWindow::openWorkspace(const QString& folder)
{
    if (m_session.currentWorkspace() && !askToKeepUnsaved())
        return false;
    return m_workspaces->open(folder);
}

bool MainWindow::isOpening() const
{
    return m_workspaces->isOpening();
}

void MainWindow::closeWorkspace()
{
    m_workspaces->close();
}

// The open workspace (null: none, the start page) in the panes, the title and the status bar.
void MainWindow::showWorkspace(host::Workspace* workspace)
{
    const Account account = m_session.storedAccount();
    m_watches->setScope(workspace ? account.server : std::string(), account.workspaceName);
    if (workspace) {
        model().setWorkspace(workspace);
        model().sortByName();  // the read appended its rows as it found them
        m_pending->setWorkspace(workspace);
    } else {
        m_start->setRecentWorkspaces(m_session.recentWorkspaces());
    }
    m_pages->setCurrentIndex(workspace ? 1 : 0);
    setWindowTitle(workspace ? tr("%1 - hbrc-studio").arg(QFileInfo(workspace->Root()).fileName())
                             : tr("hbrc-studio"));
    updateStatusBar();
    updateActions();
    m_submitted->refresh();
    if (workspace)
        refreshStatus();
}

void MainWindow::refreshStatus()
{
    m_refresh->refresh();
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

void MainWindow::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        m_refresh->windowActivated();
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
    if (!asset.IsNull() && m_session.helper())
        m_session.helper()->GetObjectFiles(asset, files);
    if (asset != m_properties->asset())
        m_properties->showAsset(m_session.currentWorkspace(), asset, files);
    else
        m_properties->showValues();
    m_history->showAsset(asset);
    updateActions();
}

void MainWindow::afterReread()
{
    const KELHandle<kel4::IDbObject> current = selected();
    model().reload();
    m_browser->selectAsset(current);
    m_properties->showValues();
}

void MainWindow::afterChange()
{
    afterReread();
    updateActions();
    refreshStatus();
}

bool MainWindow::editField(const QString& field, const QString& oldValue, const QString& newValue)
{
    return m_edits->editField(m_properties->asset(), field, oldValue, newValue);
}

bool MainWindow::save()
{
    return m_edits->save();
}

bool MainWindow::newAsset(const QString& name)
{
    const KELHandle<kel4::IAsset> created = m_dialogs->newAsset(name);
    if (created.IsNull())
        return false;
    model().reload();
    m_browser->selectAsset(created);
    afterChange();
    return true;
}

void MainWindow::showSettings()
{
    if (IRevisionControlPropertiesMgr* settings = m_session.settings()) {
        const bool wasOn = m_sessionController->revisionControlOn();
        SettingsDialog dialog(*settings, m_session, this);
        dialog.exec();
        m_refresh->applyInterval();
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
    if (!m_session.currentWorkspace() || askToKeepUnsaved())
        m_workspaces->openNewDemo(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
}

bool MainWindow::askToKeepUnsaved()
{
    host::Workspace* workspace = m_session.currentWorkspace();
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
    WindowLayout::save(*this, *m_splitter, *m_browser->view()->header(), m_session.host().Preferences());
    event->accept();
}

}  // namespace hbrc::studio
