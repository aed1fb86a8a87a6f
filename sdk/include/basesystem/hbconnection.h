#pragma once

#include <kel4/sdkglobal.h>
#include <nrk/signalling/iconnection.h>

#include <boost/signals2/connection.hpp>

namespace BaseSystem {

/// The host's connection object over a Boost.Signals2 connection. Destroying it disconnects.
class KEL_RUNTIME_API hbconnection final : public nrk::signalling::IConnection
{
public:
    explicit hbconnection(boost::signals2::connection connection);
    ~hbconnection() override;
    hbconnection(const hbconnection&) = delete;
    hbconnection& operator=(const hbconnection&) = delete;

    void Disconnect() override;
    bool IsConnected() const override;

private:
    boost::signals2::connection m_connection;
};

}  // namespace BaseSystem
