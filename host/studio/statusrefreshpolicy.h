#pragma once

#include <QElapsedTimer>
#include <QObject>

#include <functional>

class QTimer;

namespace hbrc::studio {

class AssetBrowserModel;
class RevisionOperations;
class StudioSession;

// When the studio asks the server about the assets' status and the pending changelists, without
// widgets: when asked (Refresh Status, after an edit or a workspace's opening), every
// statusRefreshSeconds, and when the window is activated unless it asked in the last few seconds.
// The timer's and the activation's questions wait while paused() holds (an edit's check-out asks
// in a dialog of its own; the edit refreshes when it is done). While held (the user chose to work
// offline) it asks nothing at all.
class StatusRefreshPolicy : public QObject
{
    Q_OBJECT
public:
    StatusRefreshPolicy(StudioSession& session, AssetBrowserModel& model, RevisionOperations& operations,
                        std::function<bool()> paused, QObject* parent = nullptr);

    // Asks about every asset's status once, off the UI thread, and for the pending changelists.
    void refresh();
    // Asks about the status only (an operation's outcome brought the pending changelists).
    void askStatus();
    // Follows the session's statusRefreshSeconds (after the settings changed).
    void applyInterval();
    // The window is active again: what others did meanwhile shows, unless it was just asked.
    void windowActivated();
    void setHeld(bool held) { m_held = held; }

private:
    void refreshUnlessPaused();

    StudioSession& m_session;
    AssetBrowserModel& m_model;
    RevisionOperations& m_operations;
    std::function<bool()> m_paused;
    QTimer* m_timer = nullptr;
    QElapsedTimer m_lastRefresh;  // since the last status question
    bool m_held = false;
};

}  // namespace hbrc::studio
