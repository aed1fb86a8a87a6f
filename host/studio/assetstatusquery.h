#pragma once

#include <hbrcservices/revisionserver.h>

#include <QFutureWatcher>
#include <QObject>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace hbrc::studio {

// The revision status of one asset: its files' words OR-ed, the other users holding any of them,
// and the changelist the first file opened here is in.
struct AssetStatus
{
    unsigned word = 0;
    QStringList holders;
    QString changelist;
    bool opened = false;
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
// thread with a server connection of its own (kept from one question to the next), and delivers
// the answer on the UI thread. A new question while one runs is kept and asked when the running one
// ends; only its answer is delivered.
//
// On the embedded depot the question uses the services' session (its ticket). A Subversion
// session belongs to the connection that opened it, so there the worker's connection logs in
// itself, once, with the account's password; without one the question is refused (-34).
class AssetStatusQuery : public QObject
{
    Q_OBJECT
public:
    using FilesPerAsset = std::vector<std::vector<std::string>>;

    explicit AssetStatusQuery(QObject* parent = nullptr);
    ~AssetStatusQuery() override;

    // The account the question is asked for: the server setting, the services' ticket, and what a
    // Subversion connection logs in with.
    struct Account
    {
        std::string server;
        std::string ticket;
        std::string userName;
        std::string password;
        std::string workspace;
    };

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
    // The worker's connection; used by one question at a time.
    struct Connection
    {
        std::string server;
        std::unique_ptr<host::RevisionServer> revisionServer;
        std::string ownTicket;
    };
    void Start(Question question);
    static StatusAnswer AskServer(Connection& connection, const Question& question);

    std::shared_ptr<Connection> m_connection = std::make_shared<Connection>();
    QFutureWatcher<StatusAnswer> m_watcher;
    std::vector<Question> m_waiting;  // at most one
    bool m_pending = false;
    std::uint64_t m_roundTrips = 0;
};

}  // namespace hbrc::studio
