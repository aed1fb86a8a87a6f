#pragma once

#include <hbrcdatamodel/export.h>
#include <hbrcdatamodel/savereport.h>

namespace hbrc::host {
class DataModelMgr;
class ItemLibrary;

// The commit of a workspace. First every commit receiver of the item library is asked
// (OnPreCommit); a cancel stops the save before anything is written. Then the files of deleted
// assets are removed and every dirty persistable asset is written: its new external files, then
// its .kel file, then the removal of the external files it dropped. An asset of which a file
// could not be written stays dirty with its edits; the report names every such file. Removed
// files and assets written for the first time are recorded by the workspace's data source.
// Finally the receivers' OnPostCommit runs.
class HBRC_DATAMODEL_EXPORT WorkspaceSaver
{
public:
    static SaveReport Save(DataModelMgr& model, ItemLibrary& library);
};

}  // namespace hbrc::host
