#pragma once

#include "revisionoperations.h"

#include <QCoreApplication>
#include <QString>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace hbrc::studio {

// A workspace file changed without being opened, the action that brings it under revision control
// and what happened to it on the server meanwhile.
struct ReconcileItem
{
    std::string localPath;
    revision::FileAction action = revision::FileAction::Edit;
    std::vector<revision::FileHolder> heldBy;  // other users' holds: open for an action, locked
    std::int64_t haveRevision = 0;
    std::int64_t headRevision = 0;
    std::string newerBy;  // who submitted the head revision, when the workspace has an older one

    bool behind() const { return haveRevision > 0 && headRevision > haveRevision; }
    // An edit over a newer revision: reconcile brings the file to that revision and puts the
    // user's content back over it before opening it ("keep mine").
    bool keepsMine() const { return action == revision::FileAction::Edit && behind(); }
};

// What the survey found: the files to reconcile, in path order, and the journal's files that
// need nothing any more (open in this workspace already, or created and deleted again).
struct ReconcileSurvey
{
    std::vector<ReconcileItem> items;
    std::vector<std::string> settled;
    std::string scanProblem;  // why the scan of the workspace did not answer ("": it did)
};

// The user's choice in the Reconcile dialog: the files and the changelist they go into, a new one
// with newDescription when that is not empty.
struct ReconcileChoice
{
    std::vector<ReconcileItem> items;
    revision::ChangelistId changelist;
    std::string newDescription;
    // The kept copy of each file that keeps the user's content (keepsMine), written before the
    // reconcile runs. The reconcile leaves them: KeptContent::recover lets them go.
    std::map<std::string, QString> keptCopies;
};


// The server side of reconciling work done offline, each one RevisionOperations::Work.
class ReconcileWork
{
    Q_DECLARE_TR_FUNCTIONS(ReconcileWork)
public:
    using Files = std::vector<std::string>;

    // The facts of each file in one place: whether it is on the disk, its status, and whether the
    // scan found its content changed (unchangedKnown: the scan answered and did not name it). A
    // file the workspace has is edited or deleted, one it has not is added; one that is open here
    // already, is neither on the disk nor in the workspace, or is on the disk as the workspace's
    // revision has it (made writable offline, not changed) needs nothing.
    static ReconcileSurvey plan(const Files& files, const std::vector<revision::FileStatus>& statuses,
                                const std::vector<bool>& onDisk, const std::vector<bool>& unchangedKnown);
    // Lists the journal's files and those the scan of the workspace finds, with one status question
    // for all and one history question for those with a newer revision on the server.
    static RevisionOperations::Work survey(Files journalled, std::shared_ptr<ReconcileSurvey> into);
    // Opens the chosen files with one call per action needed, all or none: when a call is refused,
    // what the earlier calls opened is reverted, keeping the user's content, and a changelist made
    // for them is deleted again. A file that keeps the user's content over a newer revision is
    // first removed (its content is in its kept copy) and brought to that revision, which neither
    // backend then merges, and gets the kept content back before it is opened; a failure brings it
    // back to the revision it had, for the kept content to go back over.
    static RevisionOperations::Work reconcile(ReconcileChoice choice, std::shared_ptr<Files> opened);

    // "add", "edit", "delete" as the dialog shows them, and what keeping the user's content means.
    static QString actionText(const ReconcileItem& item);
    // What happened on the server, for the dialog ("locked by bob; revision 3 was submitted by bob").
    static QString serverText(const ReconcileItem& item);
};

}  // namespace hbrc::studio
