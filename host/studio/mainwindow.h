#pragma once

#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <kel4/kelhandle.h>

#include <QMainWindow>

#include <memory>

class QFunctorAction;
class QPushButton;
class QSplitter;
class QStackedWidget;

namespace nrk::signalling {
class IConnection;
}

namespace hbrc::host {
class Workspace;
}

namespace hbrc::studio {

class AssetBrowser;
class AssetBrowserModel;
class AssetCommands;
class AssetDialogs;
class AssetEdits;
class AssetWatches;
class HistoryPane;
class LogDock;
class NoticeBar;
class OfflineWork;
class PendingChangesPane;
class PropertyPane;
class Reconciler;
class RevisionOperations;
class SessionController;
class StartPage;
class StatusRefreshPolicy;
class StudioActions;
class StudioSession;
class StudioStatusBar;
class SubmittedChangesDock;
class WorkspaceController;
struct StatusAnswer;

// The studio's main window "TarnWindow": the start page, or the asset browser beside the property
// pane for the open workspace; the File, Edit and Revision Control menus; the log dock, the
// status bar (server, user, workspace, session state) and the notice bar above the panes (a
// watched asset is free; a refused asset can be watched). It builds the panes and wires them to the
// controllers, which hold the logic: WorkspaceController (open, close), AssetEdits (edits, undo,
// save), AssetCommands (revision-control commands), StatusRefreshPolicy (when the status is
// asked), SessionController (log-in, session state). StudioActions holds the menus, AssetDialogs
// the questions before an asset command; the window asks only for a folder, the settings and
// whether to keep unsaved edits.
class MainWindow : public QMainWindow, private IRevisionControlPropertiesMgr_Slot
{
    Q_OBJECT
public:
    explicit MainWindow(StudioSession& session, QWidget* parent = nullptr);
    ~MainWindow() override;

    // Starts opening folder: its assets are read off the UI thread (isOpening until they are all
    // in and the session is logged in); false when the folder cannot be opened.
    bool openWorkspace(const QString& folder);
    bool isOpening() const;
    void closeWorkspace();
    // Asks the server about every asset's status once, off the UI thread. The window also asks by
    // itself: when it is activated (at most every few seconds) and every statusRefreshSeconds.
    void refreshStatus();
    // The edit of a field of the selected asset, as the property pane reports it: asks the plug-in
    // first; a refusal leaves the field as it was, an accepted edit is one undo step.
    bool editField(const QString& field, const QString& oldValue, const QString& newValue);
    bool save();
    // Creates an asset named name, a material, and selects it; a dialog asks for the name, kind and
    // type when name is empty.
    bool newAsset(const QString& name = {});

    // The menu commands that ask the user first.
    void openFolder();
    void showSettings();
    // Asks whether to save the workspace's unsaved edits; false when the user cancels.
    bool askToKeepUnsaved();

    // The action of that object name ("save", "undo", "checkOut", ...), or null.
    QFunctorAction* action(const QString& name) const;
    AssetBrowser& browser() const { return *m_browser; }
    AssetBrowserModel& model() const;
    PropertyPane& propertyPane() const { return *m_properties; }
    LogDock& logDock() const { return *m_log; }
    PendingChangesPane& pendingChanges() const { return *m_pending; }
    RevisionOperations& operations() const { return *m_operations; }
    SessionController& sessionController() const { return *m_sessionController; }
    AssetCommands& assetCommands() const { return *m_commands; }
    AssetEdits& assetEdits() const { return *m_edits; }
    AssetDialogs& assetDialogs() const { return *m_dialogs; }
    HistoryPane& history() const { return *m_history; }
    SubmittedChangesDock& submittedChanges() const { return *m_submitted; }
    OfflineWork& offlineWork() const { return *m_offline; }
    Reconciler& reconciler() const { return *m_reconciler; }
    AssetWatches& assetWatches() const { return *m_watches; }
    NoticeBar& noticeBar() const { return *m_notice; }
    // The session as the status bar tells it ("logged in as alice", "revision control off", ...).
    QString sessionState() const;

signals:
    // The status question was answered (also when it failed).
    void statusRefreshed();

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void OnRevisionControlPropertiesChange(IRevisionControlPropertiesMgr* mgr) override;

    void buildPanes();
    void buildControllers();
    void updateActions();
    void updateStatusBar();
    void takeStatus(const StatusAnswer& answer);
    void showWorkspace(host::Workspace* workspace);
    void showSelection();
    void afterChange();  // an edit, undo or redo: model, pane and actions follow
    void afterReread();  // assets were read again from disk: the browser and the pane show them
    KELHandle<kel4::IDbObject> selected() const;
    void log(int level, const QString& text);

    void createDemoDepot();
    void buildOfflineWork();

    StudioSession& m_session;
    QStackedWidget* m_pages = nullptr;
    StartPage* m_start = nullptr;
    QSplitter* m_splitter = nullptr;
    AssetBrowser* m_browser = nullptr;
    PropertyPane* m_properties = nullptr;
    LogDock* m_log = nullptr;
    PendingChangesPane* m_pending = nullptr;
    StudioStatusBar* m_statusBar = nullptr;
    std::unique_ptr<RevisionOperations> m_operations;
    SessionController* m_sessionController = nullptr;
    WorkspaceController* m_workspaces = nullptr;
    AssetCommands* m_commands = nullptr;
    AssetEdits* m_edits = nullptr;
    std::unique_ptr<AssetDialogs> m_dialogs;
    StatusRefreshPolicy* m_refresh = nullptr;
    StudioActions* m_actions = nullptr;
    HistoryPane* m_history = nullptr;
    SubmittedChangesDock* m_submitted = nullptr;
    AssetWatches* m_watches = nullptr;
    NoticeBar* m_notice = nullptr;
    std::unique_ptr<nrk::signalling::IConnection> m_settingsConnection;
    OfflineWork* m_offline = nullptr;
    Reconciler* m_reconciler = nullptr;
    QPushButton* m_reconcileNotice = nullptr;  // in the status bar while reconcile is offered
};

}  // namespace hbrc::studio
