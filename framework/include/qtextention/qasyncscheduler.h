#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QObject>

#include <functional>
#include <memory>

/// Runs requests one at a time on a worker thread of its own and delivers their results on the
/// thread the scheduler lives in (the UI thread), for questions such as a status refresh that must
/// never stall the UI.
///
/// Requests are numbered in the order they are scheduled. A request made while another runs waits;
/// a newer one replaces a waiting one (coalescing), and the replaced one is dropped without running.
/// A running request is stale once a newer one was scheduled: its cancel check answers true from
/// then on and its result is dropped. So results arrive in the order requested, and each delivered
/// result is the answer to the newest request at the time it arrives.
class QTEXTENTION_EXPORT QAsyncScheduler : public QObject
{
    Q_OBJECT
public:
    /// Polled by the work; true when its result will not be delivered.
    using CancelCheck = std::function<bool()>;
    /// Runs on the worker; returns what to do with its result on the scheduler's thread.
    using Work = std::function<std::function<void()>(const CancelCheck& cancelled)>;

    explicit QAsyncScheduler(QObject* parent = nullptr);
    /// Cancels the running request and waits for it; nothing is delivered after.
    ~QAsyncScheduler() override;

    /// Schedules work and returns its number (1, 2, ...). The work must not throw.
    quint64 schedule(Work work);
    /// The same with a typed result: compute runs on the worker, deliver on this object's thread.
    template <typename Result>
    quint64 schedule(std::function<Result(const CancelCheck&)> compute, std::function<void(const Result&)> deliver)
    {
        return schedule([compute = std::move(compute), deliver = std::move(deliver)](const CancelCheck& cancelled) {
            auto result = std::make_shared<Result>(compute(cancelled));
            return std::function<void()>([deliver, result] { deliver(*result); });
        });
    }

    /// Drops the waiting request and makes the running one stale.
    void cancel();
    /// True from a schedule() until its result was delivered or dropped and nothing waits.
    bool isBusy() const;

signals:
    /// Request number's result was handed to its deliver function.
    void delivered(quint64 number);
    /// Request number will not be delivered: replaced while waiting, overtaken or cancelled.
    void dropped(quint64 number);

private:
    void startWaiting();
    void finish(quint64 number, const std::function<void()>& deliver);

    struct Private;
    std::unique_ptr<Private> d;
};
