#include "fieldeditcommand.h"

#include <hbrcdatamodel/workspace.h>

namespace hbrc::studio {

FieldEditCommand::FieldEditCommand(host::Workspace& workspace, KELHandle<kel4::IDbObject> asset, std::string field,
                                   std::string oldValue, std::string newValue)
    : m_workspace(workspace), m_asset(std::move(asset)),
      m_field(std::move(field)), m_oldValue(std::move(oldValue)), m_newValue(std::move(newValue))
{
    AddParam(nrk::fwk::StringParam("field", m_field));
    AddParam(nrk::fwk::StringParam("value", m_newValue));
}

bool FieldEditCommand::apply(const std::string& value)
{
    if (m_field == kNameField)
        return bool(m_workspace.Rename(m_asset, value));
    return bool(m_workspace.SetField(m_asset, m_field, value));
}

}  // namespace hbrc::studio
