#include <qtextention/qasyncscheduler.h>

#include <QThreadPool>

#include <atomic>
#include <optional>

struct QAsyncScheduler::Private
{
    struct Request
    {
        quint64 number = 0;
        Work work;
    };

    QThreadPool worker;
    quint64 lastNumber = 0;
    std::optional<Request> waiting;
    quint64 running = 0;  // 0: nothing runs
    // The newest number the running request may still be delivered for; read by the worker.
    std::shared_ptr<std::atomic<quint64>> newest = std::make_shared<std::atomic<quint64>>(0);
};

QAsyncScheduler::QAsyncScheduler(QObject* parent) : QObject(parent), d(std::make_unique<Private>())
{
    d->worker.setMaxThreadCount(1);
}

QAsyncScheduler::~QAsyncScheduler()
{
    d->newest->store(~quint64(0));
    d->worker.waitForDone();
}

quint64 QAsyncScheduler::schedule(Work work)
{
    const quint64 number = ++d->lastNumber;
    d->newest->store(number);
    if (d->waiting)
        emit dropped(d->waiting->number);
    d->waiting = Private::Request{number, std::move(work)};
    if (!d->running)
        startWaiting();
    return number;
}

void QAsyncScheduler::cancel()
{
    // A number no request has: the running one turns stale, and nothing waits.
    d->newest->store(d->lastNumber + 1);
    if (d->waiting) {
        const quint64 number = d->waiting->number;
        d->waiting.reset();
        emit dropped(number);
    }
}

bool QAsyncScheduler::isBusy() const
{
    return d->running != 0 || d->waiting.has_value();
}

void QAsyncScheduler::startWaiting()
{
    Private::Request request = std::move(*d->waiting);
    d->waiting.reset();
    d->running = request.number;
    const quint64 number = request.number;
    std::shared_ptr<std::atomic<quint64>> newest = d->newest;
    // The destructor waits for the worker, so this object outlives the work; the queued call is
    // discarded when the object is gone by the time it would run.
    d->worker.start([this, newest, number, work = std::move(request.work)] {
        const CancelCheck cancelled = [newest, number] { return newest->load() != number; };
        std::function<void()> deliver = work(cancelled);
        QMetaObject::invokeMethod(
            this, [this, number, deliver = std::move(deliver)] { finish(number, deliver); }, Qt::QueuedConnection);
    });
}

void QAsyncScheduler::finish(quint64 number, const std::function<void()>& deliver)
{
    d->running = 0;
    const bool current = d->newest->load() == number;
    if (current && deliver)
        deliver();
    if (current)
        emit delivered(number);
    else
        emit dropped(number);
    if (d->waiting)
        startWaiting();
}
