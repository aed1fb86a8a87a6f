#pragma once

#include <hbrcdatamodel/export.h>

#include <QString>

namespace hbrc::host {

// Where the host keeps a file of its own about the workspace at root: in folder (outside the
// workspace, so that no scan of the workspace takes it for a new file), named by a digest of the
// root's absolute path and the extension.
HBRC_DATAMODEL_EXPORT QString WorkspaceStateFile(const QString& folder, const QString& root, const QString& extension);

}  // namespace hbrc::host
