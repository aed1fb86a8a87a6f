#pragma once

#include "kelptr.h"

#include <string>

namespace kel4 {

/// The account a revision-control service acts for, and the session opened for it (if any).
/// Made by IFileVersionControl::CreateUserParameters (account only) or IFileVersionControl::Login
/// (account with an open session).
class KEL_INTERFACE IUserParameters : public IRefCounted
{
public:
    virtual std::string GetUserName() const = 0;
    virtual std::string GetWorkspace() const = 0;
    virtual std::string GetServer() const = 0;
    /// True when a log-in opened a session for this account (it may have expired since).
    virtual bool HasSession() const = 0;
};

}  // namespace kel4
