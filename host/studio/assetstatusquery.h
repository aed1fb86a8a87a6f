#pragma once

#include "workerconnection.h"

#include <hbrcservices/revisiontypes.h>

#include <qtextention/qasyncscheduler.h>

#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace hbrc::studio {

// The revision status of one asset: its files' words OR-ed, the other users holding any of them
// (by name, and each hold in detail), the changelist the first file opened here is in, and the
// have and head revisions of its first file (its .kel file).
struct AssetStatus
{
    unsigned word = 0;
    QStringList holders;
    std::vector<revision::FileHolder> heldBy;
    QString changelist;
    bool opened = false;
    std::int64_t haveRevision = 0;
    std::int64_t headRevision = 0;
    bool behind = false;  // some file of it has a newer revision on the server than here
};

struct StatusAnswer
{
    int code = 0;  // the server's result code (-34: no usable session)
    QString error;
    std::vector<std::string> keys;    // the caller's names of the assets asked about, in order
    std::vector<AssetStatus> assets;  // in the order asked, when code >= 0
    std::uint64_t roundTrips = 0;
    // Where each key is in keys, for a caller whose assets are no longer in the order asked.
    std::unordered_map<std::string, std::size_t> keyIndex;

    // The server could not be reached at all (as opposed to refusing this session).
    bool unreachable() const;
    // The status of the asset key, expected at position hint (null: not asked about or no answer).
    const AssetStatus* statusOf(const std::string& key, std::size_t hint) const;
};

// Asks the revision server about every file of many assets in one status question, on a worker
// thread with a server connection of its own (a WorkerConnection), and delivers the answer on the
// UI thread, ready to apply: each asset's status in the words of the browser, with an index of the
// keys. A new question replaces a waiting one and cancels a running one, so only the answer to
// the newest question is delivered.
class AssetStatusQuery : public QObject
{
    Q_OBJECT
public:
    using FilesPerAsset = std::vector<std::vector<std::string>>;

    explicit AssetStatusQuery(QObject* parent = nullptr);
    ~AssetStatusQuery() override;

    // keys name the assets for the caller; files lists each one's files, in the same order.
    void ask(const Account& account, std::vector<std::string> keys, FilesPerAsset files);
    // True from ask until its answer was delivered.
    bool isPending() const { return m_scheduler.isBusy(); }
    // Round trips of every question asked so far, also of those whose answer was dropped.
    std::uint64_t roundTrips() const { return m_roundTrips.load(); }

signals:
    void answered(const std::shared_ptr<const hbrc::studio::StatusAnswer>& answer);

private:
    struct Question
    {
        Account account;
        std::vector<std::string> keys;
        FilesPerAsset files;
    };
    std::shared_ptr<const StatusAnswer> askServer(const Question& question, const revision::CancelCheck& cancelled);

    // Used by the scheduler's worker only, one question at a time.
    WorkerConnection m_connection;
    std::atomic<std::uint64_t> m_roundTrips{0};
    // Last: its destructor waits for the running question, which uses the members above.
    QAsyncScheduler m_scheduler;
};

}  // namespace hbrc::studio
