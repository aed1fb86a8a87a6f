#pragma once

#include "assetdiff.h"
#include "assethistory.h"

#include <hbrcservices/revisiontypes.h>

#include <QByteArray>

#include <cstdint>
#include <string>
#include <vector>

namespace hbrc::host {
class DataModelMgr;
class RevisionServer;
}  // namespace hbrc::host

namespace hbrc::studio {

// What the workspace has of an asset, taken on the UI thread for a worker to compare: its record
// with the edits in memory and, per external file, the content the next save writes (also in
// memory) or the file on disk.
struct AssetInMemory
{
    struct File
    {
        std::string name;
        std::string path;  // absolute
        bool inMemory = false;
        QByteArray content;  // when inMemory
        bool removed = false;  // the next save deletes it
    };
    host::AssetRecord record;
    std::vector<File> files;

    static AssetInMemory of(const host::DataModelMgr& model, std::uint32_t slot);
    // Reads the files not in memory from disk: off the UI thread.
    AssetVersion read() const;
};

// The answer to a difference question: the rows, or why there are none.
struct DifferenceAnswer
{
    revision::Result result;
    std::vector<FieldDifference> rows;
};

// Reads the versions of one asset from the server, on a worker thread: the .kel file and the
// external files at the revisions the asset had as of a change. The history names those revisions;
// external files that an older version listed and the history does not know yet are asked about
// once, in one question.
class AssetVersionReader
{
public:
    AssetVersionReader(host::RevisionServer& server, std::string ticket, AssetHistory history);

    // The asset as of change; a version that does not exist when its .kel file had no revision then.
    revision::Result read(const revision::ChangelistId& change, AssetVersion& version);
    // The difference between the asset as of before and as of after, or its edits in memory.
    DifferenceAnswer compare(const revision::ChangelistId& before, const revision::ChangelistId& after);
    DifferenceAnswer compare(const revision::ChangelistId& before, const AssetInMemory& edits);
    // What change did to the asset: its version then against its version before.
    DifferenceAnswer changeOf(const revision::ChangelistId& change);

    const AssetHistory& history() const { return m_history; }

private:
    revision::Result learnHistories(const std::vector<std::string>& files);

    host::RevisionServer& m_server;
    std::string m_ticket;
    AssetHistory m_history;
};

}  // namespace hbrc::studio
