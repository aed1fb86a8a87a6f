#include <basesystem/hbconnection.h>

namespace BaseSystem {

hbconnection::hbconnection(boost::signals2::connection connection)
    : m_connection(std::move(connection))
{
}

hbconnection::~hbconnection()
{
    m_connection.disconnect();
}

void hbconnection::Disconnect()
{
    m_connection.disconnect();
}

bool hbconnection::IsConnected() const
{
    return m_connection.connected();
}

}  // namespace BaseSystem
