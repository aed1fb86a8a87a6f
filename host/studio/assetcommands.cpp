#include "assetcommands.h"

#include "assetbrowsermodel.h"
#include "changelistwork.h"
#include "outsidehistory.h"
#include "revisionoperations.h"
#include "studiosession.h"
#include "unsavededits.h"

#include <hbrcdatamodel/workspace.h>
#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <kel4/irevisioncontroluihelper.h>
#include <log/log.h>

#include <QScopedValueRollback>

#include <set>

namespace hbrc::studio {

namespace {

QString nameOf(const KELHandleBase& asset)
{
    return QString::fromStdString(asset.GetName());
}

}  // namespace

AssetCommands::AssetCommands(StudioSession& session, RevisionOperations& operations, const AssetBrowserModel& model,
                             QObject* parent)
    : QObject(parent), m_session(session), m_operations(operations), m_model(model)
{
}

bool AssetCommands::mayEdit(const KELHandle<kel4::IDbObject>& asset, const QString& what)
{
    if (m_editing)
        return false;
    bool allowed = false;
    {
        const QScopedValueRollback<bool> editing(m_editing, true);
        allowed = RunOutsideHistory(m_session.host().Commands(), [&] {
            return m_session.helper()->CanEditObjects({asset}, true, true, what.toStdString());
        });
    }
    if (!allowed) {
        emit historyNoted(asset, tr("refused: %1").arg(what));
        emit message(Log::eWarning, tr("Refused: %1").arg(what));
        noteRefusal(asset);
    }
    return allowed;
}

void AssetCommands::checkOut(const KELHandle<kel4::IDbObject>& asset)
{
    if (RunOutsideHistory(m_session.host().Commands(), [&] {
            bool cancelled = false;
            return m_session.helper()->CheckOutObject(asset, cancelled, true);
        }))
        emit message(Log::eMessage, tr("Checked out %1").arg(nameOf(asset)));
    else
        noteRefusal(asset);
    emit changed();
}

void AssetCommands::noteRefusal(const KELHandle<kel4::IDbObject>& asset)
{
    for (const QString& line : m_model.relatedHolds(m_model.rowOf(asset)))
        emit message(Log::eWarning, line);
    emit refused(asset);
}

void AssetCommands::makeWritable(const KELHandle<kel4::IDbObject>& asset)
{
    if (RunOutsideHistory(m_session.host().Commands(),
                          [&] { return m_session.helper()->MakeObjectWritable(asset, true); }))
        emit message(Log::eMessage, tr("Made %1 writable").arg(nameOf(asset)));
    emit changed();
}

void AssetCommands::markForAdd(const KELHandle<kel4::IDbObject>& asset)
{
    const host::DataModelMgr& model = m_session.currentWorkspace()->Model();
    if (!model.Store().AssetAt(model.SlotOf(asset)).IsOnDisk()) {
        // Nothing to add yet: the save writes its files and its post-save hook marks them for add.
        emit message(Log::eMessage, tr("%1 is not saved yet: the next save marks it for add").arg(nameOf(asset)));
        return;
    }
    std::string changelist, error;
    if (IRevisionControlPropertiesMgr* settings = m_session.settings())
        settings->GetChangeListToUseWhenAutoCheckingOut(changelist);
    const kelResult result = m_session.services().dataControl->MarkForAdd({asset}, true, kel4::closureId::Persistence,
                                                                          changelist, error);
    if (result.IsSuccess())
        emit message(Log::eMessage, tr("Marked %1 for add").arg(nameOf(asset)));
    else
        emit message(Log::eError, tr("Cannot mark %1 for add: %2").arg(nameOf(asset), QString::fromStdString(error)));
    emit changed();
}

void AssetCommands::getLatest(const std::vector<KELHandle<kel4::IDbObject>>& assets)
{
    const host::DataModelMgr& model = m_session.currentWorkspace()->Model();
    std::vector<std::string> files;
    for (const KELHandle<kel4::IDbObject>& asset : assets) {
        const kel4::Set<std::string> own = model.FilesOf(asset, true, kel4::closureId::Persistence);
        files.insert(files.end(), own.begin(), own.end());
    }
    UnsavedEdits::Verdict verdict = UnsavedEdits::check(model, UnsavedEdits::Rewrite::GetLatest, files);
    if (!verdict.warning.isEmpty())
        emit message(Log::eWarning, verdict.warning);
    if (verdict.files.empty())
        return;
    QStringList names;
    for (const KELHandle<kel4::IDbObject>& asset : assets)
        if (const QString name = nameOf(asset); !verdict.blocking.contains(name))
            names << name;
    constexpr int kNamesShown = 5;
    const QString what = names.size() <= kNamesShown ? names.join(QStringLiteral(", "))
                                                     : tr("%n asset(s)", nullptr, int(names.size()));
    m_operations.run(tr("Get Latest"), ChangelistWork::getLatest(std::move(verdict.files), what));
}

void AssetCommands::getRevision(const KELHandle<kel4::IDbObject>& asset, std::vector<revision::FileAtRevision> files,
                                const QString& change)
{
    std::vector<std::string> paths;
    for (const revision::FileAtRevision& file : files)
        paths.push_back(file.file);
    const UnsavedEdits::Verdict verdict =
        UnsavedEdits::check(m_session.currentWorkspace()->Model(), UnsavedEdits::Rewrite::GetRevision, paths);
    if (!verdict.warning.isEmpty()) {
        emit message(Log::eWarning, verdict.warning);
        return;
    }
    m_operations.run(tr("Get This Revision"), ChangelistWork::getRevision(std::move(files), nameOf(asset), change));
}

std::vector<KELHandle<kel4::IDbObject>> AssetCommands::assetsBehind() const
{
    std::vector<KELHandle<kel4::IDbObject>> behind;
    for (int row = 0; row < m_model.rowCount(); ++row)
        if (const AssetStatus* status = m_model.statusAt(row); status && status->behind)
            behind.push_back(m_model.assetAt(row));
    return behind;
}

bool AssetCommands::isBehind(const KELHandle<kel4::IDbObject>& asset) const
{
    const AssetStatus* status = m_model.statusAt(m_model.rowOf(asset));
    return status && status->behind;
}

void AssetCommands::handBackCheckOut(const KELHandle<kel4::IDbObject>& asset)
{
    const kel4::Set<std::string> files =
        m_session.currentWorkspace()->Model().FilesOf(asset, true, kel4::closureId::Persistence);
    m_operations.run(tr("Revert"), ChangelistWork::revertUnchangedCheckOut({files.begin(), files.end()}, nameOf(asset)));
}

void AssetCommands::showFiles(const KELHandle<kel4::IDbObject>& asset, bool inFileBrowser)
{
    m_session.helper()->ShowObjectFiles(asset, inFileBrowser);
}

void AssetCommands::takeOutcome(const OperationOutcome& outcome)
{
    if (outcome.what.isEmpty())
        return;  // a refresh of the pending changes: the status question runs beside it
    if (outcome.result.ok())
        emit message(Log::eMessage, outcome.done);
    else
        emit message(Log::eError,
                     tr("%1 refused: %2").arg(outcome.what, QString::fromStdString(outcome.result.error)));
    if (!m_session.currentWorkspace())
        return;
    if (m_session.services().connection)
        m_session.services().connection->Cache().Invalidate();
    rereadFromDisk(outcome.changedOnDisk);
    emit operationApplied();
}

void AssetCommands::rereadFromDisk(const std::vector<std::string>& files)
{
    if (files.empty())
        return;
    host::Workspace* workspace = m_session.currentWorkspace();
    std::set<std::string> done;
    for (const KELHandle<kel4::IAsset>& asset : workspace->Model().AssetsOwningFiles({files.begin(), files.end()})) {
        if (asset.IsNull() || !done.insert(asset.GetName()).second)
            continue;
        if (const host::EditResult read = workspace->ReloadFromDisk(asset); !read)
            emit message(Log::eWarning,
                         tr("%1 was not read again: %2").arg(nameOf(asset), QString::fromStdString(read.error)));
    }
    emit assetsReread();
}

}  // namespace hbrc::studio
