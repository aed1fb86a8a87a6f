// QAsyncScheduler and QValueAnimator: work off the UI thread delivered in order with stale requests
// dropped, and a value moved smoothly to a target that may change mid-way.
#include "toolkittest.h"

#include <qtextention/qasyncscheduler.h>
#include <qtextention/qvalueanimator.h>

#include <QSemaphore>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <atomic>

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

TEST(QValueAnimator, MovesSmoothlyAndARetargetMidWayStartsFromTheValueReached)
{
    QValueAnimator animator;
    animator.setDuration(200);
    QList<qreal> values;
    int finished = 0;
    QObject::connect(&animator, &QValueAnimator::valueChanged, [&](qreal v) { values << v; });
    QObject::connect(&animator, &QValueAnimator::finished, [&] { ++finished; });

    animator.animateTo(100);
    ASSERT_TRUE(QTest::qWaitFor([&] { return values.size() >= 2 && values.last() > 10; }));
    EXPECT_TRUE(animator.isRunning());
    const qreal reached = animator.value();
    animator.animateTo(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return finished == 1; }));
    EXPECT_EQ(animator.value(), 0.0);
    EXPECT_TRUE(std::is_sorted(values.begin(), values.begin() + values.indexOf(reached) + 1)) << "rising to 100";
    const QList<qreal> back = values.mid(values.indexOf(reached));
    EXPECT_TRUE(std::is_sorted(back.rbegin(), back.rend())) << "falling back from where it was, no jump";

    // finish() lands on the target at once; a zero duration never runs.
    animator.animateTo(50);
    animator.finish();
    EXPECT_EQ(animator.value(), 50.0);
    EXPECT_EQ(finished, 2);
    animator.setDuration(0);
    animator.animateTo(7);
    EXPECT_FALSE(animator.isRunning());
    EXPECT_EQ(animator.value(), 7.0);
    EXPECT_EQ(finished, 3);
}
