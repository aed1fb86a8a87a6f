#pragma once

#include <QObject>
#include <QString>

namespace hbrc::host {
class Workspace;
}

namespace hbrc::studio {

class SessionController;
class StudioSession;

// Opening and closing the studio's workspace, without widgets: the session opens the folder with
// revision-control services, the session controller logs in; closing forgets the undo history.
// The panes drop the workspace on aboutToLeave, before it goes, and show the new one on opened.
// Whether unsaved edits may be left is asked by the caller first.
class WorkspaceController : public QObject
{
    Q_OBJECT
public:
    WorkspaceController(StudioSession& session, SessionController& sessionController, QObject* parent = nullptr);

    // Opens folder in place of the open workspace; false (and a message) when it cannot be opened.
    bool open(const QString& folder);
    void close();
    // Creates a demo depot below parent (users alice and bob), keeps alice's account and opens her
    // workspace.
    bool openNewDemo(const QString& parent);

signals:
    void aboutToLeave();
    void opened(host::Workspace* workspace);
    void closed();
    // What the user should read in the log (a Log::Level and the text).
    void message(int level, const QString& text);

private:
    StudioSession& m_session;
    SessionController& m_sessionController;
};

}  // namespace hbrc::studio
