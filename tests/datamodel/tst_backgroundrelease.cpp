// The background release frees the bulks of closed workspaces on its worker, in the order they
// come, and holds back the one that would make more than kMostWaiting wait behind the worker.
#include <hbrcdatamodel/backgroundrelease.h>

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <mutex>
#include <numeric>
#include <thread>
#include <utility>
#include <vector>

namespace {

using hbrc::host::BackgroundRelease;
using namespace std::chrono_literals;

// What was freed, in which order and on which threads; freeing waits until the gate opens.
struct Frees
{
    std::shared_future<void> gate;
    std::mutex mutex;
    std::vector<int> order;
    std::vector<std::thread::id> threads;
};

class GatedBulk
{
public:
    GatedBulk(Frees& frees, int number) : m_frees(&frees), m_number(number) {}
    GatedBulk(GatedBulk&& other) noexcept : m_frees(std::exchange(other.m_frees, nullptr)), m_number(other.m_number) {}
    ~GatedBulk()
    {
        if (!m_frees)
            return;  // a moved-from shell
        m_frees->gate.wait();
        const std::lock_guard lock(m_frees->mutex);
        m_frees->order.push_back(m_number);
        m_frees->threads.push_back(std::this_thread::get_id());
    }

private:
    Frees* m_frees;
    int m_number;
};

TEST(BackgroundRelease, FreesOnItsWorkerInOrderAndHoldsBackWhatWouldPileUp)
{
    std::promise<void> opening;
    Frees frees;
    frees.gate = opening.get_future().share();
    BackgroundRelease& release = BackgroundRelease::Instance();
    // The worker takes the first bulk and stops at the gate; the next ones wait behind it.
    constexpr int kHandedOver = int(BackgroundRelease::kMostWaiting) + 1;
    for (int number = 0; number < kHandedOver; ++number)
        release.Free(GatedBulk(frees, number));
    std::future<void> oneMore = std::async(std::launch::async, [&] { release.Free(GatedBulk(frees, kHandedOver)); });
    EXPECT_EQ(oneMore.wait_for(200ms), std::future_status::timeout) << "a bulk more than may wait was taken";

    opening.set_value();
    oneMore.get();
    std::vector<int> handedOver(kHandedOver + 1);
    std::iota(handedOver.begin(), handedOver.end(), 0);
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
