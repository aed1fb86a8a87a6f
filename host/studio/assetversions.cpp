#include "assetversions.h"

#include <hbrcdatamodel/datamodelmgr.h>
#include <hbrcdatamodel/kelformat.h>
#include <hbrcservices/revisionserver.h>

#include <QFile>

namespace hbrc::studio {

namespace {

std::string folderOf(const std::string& file)
{
    const std::size_t slash = file.rfind('/');
    return slash == std::string::npos ? std::string() : file.substr(0, slash + 1);
}

}  // namespace

AssetInMemory AssetInMemory::of(const host::DataModelMgr& model, std::uint32_t slot)
{
    const host::StoredAsset& stored = model.Store().AssetAt(slot);
    AssetInMemory asset;
    asset.record = stored.record;
    for (const std::string& name : stored.record.externalFiles) {
        File file;
        file.name = name;
        file.path = model.AbsolutePath(stored.ExternalPath(name));
        if (const auto pending = stored.pendingContent.find(name); pending != stored.pendingContent.end()) {
            file.inMemory = true;
            file.content = pending->second;
        }
        file.removed = stored.pendingRemoval.count(name) != 0;
        asset.files.push_back(std::move(file));
    }
    return asset;
}

AssetVersion AssetInMemory::read() const
{
    AssetVersion version{true, record, {}};
    for (const File& file : files) {
        if (file.inMemory) {
            version.externalFiles.push_back(ExternalFileState::of(file.name, file.content));
            continue;
        }
        QFile disk(QString::fromStdString(file.path));
        if (file.removed || !disk.open(QIODevice::ReadOnly))
            version.externalFiles.push_back(ExternalFileState::missing(file.name));
        else
            version.externalFiles.push_back(ExternalFileState::of(file.name, disk.readAll()));
    }
    return version;
}

AssetVersionReader::AssetVersionReader(host::RevisionServer& server, std::string ticket, AssetHistory history)
    : m_server(server), m_ticket(std::move(ticket)), m_history(std::move(history))
{
}

revision::Result AssetVersionReader::learnHistories(const std::vector<std::string>& files)
{
    std::vector<std::string> unknown;
    for (const std::string& file : files)
        if (!m_history.knows(file))
            unknown.push_back(file);
    if (unknown.empty())
        return {};
    std::vector<std::vector<revision::FileRevision>> histories;
    const revision::Result result = m_server.fileHistory(m_ticket, unknown, 0, histories);
    if (result.ok())
        m_history.add(unknown, std::move(histories));
    return result;
}

revision::Result AssetVersionReader::read(const revision::ChangelistId& change, AssetVersion& version)
{
    version = {};
    if (m_history.files().empty())
        return {};
    const std::string& kelFile = m_history.files().front();
    const std::int64_t kelRevision = m_history.revisionAt(kelFile, change);
    if (kelRevision == 0)
        return {};
    std::string content;
    revision::Result result = m_server.fileContent(m_ticket, {kelFile, kelRevision}, content);
    if (!result.ok())
        return result;
    std::string error;
    if (!host::KelFormat::Parse(content, version.record, error))
        return {revision::code::Failed, kelFile + "#" + std::to_string(kelRevision) + ": " + error};
    version.exists = true;
    const std::string folder = folderOf(kelFile);
    std::vector<std::string> externalFiles;
    for (const std::string& name : version.record.externalFiles)
        externalFiles.push_back(folder + name);
    if (result = learnHistories(externalFiles); !result.ok())
        return result;
    for (std::size_t i = 0; i < externalFiles.size(); ++i) {
        const std::string& name = version.record.externalFiles[i];
        const std::int64_t revision = m_history.revisionAt(externalFiles[i], change);
        if (revision == 0) {
            version.externalFiles.push_back(ExternalFileState::missing(name));
            continue;
        }
        if (result = m_server.fileContent(m_ticket, {externalFiles[i], revision}, content); !result.ok())
            return result;
        version.externalFiles.push_back(
            ExternalFileState::of(name, QByteArray(content.data(), qsizetype(content.size()))));
    }
    return {};
}

DifferenceAnswer AssetVersionReader::compare(const revision::ChangelistId& before, const revision::ChangelistId& after)
{
    DifferenceAnswer answer;
    AssetVersion older, newer;
    if (answer.result = read(before, older); answer.result.ok() && (answer.result = read(after, newer)).ok())
        answer.rows = AssetDiff::compare(older, newer);
    return answer;
}

DifferenceAnswer AssetVersionReader::compare(const revision::ChangelistId& before, const AssetInMemory& edits)
{
    DifferenceAnswer answer;
    AssetVersion older;
    if (answer.result = read(before, older); answer.result.ok())
        answer.rows = AssetDiff::compare(older, edits.read());
    return answer;
}

DifferenceAnswer AssetVersionReader::changeOf(const revision::ChangelistId& change)
{
    DifferenceAnswer answer;
    AssetVersion newer;
    // Reading the newer version first teaches the history its external files, whose own changes
    // count when looking for the change before.
    if (answer.result = read(change, newer); !answer.result.ok())
        return answer;
    AssetVersion older;
    if (answer.result = read(m_history.changeBefore(change), older); answer.result.ok())
        answer.rows = AssetDiff::compare(older, newer);
    return answer;
}

}  // namespace hbrc::studio
