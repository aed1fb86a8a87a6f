#include "heldassets.h"

#include <hbrcdatamodel/workspace.h>
#include <hbrcservices/serverqueries.h>
#include <hbrcservices/filepermissions.h>
#include <hbrcservices/revisioncontrolservices.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace hbrc::studio {

QStringList HeldAssets::describe(host::Workspace& workspace, const host::RevisionControlServices& services)
{
    if (!services.dataControl)
        return {};
    const host::DataModelMgr& model = workspace.Model();
    std::vector<std::string> files;
    std::vector<std::string> owners;  // the asset of each file, by name
    for (const std::uint32_t slot : model.Store().DirtyAssets()) {
        for (const std::string& file : model.FilesOf(model.HandleOf(slot), true, kel4::closureId::Persistence)) {
            if (!host::FilePermissions::IsReadOnly(file))
                continue;
            files.push_back(file);
            owners.push_back(model.Store().AssetAt(slot).record.name);
        }
    }
    if (files.empty())
        return {};
    std::vector<revision::FileStatus> statuses;
    std::string ignored;
    if (host::ServerQueries::Status(*services.connection, services.dataControl->GetUserParameters().Get(), files,
                                   statuses, ignored)
            .IsFailure() ||
        statuses.size() != files.size())
        return {};
    std::map<std::string, std::set<std::string>> lockers;
    std::map<std::string, std::set<std::string>> editors;
    for (std::size_t i = 0; i < files.size(); ++i)
        for (const revision::FileHolder& hold : statuses[i].heldBy)
            (hold.locked ? lockers : editors)[owners[i]].insert(hold.user);
    const auto names = [](const std::set<std::string>& users) {
        QStringList list;
        for (const std::string& user : users)
            list << QString::fromStdString(user);
        return list.join(QStringLiteral(", "));
    };
    QStringList lines;
    for (const auto& [asset, users] : lockers)
        lines << tr("%1 is locked by %2: turn revision control on to check it out")
                     .arg(QString::fromStdString(asset), names(users));
    for (const auto& [asset, users] : editors)
        if (!lockers.count(asset))
            lines << tr("%1 is checked out by %2: turn revision control on to check it out")
                         .arg(QString::fromStdString(asset), names(users));
    return lines;
}

}  // namespace hbrc::studio
