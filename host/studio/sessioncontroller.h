#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <optional>
#include <string>

namespace hbrc::studio {

class StudioSession;
struct StatusAnswer;

// What the studio knows of its revision-control session, as the status bar tells it.
enum class SessionState {
    NoWorkspace,
    NoServer,            // the workspace has no server setting
    RevisionControlOff,  // switched off in the settings
    NotLoggedIn,
    LoggedIn,
    Expired,      // the server refuses the session it gave
    Unreachable,  // the server cannot be reached at all
    Offline,      // working without the server: chosen, or since it could not be reached
};

// Why the studio works offline.
enum class OfflineReason { None, Chosen, ServerUnreachable };

// What a click on the session in the status bar offers.
enum class SessionAction { None, LogIn, LogOut, TurnRevisionControlOn, Retry, WorkOnline };

// The questions of the Log In dialog and the user's answers.
struct LoginRequest
{
    QString server;
    QString userName;
    QString reason;  // why it asks again ("" the first time)
};

struct LoginAnswer
{
    QString userName;
    QString password;
    bool keep = false;  // "Keep me logged in": the server keeps the log-in, never the password
};

// Shows the Log In dialog; nothing when the user cancels.
using LoginPrompt = std::function<std::optional<LoginAnswer>(const LoginRequest&)>;

// The studio's session with its server, without widgets: opening a workspace that has a server
// turns revision control on (unless the user turned it off) and logs in at once, with the log-in
// the server keeps (a ticket shared with hbdepot, a password in Subversion's credential cache),
// else with the password known for this run, else through the Log In prompt. It follows the
// status answers to tell a live session from an expired one and an unreachable server, and logs
// out. An expired session during work is re-opened by the plug-in's own reconnect, not here.
class SessionController : public QObject
{
    Q_OBJECT
public:
    SessionController(StudioSession& session, LoginPrompt prompt, QObject* parent = nullptr);

    // After the session opened a workspace: revision control on, then the log-in; or offline,
    // without the log-in, when the user switched the workspace to work offline.
    void workspaceOpened();
    void workspaceClosed();
    // Log In...: asks for user and password until the server accepts them or the user cancels.
    bool logIn();
    // Log Out: ends the server session and forgets the kept log-in.
    void logOut();
    // The log-in of a workspace's opening again: after an unreachable server, or back from work
    // offline without a session.
    void retry();
    void turnRevisionControlOn();
    // The settings dialog changed "Use revision control" from wasOn: the studio remembers that
    // the user, not the default, keeps it off.
    void revisionControlChosen(bool wasOn);
    // A status question was answered.
    void statusAnswered(const StatusAnswer& answer);
    // Offline (OfflineWork decides when): the state says so and why, whatever the server answers
    // meanwhile; OfflineReason::None ends it.
    void setOffline(OfflineReason reason);
    OfflineReason offlineReason() const { return m_offline; }
    // The server's last answer, whether or not the studio works offline: what tells that an
    // unreachable server answers again.
    SessionState serverState() const { return m_state; }

    SessionState state() const;
    // The state in words: "logged in as alice", "expired", "revision control off", ...
    QString stateText() const;
    SessionAction fittingAction() const;
    bool revisionControlOn() const;
    bool hasSession() const;
    bool hasServer() const;

signals:
    void stateChanged();
    // What the user should read in the log (a Log::Level and the text).
    void message(int level, const QString& text);

private:
    void logInAtOpen();
    // Asks through the prompt until the server accepts or the user cancels; reason starts it.
    bool logInThroughPrompt(QString reason);
    // Logs in with the password; errorText says why not.
    bool logInWith(const std::string& userName, const std::string& password, bool keep, std::string& errorText);
    void setLoginFailure(const std::string& errorText);
    void setState(SessionState state);

    StudioSession& m_session;
    LoginPrompt m_prompt;
    SessionState m_state = SessionState::NoWorkspace;
    OfflineReason m_offline = OfflineReason::None;
};

}  // namespace hbrc::studio
