// QAsyncScheduler: work off the UI thread delivered in order with stale requests dropped.
#include "toolkittest.h"

#include <qtextention/qasyncscheduler.h>

namespace {

// Work that reports the thread it ran on and holds until the test lets it go.
struct GatedWork
{
    QSemaphore started;
    QSemaphore gate;
    std::atomic<int> sawCancel{0};

    std::function<int(const QAsyncScheduler::CancelCheck&)> answering(int answer)
    {
        return [this, answer](const QAsyncScheduler::CancelCheck& cancelled) {
            started.release();
            gate.acquire();
            if (cancelled())
                ++sawCancel;
            return QThread::currentThread() == qApp->thread() ? -1 : answer;
        };
    }
};

}  // namespace

// A refresh asked three times while the first runs: the first is overtaken (told so, not
// delivered), the second replaced without running, the third delivered on the UI thread.
TEST(QAsyncScheduler, CoalescesRequestsAndDeliversOnlyTheNewestInOrder)
{
    QAsyncScheduler scheduler;
    GatedWork work;
    QList<int> results;
    QList<quint64> delivered, dropped;
    QObject::connect(&scheduler, &QAsyncScheduler::delivered, [&](quint64 n) { delivered << n; });
    QObject::connect(&scheduler, &QAsyncScheduler::dropped, [&](quint64 n) { dropped << n; });
    const auto deliver = [&](const int& result) {
        EXPECT_EQ(QThread::currentThread(), qApp->thread());
        results << result;
    };

    const quint64 first = scheduler.schedule<int>(work.answering(1), deliver);
    ASSERT_TRUE(work.started.tryAcquire(1, 5000));
    const quint64 second = scheduler.schedule<int>(work.answering(2), deliver);
    const quint64 third = scheduler.schedule<int>(work.answering(3), deliver);
    EXPECT_TRUE(scheduler.isBusy());
    EXPECT_EQ(dropped, QList<quint64>{second}) << "replaced while waiting";
    work.gate.release();  // the first ends, stale
    ASSERT_TRUE(QTest::qWaitFor([&] { return work.started.tryAcquire(); })) << "the third starts after the first";
    work.gate.release();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !scheduler.isBusy(); }));
    EXPECT_EQ(results, QList<int>{3}) << "work ran off the UI thread; only the newest answer arrives";
    EXPECT_EQ(delivered, QList<quint64>{third});
    EXPECT_EQ(dropped, (QList<quint64>{second, first}));
    EXPECT_EQ(work.sawCancel.load(), 1) << "the overtaken request could see it was stale";

    // Requests one after the other are each delivered, in order.
    for (int i = 4; i <= 6; ++i) {
        scheduler.schedule<int>(work.answering(i), deliver);
        work.gate.release();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !scheduler.isBusy(); }));
    }
    EXPECT_EQ(results, (QList<int>{3, 4, 5, 6}));
}

TEST(QAsyncScheduler, CancelDropsTheRunningAndWaitingRequestsAndDestructionWaits)
{
    GatedWork work;
    QList<int> results;
    {
        QAsyncScheduler scheduler;
        QList<quint64> dropped;
        QObject::connect(&scheduler, &QAsyncScheduler::dropped, [&](quint64 n) { dropped << n; });
        const auto deliver = [&](const int& result) { results << result; };
        const quint64 running = scheduler.schedule<int>(work.answering(1), deliver);
        ASSERT_TRUE(work.started.tryAcquire(1, 5000));
        const quint64 waiting = scheduler.schedule<int>(work.answering(2), deliver);
        scheduler.cancel();
        work.gate.release();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !scheduler.isBusy(); }));
        EXPECT_EQ(dropped, (QList<quint64>{waiting, running}));

        // A request still running when the scheduler goes is waited for and never delivered.
        scheduler.schedule<int>(work.answering(3), deliver);
        ASSERT_TRUE(work.started.tryAcquire(1, 5000));
        work.gate.release();
    }
    QCoreApplication::processEvents();
    EXPECT_TRUE(results.isEmpty());
}
