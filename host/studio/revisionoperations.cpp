#include "revisionoperations.h"

#include <hbrcservices/revisionserver.h>

#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>

namespace hbrc::studio {

RevisionOperations::RevisionOperations(AccountSource account, QObject* parent)
    : QObject(parent), m_account(std::move(account))
{
    connect(&m_watcher, &QFutureWatcher<OperationOutcome>::finished, this, [this] {
        const OperationOutcome outcome = m_watcher.result();
        m_queue.pop_front();
        // Still busy while the outcome is delivered: an operation its receivers ask for queues.
        emit finished(outcome);
        updateWorking();
        if (!m_queue.empty()) {
            startNext();
            return;
        }
        m_running = false;
        emit busyChanged(false);
    });
}

RevisionOperations::~RevisionOperations()
{
    m_watcher.waitForFinished();
}

void RevisionOperations::run(const QString& what, Work work)
{
    m_queue.push_back({m_account(), what, std::move(work)});
    updateWorking();
    if (m_running)
        return;
    m_running = true;
    emit busyChanged(true);
    startNext();
}

void RevisionOperations::refreshPending()
{
    // The running operation may have asked before what changed; one queued behind it asks after.
    if (m_queue.size() <= 1)
        run({}, [](host::RevisionServer&, const std::string&, OperationOutcome&) { return revision::Result{}; });
}

void RevisionOperations::updateWorking()
{
    const bool working =
        std::any_of(m_queue.begin(), m_queue.end(), [](const Job& job) { return !job.what.isEmpty(); });
    if (working == m_working)
        return;
    m_working = working;
    emit workingChanged(working);
}

void RevisionOperations::startNext()
{
    m_watcher.setFuture(QtConcurrent::run([connection = m_connection, job = m_queue.front()] {
        return execute(*connection, job);
    }));
}

OperationOutcome RevisionOperations::execute(WorkerConnection& connection, const Job& job)
{
    OperationOutcome outcome;
    outcome.what = job.what;
    std::string ticket;
    outcome.result = connection.prepare(job.account, ticket);
    if (outcome.result.ok())
        outcome.result = job.work(connection.server(), ticket, outcome);
    // Also after a refusal: part of a multi-step operation may have happened.
    if (connection.server().pendingChangelists(ticket, outcome.pending).ok())
        outcome.pendingKnown = true;
    return outcome;
}

}  // namespace hbrc::studio
