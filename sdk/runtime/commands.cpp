#include <borax/datamodel/modify/cbaseexecutioncommand.h>
#include <nrk/fwk/cbasecommand.h>

#include <algorithm>
#include <cstring>
#include <typeinfo>

namespace nrk::fwk {

CBaseCommand::CBaseCommand(std::string name)
    : m_name(std::move(name))
{
}

CBaseCommand::~CBaseCommand() = default;

void CBaseCommand::AddRef() const
{
    m_refs.fetch_add(1, std::memory_order_relaxed);
}

void CBaseCommand::Release() const
{
    if (m_refs.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete this;
}

const std::string& CBaseCommand::GetName() const
{
    return m_name;
}

void CBaseCommand::SetName(const std::string& name)
{
    m_name = name;
}

bool CBaseCommand::CanCollapse(const ICommand&) const
{
    return false;
}

void CBaseCommand::AddParam(const ICommandParam& param)
{
    auto same = std::find_if(m_params.begin(), m_params.end(),
                             [&](const auto& p) { return p->GetName() == param.GetName(); });
    if (same != m_params.end())
        *same = param.Clone();
    else
        m_params.push_back(param.Clone());
}

const ICommandParam* CBaseCommand::GetParam(const std::string& name) const
{
    auto found = std::find_if(m_params.begin(), m_params.end(), [&](const auto& p) { return p->GetName() == name; });
    return found == m_params.end() ? nullptr : found->get();
}

std::vector<const ICommandParam*> CBaseCommand::GetAllParams() const
{
    std::vector<const ICommandParam*> params;
    for (const auto& p : m_params)
        params.push_back(p.get());
    return params;
}

void CBaseCommand::ClearParams()
{
    m_params.clear();
}

bool CBaseCommand::operator==(const ICommand& other) const
{
    return Equals(other);
}

bool CBaseCommand::IsTransient() const
{
    return m_transient;
}

void CBaseCommand::SetTransient(bool transient)
{
    m_transient = transient;
}

bool CBaseCommand::Equals(const ICommand& other) const
{
    if (std::strcmp(GetCommandIdentifier(), other.GetCommandIdentifier()) != 0)
        return false;
    const auto mine = GetAllParams();
    const auto theirs = other.GetAllParams();
    if (mine.size() != theirs.size())
        return false;
    // Parameters are compared by name and kind; their values are the command's own business.
    for (std::size_t i = 0; i < mine.size(); ++i) {
        const nrk::fwk::ICommandParam& a = *mine[i];
        const nrk::fwk::ICommandParam& b = *theirs[i];
        if (a.GetName() != b.GetName() || typeid(a) != typeid(b))
            return false;
    }
    return true;
}

}  // namespace nrk::fwk

namespace borax::datamodel::modify {

namespace {
const char* const kReturnValue = "ReturnValue";
}

CBaseExecutionCommand::CBaseExecutionCommand(const ItemLibraryAccessor& library, const char* name)
    : CBaseCommand(name ? name : ""), m_library(library)
{
}

bool CBaseExecutionCommand::DoAction()
{
    return BuildExecutionCommands(m_manager);
}

bool CBaseExecutionCommand::UndoAction()
{
    return true;
}

void CBaseExecutionCommand::SetReturnValue(int value)
{
    AddParam(nrk::fwk::IntParam(kReturnValue, value));
}

bool CBaseExecutionCommand::GetReturnValue(int& value) const
{
    const auto* param = nrk::fwk::GetParamAs<nrk::fwk::IntParam>(*this, kReturnValue);
    if (!param)
        return false;
    value = param->GetValue();
    return true;
}

}  // namespace borax::datamodel::modify
