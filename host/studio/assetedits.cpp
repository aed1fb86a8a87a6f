#include "assetedits.h"

#include "assetcommands.h"
#include "editstepcommand.h"
#include "fieldeditcommand.h"
#include "heldassets.h"
#include "outsidehistory.h"
#include "sessioncontroller.h"
#include "studiosession.h"

#include <kel4/irevisioncontroluihelper.h>
#include <log/log.h>

#include <QFile>
#include <QFileInfo>

namespace hbrc::studio {

namespace {

QString nameOf(const KELHandleBase& asset)
{
    return QString::fromStdString(asset.GetName());
}

}  // namespace

AssetEdits::AssetEdits(StudioSession& session, SessionController& sessionController, AssetCommands& commands,
                       QObject* parent)
    : QObject(parent), m_session(session), m_sessionController(sessionController), m_commands(commands)
{
}

bool AssetEdits::editField(const KELHandle<kel4::IDbObject>& asset, const QString& field, const QString& oldValue,
                           const QString& newValue)
{
    host::Workspace* workspace = m_session.currentWorkspace();
    if (asset.IsNull() || !workspace || m_commands.editing())
        return false;
    const QString name = nameOf(asset);
    const QString what = tr("%1 of %2: %3 -> %4").arg(field, name, oldValue, newValue);
    const QString step = field == QLatin1String(FieldEditCommand::kNameField) ? tr("Rename %1").arg(name)
                                                                               : tr("Edit %1 of %2").arg(field, name);
    EditStepCommand::RevisionControl revisionControl;
    revisionControl.dataControl = m_session.services().dataControl.Get();
    revisionControl.mayEdit = [this, asset, what] { return m_commands.mayEdit(asset, what); };
    revisionControl.checkOut = [this, asset] {
        bool cancelled = false;
        return m_session.helper()->CheckOutObject(asset, cancelled, true);
    };
    revisionControl.handBackCheckOut = [this, asset] { m_commands.handBackCheckOut(asset); };
    const KELPtr<nrk::fwk::ICommand> edit(new FieldEditCommand(*workspace, asset, field.toStdString(),
                                                               oldValue.toStdString(), newValue.toStdString()));
    const KELPtr<EditStepCommand> command(
        new EditStepCommand(step.toStdString(), *workspace, asset, edit, std::move(revisionControl)));
    const bool done = m_session.host().Commands().ExecuteCommand(command.Get(), true);
    if (!command->allowed()) {
        emit editRefused();
        return false;
    }
    emit historyNoted(asset, done ? what : tr("failed: %1").arg(what));
    emit message(done ? Log::eMessage : Log::eError, done ? tr("Edited %1").arg(what) : tr("Cannot edit %1").arg(what));
    emit changed();
    return done;
}

bool AssetEdits::save()
{
    host::Workspace* workspace = m_session.currentWorkspace();
    if (!workspace)
        return false;
    // With revision control off the save offers to make read-only files writable without naming
    // who holds them. Naming them first protects their work best without overriding the user's
    // own choice to work without revision control: a writable copy changes nothing on the server,
    // where their check-out or lock still stands, and the user now knows whom to ask before they
    // turn revision control on (which would make the save check the files out instead).
    // Offline the server is not asked: the reconcile names who holds the files.
    if (m_sessionController.state() == SessionState::RevisionControlOff)
        for (const QString& held : HeldAssets::describe(*workspace, m_session.services()))
            emit message(Log::eWarning, held);
    host::SaveReport report;
    RunOutsideHistory(m_session.host().Commands(), [&] {
        report = workspace->Save();
        return true;
    });
    if (report.Succeeded())
        emit message(Log::eMessage, tr("Saved %n file(s)", nullptr, int(report.writtenFiles.size())));
    else if (report.cancelled)
        emit message(Log::eWarning, whySaveWasCancelled());
    else
        emit message(Log::eError,
                     tr("The save did not complete: %1").arg(QString::fromStdString(report.DescribeFailures())));
    emit changed();
    return report.Succeeded();
}

// The plug-in cancels a save when the files of assets to save stay read-only: their check-out was
// refused or cancelled. Nothing was written, so those files are read-only still.
QString AssetEdits::whySaveWasCancelled() const
{
    QStringList readOnly;
    const host::DataModelMgr& model = m_session.currentWorkspace()->Model();
    if (kel4::IDataControl* data = m_session.services().dataControl.Get()) {
        for (std::uint32_t slot : model.Store().DirtyAssets()) {
            const KELHandle<kel4::IDbObject> asset = model.HandleOf(slot);
            if (data->IsReadOnly(asset, true, kel4::closureId::Persistence))
                readOnly << nameOf(asset);
        }
    }
    if (readOnly.isEmpty())
        return tr("The save was cancelled; the edits stay in memory");
    return tr("The save was cancelled: the check-out of %1 was cancelled; the edits stay in memory")
        .arg(readOnly.join(QStringLiteral(", ")));
}

KELHandle<kel4::IAsset> AssetEdits::createAsset(const host::NewAsset& asset)
{
    const QString name = QString::fromStdString(asset.name);
    std::string error;
    const KELHandle<kel4::IAsset> created = m_session.currentWorkspace()->CreateAsset(asset, error);
    if (created.IsNull())
        emit message(Log::eError, tr("Cannot create %1: %2").arg(name, QString::fromStdString(error)));
    else
        emit message(Log::eMessage, tr("Created %1 (saved with the next save)").arg(name));
    return created;
}

void AssetEdits::deleteAsset(const KELHandle<kel4::IDbObject>& asset)
{
    const QString name = nameOf(asset);
    if (!m_commands.mayEdit(asset, tr("delete %1").arg(name)))
        return;
    logEdit(m_session.currentWorkspace()->DeleteAsset(asset), tr("Deleted %1").arg(name));
}

void AssetEdits::addExternalFile(const KELHandle<kel4::IDbObject>& asset, const QString& path)
{
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly)) {
        emit message(Log::eError, tr("Cannot read %1").arg(path));
        return;
    }
    const QString fileName = QFileInfo(path).fileName();
    if (!m_commands.mayEdit(asset, tr("add %1 to %2").arg(fileName, nameOf(asset))))
        return;
    logEdit(m_session.currentWorkspace()->AddExternalFile(asset, fileName.toStdString(), source.readAll()),
            tr("Added %1").arg(fileName));
}

