#pragma once

#include "workerconnection.h"

#include <hbrcservices/revisiontypes.h>

#include <QFutureWatcher>
#include <QObject>
#include <QString>

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace hbrc::studio {

// What one operation did, as the UI thread receives it.
struct OperationOutcome
{
    QString what;           // the operation, for a refusal's text ("Submit"); empty for refreshPending
    revision::Result result;   // the server's first refusal, or success
    QString done;           // on success, what was done, for the log
    std::vector<std::string> changedOnDisk;  // local paths whose content the operation rewrote
    // The session's pending work as it was right after the operation (asked in the same task).
    std::vector<revision::PendingChangelist> pending;
    bool pendingKnown = false;
};

// Runs the operations that change the server, one at a time, in the order asked: none is dropped
// or merged with another. Each runs on a worker thread with a server connection of its own and
// ends by asking for the session's pending changelists, so that its outcome carries the pane's
// next content; the outcome is delivered on the UI thread, which never waits for the server.
class RevisionOperations : public QObject
{
    Q_OBJECT
public:
    // Runs on the worker thread: asks the server and fills in outcome.done and changedOnDisk.
    using Work = std::function<revision::Result(host::RevisionServer& server, const std::string& ticket,
                                             OperationOutcome& outcome)>;
    using AccountSource = std::function<Account()>;

    explicit RevisionOperations(AccountSource account, QObject* parent = nullptr);
    ~RevisionOperations() override;

    // Queues work behind the operations asked before it.
    void run(const QString& what, Work work);
    // Asks only for the pending changelists, unless an operation waits in the queue: its outcome
    // brings them anyway.
    void refreshPending();
    // Something runs or waits, a refresh included.
    bool isBusy() const { return m_running; }
    // An operation that changes the server runs or waits (refreshes do not count): what a user
    // sees as working, so that a timer's refresh does not make the commands flicker.
    bool isWorking() const { return m_working; }

signals:
    void busyChanged(bool busy);
    void workingChanged(bool working);
    void finished(const hbrc::studio::OperationOutcome& outcome);

private:
    struct Job
    {
        Account account;
        QString what;
        Work work;
    };
    void startNext();
    void updateWorking();
    static OperationOutcome execute(WorkerConnection& connection, const Job& job);

    AccountSource m_account;
    std::shared_ptr<WorkerConnection> m_connection = std::make_shared<WorkerConnection>();
    QFutureWatcher<OperationOutcome> m_watcher;
    std::deque<Job> m_queue;
    bool m_running = false;
    bool m_working = false;
};

}  // namespace hbrc::studio
