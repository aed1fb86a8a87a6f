#pragma once

#include "revisionoperations.h"

#include <QCoreApplication>

#include <string>
#include <vector>

namespace hbrc::studio {

// The server side of the pending-changes commands, each one RevisionOperations::Work. Files are
// local paths, changelists ids ("" for the default changelist).
class ChangelistWork
{
    Q_DECLARE_TR_FUNCTIONS(ChangelistWork)
public:
    using Files = std::vector<std::string>;

    // What submitting the checked files of one pending changelist takes. Unchecked files of a
    // numbered changelist go back to the default changelist first, so that only what was checked is
    // submitted; checked files of the default changelist go into a new numbered changelist, since
    // only a numbered one is submitted.
    struct SubmitPlan
    {
        std::string changelist;  // "" when a new one is made from the default changelist
        Files toDefault;
        Files intoNew;
        std::size_t fileCount = 0;
    };
    static SubmitPlan planSubmit(const revision::PendingChangelist& pending, const Files& checked);

    static RevisionOperations::Work submit(SubmitPlan plan, std::string description);
    static RevisionOperations::Work reopen(Files files, std::string changelist);
    // Makes a numbered changelist and moves files (if any) into it.
    static RevisionOperations::Work newChangelist(std::string description, Files files);
    static RevisionOperations::Work deleteChangelist(std::string changelist);
    static RevisionOperations::Work setDescription(std::string changelist, std::string description);
    static RevisionOperations::Work revert(Files files);
    // files empty: every open file. The log names the reverted files by their depot paths.
    static RevisionOperations::Work revertUnchanged(Files files);
    // Reverts the check-out of an asset's files when they are unchanged from the revision the user
    // has, and says which it was.
    static RevisionOperations::Work revertUnchangedCheckOut(Files files, QString asset);
    // Brings the head revision of files into the workspace.
    static RevisionOperations::Work getLatest(Files files, QString names);
    // Brings files to the revisions named: an asset as of one of its changes.
    static RevisionOperations::Work getRevision(std::vector<revision::FileAtRevision> files, QString asset,
                                                QString change);
};

}  // namespace hbrc::studio
