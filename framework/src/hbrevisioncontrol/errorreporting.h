#pragma once

// Turning a failed revision operation into a message a user can act on, and showing or logging it.
#include "internalvisibility.h"

#include <kel4/containers.h>
#include <kel4/idatacontrol.h>
#include <kel4/ifileversioncontrol.h>
#include <kel4/iuserparameters.h>
#include <kel4/kelhandle.h>
#include <kel4/kelptr.h>
#include <kel4/revisionstatus.h>

#include <set>
#include <string>

HBRC_INTERNAL_NAMESPACE_BEGIN

// The status flags each operation explains when it fails; ascending order is the order of the lines.
inline const std::set<unsigned> kCheckOutErrorFlags{
    kel4::eStatusCheckedOutByOthers, kel4::eStatusMarkedForAdd,          kel4::eStatusMarkedForAddByOthers,
    kel4::eStatusMarkedForDelete,    kel4::eStatusMarkedForDeleteByOthers, kel4::eStatusNotHeadRevision,
    kel4::eStatusNotInDatabase,      kel4::eStatusIOError,                kel4::eStatusLockedByOthers};
// eStatusCheckedOut (checked out by this user) has no line of its own and contributes nothing.
inline const std::set<unsigned> kMarkForAddErrorFlags{
    kel4::eStatusCheckedOut,              kel4::eStatusCheckedOutByOthers, kel4::eStatusMarkedForAddByOthers,
    kel4::eStatusMarkedForDeleteByOthers, kel4::eStatusIOError,           kel4::eStatusLockedByOthers};
inline const std::set<unsigned> kMarkForDeleteErrorFlags{
    kel4::eStatusCheckedOutByOthers, kel4::eStatusMarkedForAddByOthers, kel4::eStatusMarkedForDeleteByOthers,
    kel4::eStatusNotHeadRevision,    kel4::eStatusNotInDatabase,        kel4::eStatusIOError,
    kel4::eStatusLockedByOthers};

// Explains why an operation on objects failed: asks the data control for the objects' status and
// appends one line per flag of flags that some object carries (then the users holding the files)
// to message, which the caller has already started. details becomes "Files:\n" and the objects'
// files. Returns 1 when the status itself could not be read (message says why), 0 otherwise.
int GetErrorStrings(KELPtr<kel4::IDataControl> dataControl, const kel4::List<KELHandle<IDbObject>>& objects,
                    bool includeExternalFiles, const std::set<unsigned>& flags, const std::string& errorString,
                    std::string& message, std::string& details);

// The same explanation for plain files whose combined status word the caller already has; the
// users holding them come from the file version control service.
void AddErrorString(KELPtr<kel4::IFileVersionControl> fileVersionControl, const kel4::IUserParameters* userParameters,
                    const kel4::List<std::string>& files, unsigned combinedStatus, const std::set<unsigned>& flags,
                    const std::string& errorString, std::string& message);

// Replaces out with every path of [first, last), each followed by "\n". The paths may be strings
// or std::filesystem::path values.
template <class Iterator>
void CookUpFileListString(Iterator first, Iterator last, std::string& out)
{
    out.clear();
    for (; first != last; ++first) {
        out += std::string(*first);
        out += '\n';
    }
}

// Asks the file version control for the status of files; on success status becomes the OR of
// their status words. A failing query's result is returned as it is and status is left alone.
kelResult GetAllFilesStatus(KELPtr<kel4::IFileVersionControl> fileVersionControl,
                            const kel4::IUserParameters* userParameters, const kel4::List<std::string>& files,
                            unsigned& status);

// Marks files, which a save deleted, for delete in changelist ("" for the default changelist).
// On failure message says which files could not be marked and why (their status, the users
// holding them) and the failing result is returned; errorString is the service's error text.
kelResult MarkFilesForDeleteInChangelist(KELPtr<kel4::IFileVersionControl> fileVersionControl,
                                         const kel4::IUserParameters* userParameters,
                                         const kel4::List<std::string>& files, const std::string& changelist,
                                         std::string& errorString, std::string& message);

// Reports a failure titled title. Interactive: a critical box with Ok and Retry; true when the
// user chose Retry. Batch: the host log at message type 2, and false.
bool HandleError(const std::string& title, const std::string& text);

// Writes a failure that a batch run cannot show: one host log entry of message type 2 holding the
// message, "\nDetails:\n" and the details.
void LogFailure(const std::string& message, const std::string& details);

HBRC_INTERNAL_NAMESPACE_END
