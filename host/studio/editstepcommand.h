#pragma once

#include <kel4/kelhandle.h>
#include <kel4/kelptr.h>
#include <nrk/fwk/cbasecommand.h>

#include <cstdint>
#include <functional>
#include <string>

namespace kel4 {
class IDataControl;
}

namespace hbrc::host {
class Workspace;
}

namespace hbrc::studio {

// One edit of the user's as one undo step, named after the edit. The first run asks whether the
// asset may be edited (the plug-in's CanEditObjects, which may check it out) and then makes the
// edit. Undo takes the edit back; when the edit checked the asset out and the asset holds again
// just what it held before, nothing is left unsaved: the asset counts as saved and the check-out
// is handed back (to revert it when the file is unchanged from the revision the user has). Redo
// checks the asset out again when it is no longer, then makes the edit again.
class EditStepCommand final : public nrk::fwk::CBaseCommand
{
public:
    // What the step asks of revision control; dataControl null: the workspace has none.
    struct RevisionControl
    {
        kel4::IDataControl* dataControl = nullptr;
        std::function<bool()> mayEdit;   // asks the user as the settings say; may check the asset out
        std::function<bool()> checkOut;  // checks the asset out, for redo
        std::function<void()> handBackCheckOut;
    };

    EditStepCommand(std::string name, host::Workspace& workspace, KELHandle<kel4::IDbObject> asset,
                    KELPtr<nrk::fwk::ICommand> edit, RevisionControl revisionControl);

    const char* GetCommandIdentifier() const override { return "editStep"; }
    bool DoAction() override;
    bool UndoAction() override;

    // The first run was allowed to make the edit (false: refused, nothing changed).
    bool allowed() const { return m_allowed; }

private:
    bool isCheckedOut() const;
    bool isReadOnly() const;
    std::uint32_t assetSlot() const;  // of the asset that holds m_asset
    // The asset's content as the save would write it; "" while it has edits beyond its record.
    std::string content() const;

    host::Workspace& m_workspace;
    KELHandle<kel4::IDbObject> m_asset;
    KELPtr<nrk::fwk::ICommand> m_edit;
    RevisionControl m_revisionControl;
    bool m_allowed = false;
    bool m_checkedOut = false;
    std::string m_savedContent;  // the asset's content before the edit, when it had no unsaved edits
};

}  // namespace hbrc::studio
