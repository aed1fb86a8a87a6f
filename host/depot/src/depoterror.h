#pragma once

#include <stdexcept>
#include <string>

#include <depot/types.h>

namespace hbrc::depot {

// Thrown inside an operation to abandon it; the operation's frame turns it into its Result and
// the open transaction rolls back.
class DepotError : public std::runtime_error
{
public:
    DepotError(int code, const std::string& message) : std::runtime_error(message), m_code(code) {}
    int code() const { return m_code; }

private:
    int m_code;
};

}  // namespace hbrc::depot
