#include "studioactions.h"

#include "assetbrowser.h"
#include "assetcommands.h"
#include "assetdialogs.h"
#include "assetedits.h"
#include "assetwatches.h"
#include "mainwindow.h"
#include "offlinework.h"
#include "reconciler.h"
#include "revisionoperations.h"
#include "sessioncontroller.h"
#include "studiosession.h"
#include "submittedchangesdock.h"

#include <qtextention/qfunctoraction.h>

#include <QMenu>
#include <QMenuBar>
#include <QTreeView>

namespace hbrc::studio {

StudioActions::StudioActions(MainWindow& window, StudioSession& session)
    : QObject(&window), m_window(window), m_session(session)
{
    auto open = [&session] { return session.currentWorkspace() != nullptr; };
    auto selection = [&window] { return !window.browser().currentAsset().IsNull(); };
    auto selected = [&window] { return window.browser().currentAsset(); };
    AssetCommands& commands = window.assetCommands();
    AssetDialogs& dialogs = window.assetDialogs();
    SessionController& sessionController = window.sessionController();
    QMenu* file = window.menuBar()->addMenu(tr("&File"));
    add(file, "openWorkspace", tr("&Open Workspace..."), [&window] { window.openFolder(); })
        ->setShortcut(QKeySequence::Open);
    add(file, "newAsset", tr("&New Asset..."), [&window] { window.newAsset(); }, open)->setShortcut(QKeySequence::New);
    add(file, "deleteAsset", tr("&Delete Asset"), [&dialogs, selected] { dialogs.deleteAsset(selected()); }, selection);
    add(file, "renameAsset", tr("&Rename..."), [&dialogs, selected] { dialogs.renameAsset(selected()); }, selection)
        ->setShortcut(Qt::Key_F2);
    add(file, "addExternalFile", tr("&Add External File..."), [&dialogs, selected] { dialogs.addExternalFile(selected()); }, selection);
    add(file, "removeExternalFile", tr("Re&move External File..."), [&dialogs, selected] { dialogs.removeExternalFile(selected()); }, selection);
    file->addSeparator();
    add(file, "save", tr("&Save"), [&window] { window.save(); }, open)->setShortcut(QKeySequence::Save);
    add(file, "closeWorkspace", tr("&Close"), [&window] {
        if (window.askToKeepUnsaved())
            window.closeWorkspace();
    }, open);
    file->addSeparator();
    add(file, "quit", tr("&Quit"), [&window] { window.close(); })->setShortcut(QKeySequence::Quit);

    QMenu* edit = window.menuBar()->addMenu(tr("&Edit"));
    add(edit, "undo", tr("&Undo"), [&window] { window.assetEdits().undo(); }, [&session] { return session.host().Commands().CanUndo(); })
        ->setShortcut(QKeySequence::Undo);
    // A redo may check out again: not before the revert of an undone check-out has run.
    add(edit, "redo", tr("&Redo"), [&window] { window.assetEdits().redo(); },
              [&window, &session] { return session.host().Commands().CanRedo() && !window.operations().isWorking(); })
        ->setShortcut(QKeySequence::Redo);
    edit->addSeparator();
    add(edit, "find", tr("&Find"), [&window] { window.browser().focusSearch(); }, open)->setShortcut(QKeySequence::Find);

    QMenu* revision = window.menuBar()->addMenu(tr("&Revision Control"));
    add(revision, "checkOut", tr("&Check Out"), [&commands, selected] { commands.checkOut(selected()); }, selection);
    add(revision, "makeWritable", tr("Make &Writable"), [&commands, selected] { commands.makeWritable(selected()); }, selection);
    add(revision, "markForAdd", tr("Mark for &Add"), [&commands, selected] { commands.markForAdd(selected()); }, selection);
    add(revision, "getLatest", tr("&Get Latest"), [&commands, selected] { commands.getLatest({selected()}); },
              [&commands, selected] { return commands.isBehind(selected()); });
    add(revision, "getLatestAll", tr("Get Latest of A&ll Assets"), [&commands, selected] { commands.getLatest(commands.assetsBehind()); },
              [&commands] { return !commands.assetsBehind().empty(); });
    AssetWatches& watches = window.assetWatches();
    add(revision, "watchAsset", tr("Tell &Me When It's Free"), [&watches, selected] { watches.toggle(selected()); },
        [&watches, selected] { return watches.mayToggle(selected()); })
        ->setCheckable(true);
    revision->addSeparator();
    add(revision, "showFiles", tr("Show &Files"), [&commands, selected] { commands.showFiles(selected(), false); }, selection);
    add(revision, "revealInFileBrowser", tr("Reveal in File &Browser"), [&commands, selected] { commands.showFiles(selected(), true); }, selection);
    add(revision, "refreshStatus", tr("&Refresh Status"), [&window] { window.refreshStatus(); }, open)
        ->setShortcut(QKeySequence::Refresh);
    add(revision, "submittedChanges", tr("Submitted C&hanges"), [&window] {
        window.submittedChanges().show();
        window.submittedChanges().raise();
    }, open);
    revision->addSeparator();
    add(revision, "logIn", tr("Log &In..."), [&sessionController] { sessionController.logIn(); },
              [&sessionController] { return sessionController.hasServer(); });
    add(revision, "logOut", tr("Log &Out"), [&sessionController] { sessionController.logOut(); },
              [&sessionController] { return sessionController.hasSession(); });
    add(revision, "turnRevisionControlOn", tr("Turn Revision Control &On"),
              [&sessionController] { sessionController.turnRevisionControlOn(); },
              [&sessionController] { return sessionController.hasServer() && !sessionController.revisionControlOn(); });
    revision->addSeparator();
    OfflineWork& offline = window.offlineWork();
    Reconciler& reconciler = window.reconciler();
    QFunctorAction* workOffline = add(revision, "workOffline", tr("Work O&ffline"), {},
                                      [&sessionController] { return sessionController.hasServer(); });
    workOffline->setCheckable(true);
    connect(workOffline, &QAction::triggered, &offline, &OfflineWork::setWorkingOffline);
    connect(&offline, &OfflineWork::offlineChanged, workOffline, &QAction::setChecked);
    add(revision, "reconcile", tr("Reconc&ile Offline Work..."), [&reconciler] { reconciler.start(); },
        [&sessionController, &offline, &reconciler] {
            return sessionController.hasSession() && !offline.isOffline() && !reconciler.isBusy();
        });
    revision->addSeparator();
    add(revision, "settings", tr("&Settings..."), [&window] { window.showSettings(); });
    for (QMenu* menu : {file, edit, revision})
        connect(menu, &QMenu::aboutToShow, this, &StudioActions::update);

    // The asset commands also on a right click in the browser (the click makes the row current).
    QTreeView* assets = window.browser().view();
    assets->setContextMenuPolicy(Qt::ActionsContextMenu);
    for (const char* name : {"checkOut", "makeWritable", "markForAdd", "getLatest", "watchAsset", "", "showFiles",
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

QFunctorAction* StudioActions::add(QMenu* menu, const char* name, const QString& text, std::function<void()> run,
                                   std::function<bool()> condition)
{
    auto* action = new QFunctorAction(text, std::move(run), parent());
    action->setObjectName(QString::fromLatin1(name));
    if (condition)
        action->setCondition(std::move(condition));
    menu->addAction(action);
    m_actions[action->objectName()] = action;
    return action;
}

void StudioActions::offerSessionAction(const QPoint& at)
{
    static const std::map<SessionAction, const char*> kActions{
        {SessionAction::LogIn, "logIn"},
        {SessionAction::LogOut, "logOut"},
        {SessionAction::TurnRevisionControlOn, "turnRevisionControlOn"},
        {SessionAction::WorkOnline, "workOffline"},
    };
    auto* menu = new QMenu(&m_window);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const SessionAction fitting = m_window.sessionController().fittingAction();
    if (const auto found = kActions.find(fitting); found != kActions.end())
        menu->addAction(action(QString::fromLatin1(found->second)));
    else if (fitting == SessionAction::Retry)
        connect(menu->addAction(tr("&Retry")), &QAction::triggered, this, [this] {
            m_window.sessionController().retry();
        });
    if (menu->isEmpty()) {
        delete menu;
        return;
    }
    update();
    menu->popup(at);
}

QFunctorAction* StudioActions::action(const QString& name) const
{
    const auto found = m_actions.find(name);
    return found == m_actions.end() ? nullptr : found->second;
}

void StudioActions::update()
{
    for (const auto& [name, action] : m_actions)
        action->updateEnabled();
    action(QStringLiteral("watchAsset"))
        ->setChecked(m_window.assetWatches().isWatching(m_window.browser().currentAsset()));
    // Every step is an edit of the user's, named after it (EditStepCommand).
    const nrk::fwk::ICommand* undo = m_session.host().Commands().GetUndoCommand();
    action(QStringLiteral("undo"))
        ->setText(undo ? tr("&Undo %1").arg(QString::fromStdString(undo->GetName())) : tr("&Undo"));
    const nrk::fwk::ICommand* redo = m_session.host().Commands().GetRedoCommand();
    action(QStringLiteral("redo"))
        ->setText(redo ? tr("&Redo %1").arg(QString::fromStdString(redo->GetName())) : tr("&Redo"));
}

}  // namespace hbrc::studio
