#pragma once

#include <hbrcdatamodel/export.h>

#include <kel4/ikelinstance.h>
#include <kel4/iservice.h>
#include <kel4/kelptr.h>

#include <map>
#include <string>

namespace hbrc::host {

// The database instance of an open workspace: the services registered on it by name. Services
// often hold the data model they serve; ClearServices (called when the workspace closes) breaks
// that cycle.
class HBRC_DATAMODEL_EXPORT KelInstance final : public kel4::RefCounted<kel4::IKELInstance>
{
public:
    KELPtr<kel4::IService> GetService(const kel4::ServiceId& id) const override;

    // Registers (or replaces, or with null removes) the service under id.
    void RegisterService(const kel4::ServiceId& id, KELPtr<kel4::IService> service);
    void ClearServices();

private:
    std::map<std::string, KELPtr<kel4::IService>> m_services;
};

}  // namespace hbrc::host
