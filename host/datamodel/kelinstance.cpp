#include <hbrcdatamodel/kelinstance.h>

namespace hbrc::host {

KELPtr<kel4::IService> KelInstance::GetService(const kel4::ServiceId& id) const
{
    if (!id.name)
        return nullptr;
    const auto found = m_services.find(id.name);
    return found == m_services.end() ? nullptr : found->second;
}

void KelInstance::RegisterService(const kel4::ServiceId& id, KELPtr<kel4::IService> service)
{
    if (!id.name)
        return;
    if (service)
        m_services[id.name] = std::move(service);
    else
        m_services.erase(id.name);
}

void KelInstance::ClearServices()
{
    // Services released here may call back into the instance; release them after the map is empty.
    std::map<std::string, KELPtr<kel4::IService>> released;
    released.swap(m_services);
}

}  // namespace hbrc::host
