#include "workspacereader.h"

#include <QElapsedTimer>
#include <QMetaObject>

#include <atomic>
#include <utility>

namespace hbrc::studio {

namespace {
// A batch goes when it is this old or this big, whichever comes first: small enough that adding it
// on the UI thread stays far below a noticeable stall, big enough that the handing over is cheap.
constexpr qint64 kBatchMs = 15;
constexpr std::size_t kBatchFiles = 400;
}  // namespace

// What the worker and the receiving thread share about one read.
struct WorkspaceReader::Run
{
    std::atomic<bool> cancelled{false};
};

WorkspaceReader::WorkspaceReader(QObject* parent) : QObject(parent) {}

WorkspaceReader::~WorkspaceReader()
{
    cancel();
}

void WorkspaceReader::start(const QString& root)
{
    cancel();
    m_run = std::make_shared<Run>();
    m_thread = std::thread([this, run = m_run, root] { readAll(run, root); });
}

void WorkspaceReader::cancel()
{
    if (m_run)
        m_run->cancelled = true;
    if (m_thread.joinable())
        m_thread.join();
    m_run.reset();
}

// On the worker. Each hand-over is queued to this object's thread and dropped there when the read
// was cancelled meanwhile.
void WorkspaceReader::readAll(const std::shared_ptr<Run>& run, const QString& root)
{
    const QStringList paths = host::WorkspaceLoader::AssetFiles(root);
    const int total = int(paths.size());
    auto handOver = [this, run, total](std::shared_ptr<Batch> batch, int read) {
        QMetaObject::invokeMethod(this, [this, run, batch = std::move(batch), read, total] {
            if (!run->cancelled)
                emit batchRead(batch, read, total);
        }, Qt::QueuedConnection);
    };
    auto batch = std::make_shared<Batch>();
    std::string buffer;
    QElapsedTimer age;
    age.start();
    int read = 0;
    for (const QString& path : paths) {
        if (run->cancelled)
            return;
        batch->push_back(host::WorkspaceLoader::Read(root, path, buffer));
        ++read;
        if (batch->size() >= kBatchFiles || age.hasExpired(kBatchMs)) {
            handOver(std::exchange(batch, std::make_shared<Batch>()), read);
            age.restart();
        }
    }
    if (!batch->empty())
        handOver(batch, read);
    QMetaObject::invokeMethod(this, [this, run] {
        if (run->cancelled)
            return;
        m_thread.join();
        m_run.reset();
        emit finished();
    }, Qt::QueuedConnection);
}

}  // namespace hbrc::studio
