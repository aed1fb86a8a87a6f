#pragma once

#include "icommand.h"

#include <kel4/sdkglobal.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace nrk::fwk {

/// The host's command base: reference count, name, named parameters and the transient flag.
class KEL_RUNTIME_API CBaseCommand : public ICommand
{
public:
    explicit CBaseCommand(std::string name = {});
    ~CBaseCommand() override;

    void AddRef() const override;
    void Release() const override;
    const std::string& GetName() const override;
    void SetName(const std::string& name) override;
    bool CanCollapse(const ICommand& next) const override;
    void AddParam(const ICommandParam& param) override;
    const ICommandParam* GetParam(const std::string& name) const override;
    std::vector<const ICommandParam*> GetAllParams() const override;
    void ClearParams() override;
    bool operator==(const ICommand& other) const override;
    bool IsTransient() const override;
    void SetTransient(bool transient) override;
    bool Equals(const ICommand& other) const override;

private:
    mutable std::atomic<int> m_refs{0};
    std::string m_name;
    std::vector<std::unique_ptr<ICommandParam>> m_params;
    bool m_transient = false;
};

}  // namespace nrk::fwk
