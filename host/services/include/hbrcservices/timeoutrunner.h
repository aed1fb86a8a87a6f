#pragma once

#include <hbrcservices/export.h>

#include <hbrcservices/revisiontypes.h>

#include <chrono>
#include <functional>

namespace kel4 {
class ITimeOutDelegate;
}

namespace hbrc::host {

// Runs a server operation so that it always ends: within its deadline, or earlier when the user
// aborts it.
//
// The operation runs on a worker thread while the calling thread waits. When the application is
// interactive and a delegate is installed, an operation still running after the threshold makes
// the calling thread call the delegate's GetUserInput (which may run a modal progress box); when
// the operation ends while GetUserInput runs, Close is called from the calling thread's event loop,
// i.e. from inside that modal run. Without anyone to ask (batch), the calling thread just waits.
//
// The operation's cancel check turns true when the user answers GetUserInput with true (Cancel) or
// when the deadline has passed; the depot and the Subversion client poll it, so the operation rolls
// back. An operation blocked in a network read polls nothing: the interrupt given to Run ends that
// wait (it runs on the calling thread, repeatedly, until the worker has finished). The runner
// always waits for the worker, so the operation never outlives the call.
class HBRC_SERVICES_EXPORT TimeOutRunner
{
public:
    using Operation = std::function<revision::Result(const revision::CancelCheck& cancel)>;
    using Interrupt = std::function<void()>;
    using InteractiveCheck = std::function<bool()>;

    // How a run ended: the operation's result, and whether the deadline cut it short.
    struct Outcome
    {
        revision::Result result;
        bool pastDeadline = false;
    };

    TimeOutRunner();

    void SetDelegate(kel4::ITimeOutDelegate* delegate) { m_delegate = delegate; }
    kel4::ITimeOutDelegate* Delegate() const { return m_delegate; }
    void SetThreshold(std::chrono::milliseconds threshold) { m_threshold = threshold; }
    std::chrono::milliseconds Threshold() const { return m_threshold; }
    void SetDeadline(std::chrono::milliseconds deadline) { m_deadline = deadline; }
    std::chrono::milliseconds Deadline() const { return m_deadline; }
    // Whether someone can answer the delegate now; by default, whether a window is visible.
    void SetInteractiveCheck(InteractiveCheck interactive) { m_interactive = std::move(interactive); }

    // True when a slow operation would be shown to someone now: a delegate and a visible window.
    bool AsksUser() const { return m_delegate && m_interactive && m_interactive(); }

    Outcome Run(const Operation& operation, const Interrupt& interrupt = {});

private:
    kel4::ITimeOutDelegate* m_delegate = nullptr;  // not owned
    std::chrono::milliseconds m_threshold{500};
    std::chrono::milliseconds m_deadline{std::chrono::seconds(30)};
    InteractiveCheck m_interactive;
};

// True when the application shows a window, i.e. a person can answer a dialog; false when called
// off the application's thread.
HBRC_SERVICES_EXPORT bool ApplicationShowsWindow();

}  // namespace hbrc::host
