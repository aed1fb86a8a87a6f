#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <map>

class QFunctorAction;
class QMenu;
class QPoint;

namespace hbrc::studio {

class MainWindow;
class StudioSession;

// The studio's commands as actions, by object name ("save", "undo", "checkOut", ...), each enabled
// while its condition holds: the File, Edit and Revision Control menus of the window's menu bar,
// and the asset commands again in the browser's context menu. Each action calls the window (for
// the commands that ask the user first) or a controller.
class StudioActions : public QObject
{
    Q_OBJECT
public:
    StudioActions(MainWindow& window, StudioSession& session);

    // The action of that object name, or null.
    QFunctorAction* action(const QString& name) const;
    // Enables each action as its condition says; Undo and Redo name their step.
    void update();
    // A click on the session in the status bar: a menu at at with what fits the session's state.
    void offerSessionAction(const QPoint& at);

private:
    QFunctorAction* add(QMenu* menu, const char* name, const QString& text, std::function<void()> run,
                        std::function<bool()> condition = {});

    MainWindow& m_window;
    StudioSession& m_session;
    std::map<QString, QFunctorAction*> m_actions;
};

}  // namespace hbrc::studio
