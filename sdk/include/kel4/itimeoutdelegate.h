#pragma once

#include "sdkglobal.h"

namespace kel4 {

/// Installed in the file version control service. When an operation runs long the service calls
/// GetUserInput, which may run a modal "operation in progress" box; when the operation ends while
/// that box is up, the service calls Close from inside that modal run.
class KEL_INTERFACE ITimeOutDelegate
{
public:
    /// Ends a running GetUserInput: the operation finished by itself.
    virtual void Close() = 0;
    /// Blocks until the user decides or Close is called; true when the user asked to abort.
    virtual bool GetUserInput() = 0;

protected:
    ~ITimeOutDelegate() = default;
};

}  // namespace kel4
