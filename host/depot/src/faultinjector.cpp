#include <depot/faultinjector.h>

namespace hbrc::depot {

namespace {

Result forced(int code, std::string message)
{
    if (message.empty())
        message = "Injected failure (code " + std::to_string(code) + ")";
    return {code, std::move(message)};
}

}  // namespace

void FaultInjector::failNextCalls(int count, int code, std::string message)
{
    m_failuresLeft = count;
    m_nextCallsFailure = forced(code, std::move(message));
}

void FaultInjector::failOperation(Operation operation, int code, std::string message)
{
    m_operationFailures[operation] = forced(code, std::move(message));
}

void FaultInjector::clear()
{
    m_latency = std::chrono::milliseconds{0};
    m_failuresLeft = 0;
    m_operationFailures.clear();
}

std::optional<Result> FaultInjector::takeForcedFailure(Operation operation)
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

}  // namespace hbrc::depot
