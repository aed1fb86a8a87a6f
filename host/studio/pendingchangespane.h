#pragma once

#include "pendingchangesmodel.h"
#include "unsavededits.h"

#include <QDockWidget>

#include <string>
#include <vector>

class QFunctorAction;
class QLabel;
class QListViewDragDrop;
class QMenu;
class QTreeView;

namespace hbrc::host {
class Workspace;
}

namespace hbrc::studio {

class RevisionOperations;
struct OperationOutcome;

// The "Pending Changes" dock: the session's pending changelists and their files (a
// PendingChangesModel) with Submit, Revert, Revert Unchanged, New Changelist, Delete Changelist
// and Edit Description, a context menu to move files to another changelist, and drag and drop of
// files onto a changelist. Every server step runs through RevisionOperations; while one runs the
// pane says so and its commands are disabled. Submit acts on the current changelist; Revert and
// Revert Unchanged on the checked files (Revert Unchanged on all files when none is checked); neither
// touches the files of an asset with unsaved edits.
class PendingChangesPane : public QDockWidget
{
    Q_OBJECT
public:
    PendingChangesPane(RevisionOperations& operations, QWidget* parent = nullptr);
    ~PendingChangesPane() override;

    // The workspace whose files are listed (null: none; the pane is then empty).
    void setWorkspace(host::Workspace* workspace);
    // Asks the server for the pending changelists again.
    void refresh();

    PendingChangesModel& model() { return m_model; }
    QTreeView* view() const { return m_view; }
    // The command of that object name ("submit", "revert", ...), or null.
    QFunctorAction* action(const QString& name) const;
    // The "Move to Changelist" menu for the selected files: every other changelist, then
    // "New Changelist...".
    void fillMoveMenu(QMenu& menu);

signals:
    // A command refused before asking the server, or a note: for the log and the status bar.
    void message(int level, const QString& text);

private:
    QFunctorAction* addCommand(const char* name, const QString& text, std::function<void()> run,
                               std::function<bool()> condition);
    void takeOutcome(const OperationOutcome& outcome);
    void updateCommands();
    bool idle() const;
    std::string currentChangelist() const;
    std::vector<std::string> selectedFiles() const;
    // What unsaved edits leave to the revert; names in the log the assets they hold back.
    UnsavedEdits::Verdict checkUnsaved(UnsavedEdits::Rewrite rewrite, const std::vector<std::string>& files);
    QStringList fileNames(const std::vector<std::string>& files) const;
    bool confirmRevert(const std::vector<std::string>& files);

    void submit();
    void revert();
    void revertUnchanged();
    void newChangelist();
    void deleteChangelist();
    void editDescription();
    void moveFiles(const std::vector<std::string>& files, const std::string& changelist);
    void moveToNewChangelist(const std::vector<std::string>& files);

    RevisionOperations& m_operations;
    host::Workspace* m_workspace = nullptr;
    PendingChangesModel m_model;
    QTreeView* m_view = nullptr;
    QLabel* m_busy = nullptr;
    QListViewDragDrop* m_dragDrop = nullptr;
};

}  // namespace hbrc::studio
