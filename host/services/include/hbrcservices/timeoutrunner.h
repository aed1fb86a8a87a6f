#pragma once

#include <depot/types.h>

#include <chrono>
#include <functional>

namespace kel4 {
class ITimeOutDelegate;
}

namespace hbrc::host {

// Runs a depot operation so that a slow one can be watched and aborted by the user.
//
// Without a delegate the operation runs on the calling thread. With one, it runs on a worker
// thread while the calling thread waits up to the threshold; an operation still running then makes
// the calling thread call the delegate's GetUserInput (which may run a modal progress box). When
// the operation ends while GetUserInput runs, Close is called from the calling thread's event loop,
// i.e. from inside that modal run. GetUserInput answering true (the user's Cancel) sets the cancel
// check that the depot polls, so the operation rolls back; the runner then waits for the worker to
// finish, so the operation never outlives the call.
class TimeOutRunner
{
public:
    using Operation = std::function<depot::Result(const depot::CancelCheck& cancel)>;

    void SetDelegate(kel4::ITimeOutDelegate* delegate) { m_delegate = delegate; }
    kel4::ITimeOutDelegate* Delegate() const { return m_delegate; }
    void SetThreshold(std::chrono::milliseconds threshold) { m_threshold = threshold; }
    std::chrono::milliseconds Threshold() const { return m_threshold; }

    depot::Result Run(const Operation& operation);

private:
    kel4::ITimeOutDelegate* m_delegate = nullptr;  // not owned
    std::chrono::milliseconds m_threshold{500};
};

}  // namespace hbrc::host
