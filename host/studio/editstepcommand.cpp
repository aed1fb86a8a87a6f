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
        m_savedContent = m_workspace.Model().IsDirty(m_asset) ? std::string() : Content();
        const bool readOnly = IsReadOnly();
        if (!m_revisionControl.mayEdit())
            return false;
        m_checkedOut = readOnly && IsCheckedOut();
        m_allowed = true;
    } else if (m_checkedOut && !IsCheckedOut() && !m_revisionControl.checkOut()) {
        return false;
    }
    return m_edit->DoAction();
}

bool EditStepCommand::UndoAction()
{
    if (!m_edit->UndoAction())
        return false;
    if (m_checkedOut && !m_savedContent.empty() && Content() == m_savedContent) {
        m_workspace.Model().Store().SetDirty(AssetSlot(), false);
        m_revisionControl.handBackCheckOut();
    }
    return true;
}

bool EditStepCommand::IsReadOnly() const
{
    kel4::IDataControl* data = m_revisionControl.dataControl;
    return data && data->IsReadOnly(m_asset, true, kel4::closureId::Persistence);
}

bool EditStepCommand::IsCheckedOut() const
{
    kel4::IDataControl* data = m_revisionControl.dataControl;
    kel4::List<unsigned> statuses;
    std::string error;
    return data && data->GetStatus({m_asset}, true, kel4::closureId::Persistence, false, statuses, error).IsSuccess() &&
           !statuses.empty() && (statuses.front() & kel4::eStatusCheckedOut);
}

std::uint32_t EditStepCommand::AssetSlot() const
{
    const host::DataModelMgr& model = m_workspace.Model();
    const std::uint32_t slot = model.SlotOf(m_asset);
    return slot == host::ObjectStore::kNoSlot ? slot : model.Store().OwnerOf(slot);
}

std::string EditStepCommand::Content() const
{
    const std::uint32_t slot = AssetSlot();
    if (slot == host::ObjectStore::kNoSlot)
        return {};
    const host::StoredAsset& stored = m_workspace.Model().Store().AssetAt(slot);
    if (!stored.pendingContent.empty() || !stored.pendingRemoval.empty())
        return {};
    return host::KelFormat::Serialize(stored.record);
}

}  // namespace hbrc::studio
