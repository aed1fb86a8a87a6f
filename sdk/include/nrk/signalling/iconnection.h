#pragma once

#include <kel4/sdkglobal.h>

namespace nrk::signalling {

/// A connection of a slot to a host signal, handed to the caller of a Connect_<Event> operation.
/// The caller owns it; destroying it disconnects.
class KEL_INTERFACE IConnection
{
public:
    virtual ~IConnection() = default;
    virtual void Disconnect() = 0;
    virtual bool IsConnected() const = 0;
};

}  // namespace nrk::signalling
