#pragma once

#include <cstdint>

/// Result of a host operation: 0 success, positive success with a remark, negative failure.
class kelResult
{
public:
    constexpr kelResult(std::int32_t code = 0) : m_code(code) {}
    constexpr std::int32_t GetCode() const { return m_code; }
    constexpr bool IsSuccess() const { return m_code >= 0; }
    constexpr bool IsFailure() const { return m_code < 0; }
    constexpr bool operator==(const kelResult& other) const { return m_code == other.m_code; }
    constexpr bool operator!=(const kelResult& other) const { return m_code != other.m_code; }

private:
    std::int32_t m_code;
};

namespace kel4 {

/// Result codes that callers act on.
enum ResultCode : std::int32_t {
    kResultSuccess = 0,
    kResultEmptyQuery = 1,        // a status question about no objects
    kResultCommandRefused = -1,   // the command manager would not run a command
    kResultFailed = -2,           // an operation failed; its error text says why
    kResultSessionUnusable = -34  // server unreachable or session expired: log in again
};

}  // namespace kel4
