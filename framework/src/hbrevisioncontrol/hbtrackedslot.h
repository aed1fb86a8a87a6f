#pragma once

#include <nrk/signalling/iconnection.h>

#include <list>

// Holds one host signal connection. Destroying it disconnects and destroys the connection.
class HBTrackedSlot
{
public:
    HBTrackedSlot() = default;
    ~HBTrackedSlot()
    {
        if (m_connection) {
            m_connection->Disconnect();
            delete m_connection;
            m_connection = nullptr;
        }
    }
    HBTrackedSlot(const HBTrackedSlot&) = delete;
    HBTrackedSlot& operator=(const HBTrackedSlot&) = delete;

    // The place a host connect operation fills.
    nrk::signalling::IConnection** ConnectionAddress() { return &m_connection; }
    nrk::signalling::IConnection* Connection() const { return m_connection; }

private:
    nrk::signalling::IConnection* m_connection = nullptr;
};

// Destroying the list destroys its slots in list order, which disconnects every connection.
using HBTrackedSlotList = std::list<HBTrackedSlot>;
