#pragma once

#include "workerconnection.h"

#include <hbrcservices/revisionserver.h>

#include <qtextention/qasyncscheduler.h>

#include <QObject>

#include <functional>
#include <string>

namespace hbrc::studio {

// A question to the revision server that a pane asks without waiting: it runs on a worker thread
// with a server connection of its own (a WorkerConnection), and its answer comes back on the UI
// thread. A new question replaces a waiting one and makes a running one stale, so only the answer
// to the newest is delivered. An answer is a struct with a revision::Result named result.
class ServerQuestion : public QObject
{
public:
    explicit ServerQuestion(QObject* parent = nullptr) : QObject(parent) {}

    template <typename Answer>
    using Work = std::function<Answer(host::RevisionServer& server, const std::string& ticket)>;

    template <typename Answer>
    void ask(const Account& account, Work<Answer> work, std::function<void(const Answer&)> deliver)
    {
        m_scheduler.schedule<Answer>(
            [this, account, work = std::move(work)](const QAsyncScheduler::CancelCheck&) {
                std::string ticket;
                Answer answer;
                answer.result = m_connection.prepare(account, ticket);
                if (answer.result.ok())
                    answer = work(m_connection.server(), ticket);
                if (answer.result.code == revision::code::SessionUnusable)
                    m_connection.forget();  // the next question opens the server again
                return answer;
            },
            std::move(deliver));
    }
    // Drops the waiting question and the answer of the running one.
    void cancel() { m_scheduler.cancel(); }
    bool isPending() const { return m_scheduler.isBusy(); }

private:
    // Used by the scheduler's worker only, one question at a time.
    WorkerConnection m_connection;
    // Last: its destructor waits for the running question, which uses the connection.
    QAsyncScheduler m_scheduler;
};

}  // namespace hbrc::studio
