#include <hbrcservices/timeoutrunner.h>

#include <kel4/itimeoutdelegate.h>

#include <QGuiApplication>
#include <QThread>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace hbrc::host {

namespace {

using Clock = std::chrono::steady_clock;

// How often a call past its deadline, or cancelled, is interrupted again until it has ended: a
// network wait may begin after the previous interrupt.
constexpr std::chrono::milliseconds kInterruptRepeat{100};

// What the worker and the calling thread share; owned jointly so that neither outlives it.
struct WorkerState
{
    std::mutex mutex;
    std::condition_variable finished;
    bool done = false;
    revision::Result result;
    std::atomic<bool> userCancelled{false};

    // True when the worker has finished by `until`.
    bool WaitUntil(Clock::time_point until)
    {
        std::unique_lock<std::mutex> lock(mutex);
        return finished.wait_until(lock, until, [this] { return done; });
    }
};

}  // namespace

bool ApplicationShowsWindow()
{
    // Windows belong to the application's thread; a call made on another one asks nobody.
    const QCoreApplication* application = QCoreApplication::instance();
    if (!qobject_cast<const QGuiApplication*>(application) || QThread::currentThread() != application->thread())
        return false;
    const QWindowList windows = QGuiApplication::topLevelWindows();
    return std::any_of(windows.begin(), windows.end(), [](const QWindow* window) { return window->isVisible(); });
}

TimeOutRunner::TimeOutRunner() : m_interactive(ApplicationShowsWindow) {}

TimeOutRunner::Outcome TimeOutRunner::Run(const Operation& operation, const Interrupt& interrupt)
{
    const Clock::time_point deadline = Clock::now() + m_deadline;
    // Nobody can press Cancel in a batch run: the operation then just runs until its deadline.
    kel4::ITimeOutDelegate* const delegate = AsksUser() ? m_delegate : nullptr;
    auto state = std::make_shared<WorkerState>();
    // Lives in the calling thread: the worker's "done" notice is delivered through its event loop.
    QObject calling;
    bool waitingForUser = false;

    std::thread worker([&operation, &calling, &waitingForUser, delegate, state, deadline] {
        revision::Result result =
            operation([state, deadline] { return state->userCancelled.load() || Clock::now() >= deadline; });
        {
            std::lock_guard<std::mutex> lock(state->mutex);
            state->result = std::move(result);
            state->done = true;
        }
        state->finished.notify_all();
        if (!delegate)
            return;
        // Dropped unread when `calling` is destroyed before the calling thread's loop ran again.
        QMetaObject::invokeMethod(
            &calling,
            [&waitingForUser, delegate] {
                if (waitingForUser)
                    delegate->Close();
            },
            Qt::QueuedConnection);
    });

    if (delegate && !state->WaitUntil(std::min(Clock::now() + m_threshold, deadline)) && Clock::now() < deadline) {
        // The progress box goes away at the deadline as when the operation ends.
        QTimer::singleShot(std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()), &calling,
                           [&waitingForUser, delegate] {
                               if (waitingForUser)
                                   delegate->Close();
                           });
        waitingForUser = true;
        const bool abort = delegate->GetUserInput();
        waitingForUser = false;
        if (abort)
            state->userCancelled = true;
    }
    for (;;) {
        const bool stopping = state->userCancelled || Clock::now() >= deadline;
        if (state->WaitUntil(stopping ? Clock::now() + kInterruptRepeat : deadline))
            break;
        if (interrupt && (state->userCancelled || Clock::now() >= deadline))
            interrupt();
    }
    worker.join();

    Outcome outcome{state->result, false};
    if (outcome.result.ok())
        return outcome;
    if (state->userCancelled) {
        // An interrupted network wait fails as a broken connection; the user asked to stop.
        if (outcome.result.code != revision::code::Cancelled)
            outcome.result = {revision::code::Cancelled, "The operation was cancelled"};
    } else {
        outcome.pastDeadline = Clock::now() >= deadline;
    }
    return outcome;
}

}  // namespace hbrc::host
