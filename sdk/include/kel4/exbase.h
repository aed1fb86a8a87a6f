#pragma once

#include "sdkglobal.h"

#include <stdexcept>
#include <string>

namespace kel4 {

/// Writes a diagnostic line to the host's debug output (stderr, and any capture a test installs).
KEL_RUNTIME_API void PrintDebugString(const char* text);

/// Base of the host's exceptions. The host raises them for programming errors only; ordinary
/// failures come back as kelResult codes.
class KEL_INTERFACE ExBase : public std::runtime_error
{
public:
    ExBase(const char* function, const char* location, const std::string& what)
        : std::runtime_error(what), m_function(function), m_location(location) {}

    const std::string& GetFunction() const { return m_function; }
    const std::string& GetLocation() const { return m_location; }
    std::string GetErrorString() const
    {
        return std::string(what()) + " in " + m_function + " (" + m_location + ")";
    }

    /// Raised when a host pointer that must not be null is null.
    class KEL_INTERFACE NullPtr;

private:
    std::string m_function;
    std::string m_location;
};

class KEL_INTERFACE ExBase::NullPtr : public ExBase
{
public:
    NullPtr(const char* function, const char* location)
        : ExBase(function, location, "Null pointer dereferenced") {}
};

/// While at least one guard lives, the host does not print the text of the exceptions it raises.
class KEL_RUNTIME_API DisableErrorReportingGuard
{
public:
    DisableErrorReportingGuard();
    ~DisableErrorReportingGuard();
    DisableErrorReportingGuard(const DisableErrorReportingGuard&) = delete;
    DisableErrorReportingGuard& operator=(const DisableErrorReportingGuard&) = delete;

    static bool IsErrorReportingDisabled();
};

/// Builds the null-pointer exception, prints its text unless reporting is disabled, and throws it.
[[noreturn]] inline void RaiseNullPtr(const char* location)
{
    ExBase::NullPtr error("GetPointeeNotNull", location);
    if (!DisableErrorReportingGuard::IsErrorReportingDisabled())
        PrintDebugString(error.GetErrorString().c_str());
    throw error;
}

}  // namespace kel4
