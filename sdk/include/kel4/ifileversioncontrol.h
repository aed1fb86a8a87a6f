#pragma once

#include "containers.h"
#include "iservice.h"
#include "iuserparameters.h"
#include "kelptr.h"
#include "kelresult.h"

#include <string>

namespace kel4 {
class ITimeOutDelegate;

/// File-level revision control: status, revert and delete of files, accounts and sessions.
/// Every operation on a list of files is one server round trip. An operation that cannot reach the
/// server or whose session has expired returns kResultSessionUnusable (-34).
class KEL_INTERFACE IFileVersionControl : public IService
{
public:
    static InterfaceId GetIID() { return {"kel4.IFileVersionControl"}; }

    /// Called by the service while a long operation runs; the delegate is not owned.
    virtual void SetTimeOutDelegate(ITimeOutDelegate* delegate) = 0;

    /// Opens a session; null on failure with the reason in errorText (a wrong or missing password
    /// gives a text containing "Invalid password").
    virtual KELPtr<IUserParameters> Login(const std::string& userName, const std::string& password,
                                          const std::string& workspace, const std::string& server,
                                          std::string& errorText) = 0;

    /// Describes an account without logging in; null with the reason in errorText when the account
    /// cannot be used (unknown server, user or workspace).
    virtual KELPtr<IUserParameters> CreateUserParameters(const std::string& userName, const std::string& password,
                                                         const std::string& server, const std::string& workspace,
                                                         std::string& errorText) = 0;

    /// One status word (see RevisionStatus) and the changelist each file is open in ("" for the
    /// default changelist or a file not opened), in the order of files.
    virtual kelResult GetStatus(const IUserParameters* user, const List<std::string>& files,
                                List<unsigned>& statuses, List<std::string>& changelists,
                                std::string& errorText, int options) = 0;

    /// Reverts the opened files to their have-revision (files opened for add are just un-opened).
    virtual kelResult Revert(const IUserParameters* user, const List<std::string>& files, std::string& errorText,
                             int options, int reserved) = 0;

    /// Opens the files for delete in the changelist ("" for the default changelist).
    virtual kelResult MarkForDeleteInChangelist(const IUserParameters* user, const List<std::string>& files,
                                                const std::string& changelist, std::string& errorText) = 0;

    /// The other users that hold any of the files (opened or locked), sorted, without duplicates.
    virtual kelResult GetUsersOfFiles(const IUserParameters* user, const List<std::string>& files,
                                      List<std::string>& users, std::string& errorText) = 0;
};

}  // namespace kel4
