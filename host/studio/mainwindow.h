#pragma once

#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <kel4/kelhandle.h>

#include <QElapsedTimer>
#include <QMainWindow>

#include <map>
#include <memory>
#include <string>
#include <vector>

class QFunctorAction;
class QHyperlink;
class QLabel;
class QSplitter;
class QStackedWidget;
class QTimer;

namespace nrk::signalling {
class IConnection;
}

namespace hbrc::studio {

class AssetBrowser;
class AssetBrowserModel;
class LogDock;
class PendingChangesPane;
class RevisionOperations;
class SessionController;
struct OperationOutcome;
struct ServerAccount;
class PropertyPane;
class StartPage;
class StudioSession;
struct StatusAnswer;

// The studio's main window "TarnWindow": the start page, or the asset browser beside the property
// pane for the open workspace; the File, Edit and Revision Control menus; the log dock and the
// status bar (server, user, workspace, session state). It holds no revision-control logic: edits
// ask the plug-in's CanEditObjects, revision commands call the plug-in or the host's services.
class MainWindow : public QMainWindow, private IRevisionControlPropertiesMgr_Slot
{
    Q_OBJECT
public:
    explicit MainWindow(StudioSession& session, QWidget* parent = nullptr);
    ~MainWindow() override;

    bool openWorkspace(const QString& folder);
    void closeWorkspace();
    // Asks the server about every asset's status once, off the UI thread. The window also asks by
    // itself: when it is activated (at most every few seconds) and every StatusRefreshSeconds.
    void refreshStatus();
    // The edit of a field of the selected asset, as the property pane reports it: asks the plug-in
    // first; a refusal leaves the field as it was, an accepted edit is one undo step.
    bool editField(const QString& field, const QString& oldValue, const QString& newValue);
    bool save();
    // Creates an asset named name (a dialog asks when name is empty) and selects it.
    bool newAsset(const QString& name = {});

    // The action of that object name ("save", "undo", "checkOut", ...), or null.
    QFunctorAction* action(const QString& name) const;
    AssetBrowser& browser() const { return *m_browser; }
    AssetBrowserModel& model() const { return *m_model; }
    PropertyPane& propertyPane() const { return *m_properties; }
    LogDock& logDock() const { return *m_log; }
    PendingChangesPane& pendingChanges() const { return *m_pending; }
    RevisionOperations& operations() const { return *m_operations; }
    SessionController& sessionController() const { return *m_sessionController; }
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

    void buildMenus();
    QFunctorAction* addAction(QMenu* menu, const char* name, const QString& text, std::function<void()> run,
                              std::function<bool()> condition = {});
    void updateActions();
    void updateStatusBar();
    void takeStatus(const StatusAnswer& answer);
    void applyRefreshInterval();
    void refreshUnlessEditing();
    void showSelection();
    void afterChange();  // an edit, undo or redo: model, pane and actions follow
    KELHandle<kel4::IDbObject> selected() const;
    bool mayEdit(const KELHandle<kel4::IDbObject>& asset, const QString& what);
    bool askToKeepUnsaved();
    void log(int level, const QString& text);
    ServerAccount serverAccount() const;
    void askStatus();
    // After each revision operation: the services forget the statuses they knew, assets whose
    // files it rewrote are read again, the browser asks again.
    void afterOperation(const OperationOutcome& outcome);
    void reloadFromDisk(const std::vector<std::string>& files);

    // The menu commands.
    void openFolder();
    void createDemoDepot();
    void deleteAsset();
    void renameAsset();
    void addExternalFile();
    void removeExternalFile();
    void undo();
    void redo();
    void checkOut();
    void makeWritable();
    void markForAdd();
    void showFiles(bool inFileBrowser);
    void showSettings();
    // A click on the session in the status bar: a menu with what fits the session's state.
    void offerSessionAction();
    // Brings the head revision of the assets' files and reads them again; assets with unsaved
    // edits are left out and named.
    void getLatest(const std::vector<KELHandle<kel4::IDbObject>>& assets);
    std::vector<KELHandle<kel4::IDbObject>> assetsBehind() const;

    StudioSession& m_session;
    std::unique_ptr<AssetBrowserModel> m_model;
    QStackedWidget* m_pages = nullptr;
    StartPage* m_start = nullptr;
    AssetBrowser* m_browser = nullptr;
    PropertyPane* m_properties = nullptr;
    LogDock* m_log = nullptr;
    std::unique_ptr<RevisionOperations> m_operations;
    PendingChangesPane* m_pending = nullptr;
    QLabel* m_serverLabel = nullptr;
    QLabel* m_userLabel = nullptr;
    QLabel* m_workspaceLabel = nullptr;
    QHyperlink* m_sessionLabel = nullptr;
    QSplitter* m_splitter = nullptr;
    SessionController* m_sessionController = nullptr;
    std::map<QString, QFunctorAction*> m_actions;
    std::unique_ptr<nrk::signalling::IConnection> m_settingsConnection;
    QTimer* m_refreshTimer = nullptr;
    QElapsedTimer m_lastRefresh;  // since the last status question
    bool m_editing = false;  // a dialog of an edit's check-out runs: further edits wait for it
};

}  // namespace hbrc::studio
