#pragma once

#include <QObject>
#include <QString>

#include <memory>
#include <string>
#include <vector>

namespace hbrc::host {
class OfflineJournal;
}

namespace hbrc::studio {

class SessionController;
class StudioSession;
enum class OfflineReason;

// Work without the server, without widgets. Offline (Work Offline, or on its own when the server
// cannot be reached) revision control is off for the plug-in, which then lets every edit go ahead
// as it does whenever revision control is off, and the workspace keeps its offline journal: the
// host names every file it makes writable, creates or deletes there before the file changes.
// Back online, revision control is on again as it was; once the server answers, the files the
// journal names are offered for reconciling. The switch is kept per workspace: a workspace the
// user left offline opens offline. Revision control turned off by hand lets edits go ahead in the
// same way, so the journal is kept then too, and turning it on again offers the reconcile.
class OfflineWork : public QObject
{
    Q_OBJECT
public:
    OfflineWork(StudioSession& session, SessionController& sessionController, QObject* parent = nullptr);
    ~OfflineWork() override;

    void workspaceOpened();
    void workspaceClosed();
    // The Work Offline switch; back online without a session, it logs in as at the opening.
    void setWorkingOffline(bool offline);
    bool isOffline() const;
    // The journal of the open workspace; null without one.
    host::OfflineJournal* journal() const { return m_journal.get(); }
    // Drops the files from the journal after they were opened on the server.
    void forget(const std::vector<std::string>& files);

signals:
    void message(int level, const QString& text);
    // The server answers again after work offline (or at the opening of a workspace whose journal
    // names files): the files changed without it are worth reconciling.
    void reconcileOffered();
    void offlineChanged(bool offline);

private:
    // Follows the session: offline when the server cannot be reached, online when it answers
    // again, and the offer of reconcile once it does.
    void followSession();
    void goOffline(OfflineReason reason);
    void goOnline();
    // Online: the workspace keeps the journal while revision control is off, and gives it up (with
    // the offer of reconcile to come) once it is on.
    void journalWhileRevisionControlOff();

    StudioSession& m_session;
    SessionController& m_sessionController;
    std::unique_ptr<host::OfflineJournal> m_journal;
    bool m_restoreRevisionControl = false;
    bool m_offerWhenAnswered = false;
};

}  // namespace hbrc::studio
