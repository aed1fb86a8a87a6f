#include "assetstatusquery.h"

#include <hbrcservices/revisionserver.h>

namespace hbrc::studio {

bool StatusAnswer::unreachable() const
{
    return code == revision::code::SessionUnusable && host::IsUnreachableServerError(error.toStdString());
}

AssetStatusQuery::AssetStatusQuery(QObject* parent) : QObject(parent) {}

AssetStatusQuery::~AssetStatusQuery() = default;

void AssetStatusQuery::ask(const Account& account, std::vector<std::string> keys, FilesPerAsset files)
{
    m_scheduler.schedule<StatusAnswer>(
        [this, question = Question{account, std::move(keys), std::move(files)}](const revision::CancelCheck& cancelled) {
            return askServer(question, cancelled);
        },
        [this](const StatusAnswer& answer) { emit answered(answer); });
}

StatusAnswer AssetStatusQuery::askServer(const Question& question, const revision::CancelCheck& cancelled)
{
    std::string ticket;
    revision::Result result = m_connection.prepare(question.account, ticket);
    host::RevisionServer& server = m_connection.server();
    const std::uint64_t roundTripsBefore = server.roundTrips();
    StatusAnswer answer;
    answer.keys = question.keys;
    host::RevisionServer::Files files;
    for (const auto& assetFiles : question.files)
        files.insert(files.end(), assetFiles.begin(), assetFiles.end());
    std::vector<revision::FileStatus> statuses;
    if (result.ok() && !files.empty())
        result = server.status(ticket, files, statuses, cancelled);
    answer.roundTrips = server.roundTrips() - roundTripsBefore;
    m_roundTrips += answer.roundTrips;
    if (result.code == revision::code::SessionUnusable)
        m_connection.forget();  // the next question opens the server again
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
            if (!status.opened && (file->word & (revision::status::OpenedForEdit | revision::status::OpenedForAdd |
                                                 revision::status::OpenedForDelete))) {
                status.opened = true;
                status.changelist = QString::fromStdString(file->changelist);
            }
        }
        answer.assets.push_back(std::move(status));
    }
    return answer;
}

}  // namespace hbrc::studio
