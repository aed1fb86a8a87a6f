#pragma once

#include <QFutureWatcher>
#include <QObject>
#include <QString>
#include <QStringList>

#include <cstdint>
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
    std::vector<AssetStatus> assets;  // in the order asked, when code >= 0
    std::uint64_t roundTrips = 0;
};

// Asks the revision server about every file of many assets in one status question, on a worker
// thread with a server connection of its own, and delivers the answer on the UI thread. A new
// question while one runs is kept and asked when the running one ends; only its answer counts.
class AssetStatusQuery : public QObject
{
    Q_OBJECT
public:
    using FilesPerAsset = std::vector<std::vector<std::string>>;

    explicit AssetStatusQuery(QObject* parent = nullptr);
    ~AssetStatusQuery() override;

    // ticket: the session the services logged in with; server: the server setting.
    void Ask(const std::string& server, const std::string& ticket, FilesPerAsset files);
    // True from Ask until its answer was delivered.
    bool IsPending() const { return m_pending; }
    // Round trips of every question answered so far.
    std::uint64_t RoundTrips() const { return m_roundTrips; }

signals:
    void answered(const hbrc::studio::StatusAnswer& answer);

private:
    struct Question
    {
        std::string server;
        std::string ticket;
        FilesPerAsset files;
    };
    void Start(Question question);
    static StatusAnswer AskServer(const Question& question);

    QFutureWatcher<StatusAnswer> m_watcher;
    std::vector<Question> m_waiting;  // at most one
    bool m_pending = false;
    std::uint64_t m_roundTrips = 0;
};

}  // namespace hbrc::studio
