#include "editstepcommand.h"

#include <hbrcdatamodel/kelformat.h>
#include <hbrcdatamodel/workspace.h>
#include <kel4/idatacontrol.h>
#include <kel4/revisionstatus.h>

namespace hbrc::studio {

EditStepCommand::EditStepCommand(std::string name, host::Workspace& workspace, KELHandle<kel4::IDbObject> asset,
                                 KELPtr<nrk::fwk::ICommand> edit, RevisionControl revisionControl)
    : CBaseCommand(std::move(name)), m_workspace(workspace), m_asset(std::move(asset)), m_edit(std::move(edit)),
      m_revisionControl(std::move(revisionControl))
{
}

bool EditStepCommand::DoAction()
{
    if (!m_allowed) {
        m_savedContent = m_workspace.Model().IsDirty(m_asset) ? std::string() : content();
        const bool readOnly = isReadOnly();
        if (!m_revisionControl.mayEdit())
            return false;
        m_checkedOut = readOnly && isCheckedOut();
        m_allowed = true;
    } else if (m_checkedOut && !isCheckedOut() && !m_revisionControl.checkOut()) {
        return false;
    }
    return m_edit->DoAction();
}

bool EditStepCommand::UndoAction()
{
    if (!m_edit->UndoAction())
        return false;
    if (m_checkedOut && !m_savedContent.empty() && content() == m_savedContent) {
        m_workspace.Model().Store().SetDirty(assetSlot(), false);
        m_revisionControl.handBackCheckOut();
    }
    return true;
}

bool EditStepCommand::isReadOnly() const
{
    kel4::IDataControl* data = m_revisionControl.dataControl;
    return data && data->IsReadOnly(m_asset, true, kel4::closureId::Persistence);
}

bool EditStepCommand::isCheckedOut() const
{
    kel4::IDataControl* data = m_revisionControl.dataControl;
    kel4::List<unsigned> statuses;
    std::string error;
    return data && data->GetStatus({m_asset}, true, kel4::closureId::Persistence, false, statuses, error).IsSuccess() &&
           !statuses.empty() && (statuses.front() & kel4::eStatusCheckedOut);
}

std::uint32_t EditStepCommand::assetSlot() const
{
    const host::DataModelMgr& model = m_workspace.Model();
    const std::uint32_t slot = model.SlotOf(m_asset);
    return slot == host::ObjectStore::kNoSlot ? slot : model.Store().OwnerOf(slot);
}

std::string EditStepCommand::content() const
{
    const std::uint32_t slot = assetSlot();
    if (slot == host::ObjectStore::kNoSlot)
        return {};
    const host::StoredAsset& stored = m_workspace.Model().Store().AssetAt(slot);
    if (!stored.pendingContent.empty() || !stored.pendingRemoval.empty())
        return {};
    return host::KelFormat::Serialize(stored.record);
}

}  // namespace hbrc::studio
