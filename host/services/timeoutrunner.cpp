#include <hbrcservices/timeoutrunner.h>

#include <kel4/itimeoutdelegate.h>

#include <QObject>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace hbrc::host {

namespace {

// What the worker and the calling thread share; owned jointly so that neither outlives it.
struct WorkerState
{
    std::mutex mutex;
    std::condition_variable finished;
    bool done = false;
    depot::Result result;
    std::atomic<bool> cancelRequested{false};
};

}  // namespace

depot::Result TimeOutRunner::Run(const Operation& operation)
{
    if (!m_delegate)
        return operation({});

    kel4::ITimeOutDelegate* const delegate = m_delegate;
    auto state = std::make_shared<WorkerState>();
    // Lives in the calling thread: the worker's "done" notice is delivered through its event loop.
    QObject calling;
    bool waitingForUser = false;

    std::thread worker([&, state] {
        depot::Result result = operation([state] { return state->cancelRequested.load(); });
        {
            std::lock_guard<std::mutex> lock(state->mutex);
            state->result = std::move(result);
            state->done = true;
        }
        state->finished.notify_all();
        // Dropped unread when `calling` is destroyed before the calling thread's loop ran again.
        QMetaObject::invokeMethod(
            &calling,
            [&waitingForUser, delegate] {
                if (waitingForUser)
                    delegate->Close();
            },
            Qt::QueuedConnection);
    });

    bool finishedInTime = false;
    {
        std::unique_lock<std::mutex> lock(state->mutex);
        finishedInTime = state->finished.wait_for(lock, m_threshold, [&] { return state->done; });
    }
    if (!finishedInTime) {
        waitingForUser = true;
        const bool abort = delegate->GetUserInput();
        waitingForUser = false;
        if (abort)
            state->cancelRequested = true;
    }
    worker.join();
    return state->result;
}

}  // namespace hbrc::host
