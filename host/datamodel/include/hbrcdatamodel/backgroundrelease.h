#pragma once

#include <hbrcdatamodel/export.h>

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace hbrc::host {

// Frees the bulk storage of a closed workspace (the object store's slots and tables, the item
// library's tables, a host's rows of it) on a worker thread: hundreds of thousands of small heap
// blocks take the UI thread well over a hundred milliseconds to free at 100,000 assets.
//
// Hand over only data that nothing else can reach any more, or whose sharing counts atomically
// (implicitly shared Qt values, std::shared_ptr): no handles, KELPtr-counted objects or QObjects
// that the plug-in or the services use, since the worker destroys what it is given without any
// lock of theirs. Bulks are freed in the order they are handed over; at
// most kMostWaiting wait for the worker, and handing over one more waits until the worker takes
// the next, so that quick open/close cycles cannot pile up the memory of closed workspaces.
//
// The worker is started on first use and joined when the process exits, after it has freed all
// it was given; whatever is handed over after that is freed at once on the calling thread.
class HBRC_DATAMODEL_EXPORT BackgroundRelease
{
public:
    // Room for the bulks of a closed workspace (the browser's rows, the store, the library) while
    // the worker frees the one closed before it.
    static constexpr std::size_t kMostWaiting = 3;

    static BackgroundRelease& Instance();

    // Takes the bulk (moved in: the caller keeps an empty shell) and frees it on the worker.
    template <typename Bulk>
    void Free(Bulk bulk)
    {
        Hand(std::make_unique<Held<Bulk>>(std::move(bulk)));
    }
    // Frees what is waiting, joins the worker and frees every later bulk on the caller's thread.
    void Stop();

private:
    struct Releasable
    {
        virtual ~Releasable() = default;
    };
    template <typename Bulk>
    struct Held final : Releasable
    {
        explicit Held(Bulk&& held) : bulk(std::move(held)) {}
        Bulk bulk;
    };

    BackgroundRelease() = default;
    void Hand(std::unique_ptr<Releasable> bulk);
    void Run();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::unique_ptr<Releasable>> m_waiting;
    bool m_stopped = false;
    std::thread m_worker;
};

}  // namespace hbrc::host
