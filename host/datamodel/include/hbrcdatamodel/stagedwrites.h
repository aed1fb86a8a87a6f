#pragma once

#include <hbrcdatamodel/export.h>
#include <hbrcdatamodel/savereport.h>

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <optional>
#include <set>
#include <vector>

namespace hbrc::host {

// The file writes of one save, made durable together. Stage() writes each new content into a
// temporary file beside its target; Commit() flushes all temporary files in one pass, renames
// each over its target and flushes every touched folder once. A crash at any moment leaves each
// target with either its old or its new content, and the save pays for one flush of the batch
// rather than one per file. Temporary files that were not renamed are removed when the batch ends.
class HBRC_DATAMODEL_EXPORT StagedWrites
{
public:
    using Ticket = std::size_t;

    StagedWrites() = default;
    StagedWrites(const StagedWrites&) = delete;
    StagedWrites& operator=(const StagedWrites&) = delete;
    ~StagedWrites();

    // Writes content to a temporary file beside path, creating the folder when needed. A file
    // whose write permission bits are all clear is read-only for the host and is not staged,
    // whoever runs the host. The file is put in place only when every write in renameAfter was.
    // Nothing (and the failure reported) when nothing was staged.
    std::optional<Ticket> Stage(const QString& path, const QByteArray& content, SaveReport& report,
                                const std::vector<Ticket>& renameAfter = {});
    // Makes every staged file durable and puts it in place, in staging order; returns the paths that
    // now hold their new content (also listed in the report's written files). Failures are reported.
    std::set<QString> Commit(SaveReport& report);

private:
    struct Staged
    {
        QString target;
        QByteArray temporary;  // in the file-name encoding
        std::vector<Ticket> renameAfter;
        bool renamed = false;
    };

    std::vector<Staged> m_staged;
};

}  // namespace hbrc::host
