// The background release frees the bulks of closed workspaces on its worker, in the order they
// come, and holds back the one that would make more than kMostWaiting wait behind the worker.
#include <hbrcdatamodel/backgroundrelease.h>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <numeric>
#include <thread>
#include <vector>

namespace {

using hbrc::host::BackgroundRelease;
using namespace std::chrono_literals;

// Bulks whose freeing waits until the gate opens, then notes the bulk's number and thread.
struct Frees
{
    std::shared_future<void> gate;
    std::mutex mutex;
    std::vector<int> order;
    std::vector<std::thread::id> threads;

    void operator()(int* number)
    {
        gate.wait();
        const std::lock_guard lock(mutex);
        order.push_back(*number);
        threads.push_back(std::this_thread::get_id());
        delete number;
    }
};
using GatedBulk = std::unique_ptr<int, std::reference_wrapper<Frees>>;

TEST(BackgroundRelease, FreesOnItsWorkerInOrderAndHoldsBackWhatWouldPileUp)
{
    std::promise<void> opening;
    Frees frees;
    frees.gate = opening.get_future().share();
    BackgroundRelease& release = BackgroundRelease::Instance();
    // The worker takes the first bulk and stops at the gate; the next ones wait behind it.
    std::vector<int> handedOver(BackgroundRelease::kMostWaiting + 2);
    std::iota(handedOver.begin(), handedOver.end(), 0);
    for (std::size_t number = 0; number + 1 < handedOver.size(); ++number)
        release.Free(GatedBulk(new int(handedOver[number]), frees));
    std::future<void> oneMore =
        std::async(std::launch::async, [&] { release.Free(GatedBulk(new int(handedOver.back()), frees)); });
    EXPECT_EQ(oneMore.wait_for(200ms), std::future_status::timeout) << "a bulk more than may wait was taken";

    opening.set_value();
    oneMore.get();
    for (const auto deadline = std::chrono::steady_clock::now() + 10s; std::chrono::steady_clock::now() < deadline;) {
        std::this_thread::sleep_for(1ms);
        const std::lock_guard lock(frees.mutex);
        if (frees.order.size() == handedOver.size())
            break;
    }
    const std::lock_guard lock(frees.mutex);
    EXPECT_EQ(frees.order, handedOver);
    for (const std::thread::id thread : frees.threads)
        EXPECT_NE(thread, std::this_thread::get_id());
}

}  // namespace