void AssetEdits::removeExternalFile(const KELHandle<kel4::IDbObject>& asset, const QString& fileName)
{
    if (!m_commands.mayEdit(asset, tr("remove %1 from %2").arg(fileName, nameOf(asset))))
        return;
    logEdit(m_session.currentWorkspace()->RemoveExternalFile(asset, fileName.toStdString()),
            tr("Removed %1").arg(fileName));
}

void AssetEdits::logEdit(const host::EditResult& result, const QString& done)
{
    emit message(result ? Log::eMessage : Log::eError, result ? done : QString::fromStdString(result.error));
    emit changed();
}

QStringList AssetEdits::externalFilesOf(const KELHandle<kel4::IDbObject>& asset) const
{
    const host::DataModelMgr& model = m_session.currentWorkspace()->Model();
    QStringList names;
    for (const std::string& name : model.Store().AssetAt(model.SlotOf(asset)).record.externalFiles)
        names << QString::fromStdString(name);
    return names;
}

void AssetEdits::undo()
{
    const nrk::fwk::ICommand* step = m_session.host().Commands().GetUndoCommand();
    const QString name = step ? QString::fromStdString(step->GetName()) : QString();
    if (m_session.host().Commands().Undo())
        emit message(Log::eMessage, tr("Undid %1").arg(name));
    emit changed();
}

void AssetEdits::redo()
{
    const nrk::fwk::ICommand* step = m_session.host().Commands().GetRedoCommand();
    const QString name = step ? QString::fromStdString(step->GetName()) : QString();
    if (m_session.host().Commands().Redo())
        emit message(Log::eMessage, tr("Redid %1").arg(name));
    else
        emit message(Log::eWarning, tr("Cannot redo %1").arg(name));
    emit changed();
}

}  // namespace hbrc::studio
