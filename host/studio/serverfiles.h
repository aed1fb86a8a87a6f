#pragma once

#include <kel4/kelhandle.h>

#include <string>

namespace kel4 {
class IAsset;
}

namespace hbrc::host {
class DataModelMgr;
}

namespace hbrc::studio {

// The asset of the workspace that owns a file the server names ("//depot/art/Rock.kel",
// "^/trunk/art/Rock.kel"), and that file's local path; a null handle when no asset owns it. The
// server's name ends with the file's path in the workspace, below a prefix of the server's own (the
// depot's name, a repository folder): the longest ending that names a file of an asset wins.
KELHandle<kel4::IAsset> AssetOfServerFile(const host::DataModelMgr& model, const std::string& serverName,
                                          std::string& localPath);

}  // namespace hbrc::studio
