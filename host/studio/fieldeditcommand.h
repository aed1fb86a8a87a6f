#pragma once

#include <kel4/kelhandle.h>
#include <nrk/fwk/cbasecommand.h>

#include <string>

namespace hbrc::host {
class Workspace;
}

namespace hbrc::studio {

// One edit of an asset's field (or of its name, the field "name"), the edit of an EditStepCommand:
// DoAction sets the new value, UndoAction puts the old one back.
class FieldEditCommand final : public nrk::fwk::CBaseCommand
{
public:
    static constexpr const char* kNameField = "name";

    FieldEditCommand(host::Workspace& workspace, KELHandle<kel4::IDbObject> asset, std::string field,
                     std::string oldValue, std::string newValue);

    const char* GetCommandIdentifier() const override { return "editAssetField"; }
    bool DoAction() override { return apply(m_newValue); }
    bool UndoAction() override { return apply(m_oldValue); }

private:
    bool apply(const std::string& value);

    host::Workspace& m_workspace;
    KELHandle<kel4::IDbObject> m_asset;
    std::string m_field;
    std::string m_oldValue;
    std::string m_newValue;
};

}  // namespace hbrc::studio
