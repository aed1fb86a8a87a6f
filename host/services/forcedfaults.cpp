#include "forcedfaults.h"

namespace hbrc::host {

namespace {

revision::Result Forced(int code, std::string message)
{
    if (message.empty())
        message = "Injected failure (code " + std::to_string(code) + ")";
    return {code, std::move(message)};
}

}  // namespace

void ForcedFaults::failNextCalls(int count, int code, std::string message)
{
    m_failuresLeft = count;
    m_nextCallsFailure = Forced(code, std::move(message));
}

void ForcedFaults::failOperation(revision::Operation operation, int code, std::string message)
{
    m_operationFailures[operation] = Forced(code, std::move(message));
}

void ForcedFaults::clear()
{
    m_latency = std::chrono::milliseconds{0};
    m_failuresLeft = 0;
    m_operationFailures.clear();
}

std::optional<revision::Result> ForcedFaults::takeForcedFailure(revision::Operation operation)
{
    if (m_failuresLeft > 0) {
        --m_failuresLeft;
        return m_nextCallsFailure;
    }
    const auto found = m_operationFailures.find(operation);
    if (found != m_operationFailures.end())
        return found->second;
    return std::nullopt;
}

}  // namespace hbrc::host
