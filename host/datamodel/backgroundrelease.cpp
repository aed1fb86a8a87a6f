#include <hbrcdatamodel/backgroundrelease.h>

namespace hbrc::host {

namespace {

// Stops the worker when the process exits, before the leak check and before the statics that
// were made before the worker's first use (they may still close workspaces: freed at once).
struct StopAtExit
{
    ~StopAtExit() { BackgroundRelease::Instance().Stop(); }
};

}  // namespace

BackgroundRelease& BackgroundRelease::Instance()
{
    // Never destroyed: a workspace closed by a static destructor after the stop still finds it.
    static BackgroundRelease* const release = new BackgroundRelease;
    static const StopAtExit stopAtExit;
    return *release;
}

void BackgroundRelease::Hand(std::unique_ptr<Releasable> bulk)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_stopped || m_waiting.size() < kMostWaiting; });
    if (m_stopped) {
        lock.unlock();
        bulk.reset();
        return;
    }
    if (!m_worker.joinable())
        m_worker = std::thread([this] { Run(); });
    m_waiting.push_back(std::move(bulk));
    m_changed.notify_all();
}

void BackgroundRelease::Run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_stopped || !m_waiting.empty(); });
        if (m_waiting.empty())
            return;
        std::unique_ptr<Releasable> bulk = std::move(m_waiting.front());
        m_waiting.pop_front();
        m_changed.notify_all();
        lock.unlock();
        bulk.reset();
        lock.lock();
    }
}

void BackgroundRelease::Stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopped = true;
    }
    m_changed.notify_all();
    if (m_worker.joinable())
        m_worker.join();
}

}  // namespace hbrc::host
