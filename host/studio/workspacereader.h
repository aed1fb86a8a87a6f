#pragma once

#include <hbrcdatamodel/workspaceloader.h>

#include <QObject>
#include <QString>

#include <memory>
#include <thread>
#include <vector>

namespace hbrc::studio {

// Reads the .kel files of a workspace folder on a thread of its own, the expensive part of opening
// a workspace (listing and parsing), and keeps them, in path order, until the thread it lives on
// takes them. The receiver takes as many as it can add without stalling that thread, a slice per
// turn of its event loop, however fast the worker reads. The worker touches only the disk; the
// files are added to the workspace where it lives.
class WorkspaceReader : public QObject
{
    Q_OBJECT
public:
    using Batch = std::vector<host::WorkspaceLoader::ReadFile>;

    explicit WorkspaceReader(QObject* parent = nullptr);
    ~WorkspaceReader() override;

    // Starts reading root's files, after cancelling a read that is still running.
    void start(const QString& root);
    // Stops the worker and waits for it (it stops after the file it is reading); no readable
    // signal of that read arrives afterwards.
    void cancel();
    // True from start until every file was taken.
    bool isReading() const { return m_run != nullptr; }
    // Takes up to most of the files read and not taken yet. Once the worker has read every file
    // and all of them were taken, the read is over: the worker is joined and isReading is false.
    Batch take(std::size_t most);
    // How many asset files the folder holds (0 until the worker has listed them).
    int total() const;

signals:
    // Files wait to be taken; sent again only after a take found none left, and once more when
    // the last file was read.
    void readable();

private:
    struct Run;
    void readAll(const std::shared_ptr<Run>& run, const QString& root);

    std::shared_ptr<Run> m_run;
    std::thread m_thread;
};

}  // namespace hbrc::studio
