#pragma once

#include <hbrcdatamodel/workspaceloader.h>

#include <QObject>
#include <QString>

#include <memory>
#include <thread>
#include <vector>

namespace hbrc::studio {

// Reads the .kel files of a workspace folder on a thread of its own, the expensive part of opening
// a workspace (listing and parsing), and hands them to the thread it lives on in batches, in path
// order, a batch at least every few tens of milliseconds so that the first assets show at once.
// The worker touches only the disk; the batches are added to the workspace where it lives.
class WorkspaceReader : public QObject
{
    Q_OBJECT
public:
    using Batch = std::vector<host::WorkspaceLoader::ReadFile>;

    explicit WorkspaceReader(QObject* parent = nullptr);
    ~WorkspaceReader() override;

    // Starts reading root's files, after cancelling a read that is still running.
    void start(const QString& root);
    // Stops the worker and waits for it (it stops after the file it is reading); no batch or
    // finished signal of that read arrives afterwards.
    void cancel();
    bool isReading() const { return m_run != nullptr; }

signals:
    // The next files, and how many of all files are read with them.
    void batchRead(const std::shared_ptr<hbrc::studio::WorkspaceReader::Batch>& batch, int read, int total);
    // Every file was handed over.
    void finished();

private:
    struct Run;
    void readAll(const std::shared_ptr<Run>& run, const QString& root);

    std::shared_ptr<Run> m_run;
    std::thread m_thread;
};

}  // namespace hbrc::studio
