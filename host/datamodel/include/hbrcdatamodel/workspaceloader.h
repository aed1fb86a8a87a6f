#pragma once

#include <hbrcdatamodel/export.h>
#include <hbrcdatamodel/assetrecord.h>

#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <string>

namespace hbrc::host {
class ObjectStore;

// Reads every .kel file below a workspace folder into an object store, in one pass over the
// folder, in path order. A file that cannot be read or parsed, or whose ids are already taken, is skipped with
// one error line in the host log naming the file; it is never written to.
//
// Load does it all at once. The steps are public for a reader on another thread: AssetFiles and
// Read touch only the disk, so they may run off the thread that owns the store; Add runs where
// the store lives and writes the log line of a skipped file.
class HBRC_DATAMODEL_EXPORT WorkspaceLoader
{
public:
    struct Outcome
    {
        std::size_t loaded = 0;
        std::size_t skipped = 0;
    };
    // One file as Read found it: the asset, or why it is skipped.
    struct ReadFile
    {
        QString path;
        std::string kelPath;  // relative to the workspace folder
        AssetRecord record;
        std::string error;    // not empty: the file is skipped
    };

    static Outcome Load(const QString& root, ObjectStore& store);

    // The .kel files below root, sorted, so that which of two files claiming one id is loaded
    // does not depend on the disk.
    static QStringList AssetFiles(const QString& root);
    // Reads and parses one of them; buffer is reused from file to file.
    static ReadFile Read(const QString& root, const QString& path, std::string& buffer);
    // Adds what Read found to the store, or reports why it is skipped; the asset's slot, or
    // ObjectStore::kNoSlot.
    static std::uint32_t Add(ReadFile file, ObjectStore& store, Outcome& outcome);
};

}  // namespace hbrc::host
