#pragma once

#include "workspacereader.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <cstdint>
#include <vector>

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
//
// The assets are read on a worker (WorkspaceReader) and added to the workspace slice by slice, each
// slice a few milliseconds of the UI thread's time, one per turn of its event loop: opening shows
// the workspace to be read, assetsRead each slice's new assets. Until every asset is read, the
// workspace is not the session's current workspace, so nothing acts on a half-read workspace: the
// status question, the save and the commands that need an open workspace see none, there are no
// services and no log-in yet. Then it becomes the current one and the session controller logs in
// on a worker; opened follows the log-in. Until opened the window takes no selection in the
// browser, so that no asset can be edited, and asks no status by itself (the window's part).
// Closing the workspace, or the window, stops the reader.
class WorkspaceController : public QObject
{
    Q_OBJECT
public:
    WorkspaceController(StudioSession& session, SessionController& sessionController, QObject* parent = nullptr);

    // Starts opening folder in place of the open workspace; false (and a message) when it cannot
    // be opened.
    bool open(const QString& folder);
    bool isOpening() const { return m_opening != nullptr; }
    void close();
    // Creates a demo depot below parent (users alice and bob), keeps alice's account and opens her
    // workspace.
    bool openNewDemo(const QString& parent);

signals:
    void aboutToLeave();
    // The workspace whose assets are being read, still without any.
    void opening(host::Workspace* workspace);
    // The slots of the assets the last slice added, and how many of all asset files are read.
    void assetsRead(const std::vector<std::uint32_t>& assetSlots, int read, int total);
    void opened(host::Workspace* workspace);
    void closed();
    // What the user should read in the log (a Log::Level and the text).
    void message(int level, const QString& text);

private:
    void addSlice();
    void finishOpening();
    void loggedInAtOpen();

    StudioSession& m_session;
    SessionController& m_sessionController;
    WorkspaceReader m_reader;
    // Adds a slice of the read files at each turn of the event loop while files wait.
    QTimer* m_slices = nullptr;
    host::Workspace* m_opening = nullptr;
    int m_added = 0;  // asset files of the opening workspace taken from the reader
};

}  // namespace hbrc::studio
