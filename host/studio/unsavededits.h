#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <string>
#include <vector>

namespace hbrc::host {
class DataModelMgr;
}

namespace hbrc::studio {

// The one rule of what unsaved edits block: revert and getting the latest or another revision.
// Each rewrites files on disk while an asset's edits live in memory only: the asset would look up to date while dirty, and its next
// save would write the edits over what was brought (or a revert would drop the check-out the save
// needs). Revert asks the user once for all its files, so one asset with unsaved edits holds back
// all of them; Revert Unchanged and Get Latest ask nothing and act on the other files; Get This
// Revision brings one asset, so its unsaved edits hold it back.
class UnsavedEdits
{
    Q_DECLARE_TR_FUNCTIONS(UnsavedEdits)
public:
    enum class Rewrite { Revert, RevertUnchanged, GetLatest, GetRevision };

    struct Verdict
    {
        std::vector<std::string> files;  // what the operation may rewrite (empty: it does not run)
        QStringList blocking;            // the assets with unsaved edits, by name, once each
        QString warning;                 // names them for the log; empty when none held anything back
    };

    static Verdict check(const host::DataModelMgr& model, Rewrite rewrite, const std::vector<std::string>& files);
};

}  // namespace hbrc::studio
