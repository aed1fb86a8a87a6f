#pragma once

#include <borax/datamodel/accessors.h>
#include <kel4/ikelinstance.h>
#include <kel4/kelptr.h>
#include <kel4/sdkglobal.h>
#include <nrk/signalling/iconnection.h>

namespace kel4 {
class IDataModelMgr;
}

namespace nrk::fwk {

/// Receiver of the database proxy's connection signals; override what you need.
class KEL_INTERFACE IKELDBProxy_Slot
{
public:
    virtual ~IKELDBProxy_Slot() = default;
    /// The first time a database is opened in this host session.
    virtual void OnInitialConnectionToDB() {}
    /// A database has been opened (after OnInitialConnectionToDB for the first one).
    virtual void OnConnectedToDB() {}
    /// The open database is about to be closed.
    virtual void OnDisconnectedFromDB() {}
};

/// The host's database proxy (the singleton "KELDBProxy"): the database the user works in now.
class KEL_INTERFACE IKELDBProxy
{
public:
    virtual ~IKELDBProxy() = default;
    static const char* GetSingletonName() { return "KELDBProxy"; }

    /// Each connect fills *connection with a connection the caller owns (destroying it disconnects).
    virtual void Connect_OnInitialConnectionToDB(IKELDBProxy_Slot* slot, nrk::signalling::IConnection** connection) = 0;
    virtual void Connect_OnConnectedToDB(IKELDBProxy_Slot* slot, nrk::signalling::IConnection** connection) = 0;
    virtual void Connect_OnDisconnectedFromDB(IKELDBProxy_Slot* slot, nrk::signalling::IConnection** connection) = 0;

    virtual bool IsConnected() const = 0;
    /// The data-model manager of the open database, or null.
    virtual kel4::IDataModelMgr* GetDataModelMgr() const = 0;
    /// The database instance of the open database, or null.
    virtual KELPtr<kel4::IKELInstance> GetKELInstance() const = 0;
    /// The item library of the open database (an accessor without context when none is open).
    virtual borax::datamodel::ItemLibraryAccessor GetItemLibraryAccessor() const = 0;
};

}  // namespace nrk::fwk
