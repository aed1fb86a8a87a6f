#include "assetstatusquery.h"

#include <hbrcservices/revisionserver.h>

namespace hbrc::studio {

bool StatusAnswer::unreachable() const
{
    return code == revision::code::SessionUnusable && host::IsUnreachableServerError(error.toStdString());
}

const AssetStatus* StatusAnswer::statusOf(const std::string& key, std::size_t hint) const
{
    if (code < 0 || assets.size() != keys.size())
        return nullptr;
    if (hint < keys.size() && keys[hint] == key)
        return &assets[hint];
    const auto found = keyIndex.find(key);
    return found == keyIndex.end() ? nullptr : &assets[found->second];
}

AssetStatusQuery::AssetStatusQuery(QObject* parent) : QObject(parent) {}

AssetStatusQuery::~AssetStatusQuery() = default;

void AssetStatusQuery::ask(const Account& account, std::vector<std::string> keys, FilesPerAsset files)
{
    using Answer = std::shared_ptr<const StatusAnswer>;
    m_scheduler.schedule<Answer>(
        [this, question = Question{account, std::move(keys), std::move(files)}](const revision::CancelCheck& cancelled) {
            return askServer(question, cancelled);
        },
        [this](const Answer& answer) { emit answered(answer); });
}

std::shared_ptr<const StatusAnswer> AssetStatusQuery::askServer(const Question& question,
                                                                const revision::CancelCheck& cancelled)
{
    std::string ticket;
    revision::Result result = m_connection.prepare(question.account, ticket);
    host::RevisionServer& server = m_connection.server();
    const std::uint64_t roundTripsBefore = server.roundTrips();
    auto shared = std::make_shared<StatusAnswer>();
    StatusAnswer& answer = *shared;
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
        return shared;
    answer.assets.reserve(question.files.size());
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
    answer.keyIndex.reserve(answer.keys.size());
    for (std::size_t i = 0; i < answer.keys.size(); ++i)
        answer.keyIndex.emplace(answer.keys[i], i);
    return shared;
}

}  // namespace hbrc::studio
