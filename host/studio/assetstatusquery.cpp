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

void AssetStatusQuery::Ask(const std::string& server, const std::string& ticket, FilesPerAsset files)
{
    Question question{server, ticket, std::move(files)};
    m_pending = true;
    if (m_watcher.isRunning()) {
        m_waiting.clear();
        m_waiting.push_back(std::move(question));
        return;
    }
    Start(std::move(question));
}

void AssetStatusQuery::Start(Question question)
{
    m_watcher.setFuture(QtConcurrent::run([question = std::move(question)] { return AskServer(question); }));
}

StatusAnswer AssetStatusQuery::AskServer(const Question& question)
{
    StatusAnswer answer;
    host::RevisionServer::Files files;
    for (const auto& assetFiles : question.files)
        files.insert(files.end(), assetFiles.begin(), assetFiles.end());
    std::vector<depot::FileStatus> statuses;
    const std::unique_ptr<host::RevisionServer> server = host::OpenRevisionServer(question.server, {});
    const depot::Result result = files.empty() ? depot::Result{} : server->status(question.ticket, files, statuses);
    answer.roundTrips = server->roundTrips();
    answer.code = result.code;
    answer.error = QString::fromStdString(result.error);
    if (!result.ok() || statuses.size() != files.size())
        return answer;
    auto file = statuses.begin();
    for (const auto& assetFiles : question.files) {
        AssetStatus status;
        for (std::size_t i = 0; i < assetFiles.size(); ++i, ++file) {
            status.word |= file->word;
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
