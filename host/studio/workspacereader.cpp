#include "workspacereader.h"

#include <QMetaObject>

#include <atomic>
#include <deque>
#include <iterator>
#include <mutex>
#include <utility>

namespace hbrc::studio {

namespace {
// The worker hands its files over in chunks of this many, to take the lock rarely.
constexpr std::size_t kChunkFiles = 32;
}  // namespace

// What the worker and the receiving thread share about one read.
struct WorkspaceReader::Run
{
    std::atomic<bool> cancelled{false};
    std::atomic<int> total{0};
    std::mutex lock;
    // Guarded by lock:
    std::deque<host::WorkspaceLoader::ReadFile> files;
    bool allRead = false;
    bool announced = false;  // a readable signal is on its way or was not answered by a take yet
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

int WorkspaceReader::total() const
{
    return m_run ? m_run->total.load() : 0;
}

WorkspaceReader::Batch WorkspaceReader::take(std::size_t most)
{
    if (!m_run)
        return {};
    Batch taken;
    bool over = false;
    {
        const std::lock_guard<std::mutex> locked(m_run->lock);
        std::deque<host::WorkspaceLoader::ReadFile>& files = m_run->files;
        const auto end = files.begin() + std::ptrdiff_t(std::min(most, files.size()));
        taken.assign(std::make_move_iterator(files.begin()), std::make_move_iterator(end));
        files.erase(files.begin(), end);
        if (files.empty())
            m_run->announced = false;
        over = files.empty() && m_run->allRead;
    }
    if (over)
        cancel();  // the worker has ended: this joins it
    return taken;
}

// On the worker. Each announcement is queued to this object's thread and dropped there when the
// read was cancelled meanwhile.
void WorkspaceReader::readAll(const std::shared_ptr<Run>& run, const QString& root)
{
    const QStringList paths = host::WorkspaceLoader::AssetFiles(root);
    run->total = int(paths.size());
    auto handOver = [this, &run](Batch& chunk, bool last) {
        bool announce = false;
        {
            const std::lock_guard<std::mutex> locked(run->lock);
            std::move(chunk.begin(), chunk.end(), std::back_inserter(run->files));
            run->allRead = last;
            announce = !run->announced || last;
            run->announced = true;
        }
        chunk.clear();
        if (announce)
            QMetaObject::invokeMethod(this, [this, run] {
                if (!run->cancelled)
                    emit readable();
            }, Qt::QueuedConnection);
    };
    Batch chunk;
    std::string buffer;
    for (const QString& path : paths) {
        if (run->cancelled)
            return;
        chunk.push_back(host::WorkspaceLoader::Read(root, path, buffer));
        if (chunk.size() >= kChunkFiles)
            handOver(chunk, false);
    }
    handOver(chunk, true);
}

}  // namespace hbrc::studio
