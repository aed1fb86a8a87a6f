#include "assetstatusquery.h"

#include <hbrcservices/revisionserver.h>

#include <QtConcurrent/QtConcurrentRun>

namespace hbrc::studio {

AssetStatusQuery::AssetStatusQuery(QObject* parent) : QObject(parent)
{
    connect(&m_watcher, &QFutureWatcher<StatusAnswer>::finished, this, [this] {
        const StatusAnswer answer = m_watcher.result();
        m_roundTrips += answer.roundTrips;
        if (!m_waiting.empty()) {
            Question next = std::move(m_waiting.front());
            m_waiting.clear();
            Start(std::move(next));
            return;
        }
        m_pending = false;
        emit answered(answer);
    });
}

AssetStatusQuery::~AssetStatusQuery()
{
    m_watcher.waitForFinished();
}

void AssetStatusQuery::Ask(const Account& account, std::vector<std::string> keys, FilesPerAsset files)
{
    Question question{account, std::move(keys), std::move(files)};
    // Not isRunning(): a question whose finished signal is still on its way is not answered yet.
    if (m_pending) {
        m_waiting.clear();
        m_waiting.push_back(std::move(question));
        return;
    }
    m_pending = true;
    Start(std::move(question));
}

void AssetStatusQuery::Start(Question question)
{
    m_watcher.setFuture(QtConcurrent::run(
        [connection = m_connection, question = std::move(question)] { return AskServer(*connection, question); }));
}

StatusAnswer AssetStatusQuery::AskServer(WorkerConnection& connection, const Question& question)
{
    std::string ticket;
    depot::Result result = connection.Prepare(question.account, ticket);
    host::RevisionServer& server = connection.Server();
    const std::uint64_t roundTripsBefore = server.roundTrips();
    StatusAnswer answer;
    answer.keys = question.keys;
    host::RevisionServer::Files files;
    for (const auto& assetFiles : question.files)
        files.insert(files.end(), assetFiles.begin(), assetFiles.end());
    std::vector<depot::FileStatus> statuses;
    if (result.ok() && !files.empty())
        result = server.status(ticket, files, statuses);
    answer.roundTrips = server.roundTrips() - roundTripsBefore;
    answer.code = result.code;
    answer.error = QString::fromStdString(result.error);
    if (!result.ok() || statuses.size() != files.size())
        return answer;
    auto file = statuses.begin();
    for (const auto& assetFiles : question.files) {
        AssetStatus status;
        for (std::size_t i = 0; i < assetFiles.size(); ++i, ++file) {
            if (i == 0) {
                status.haveRevision = file->haveRevision;
                status.headRevision = file->headRevision;
            }
            status.behind = status.behind || file->haveRevision < file->headRevision;
            status.word |= file->word;
            status.heldBy.insert(status.heldBy.end(), file->heldBy.begin(), file->heldBy.end());
            for (const std::string& holder : file->holders)
                if (!status.holders.contains(QString::fromStdString(holder)))
                    status.holders << QString::fromStdString(holder);
            if (!status.opened && (file->word & (depot::status::OpenedForEdit | depot::status::OpenedForAdd |
                                                 depot::status::OpenedForDelete))) {
                status.opened = true;
                status.changelist = QString::fromStdString(file->changelist);
            }
        }
        answer.assets.push_back(std::move(status));
    }
    return answer;
}

}  // namespace hbrc::studio
