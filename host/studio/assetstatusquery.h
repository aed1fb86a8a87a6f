#pragma once

#include "workerconnection.h"

#include <depot/types.h>

#include <QFutureWatcher>
#include <QObject>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace hbrc::studio {

// The revision status of one asset: its files' words OR-ed, the other users holding any of them
// (by name, and each hold in detail), the changelist the first file opened here is in, and the
// have and head revisions of its first file (its .kel file).
struct AssetStatus
{
    unsigned word = 0;
    QStringList holders;
    std::vector<depot::FileHolder> heldBy;
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
};

// Asks the revision server about every file of many assets in one status question, on a worker
// thread with a server connection of its own (a WorkerConnection), and delivers the answer on the
// UI thread. A new question while one runs is kept and asked when the running one ends; only its
// answer is delivered.
class AssetStatusQuery : public QObject
{
    Q_OBJECT
public:
    using FilesPerAsset = std::vector<std::vector<std::string>>;

    explicit AssetStatusQuery(QObject* parent = nullptr);
    ~AssetStatusQuery() override;

    using Account = ServerAccount;

    // keys name the assets for the caller; files lists each one's files, in the same order.
    void Ask(const Account& account, std::vector<std::string> keys, FilesPerAsset files);
    // True from Ask until its answer was delivered.
    bool IsPending() const { return m_pending; }
    // Round trips of every question answered so far.
    std::uint64_t RoundTrips() const { return m_roundTrips; }

signals:
    void answered(const hbrc::studio::StatusAnswer& answer);

private:
    struct Question
    {
        Account account;
        std::vector<std::string> keys;
        FilesPerAsset files;
    };
    void Start(Question question);
    static StatusAnswer AskServer(WorkerConnection& connection, const Question& question);

    std::shared_ptr<WorkerConnection> m_connection = std::make_shared<WorkerConnection>();
    QFutureWatcher<StatusAnswer> m_watcher;
    std::vector<Question> m_waiting;  // at most one
    bool m_pending = false;
    std::uint64_t m_roundTrips = 0;
};

}  // namespace hbrc::studio
