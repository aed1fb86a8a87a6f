#pragma once

#include <hbrcdatamodel/export.h>

#include <QString>

#include <cstddef>

namespace hbrc::host {
class ObjectStore;

// Reads every .kel file below a workspace folder into an object store, in one pass over the
// folder, in path order. A file that cannot be read or parsed, or whose ids are already taken, is skipped with
// one error line in the host log naming the file; it is never written to.
class HBRC_DATAMODEL_EXPORT WorkspaceLoader
{
public:
    struct Outcome
    {
        std::size_t loaded = 0;
        std::size_t skipped = 0;
    };

    static Outcome Load(const QString& root, ObjectStore& store);
};

}  // namespace hbrc::host
